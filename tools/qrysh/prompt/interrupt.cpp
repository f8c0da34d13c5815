// The signal's handler.
#include "tools/qrysh/prompt/interrupt.h"

#include <csignal>

namespace qrysh {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note_interrupt(int /*signal*/) {
    interrupted = 1;
}

} // namespace

void catch_interrupts() {
    struct sigaction action = {};
    action.sa_handler = note_interrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr); // without SA_RESTART, so that a wait for a key ends
}

bool take_interrupt() {
    const bool was = interrupted != 0;
    interrupted = 0;
    return was;
}

} // namespace qrysh
