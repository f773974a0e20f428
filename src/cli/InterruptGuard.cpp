#include <atomic>
#include <csignal>

#include "cli/Cli.h"

namespace cli {

namespace {

std::atomic<int> signalled{0};

extern "C" void onSignal(int signal) {
    signalled.store(signal);
    std::signal(signal, SIG_DFL);  // a second one ends the process
}

}  // namespace

InterruptGuard::InterruptGuard() {
    signalled.store(0);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

InterruptGuard::~InterruptGuard() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

int InterruptGuard::received() {
    return signalled.load();
}

}  // namespace cli
