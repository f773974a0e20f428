#pragma once

// Starts libvips once for the process (safe to call from any thread, any number of times).
// Include only from imaging sources.
namespace VipsRuntime {
// False when libvips could not start; every image operation then fails with a reason.
bool ensureStarted();
}  // namespace VipsRuntime
