// The library's trace lines of the statement that is running.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

namespace qrysh {

// Receives every trace line while it lives: keeps the last ones, and prints each as it comes when asked to.
// One at a time. Where QRYLIB_TRACE sends the traces elsewhere it leaves them there until printing is on.
class trace_log {
  public:
    trace_log();
    ~trace_log();
    trace_log(const trace_log &) = delete;
    trace_log &operator=(const trace_log &) = delete;

    void set_printing(bool on);
    bool is_printing() const { return printing_; }
    void clear() { lines_.clear(); }

    // Oldest first.
    const std::deque<std::string> &lines() const { return lines_; }

    // While it lives, traces are neither kept nor printed: the shell's own look-ups are nobody's statement.
    class pause {
      public:
        explicit pause(trace_log &log) : log_(log) { ++log_.pauses_; }
        ~pause() { --log_.pauses_; }
        pause(const pause &) = delete;
        pause &operator=(const pause &) = delete;

      private:
        trace_log &log_;
    };

  private:
    static void receive(void *context, std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                        const char *text);

    std::deque<std::string> lines_;
    bool printing_ = false;
    int pauses_ = 0;
};

} // namespace qrysh
