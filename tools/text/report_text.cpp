// Reports put into lines; the counts with what the statement says of keys.
#include "tools/text/report_text.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/text/code_text.h"
#include "tools/text/finding.h"
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

std::string describe_fault(const statement_report &report) {
    if (report.reached_library) {
        return describe_code(report.code);
    }
    return fmt::format("{}: not run{}", code_and_name(report.code),
                       report.notes.empty() ? "" : ": a note stands against it");
}

std::string point_in_colour(const std::string &sql, const finding &place, const voice &spoken) {
    const std::string lines = point_at(sql, place);
    const std::size_t caret = lines.find('\n') + 1;
    return fmt::format("{}{}{}{}\n", lines.substr(0, caret), spoken.fault,
                       lines.substr(caret, lines.size() - caret - 1), spoken.off);
}

std::string describe_written(const std::string &db_name, const std::string &sql,
                             const statement_report &report) {
    const change_counts &changed = report.changed;
    return changed.added + changed.replaced + changed.changed + changed.deleted == 0
               ? ""
               : fmt::format("before this failed: {}\n", describe_changes(db_name, sql, report));
}

} // namespace

std::string complaint(std::string_view sentence, const voice &spoken) {
    return fmt::format("{}error:{} {}{}{}\n", spoken.fault, spoken.off, spoken.place,
                       spoken.place.empty() ? "" : ": ", sentence);
}

std::string describe_notes(const statement_report &report, const voice &spoken) {
    std::string lines;
    for (const finding &note : report.notes) {
        lines += fmt::format("{}note:{} {}\n", spoken.note, spoken.off, with_hint(note, "; "));
    }
    return lines;
}

std::string describe_refusal(const std::string &db_name, const std::string &sql,
                             const statement_report &report, const voice &spoken) {
    std::string lines;
    if (report.refusal) {
        finding place = *report.refusal;
        if (!report.notes.empty()) { // said already
            place.sentence = place.hint = "";
        }
        lines = point_in_colour(sql, place, spoken);
    }
    return lines + complaint(describe_fault(report), spoken) + describe_written(db_name, sql, report);
}

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
