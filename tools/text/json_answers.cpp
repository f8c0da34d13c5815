// Every answer's members, in the order in which the schemas name them.
#include "tools/text/json_answers.h"

#include <qrylib/error.hpp>

#include <algorithm>

#include "exec/schema/schema.h"
#include "tools/text/engine.h"
#include "tools/text/json_text.h"
#include "tools/text/listings.h"
#include "tools/text/schema.h"
#include "tools/text/trace_explainer.h"

namespace qrytext {

namespace {

constexpr double microseconds = 1e6;

json_value finding_json(const finding &found) {
    return {{"from", found.place},
            {"to", found.place + found.length},
            {"text", json_text(found.sentence)},
            {"hint", json_text(found.hint)}};
}

json_value refusal_json(const std::optional<finding> &refusal) {
    return refusal ? finding_json(*refusal) : json_value(nullptr);
}

json_value notes_json(const std::vector<finding> &notes) {
    json_value list = json_value::array();
    std::transform(notes.begin(), notes.end(), std::back_inserter(list), finding_json);
    return list;
}

json_value columns_json(const result &answer) {
    json_value list = json_value::array();
    for (const result_column &column : answer.columns) {
        list.push_back({{"name", json_text(column.name)},
                        {"table", json_text(column.table)},
                        {"type", column.is_text ? "text" : "number"}});
    }
    return list;
}

json_value cell_json(const cell &value) {
    const auto *number = std::get_if<std::int64_t>(&value);
    return number != nullptr ? json_value(*number) : json_text(std::get<std::string>(value));
}

json_value rows_json(const result &answer) {
    json_value list = json_value::array();
    for (const std::vector<cell> &row : answer.rows) {
        json_value cells = json_value::array();
        std::transform(row.begin(), row.end(), std::back_inserter(cells), cell_json);
        list.push_back(std::move(cells));
    }
    return list;
}

json_value trace_json(std::string_view text) {
    const std::optional<trace_line> parsed = parse_trace(text);
    if (!parsed) {
        return {{"known", false}, {"function", ""}, {"line", 0}, {"code", nullptr}, {"cause", ""}};
    }
    const std::string_view cause = trace_cause(parsed->function, parsed->line);
    return {{"known", !cause.empty()},
            {"function", json_text(parsed->function)},
            {"line", parsed->line},
            {"code", parsed->code ? json_value(*parsed->code) : json_value(nullptr)},
            {"cause", json_text(cause)}};
}

json_value cost_json(const cost &spent) {
    json_value calls = json_value::object();
    for (std::size_t i = 0; i < spent.calls.size(); ++i) {
        if (spent.calls[i] != 0) {
            calls[call_name(static_cast<qryhost_call>(i))] = spent.calls[i];
        }
    }
    return {{"microseconds", static_cast<std::uint64_t>(spent.seconds * microseconds)},
            {"blocks", spent.calls[QRYHOST_ALLOC]},
            {"peak_bytes", spent.peak_bytes},
            {"calls", std::move(calls)}};
}

json_value strings_json(const std::vector<std::string> &texts) {
    json_value list = json_value::array();
    std::transform(texts.begin(), texts.end(), std::back_inserter(list), json_text);
    return list;
}

bool is_write(const query &asked) {
    return asked.type == QRY_LIB_DB_QUERY_TYPE_INSERT || asked.type == QRY_LIB_DB_QUERY_TYPE_UPDATE;
}

json_value asked_columns_json(const query &asked) {
    json_value list = json_value::array();
    for (std::size_t i = 0; i < asked.columns.size(); ++i) {
        json_value column = {{"name", json_text(asked.columns[i])}};
        if (is_write(asked)) {
            column["value"] = json_text(asked.values[i]);
        }
        list.push_back(std::move(column));
    }
    return list;
}

json_value conditions_json(const query &asked) {
    json_value list = json_value::array();
    for (const query_condition &condition : asked.conditions) {
        list.push_back({{"column", json_text(condition.column)},
                        {"operation", operation_name(condition.operation)},
                        {"value", json_text(condition.value)},
                        {"quoted", condition.quoted},
                        {"join", join_name(condition.join)}});
    }
    return list;
}

json_value order_json(const query &asked) {
    return asked.order_column.empty() ? json_value(nullptr)
                                      : json_value{{"column", json_text(asked.order_column)},
                                                   {"direction", direction_name(asked.order)}};
}

json_value key_list(const std::string &table, const search_plan &search) {
    json_value list = json_value::array();
    for (const std::string &key : search.keys) {
        list.push_back({{"table", json_text(table)}, {"key", json_text(key)}});
    }
    return list;
}

json_value keys_json(const explanation &explained) {
    json_value list = json_value::array();
    for (const join_part &part : explained.parts) {
        for (json_value &key : key_list(part.asked.tables.front(), part.search)) {
            list.push_back(std::move(key));
        }
    }
    return explained.parts.empty() && !explained.asked.tables.empty()
               ? key_list(explained.asked.tables.front(), explained.search)
               : list;
}

// Where a column's value lies is known to the library's own schema alone.
json_value schema_column_json(const qry_lib_catalog_column_ &column, const QRY_LIB_TABLE_DEF &table) {
    const QRY_LIB_ELEMENT_INFO &place = norvane::find_column(norvane::columns_of(table), column.name)->info;
    return {{"name", column.name},         {"type", column_type_name(column.type)},
            {"size", column.size},         {"key", column.is_key != 0},
            {"element", place.element_id}, {"offset", place.member_offset}};
}

json_value schema_table_json(const std::string &db_name, const std::string &table) {
    const QRY_LIB_TABLE_DEF &place =
        *norvane::find_table(*norvane::find_database(db_name.c_str()), table.c_str());
    json_value columns = json_value::array();
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, table)) {
        columns.push_back(schema_column_json(column, place));
    }
    return {{"name", table},
            {"category", norvane::category_of(place)},
            {"capacity", table_capacity(db_name, table)},
            {"in_use", records_in_use(db_name, table)},
            {"columns", std::move(columns)}};
}

} // namespace

std::string report_answer(const statement_report &report, const std::deque<std::string> *traces,
                          bool with_cost) {
    json_value answer = {{"ok", report.ok},
                         {"kind", report.kind},
                         {"code", report.code},
                         {"name", qrylib::code_name(report.code)},
                         {"text", qry_lib_code_text(report.code)}};
    if (report.rows) {
        answer["columns"] = columns_json(*report.rows);
        answer["rows"] = rows_json(*report.rows);
    }
    answer["changed"] = {{"added", report.changed.added},
                         {"replaced", report.changed.replaced},
                         {"changed", report.changed.changed},
                         {"deleted", report.changed.deleted}};
    answer["notes"] = notes_json(report.notes);
    answer["refusal"] = refusal_json(report.refusal);
    if (traces != nullptr) {
        answer["traces"] = json_value::array();
        for (const std::string &line : *traces) {
            json_value trace = trace_json(line);
            trace.erase("known");
            answer["traces"].push_back(std::move(trace));
        }
    }
    if (with_cost) {
        answer["counts"] = cost_json(report.spent);
    }
    return one_line(answer);
}

std::string explain_answer(const statement_report &report, const explanation &explained) {
    return one_line({{"ok", report.ok},
                     {"kind", report.kind},
                     {"tables", strings_json(explained.asked.tables)},
                     {"columns", asked_columns_json(explained.asked)},
                     {"conditions", conditions_json(explained.asked)},
                     {"order", order_json(explained.asked)},
                     {"keys", keys_json(explained)},
                     {"links", strings_json(explained.links)},
                     {"refusal", refusal_json(report.refusal)},
                     {"notes", notes_json(report.notes)}});
}

std::string complete_answer(const std::string &db_name, const completion &found, std::size_t cursor) {
    json_value candidates = json_value::array();
    for (const std::string &word : found.candidates) {
        candidates.push_back({{"text", word}, {"kind", word_kind(db_name, word)}});
    }
    return one_line({{"from", found.word_begin}, {"to", cursor}, {"candidates", std::move(candidates)}});
}

std::string text_answer(bool ok, std::string_view text) {
    return one_line({{"ok", ok}, {"text", json_text(text)}});
}

std::string load_answer(bool ok, std::string_view text, std::string_view place) {
    return one_line({{"ok", ok}, {"text", json_text(text)}, {"place", json_text(place)}});
}

std::string trace_answer(std::string_view line) {
    return one_line(trace_json(line));
}

std::string schema_answer() {
    json_value databases = json_value::array();
    for (const std::string &db_name : database_names()) {
        json_value tables = json_value::array();
        for (const std::string &table : table_names(db_name)) {
            tables.push_back(schema_table_json(db_name, table));
        }
        databases.push_back({{"name", db_name}, {"tables", std::move(tables)}});
    }
    return one_line({{"databases", std::move(databases)}});
}

std::string version_answer() {
    return one_line({{"version", qry_lib_version()}});
}

} // namespace qrytext
