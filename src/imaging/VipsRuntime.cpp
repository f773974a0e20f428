#include "imaging/VipsRuntime.h"

#include <dlfcn.h>

#include <mutex>
#include <vips/vips8>

#include "services/Log.h"

// liborc 0.4.33 (the one Debian 12 ships) frees the code of a compiled program without the lock
// under which it hands out code memory to a new one. A libvips pipeline dropped on one thread while
// another builds one (every run does this, one photo per core) can then corrupt orc's list of code
// memory and crash. libvips asks orc for both through these two calls; defining them here puts
// every compile and every free under one lock of ours, and forwards to orc's own.
namespace {

std::mutex orcCodeLock;

template <typename Function>
Function orcFunction(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int orc_program_compile(void* program) {
    static const auto compile = orcFunction<int (*)(void*)>("orc_program_compile");
    const std::lock_guard lock(orcCodeLock);
    return compile(program);
}

extern "C" void orc_program_free(void* program) {
    static const auto release = orcFunction<void (*)(void*)>("orc_program_free");
    const std::lock_guard lock(orcCodeLock);
    release(program);
}

namespace VipsRuntime {

namespace {

// libvips reports damaged files through GLib warnings; they belong in our log, not on the
// terminal in the middle of a command's output. The operation's own error says what failed.
void logWarning(const gchar* domain, GLogLevelFlags, const gchar* message, gpointer) {
    klLog() << (domain ? domain : "vips") << "warning:" << message;
}

}  // namespace

bool ensureStarted() {
    static std::once_flag once;
    static bool started = false;
    std::call_once(once, [] {
        g_log_set_handler("VIPS", GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE),
                          logWarning, nullptr);
        started = VIPS_INIT("orvella") == 0;
        if (!started) {
            klLog() << "libvips did not start:" << vips_error_buffer();
            return;
        }
        // Each operation reads its files once; a cached operation on an old file of the same name
        // must never be reused.
        vips_cache_set_max(0);
        // Our runs decide the parallelism themselves: one photo per core.
        vips_concurrency_set(1);
    });
    return started;
}

}  // namespace VipsRuntime
