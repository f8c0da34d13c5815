// A mutex and its holder that the compiler can follow: the standard ones say nothing about what they guard.
#pragma once

#include <mutex>

#include "util/thread_safety.h"

namespace qryhost {

class QRYLIB_CAPABILITY guard_mutex {
  private:
    friend class guard;
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

} // namespace qryhost
