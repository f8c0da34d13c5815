// The library keeps handles by thread, so a thread of the recording is a thread of the replay. Only one runs
// at a time: what the platform answers is recorded, so that nothing depends on their meeting.
#include "tools/field/replay.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace field {

namespace {

// A thread that is handed one task after the other.
class worker {
  public:
    worker() : thread_([this] { work(); }) {}
    worker(const worker &) = delete;
    worker &operator=(const worker &) = delete;
    ~worker() {
        hand({});
        thread_.join();
    }

    void run(const std::function<void()> &task) { hand(task); }

  private:
    // Returns when the task is done. No task: the thread ends.
    void hand(const std::function<void()> &task) {
        std::unique_lock<std::mutex> hold(mutex_);
        task_ = task;
        is_handed_ = true;
        changed_.notify_all();
        changed_.wait(hold, [this] { return !is_handed_; });
    }

    void work() {
        std::unique_lock<std::mutex> hold(mutex_);
        for (;;) {
            changed_.wait(hold, [this] { return is_handed_; });
            const bool is_end = !task_;
            if (!is_end) {
                task_();
            }
            is_handed_ = false;
            changed_.notify_all();
            if (is_end) {
                return;
            }
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> task_;
    bool is_handed_ = false;
    std::thread thread_;
};

void count(verdict judged, replay_sums &sums) {
    switch (judged) {
    case verdict::same:
        ++sums.same;
        break;
    case verdict::different:
        ++sums.different;
        break;
    case verdict::masked:
        ++sums.masked;
        break;
    case verdict::incomplete:
        ++sums.incomplete;
        break;
    }
}

// Where another thread's call made what this one was not asked to.
std::string other_thread(const recording &recorded, const recorded_call &call, const std::string &made) {
    for (const recorded_call &other : recorded.calls) {
        if (other.thread == call.thread || made.empty()) {
            continue;
        }
        for (const event &each : other.events) {
            if (!each.is_trace && call_text(each.call, false) == made) {
                return "thread " + std::to_string(other.thread) + " made this call";
            }
        }
    }
    return "";
}

std::vector<const recorded_call *> in_order(const recording &recorded) {
    std::vector<const recorded_call *> calls;
    for (const recorded_call &call : recorded.calls) {
        calls.push_back(&call);
    }
    std::stable_sort(calls.begin(), calls.end(),
                     [](const recorded_call *a, const recorded_call *b) { return a->order < b->order; });
    return calls;
}

} // namespace

replay_result replay(const recording &recorded) {
    replay_result result;
    std::set<std::uint16_t> threads;
    for (const recorded_call &call : recorded.calls) {
        threads.insert(call.thread);
    }
    player plays(recorded);
    std::map<std::uint16_t, worker> workers;
    for (const recorded_call *each : in_order(recorded)) {
        const recorded_call &call = *each;
        played_call played;
        if (threads.size() == 1) {
            played = plays.play(call);
        } else {
            workers[call.thread].run([&] { played = plays.play(call); });
        }
        count(played.judged, result.sums);
        if (played.judged == verdict::incomplete) {
            result.incomplete.push_back("call " + std::to_string(call.number) + ": " + played.reason);
        } else if (played.judged != verdict::same && (result.first.empty() || result.sums.different == 1)) {
            if (result.first.empty() || played.judged == verdict::different) {
                if (played.found.reason.empty()) {
                    played.found.reason = other_thread(recorded, call, played.found.made);
                }
                result.first = difference_text(call, played);
            }
        }
    }
    return result;
}

} // namespace field
