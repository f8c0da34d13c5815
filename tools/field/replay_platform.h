// The platform of a replay: it answers from the recording, and notices the first call that differs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/field/recording.h"

namespace field {

// Where a replayed call left its recording.
struct difference {
    std::string expected; // empty: nothing more
    std::string made;     // empty: nothing more
    std::string reason;   // where the two need one
};

// Answers one call's platform calls, in their order. Behind the first difference it hands out memory and
// refuses everything else, so that the library comes to an end.
class feeder {
  public:
    explicit feeder(const recorded_call &call) : call_(call) {}

    // The recorded call, if it is the one that is made. `made` has the fields that are compared.
    const platform_call *answer(const platform_call &made);
    void trace(const trace_line &made);

    // Called when the library is done.
    void end();

    bool differs() const { return differs_; }
    // The recording ends inside this call, and the replay came as far.
    bool is_beyond_end() const { return is_beyond_end_; }
    const difference &found() const { return found_; }
    void report(difference found);
    std::size_t position() const { return next_; }

    // The platform's answers on this thread come from here; null: there is none, and memory is the process's.
    static thread_local feeder *current;

  private:
    bool is_at_end();
    void skip_known_mutex(const platform_call &made);

    const recorded_call &call_;
    std::size_t next_ = 0;
    bool differs_ = false;
    bool is_beyond_end_ = false;
    difference found_;
};

// A text between quotes, on one line; what is no text in it shows as U+FFFD.
std::string quoted(const std::string &text);

// A platform call in words, with values by the schema's type.
std::string call_text(const platform_call &call, bool with_answer);

// "trim_space_all():[Return]:(2278) (0x00000001)  -- no scratch block"
std::string trace_text(const trace_line &trace);

// A value of an element in words: its columns.
std::string value_text(std::uint32_t category, std::uint32_t element, const std::string &bytes);

bool is_fixed_point(const trace_line &trace);

} // namespace field
