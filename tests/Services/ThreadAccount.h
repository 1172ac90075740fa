#pragma once

namespace lorvane {

/// What the calling thread has asked of the system so far. Under a sanitizer, which needs these
/// calls for itself, only what goes through operator new is counted, and no lock.
struct ThreadAccount {
    long allocations = 0;
    long locks = 0;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool countsLocks = false;
#else
    static constexpr bool countsLocks = true;
#endif

    static ThreadAccount now();
};

} // namespace lorvane
