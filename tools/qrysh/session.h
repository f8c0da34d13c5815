// One run of the shell: its settings, and what it does with each line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/qrysh/printers.h"

namespace qrysh {

enum class outcome { done, failed, quit };

// Answers go to standard output; codes, complaints and traces to standard error. Both are written through at
// once, so that they interleave in the order in which they arose.
class session {
  public:
    // Answers `line`: a statement, a command that begins with ".", a comment or nothing.
    outcome run(std::string_view line);

    // Each answers done, or complains and answers failed.
    outcome use_database(const std::string &name);
    outcome use_mode(const std::string &name);
    outcome open(const std::string &image_path);
    outcome load(const std::string &path);
    outcome save(const std::string &path);

    void set_trace(bool on);
    void set_echo(bool on) { echo_ = on; }

    const std::string &database() const { return database_; }

    // Prints an answer in the current output mode.
    void show(const result &answer) const;

    // Prints what an examination of a device image finds.
    static outcome check(const std::string &image_path);

    // Prints a complaint.
    static outcome fail(std::string_view sentence);

  private:
    outcome run_statement(const std::string &sql);
    outcome run_select(const std::string &sql);
    outcome run_write(const std::string &sql);
    outcome finish(std::uint32_t code) const;

    std::string database_ = "adbk_db";
    output_mode mode_ = output_mode::table;
    bool echo_ = false;
};

// Writes to standard output, at once. Throws when it cannot be written.
void print(std::string_view text);

} // namespace qrysh
