// One run of the shell: its settings, and what it says of each statement.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/qrysh/printing/trace_log.h"
#include "tools/text/printers.h"
#include "tools/text/statement_report.h"

namespace qrysh {

using namespace qrytext;

enum class outcome { done, failed, quit };

struct settings {
    output_mode mode = output_mode::table;
    std::string prompt = "qrysh> ";
    std::string next_prompt = "  ...> "; // before a statement's further lines
    bool headers = true;                 // print columns' titles above the rows
    std::optional<bool> changes;         // say what a statement changed; nothing: where people read the mode
    bool echo = false;                   // print each line above its answer
    bool timer = false;                  // print what each statement cost
    bool readonly = false;               // refuse whatever changes records
    bool safe = false;                   // refuse commands that touch files
    bool strict = false;                 // refuse statements that get a note
    bool safe_updates = false; // refuse DELETE, DROP and UPDATE of every record where nobody can be asked
    bool force = false;        // replace files without asking and without a word
    bool csv_safe = false;     // write no CSV field that a spreadsheet takes for a formula
    bool asks = false;         // somebody at a terminal can be asked
    bool bail = false;         // stop at the first error
};

// How a device without an image is called.
constexpr const char *private_memory = "a device in memory";

// Answers go to standard output; codes, complaints, traces and all else to standard error. Both are written
// through at once, so that they interleave in the order in which they arose.
class session {
  public:
    // Answers a statement without its semicolon.
    outcome run_statement(const std::string &sql);

    // Each answers done, or complains and answers failed.
    outcome use_database(const std::string &name);
    outcome use_mode(const std::string &name);
    outcome open(const std::string &image_path); // empty: private memory, without records
    static outcome load(const std::string &path);
    outcome save(const std::string &path);

    // Whether a file that the user named may be replaced if it is there: asks, or tells where nobody can be
    // asked.
    bool may_replace(const std::string &path) const;

    // Writes a file that the user named. Throws std::runtime_error when it cannot be written.
    outcome write_file(const std::string &path, std::string_view content) const;

    const std::string &database() const { return database_; }
    // The image that is open, or what else the records are of.
    const std::string &device() const { return device_; }
    void set_device(const std::string &name) { device_ = name; }

    // Whether any line has failed.
    bool has_failed() const { return has_failed_; }
    void note_failure() { has_failed_ = true; }

    settings &options() { return settings_; }
    trace_log &traces() { return traces_; }

    // The last answer shown, for commands that write it elsewhere.
    const std::optional<result> &last_answer() const { return last_answer_; }

    // Prints an answer in the current output mode.
    void show(const result &answer);

    // Prints what an examination of a device image finds.
    static outcome check(const std::string &image_path);

    // Complains about a table that the database has not, and tells where it is or what may have been meant.
    outcome refuse_table(const std::string &name) const;

    // Prints a complaint.
    static outcome fail(std::string_view sentence);

    // Prints what is said of a refused statement.
    outcome complain(const std::string &sql, qrytext::statement_report report);

  private:
    result as_shown(const result &answer) const;
    outcome run_when_sure(const std::string &sql);
    outcome run_at_once(const std::string &sql);
    outcome tell(const std::string &sql, const qrytext::statement_report &report);

    std::string database_ = "adbk_db";
    std::string device_ = private_memory;
    settings settings_;
    bool has_failed_ = false;
    trace_log traces_;
    std::optional<result> last_answer_;
};

} // namespace qrysh
