// The statements and commands typed, kept between runs.
#pragma once

#include <histedit.h>

#include <memory>
#include <string>

namespace qrysh {

// Keeps whole statements, one a line of a file that its owner alone may read. Without a path, or where the
// file cannot be written, this run's alone.
class typed_history {
  public:
    // Reads what was kept before; an earlier version's file too, which it then writes anew.
    explicit typed_history(std::string path);

    // Adds one, to the file at once, so that a shell that is killed loses none.
    void add(const std::string &text);

    History *get() { return history_.get(); }

  private:
    struct closer {
        void operator()(History *history) const { history_end(history); }
    };

    void enter(const std::string &line);
    void read();
    void write_anew();

    std::string path_;
    HistEvent event_{};
    std::unique_ptr<History, closer> history_;
};

} // namespace qrysh
