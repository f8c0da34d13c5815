// The counts of a report with what the statement says of keys.
#include "tools/text/change_text.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/text/printers.h"
#include "tools/text/schema.h"
#include "tools/text/statement_text.h"

namespace qrytext {

namespace {

std::string records(std::uint32_t number) {
    return fmt::format("{} {}", number, number == 1 ? "record" : "records");
}

// The values that the statement gives to the table's key columns; empty unless it gives all of them.
std::string given_key(const std::string &db_name, const write_statement &written) {
    std::string key;
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, written.table)) {
        if (column.is_key == 0) {
            continue;
        }
        const auto given = std::find_if(written.values.begin(), written.values.end(),
                                        [&](const assignment &a) { return a.column == column.name; });
        if (given == written.values.end()) {
            return "";
        }
        key += (key.empty() ? "" : ", ") + literal(given->value);
    }
    return key;
}

std::string describe_insert(const std::string &db_name, const std::string &sql,
                            const change_counts &changed) {
    if (changed.replaced == 0) {
        return records(changed.added) + " added";
    }
    const std::string key = given_key(db_name, parse_write_statement(sql));
    return changed.replaced > 1 || key.empty()
               ? records(changed.replaced) + " replaced"
               : fmt::format("{} replaced (key {} was in use)", records(changed.replaced), key);
}

std::string describe_update(const std::string &db_name, const std::string &sql, std::uint32_t changed) {
    const bool share_key = changed > 1 && !given_key(db_name, parse_write_statement(sql)).empty();
    return records(changed) + " changed" +
           (share_key ? fmt::format("; {} now have the same key", changed) : "");
}

} // namespace

std::string describe_changes(const std::string &db_name, const std::string &sql,
                             const statement_report &report) {
    if (report.kind == "insert") {
        return describe_insert(db_name, sql, report.changed);
    }
    if (report.kind == "update") {
        return describe_update(db_name, sql, report.changed.changed);
    }
    return report.kind == "delete" || report.kind == "drop" ? records(report.changed.deleted) + " deleted"
                                                            : "";
}

} // namespace qrytext
