// The comparison is the companion's; here it becomes a table, and notes about what nobody can tell.
#include "tools/qrysh/commands/diff_command.h"

#include <stdexcept>

#include <fmt/format.h>

#include "tools/files/whole_file.h"
#include "tools/qrysh/commands/session.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/json_text.h"
#include "tools/text/snapshots.h"

namespace qrysh {

namespace {

using qrytext::json_value;

constexpr std::size_t file_size_max = std::size_t{16} * 1024 * 1024;

std::string value_text(const json_value &value) {
    const std::optional<std::string> text = qrytext::text_of(value);
    return text ? *text : qrytext::one_line(value);
}

// "PSN_ID=8 PSN_NAME=Sato": the columns of a record that hold something, or of its key.
std::string columns_text(const json_value &columns, bool is_key) {
    std::string text;
    for (const auto &[name, value] : columns.items()) {
        if (is_key || (value != 0 && value != "")) {
            text += fmt::format("{}{}={}", text.empty() ? "" : " ", name, value_text(value));
        }
    }
    return text;
}

std::string side_text(const json_value &change, const char *side) {
    const json_value &value = change[side];
    if (value.is_null()) {
        return "(no record)";
    }
    if (change["column"].is_null()) {
        return columns_text(value, false);
    }
    if (change.contains("masked")) {
        return fmt::format("(masked, {} bytes)", qrytext::text_of(value).value_or("").size());
    }
    return value_text(value);
}

qrytext::result differences(const json_value &tables) {
    qrytext::result table{{"TABLE", "KEY", "COLUMN", "OLD", "NEW"}, {}};
    for (const json_value &each : tables) {
        const std::string database = each["database"];
        const std::string name =
            database.empty() ? "settings" : database + "." + each["table"].get<std::string>();
        for (const json_value &change : each["changes"]) {
            const json_value &key = change["key"];
            table.rows.push_back({name, key.is_object() ? columns_text(key, true) : key.get<std::string>(),
                                  change["column"].is_null() ? "" : change["column"].get<std::string>(),
                                  side_text(change, "a"), side_text(change, "b")});
        }
    }
    return table;
}

void tell_unknown(const json_value &answer, const std::string &path_a, const std::string &path_b) {
    for (const json_value &each : answer["masked"]) {
        say(fmt::format("note: {}.{}, {}: masked in {} records, so nobody can tell whether it differs\n",
                        each["database"].get<std::string>(), each["table"].get<std::string>(),
                        each["column"].get<std::string>(), each["records"].get<int>()));
    }
    for (const json_value &each : answer["uncovered"]) {
        say(fmt::format("note: {}.{} is in {} alone, and not compared\n", each["database"].get<std::string>(),
                        each["table"].get<std::string>(), each["in"] == "a" ? path_a : path_b));
    }
}

} // namespace

int diff_files(const std::string &path_a, const std::string &path_b, qrytext::output_mode mode) {
    const json_value answer = json_value::parse(qrytext::compare_snapshots(
        qryfiles::read_file(path_a, file_size_max), qryfiles::read_file(path_b, file_size_max)));
    if (answer.contains("text")) {
        session::fail(value_text(answer["text"]));
        return 1;
    }
    const qrytext::result table = differences(answer["tables"]);
    if (!table.rows.empty() || !qrytext::is_for_people(mode)) {
        present(qrytext::format_result(mode, table));
    }
    tell_unknown(answer, path_a, path_b);
    return answer["equal"] == true ? 0 : 1;
}

} // namespace qrysh
