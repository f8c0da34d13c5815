// Ctrl-C at a prompt: it ends what is going on, not the shell.
#pragma once

namespace qrysh {

// From now on the signal is noted, and system calls that wait return.
void catch_interrupts();

// True once for each time that the signal came.
bool take_interrupt();

} // namespace qrysh
