#pragma once

#include <sys/resource.h>
#include <time.h>

#include <chrono>
#include <fstream>
#include <string>

namespace lorvane {

using SteadyClock = std::chrono::steady_clock;

inline double secondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

/// Of all threads of this process so far.
inline double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// A line of /proc/self/status, in megabytes.
inline double memoryMegabytes(const std::string &name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ":", 0) == 0)
            return std::stod(line.substr(name.size() + 1)) / 1024;
    }
    return 0;
}

/// Since the start, or since the last resetPeak().
inline double peakMegabytes() { return memoryMegabytes("VmHWM"); }

inline void resetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

} // namespace lorvane
