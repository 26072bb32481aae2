#include "host/Interrupt.h"

#include "host/System.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void noteInterrupt(int /*signal*/) {
    isInterrupted = 1;
}

} // namespace

InterruptGuard::InterruptGuard() {
    isInterrupted = 0;
    catchEnd(noteInterrupt);
}

InterruptGuard::~InterruptGuard() {
    releaseEnd();
}

void InterruptGuard::check() {
    if (isInterrupted != 0) throw Interrupted();
}

} // namespace host
