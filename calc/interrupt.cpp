#include "interrupt.h"

#include <csignal>

#include "tarnwick.h"

namespace twcalc {

namespace {

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t working = 0;
volatile std::sig_atomic_t interactiveInput = 0;

extern "C" void onInterrupt(int) {
    if (!working && !interactiveInput) {
        std::signal(SIGINT, SIG_DFL);
        std::raise(SIGINT);
        return;
    }
    interrupted = 1;
    TW_setTerminate(1);  // one relaxed atomic store: safe in a handler
}

}  // namespace

void installInterruptHandler(bool interactive) {
    interactiveInput = interactive;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;
    sigaction(SIGINT, &action, nullptr);
}

void beginWork() {
    clearInterrupt();
    working = 1;
}

void endWork() { working = 0; }

bool interruptRequested() { return interrupted != 0; }

void clearInterrupt() {
    interrupted = 0;
    TW_setTerminate(0);
}

}  // namespace twcalc
