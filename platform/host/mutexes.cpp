// Mutexes and the task lock. They check who holds them: a second request by the holder and a release by
// anyone else are refused, and neither deadlocks nor breaks the mutex.
#include <atomic>
#include <mutex>
#include <thread>

#include "platform/host/faults.h"
#include "platform/host/mutexes.h"
#include "platform/os.h"

namespace {

constexpr std::uint32_t bad_argument = 1;
constexpr std::uint32_t none_left = 2;
constexpr std::uint32_t not_permitted = 3; // held by the calling thread, or not held by it

class checked_mutex {
  public:
    std::uint32_t lock() {
        if (is_held_here()) {
            return not_permitted;
        }
        mutex_.lock();
        holder_ = std::this_thread::get_id();
        return 0;
    }

    std::uint32_t unlock() {
        if (!is_held_here()) {
            return not_permitted;
        }
        holder_ = std::thread::id();
        mutex_.unlock();
        return 0;
    }

    void hold_for_fork() {
        is_held_for_fork_ = !is_held_here();
        if (is_held_for_fork_) {
            mutex_.lock();
        }
    }
    void release_after_fork() {
        if (is_held_for_fork_) {
            mutex_.unlock();
        }
    }

  private:
    // Only the thread itself makes itself the holder, so its own answer cannot be out of date.
    bool is_held_here() const { return holder_.load() == std::this_thread::get_id(); }

    std::mutex mutex_;
    std::atomic<std::thread::id> holder_{};
    bool is_held_for_fork_ = false;
};

// The contract has no call that destroys a mutex, so identifiers are handed out once, 1 upwards.
constexpr std::uint32_t mutex_max = 256;

checked_mutex &mutex_at(std::uint32_t identifier) {
    static checked_mutex mutexes[mutex_max];
    return mutexes[identifier - 1];
}

std::atomic<std::uint32_t> created{0};

bool exists(std::uint32_t identifier) {
    return identifier != 0 && identifier <= created;
}

checked_mutex &task_lock() {
    static checked_mutex lock;
    return lock;
}

std::uint32_t held_for_fork = 0; // of the mutexes, those with the first numbers

} // namespace

namespace qryhost {

void hold_mutexes_for_fork() noexcept {
    task_lock().hold_for_fork();
    held_for_fork = created;
    for (std::uint32_t mutex = 1; mutex <= held_for_fork; ++mutex) {
        mutex_at(mutex).hold_for_fork();
    }
}

void release_mutexes_after_fork() noexcept {
    for (std::uint32_t mutex = held_for_fork; mutex > 0; --mutex) {
        mutex_at(mutex).release_after_fork();
    }
    task_lock().release_after_fork();
}

} // namespace qryhost

extern "C" {

std::uint32_t pfwOSWCreateMutexSem(std::uint32_t *mutex, std::uint32_t option, std::uint32_t count) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_CREATE_MUTEX)) {
        return fault;
    }
    if (mutex == nullptr || option != 0 || count != 1) {
        return bad_argument;
    }
    std::uint32_t last = created;
    do {
        if (last == mutex_max) {
            return none_left;
        }
    } while (!created.compare_exchange_weak(last, last + 1));
    *mutex = last + 1;
    return 0;
}

std::uint32_t pfwOSWRequestMutexSem(std::uint32_t mutex, std::int32_t timeout) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_REQUEST_MUTEX)) {
        return fault;
    }
    constexpr std::int32_t without_limit = -1;
    if (!exists(mutex) || timeout != without_limit) {
        return bad_argument;
    }
    return mutex_at(mutex).lock();
}

std::uint32_t pfwOSWReleaseMutexSem(std::uint32_t mutex) {
    return exists(mutex) ? mutex_at(mutex).unlock() : bad_argument;
}

std::uint32_t pfwOSWLockTask(void) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_LOCK_TASK)) {
        return fault;
    }
    return task_lock().lock();
}

std::uint32_t pfwOSWUnlockTask(void) {
    return task_lock().unlock();
}

} // extern "C"
