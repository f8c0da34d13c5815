// The library's mutexes and the task lock across a fork.
#pragma once

namespace qryhost {

// Waits until no other thread holds one of them, and keeps them.
void hold_mutexes_for_fork() noexcept;
void release_mutexes_after_fork() noexcept;

} // namespace qryhost
