// Which threads there are, and what those that have ended leave behind.
#include "platform/host/thread_state.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "platform/host/guard.h"

namespace qryhost {

__thread thread_state *state_of_this_thread = nullptr;

namespace {

struct all_threads {
    guard_mutex lock;
    std::vector<std::unique_ptr<thread_state>> running QRYLIB_GUARDED_BY(lock);
    std::array<std::uint32_t, QRYHOST_CALL_NUM> ended_calls QRYLIB_GUARDED_BY(lock) = {};
    std::uint32_t ended_blocks QRYLIB_GUARDED_BY(lock) = 0;
};

// Never destroyed: threads may outlive the library's static objects.
all_threads &threads() {
    static all_threads *all = new all_threads;
    return *all;
}

// Adds the thread's counts to those of the threads that have ended, when it ends.
struct end_of_thread {
    ~end_of_thread() {
        all_threads &all = threads();
        const guard hold(all.lock);
        const auto mine = std::find_if(all.running.begin(), all.running.end(), [](const auto &thread) {
            return thread.get() == state_of_this_thread;
        });
        for (std::size_t call = 0; call < QRYHOST_CALL_NUM; ++call) {
            all.ended_calls[call] += (*mine)->calls[call].load(std::memory_order_relaxed);
        }
        all.ended_blocks += (*mine)->blocks.load(std::memory_order_relaxed);
        all.running.erase(mine);
        state_of_this_thread = nullptr;
    }
};

} // namespace

thread_state *register_thread() {
    all_threads &all = threads();
    const guard hold(all.lock);
    state_of_this_thread = all.running.emplace_back(new thread_state()).get();
    static thread_local end_of_thread at_end;
    static_cast<void>(at_end);
    return state_of_this_thread;
}

std::uint32_t total_calls(qryhost_call call) {
    all_threads &all = threads();
    const guard hold(all.lock);
    std::uint32_t calls = all.ended_calls[call];
    for (const auto &thread : all.running) {
        calls += thread->calls[call].load(std::memory_order_relaxed);
    }
    return calls;
}

std::uint32_t total_blocks() {
    all_threads &all = threads();
    const guard hold(all.lock);
    std::uint32_t blocks = all.ended_blocks;
    for (const auto &thread : all.running) {
        blocks += thread->blocks.load(std::memory_order_relaxed);
    }
    return blocks;
}

} // namespace qryhost
