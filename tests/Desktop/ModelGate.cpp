// Preloaded into the program: whoever opens a model's file waits until the file that the variable
// LORVANE_MODEL_GATE names is there. So a test can press before anything is loaded.

#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

void waitFor(const char *path) {
    const char *const gate = std::getenv("LORVANE_MODEL_GATE");
    if (!gate || !std::string_view(path).ends_with(".onnx"))
        return;
    while (access(gate, F_OK) != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

int openReal(const char *name, const char *path, int flags, mode_t mode) {
    using Open = int (*)(const char *, int, ...);
    waitFor(path);
    return reinterpret_cast<Open>(dlsym(RTLD_NEXT, name))(path, flags, mode);
}

mode_t modeIn(int flags, va_list arguments) {
    return flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" int open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return openReal("open", path, flags, mode);
}

extern "C" int open64(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return openReal("open64", path, flags, mode);
}
