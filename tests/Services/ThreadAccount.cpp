#include "ThreadAccount.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include <dlfcn.h>
#include <pthread.h>

namespace {

// Constant initialisers, so that the first use needs no memory.
thread_local long allocationCount = 0;
thread_local long lockCount = 0;

} // namespace

lorvane::ThreadAccount lorvane::ThreadAccount::now() { return {allocationCount, lockCount}; }

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

void *operator new(std::size_t size) {
    ++allocationCount;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

#else

// These stand before those of the C library, for all libraries of the process.
extern "C" {

// The C library's own names for its own.
// NOLINTBEGIN(bugprone-reserved-identifier)
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void *malloc(std::size_t size) {
    ++allocationCount;
    return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size) {
    ++allocationCount;
    return __libc_calloc(count, size);
}
void *realloc(void *memory, std::size_t size) {
    ++allocationCount;
    return __libc_realloc(memory, size);
}

int pthread_mutex_lock(pthread_mutex_t *mutex) {
    using Lock = int (*)(pthread_mutex_t *);
    static Lock real = nullptr; // its own guard would be a lock
    if (!real)
        real = reinterpret_cast<Lock>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    ++lockCount;
    return real(mutex);
}

} // extern "C"

#endif
