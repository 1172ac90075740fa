#include "LorvaneApp/Privacy.h"

#include <sys/resource.h>
#include <sys/stat.h>

namespace lorvane {

void keepPrivate() {
    umask(077);
    rlimit core{};
    if (getrlimit(RLIMIT_CORE, &core) == 0) {
        core.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &core);
    }
}

} // namespace lorvane
