#include "imaging/VipsRuntime.h"

#include <mutex>
#include <vips/vips8>

#include "services/Log.h"

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
