#pragma once

// Starts libvips once for the process (safe to call from any thread, any number of times).
// Include only from imaging sources.
namespace VipsRuntime {
void ensureStarted();
}
