#include "host/Interrupt.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void noteInterrupt(int signal) {
    isInterrupted = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

InterruptGuard::InterruptGuard() {
    isInterrupted = 0;
    std::signal(SIGINT, noteInterrupt);
}

InterruptGuard::~InterruptGuard() {
    std::signal(SIGINT, SIG_DFL);
}

void InterruptGuard::check() {
    if (isInterrupted != 0) throw Interrupted();
}

} // namespace host
