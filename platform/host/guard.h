// A mutex and its holder that the compiler can follow: the standard ones say nothing about what they guard.
// All of them are known by rank, so that fork can take them.
#pragma once

#include <atomic>
#include <mutex>
#include <utility>

#include "util/thread_safety.h"

namespace qryhost {

// In this order a thread may hold several. There is one mutex of each rank.
enum class lock_rank { trace_sink, opening, faults, threads, handles, temporary_folder, files };
constexpr int lock_rank_num = 7;

class QRYLIB_CAPABILITY guard_mutex {
  public:
    explicit guard_mutex(lock_rank rank) noexcept {
        of_rank(static_cast<int>(rank)).store(this, std::memory_order_release);
    }
    guard_mutex(const guard_mutex &) = delete;
    guard_mutex &operator=(const guard_mutex &) = delete;
    ~guard_mutex() = default;

  private:
    friend class guard;
    friend class fork_guard;

    static std::atomic<guard_mutex *> &of_rank(int rank) noexcept {
        static std::atomic<guard_mutex *> mutexes[lock_rank_num];
        return mutexes[rank];
    }

    std::mutex mutex_;
};

class QRYLIB_SCOPED_CAPABILITY guard {
  public:
    explicit guard(guard_mutex &mutex) QRYLIB_ACQUIRE(mutex) : hold_(mutex.mutex_) {}
    ~guard() QRYLIB_RELEASE() {}
    guard(const guard &) = delete;
    guard &operator=(const guard &) = delete;

  private:
    std::lock_guard<std::mutex> hold_;
};

// Holds the mutexes of some ranks from before a fork to after it, in both processes.
class fork_guard {
  public:
    void hold(lock_rank first, lock_rank last) noexcept {
        for (int rank = static_cast<int>(first); rank <= static_cast<int>(last); ++rank) {
            held_[rank] = guard_mutex::of_rank(rank).load(std::memory_order_acquire);
            if (held_[rank] != nullptr) {
                held_[rank]->mutex_.lock();
            }
        }
    }
    void release() noexcept {
        for (int rank = lock_rank_num; rank-- > 0;) {
            if (guard_mutex *mutex = std::exchange(held_[rank], nullptr)) {
                mutex->mutex_.unlock();
            }
        }
    }

  private:
    guard_mutex *held_[lock_rank_num] = {};
};

} // namespace qryhost
