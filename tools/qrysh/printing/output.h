// The shell's two streams, and the file that may stand for the first. To a terminal nothing goes that cannot
// be printed: it is written as an escape. Files and pipes get the bytes as they are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/report_text.h"

namespace qrysh {

// Writes an answer to standard output, or to the file that stands for it, at once. Throws when it cannot be
// written; a file does not stand for standard output after that.
void print(std::string_view text);

// Sends answers to a file, which is emptied first, from now on or for the next answer alone. Throws when it
// cannot be opened.
void redirect_answers(const std::string &path, bool once);

// Sends answers to standard output again.
void end_redirection();

// To be called behind each line's answer.
void end_answer();

// Where answers go: the file's name, empty for standard output.
std::string answer_file();

// Writes to standard error: all that is no answer.
void say(std::string_view text);

// Prints an answer; through $PAGER where it goes to a terminal and is longer than that.
void present(const std::string &text);

// How errors and notes are written: in colours where standard error is a terminal and NO_COLOR is not set.
const qrytext::voice &error_voice();

// From now on errors name this place, "FILE:LINE", or none.
void set_error_place(std::string place);

// How wide the terminal is on which answers are read; 0 where they are not read on one.
std::size_t terminal_columns();

// Words in columns, one below the other, as many beside each other as that width holds; one where it is 0.
std::string in_columns(const std::vector<std::string> &words, std::size_t width);

// Whether answers go to a terminal.
bool output_is_terminal();
bool complaints_go_to_terminal();
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
