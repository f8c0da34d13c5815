// The shell's two streams.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qrysh {

// Writes to standard output, at once. Throws when it cannot be written.
void print(std::string_view text);

// Writes to standard error: all that is no answer.
void say(std::string_view text);

// Prints an answer; through $PAGER where standard output is a terminal and the answer is longer than it.
void present(const std::string &text);

bool output_is_terminal();
bool input_is_terminal();

// A line typed in answer to a question on standard error; empty at the end of standard input.
std::string ask(std::string_view question);

// A line on standard error that counts up while long work runs; shown on a terminal alone.
class progress {
  public:
    progress(std::string_view what, std::size_t total);
    ~progress();
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;

    void advance();

  private:
    std::string what_;
    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_;
};

} // namespace qrysh
