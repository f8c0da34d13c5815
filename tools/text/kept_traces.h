// The library's trace lines of the statement that is running.
#pragma once

#include <deque>
#include <string>

namespace qrytext {

// Keeps the last lines that it is given.
class kept_traces {
  public:
    void clear() { lines_.clear(); }

    // Oldest first.
    const std::deque<std::string> &lines() const { return lines_; }

    // While it lives, no line is taken: a look-up of one's own is nobody's statement.
    class pause {
      public:
        explicit pause(kept_traces &traces) : traces_(traces) { ++traces_.pauses_; }
        ~pause() { --traces_.pauses_; }
        pause(const pause &) = delete;
        pause &operator=(const pause &) = delete;

      private:
        kept_traces &traces_;
    };

  protected:
    // False when the line is none of the statement's.
    bool keep(const char *text) {
        if (pauses_ > 0) {
            return false;
        }
        // A failure's chain of calls is far shorter; a query over many records leaves far more.
        constexpr std::size_t kept_lines = 64;
        if (lines_.size() == kept_lines) {
            lines_.pop_front();
        }
        lines_.emplace_back(text);
        return true;
    }

  private:
    std::deque<std::string> lines_;
    int pauses_ = 0;
};

} // namespace qrytext
