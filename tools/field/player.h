// Runs recorded calls against the library, on a platform that answers from the recording.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <qrylib/qrylib.h>

#include "tools/field/recording.h"
#include "tools/field/replay_platform.h"

namespace field {

enum class verdict : std::uint8_t {
    same,
    different,
    masked,    // differs, and what was masked may be why
    incomplete // its beginning or its end is lost, or something of it was not recorded
};

struct played_call {
    verdict judged = verdict::same;
    difference found;         // of one that differs
    std::string reason;       // of one that is incomplete
    std::size_t position = 0; // events that agreed
};

// Keeps the statements, rowsets and searches that the recorded callers had. Not for several threads.
class player {
  public:
    explicit player(const recording &recorded) : recorded_(recorded) {}
    player(const player &) = delete;
    player &operator=(const player &) = delete;
    ~player();

    played_call play(const recorded_call &call);

  private:
    struct statement {
        qry_lib_db_stmt_ record{};
        bool is_known = false; // its making is in the recording
    };
    struct rowset {
        qry_lib_db_rowset_ record{};
        bool is_known = false;
        verdict filled = verdict::same; // how the call was judged that filled it
    };
    // What a call hands out, to be compared.
    struct outcome {
        std::uint32_t result = 0;
        std::vector<std::uint64_t> numbers;
        const qry_lib_db_rowset_ *rows = nullptr;
    };
    using arguments = payload_reader;
    using action = std::function<outcome()>;

    // What a call comes down to; nothing, with a reason, where that is not known.
    action prepare(const recorded_call &call, std::string &reason);
    action prepare_setter(const recorded_call &call, std::string &reason);
    action prepare_statement(const recorded_call &call, std::string &reason);
    action prepare_element(const recorded_call &call, std::string &reason);
    action prepare_search(const recorded_call &call, std::string &reason);
    action prepare_other(const recorded_call &call, std::string &reason);

    void judge(const recorded_call &call, const feeder &source, played_call &played);
    void compare(const recorded_call &call, const outcome &made, feeder &source) const;
    static void compare_rows(const recorded_call &call, const qry_lib_db_rowset_ &made, feeder &source);

    const recording &recorded_;
    std::map<std::uint64_t, statement> statements_;
    std::map<std::uint64_t, rowset> rowsets_;
    rowset *used_ = nullptr; // by the call that is being played; null: none
    std::map<std::uint64_t, qry_lib_tb_search_id> searches_;
};

// What a call was, in words: "SELECT ...", or its function and arguments.
std::string statement_text(const recorded_call &call);

} // namespace field
