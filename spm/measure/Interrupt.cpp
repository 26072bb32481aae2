#include "spm/measure/Interrupt.h"

#include "spm/Console.h"

#include <csignal>

namespace spm {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void setInterrupted(int /*signal*/) {
    isInterrupted = 1;
}

} // namespace

InterruptGuard::InterruptGuard() {
    isInterrupted = 0;
    catchSignals(setInterrupted);
}

InterruptGuard::~InterruptGuard() {
    restoreSignals();
}

void InterruptGuard::check() {
    if (isInterrupted != 0) throw Interrupted();
}

void InterruptGuard::waitForInput() {
    spm::waitForInput([] { return isInterrupted != 0; });
    check();
}

} // namespace spm
