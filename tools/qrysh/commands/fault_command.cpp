// .fault: failed platform calls, one order at a time or every call of a statement in turn.
#include <qrylib/error.hpp>

#include <algorithm>
#include <new>
#include <numeric>
#include <sstream>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/interrupt.h"
#include "tools/qrysh/transfer/private_copy.h"
#include "tools/text/engine.h"
#include "tools/text/meter.h"
#include "tools/text/near_match.h"
#include "tools/text/statement_lines.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/trace_explainer.h"

namespace qrysh {

using namespace qrytext;

namespace {

// No code of the library or of the platform, so that it can be told where it was passed on.
constexpr std::uint32_t injected_code = 0x0FA1;

std::vector<std::string> call_names() {
    std::vector<std::string> names;
    names.reserve(QRYHOST_CALL_NUM);
    for (int i = 0; i < QRYHOST_CALL_NUM; ++i) {
        names.emplace_back(call_name(static_cast<qryhost_call>(i)));
    }
    return names;
}

outcome order_fault(const std::vector<std::string> &words) {
    const std::vector<std::string> names = call_names();
    const auto name = std::find(names.begin(), names.end(), words[0]);
    if (name == names.end()) {
        return session::fail(fmt::format("there is no platform call \"{}\"{}", printable(words[0]),
                                         did_you_mean(words[0], names)));
    }
    const auto skip = parse_number(words[1]);
    const auto times = parse_number(words[2]);
    const auto code = parse_number(words[3]);
    if (!skip || !times || !code) {
        return session::fail("SKIP, TIMES and CODE are numbers: .help .fault");
    }
    qryhost_fail(static_cast<qryhost_call>(name - names.begin()), *skip, *times, *code);
    return outcome::done;
}

// What a run came to with one call failed.
struct sweep_row {
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t code;
    std::int64_t blocks_left;
    std::string traces;

    bool is_like(const sweep_row &other) const {
        return code == other.code && blocks_left == other.blocks_left && traces == other.traces;
    }
};

std::uint32_t run_once(const std::string &db_name, const std::string &sql) {
    try {
        return execute(db_name, sql).code;
    } catch (const std::bad_alloc &) {
        return QRY_LIB_NO_MEMORY; // the statement's record could not be built
    }
}

// "innermost:line < ... < outermost". A point whose line is not fixed is named alone.
std::string trace_chain(const std::deque<std::string> &lines) {
    std::string chain;
    for (const std::string &line : lines) {
        if (!tells_failure(line)) {
            continue;
        }
        chain += chain.empty() ? "" : " < ";
        chain += trace_point_name(line);
    }
    return chain;
}

sweep_row run_failed(session &shell, const std::string &sql, qryhost_call call, std::uint32_t skip) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    shell.traces().clear();
    qryhost_fail_clear();
    qryhost_fail(call, skip, 1, injected_code);
    const std::uint32_t code = run_once(shell.database(), sql);
    qryhost_fail_clear();
    return {skip, skip, code, std::int64_t{qryhost_pool_blocks()} - blocks,
            trace_chain(shell.traces().lines())};
}

// Fails every call of a statement in turn, on records that are put back after each run.
class sweeper {
  public:
    sweeper(session &shell, const std::string &sql, const put_back &records)
        : shell_(shell), sql_(sql), changes_(kind_of(sql) != statement_kind::select), put_back_(records) {
        shell_.traces().set_printing(false);
    }

    // Ends early when Ctrl-C comes.
    std::string run() {
        qryhost_fail_clear();
        const meter cost;
        run_once(shell_.database(), sql_);
        const call_counts calls = cost.spent().calls;
        restore();
        progress shown("calls failed", std::accumulate(calls.begin(), calls.end(), std::size_t{0}));
        std::string out;
        for (int i = 0; i < QRYHOST_CALL_NUM && !stopped_; ++i) {
            const auto call = static_cast<qryhost_call>(i);
            for (const sweep_row &row : sweep_call(call, calls[call], shown)) {
                out += fmt::format("{} {} {} {} {} {}\n", i, row.first, row.last, row.code, row.blocks_left,
                                   row.traces);
            }
        }
        return (stopped_ ? stopped_word : complete_word) + ('\n' + out);
    }

    // What run() answered, as a table. False when Ctrl-C came first.
    static bool read(const std::string &answer, result &list) {
        std::istringstream lines(answer);
        std::string word;
        std::getline(lines, word);
        int call = 0;
        sweep_row row{};
        while (lines >> call >> row.first >> row.last >> row.code >> row.blocks_left && lines.get() &&
               std::getline(lines, row.traces)) {
            list.rows.push_back({call_name(static_cast<qryhost_call>(call)), std::int64_t{row.first},
                                 std::int64_t{row.last}, fmt::format("0x{:04X}", row.code),
                                 std::string(qrylib::code_name(row.code)), row.blocks_left, row.traces});
        }
        return word == complete_word;
    }

  private:
    static constexpr const char *complete_word = "complete";
    static constexpr const char *stopped_word = "stopped";

    // Runs that come to the same are one row.
    std::vector<sweep_row> sweep_call(qryhost_call call, std::uint32_t call_num, progress &shown) {
        std::vector<sweep_row> rows;
        for (std::uint32_t skip = 0; skip < call_num && !stopped_; ++skip) {
            sweep_row row = run_failed(shell_, sql_, call, skip);
            restore();
            shown.advance();
            if (!rows.empty() && rows.back().is_like(row)) {
                rows.back().last = skip;
            } else {
                rows.push_back(std::move(row));
            }
            stopped_ = take_interrupt();
        }
        return rows;
    }

    void restore() const {
        if (changes_) {
            put_back_();
        }
    }

    session &shell_;
    std::string sql_;
    bool changes_;
    const put_back &put_back_;
    bool stopped_ = false;
};

outcome sweep(session &shell, const std::string &sql) {
    const statement_report seen = check_statement(shell.database(), sql, {}, shell.traces());
    if (!seen.ok && !seen.reached_library) { // complains now, not once for every run
        return shell.complain(sql, seen);
    }
    result list{{"CALL", "FROM", "TO", "CODE", "NAME", "BLOCKS LEFT", "TRACES"}, {}};
    qryhost_fail_clear();
    const bool complete = sweeper::read(
        on_private_copy([&](const put_back &records) { return sweeper(shell, sql, records).run(); }), list);
    take_interrupt(); // the trial has taken it
    shell.show(list);
    return complete ? outcome::done : session::fail("the sweep was stopped");
}

} // namespace

outcome inject_fault(session &shell, const std::string &order) {
    const word_and_rest parts = split_first_word(order);
    if (parts.word == "sweep" && !parts.rest.empty()) {
        return sweep(shell, std::string(without_semicolon(parts.rest)));
    }
    if (parts.word == "off" && parts.rest.empty()) {
        qryhost_fail_clear();
        return outcome::done;
    }
    const std::vector<std::string> words = split_words(order);
    constexpr std::size_t order_words = 4;
    return words.size() == order_words
               ? order_fault(words)
               : session::fail("expected CALL SKIP TIMES CODE, off, or sweep SQL: .help .fault");
}

} // namespace qrysh
