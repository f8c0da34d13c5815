// How long a call waits for others, and how it waits.
#pragma once

#include <chrono>
#include <cstdint>

namespace qryhost {

// One call's waiting, for all the locks that it takes together. Costs nothing until the first pause.
class wait_limit {
  public:
    // As long as the process waits for others at most: ten seconds, or what qryhost_set_patience() says.
    wait_limit();
    explicit wait_limit(std::chrono::milliseconds most) : most_(most) {}

    // Pauses, a little longer each time. False: the time is over.
    bool pause();

    std::chrono::milliseconds most() const { return most_; }

  private:
    std::chrono::milliseconds most_;
    std::chrono::steady_clock::time_point end_{};
    std::uint32_t pauses_ = 0;
};

} // namespace qryhost
