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
    guard_mutex lock{lock_rank::threads};
    std::vector<std::unique_ptr<thread_state>> running QRYLIB_GUARDED_BY(lock);
    std::array<std::uint32_t, QRYHOST_CALL_NUM> ended_calls QRYLIB_GUARDED_BY(lock) = {};
    std::uint32_t ended_blocks QRYLIB_GUARDED_BY(lock) = 0;
    std::uint32_t ended_uses QRYLIB_GUARDED_BY(lock) = 0;
    std::uint32_t last_number QRYLIB_GUARDED_BY(lock) = 0;
};

// Never destroyed: threads may outlive the library's static objects.
all_threads &threads() {
    static all_threads *all = new all_threads;
    return *all;
}

// The platform calls that work on the store.
constexpr qryhost_call store_calls[] = {QRYHOST_GET_TABLE, QRYHOST_SET_TABLE, QRYHOST_INIT_TABLE,
                                        QRYHOST_GET_STATUS, QRYHOST_CREATE_LIST};

// Calls that have begun and not ended, and lists that are open.
std::uint32_t uses_of(const thread_state &thread) {
    std::uint32_t uses = thread.controls.load(std::memory_order_relaxed);
    for (const qryhost_call call : store_calls) {
        uses += thread.calls[call].load(std::memory_order_relaxed);
    }
    return uses - thread.ended_uses.load(std::memory_order_acquire) -
           thread.uses_ended_elsewhere.load(std::memory_order_acquire);
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
        all.ended_uses += uses_of(**mine);
        all.ended_blocks += (*mine)->blocks.load(std::memory_order_relaxed);
        all.running.erase(mine);
        state_of_this_thread = nullptr;
    }
};

} // namespace

thread_state *register_thread() {
    all_threads &all = threads();
    const guard hold(all.lock);
    state_of_this_thread = all.running.emplace_back(new thread_state(++all.last_number)).get();
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

void end_use_of(std::uint32_t thread) {
    all_threads &all = threads();
    const guard hold(all.lock);
    const auto opener = std::find_if(all.running.begin(), all.running.end(),
                                     [thread](const auto &one) { return one->number == thread; });
    if (opener != all.running.end()) {
        (*opener)->uses_ended_elsewhere.fetch_add(1, std::memory_order_release);
    } else {
        --all.ended_uses;
    }
}

bool is_store_used_elsewhere() {
    all_threads &all = threads();
    const guard hold(all.lock);
    return all.ended_uses != 0 || std::any_of(all.running.begin(), all.running.end(), [](const auto &thread) {
               return thread.get() != state_of_this_thread && uses_of(*thread) != 0;
           });
}

// They are not there in a child of fork, and their calls will never end.
void forget_other_threads() noexcept {
    all_threads &all = threads();
    const guard hold(all.lock);
    for (const auto &thread : all.running) {
        if (thread.get() != state_of_this_thread) {
            thread->ended_uses.fetch_add(uses_of(*thread), std::memory_order_relaxed);
        }
    }
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
