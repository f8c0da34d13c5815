// .record: one record as it lies in the element tables.
#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/text/code_text.h"
#include "tools/text/record_view.h"
#include "tools/text/schema.h"

namespace qrysh {

outcome show_record(session &shell, const std::string &order) {
    const std::vector<std::string> words = split_words(order);
    const std::optional<std::uint32_t> number = words.size() == 2 ? parse_number(words[1]) : std::nullopt;
    if (!number) {
        return session::fail("expected a table and a record's number: .record TABLE N");
    }
    if (!table_exists(shell.database(), words[0])) {
        return shell.refuse_table(words[0]);
    }
    const std::int64_t capacity = table_capacity(shell.database(), words[0]);
    if (*number > capacity) {
        return session::fail(
            fmt::format("{} has {} records, from 1 on, and 0, the default", words[0], capacity));
    }
    const trace_log::pause quiet(shell.traces());
    const record_view seen = view_record(shell.database(), words[0], *number);
    if (seen.code != 0) {
        return session::fail(describe_code(seen.code));
    }
    shell.show(seen.elements);
    return outcome::done;
}

} // namespace qrysh
