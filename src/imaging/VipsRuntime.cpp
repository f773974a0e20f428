#include "imaging/VipsRuntime.h"

#include <mutex>
#include <vips/vips8>

namespace VipsRuntime {

void ensureStarted() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (VIPS_INIT("orvella") != 0) vips_error_exit("cannot start libvips");
        // Files are rewritten in place between steps (crop, frame, conversion); a cached operation
        // on an old file of the same name must never be reused.
        vips_cache_set_max(0);
        // Our runs decide the parallelism themselves: one photo per core.
        vips_concurrency_set(1);
    });
}

}  // namespace VipsRuntime
