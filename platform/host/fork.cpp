// Fork beside threads: the child has only the thread that forked, so no other one may be in the middle of a
// change to what both processes have.
#include <pthread.h>

#include "platform/host/element_store.h"
#include "platform/host/guard.h"
#include "platform/host/image_header.h"
#include "platform/host/mutexes.h"
#include "platform/host/process_number.h"
#include "platform/host/thread_state.h"

namespace qryhost {

namespace {

fork_guard held;

// What is made on first use is made before: in the child, a thread that was making it would never be done.
void make_all() {
    own_state();
    expected_header();
}

void before() {
    make_all();
    hold_mutexes_for_fork();
    held.hold(lock_rank::trace_sink, lock_rank::opening);
    hold_store_for_fork();
    held.hold(lock_rank::faults, lock_rank::files);
}

void after() {
    held.release();
    release_store_after_fork();
    release_mutexes_after_fork();
}

void after_in_child() {
    learn_own_process();
    after();
    forget_other_threads();
}

const bool is_prepared = ::pthread_atfork(before, after, after_in_child) == 0;

} // namespace

} // namespace qryhost
