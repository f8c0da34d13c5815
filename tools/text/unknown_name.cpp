// The statement read once more, and each of its names looked up in the schema.
#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "parser/qry_lib_sql_parser.h"
#include "tools/text/clauses.h"
#include "tools/text/diagnosis.h"
#include "tools/text/engine.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/foreign_words.h"
#include "tools/text/near_match.h"
#include "tools/text/printers.h"
#include "tools/text/query_reader.h"
#include "tools/text/schema.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/value_notes.h"

namespace qrytext {

namespace {

using found = std::optional<finding>;

// Points at a name, wherever it stands first behind `from`.
found point_at_name(const std::string &sql, std::size_t from, const std::string &name, advice said) {
    const std::optional<std::size_t> place = find_word(sql, name, from);
    return place ? found(finding{*place, name.size(), std::move(said.sentence), std::move(said.hint)})
                 : std::nullopt;
}

advice unknown_column(const std::string &table, const std::string &column,
                      const std::vector<std::string> &names) {
    return {fmt::format("{} has no column \"{}\"", table, printable(column)), near_hint(column, names)};
}

std::size_t place_of(const std::string &sql, std::string_view keyword) {
    const std::size_t place = sql.find(keyword);
    return place == std::string::npos ? 0 : place;
}

// A word behind the table's name: a clause that is not whole or not well written, or another name for it.
advice advice_for_clause(const std::string &db_name, const std::string &table, const std::string &word) {
    static const std::vector<std::string> clauses = {"WHERE", "ORDER"};
    const std::string near = nearest(word, clauses);
    if (near == word) {
        return {fmt::format("{} is not complete", word),
                word == "WHERE" ? "write WHERE COLUMN = 1" : "write ORDER BY COLUMN"};
    }
    if (near == in_capitals(word)) {
        return write_in_capitals(near);
    }
    if (near.empty() && table_exists(db_name, table)) {
        return {"there is no alias", fmt::format("write {} alone", table)};
    }
    return {"expected WHERE, ORDER BY or the end of the statement", near_hint(word, clauses)};
}

// A table's name that holds a blank is a clause that the parser did not recognise.
found check_clause_in_table(const std::string &db_name, const std::string &sql, const std::string &table) {
    const std::size_t table_place = sql.find(table);
    const std::size_t blank = table.find(' ');
    if (table_place == std::string::npos || blank == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t begin = table.find_first_not_of(' ', blank);
    const std::string word = table.substr(begin, std::min(table.find(' ', begin), table.size()) - begin);
    const advice said = advice_for_clause(db_name, table.substr(0, blank), word);
    return finding{table_place + begin, word.size(), said.sentence, said.hint};
}

// Tables of other databases are named more often than tables are mistyped.
advice unknown_table(const std::string &db_name, const std::string &table) {
    const std::size_t point = table.find('.');
    const std::string name = point == std::string::npos ? table : table.substr(point + 1);
    for (const std::string &other : database_names()) {
        if (table_exists(other, name)) {
            return {fmt::format("{} has no table {}; {} has {}", db_name, printable(table), other, name),
                    other == db_name ? fmt::format("write {}", name) : fmt::format("write .db {}", other)};
        }
    }
    return {fmt::format("{} has no table \"{}\"", db_name, printable(table)),
            near_hint(table, table_names(db_name))};
}

constexpr const char *no_tabs = "only blanks divide words, not tabs";
constexpr const char *write_blank = "write a blank";

found check_table(const std::string &db_name, const std::string &sql, const std::string &table) {
    if (table_exists(db_name, table)) {
        return std::nullopt;
    }
    if (table.find('\t') != std::string::npos) {
        return point_at_name(sql, place_of(sql, " FROM "), table, {no_tabs, write_blank});
    }
    if (found clause = check_clause_in_table(db_name, sql, table)) {
        return clause;
    }
    const std::size_t from = place_of(sql, " FROM ");
    found place = point_at_name(sql, from, table, unknown_table(db_name, table));
    return place ? place : point_at_name(sql, 0, table, unknown_table(db_name, table));
}

// What to write instead of "*".
std::string name_columns(const std::string &table, const std::vector<std::string> &names) {
    constexpr std::size_t shown = 8;
    return names.size() <= shown ? fmt::format("write {}", fmt::join(names, ", "))
                                 : fmt::format("write the columns; .schema {} lists them", table);
}

// What is written elsewhere and cannot be here.
std::optional<advice> foreign_habit(const std::string &column) {
    const std::string capitals = in_capitals(column);
    if (capitals == "COUNT(*)") {
        return write_in_capitals(capitals);
    }
    if (capitals.substr(0, 6) == "COUNT(") {
        return advice{"records are counted, not columns", "write COUNT(*)"};
    }
    if (!column.empty() && column.back() == '<') {
        return advice{"there is no <>", "write !="};
    }
    if (!column.empty() && column.front() == '(') {
        return advice{"brackets group nothing",
                      "write one list of conditions, joined all by AND or all by OR"};
    }
    if (column.find('(') != std::string::npos) {
        return advice{"there are no functions", "write the column alone"};
    }
    if (column.find_first_of("+-*/|") != std::string::npos) {
        return advice{"nothing is worked out", "write the column alone"};
    }
    return column.find('\t') == std::string::npos ? std::nullopt
                                                  : std::optional(advice{no_tabs, write_blank});
}

// A column of a query over one table.
found check_column(const std::string &db_name, const std::string &table, const std::string &sql,
                   std::size_t from, const std::string &column) {
    const std::vector<std::string> names = column_names(db_name, table);
    if (std::find(names.begin(), names.end(), column) != names.end()) {
        return std::nullopt;
    }
    if (column == "*") {
        const std::size_t star = sql.find('*', from);
        return star == std::string::npos
                   ? std::nullopt
                   : found(finding{star, 1, "columns are named one by one", name_columns(table, names)});
    }
    if (const std::optional<advice> habit = foreign_habit(column)) {
        return point_at_name(sql, from, column, *habit);
    }
    const std::size_t point = column.find('.');
    if (point != std::string::npos && column.substr(0, point) == table) {
        return point_at_name(sql, from, column,
                             {"over one table a column is written without the table's name",
                              fmt::format("write {}", printable(column.substr(point + 1)))});
    }
    return point_at_name(sql, from, column, unknown_column(table, column, names));
}

// A selected item of several words, of which the parser makes one name without blanks.
found check_item(const std::string &db_name, const std::string &table, const std::string &sql,
                 text_span item) {
    const std::string text = sql.substr(item.place, item.length);
    if (const std::optional<advice> said = advice_for(text)) {
        return finding{item.place, item.length, said->sentence, said->hint};
    }
    const std::size_t blank = text.find(' ');
    const std::string second(trim(std::string_view(text).substr(blank)));
    if (find_column(db_name, table, text.substr(0, blank)) && find_column(db_name, table, second)) {
        return finding{item.place + blank, 1, "a comma is missing here", "write COLUMN, COLUMN"};
    }
    const bool is_alias = second.find_first_of(" +-*/|()") == std::string::npos;
    return finding{item.place, item.length,
                   is_alias ? "there is no alias" : "a column stands alone; nothing is worked out",
                   fmt::format("write {}", printable(text.substr(0, blank)))};
}

// The columns of a SELECT over one table.
found check_selected(const std::string &db_name, const std::string &table, const std::string &sql,
                     const std::vector<std::string> &columns) {
    const std::vector<text_span> items = items_of(sql, clauses_of(sql).columns);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const bool is_known = find_column(db_name, table, columns[i]).has_value();
        const bool has_words =
            i < items.size() && sql.substr(items[i].place, items[i].length).find(' ') != std::string::npos;
        found fault = is_known    ? std::nullopt
                      : has_words ? check_item(db_name, table, sql, items[i])
                                  : check_column(db_name, table, sql, 0, columns[i]);
        if (fault) {
            return fault;
        }
    }
    return std::nullopt;
}

// A column of a join, which carries its table's name.
std::optional<advice> fault_of_joined(const std::string &db_name, const std::vector<std::string> &tables,
                                      const std::string &name) {
    const std::size_t point = name.find('.');
    if (point == std::string::npos) {
        return advice{"over several tables a column carries its table's name", "write TABLE.COLUMN"};
    }
    const std::string table = name.substr(0, point);
    if (std::find(tables.begin(), tables.end(), table) == tables.end()) {
        return advice{fmt::format("FROM does not name the table \"{}\"", printable(table)),
                      near_hint(table, tables)};
    }
    const std::string column = name.substr(point + 1);
    const std::vector<std::string> names = column_names(db_name, table);
    return std::find(names.begin(), names.end(), column) != names.end()
               ? std::nullopt
               : std::optional(unknown_column(table, column, names));
}

// A selected item may hold blanks, of which its name knows nothing.
found check_joined_items(const std::string &db_name, const std::string &sql, const query &asked) {
    const std::vector<text_span> items = items_of(sql, clauses_of(sql).columns);
    for (std::size_t i = 0; i < std::min(asked.columns.size(), items.size()); ++i) {
        const auto [place, length] = items[i];
        if (std::optional<advice> fault = fault_of_joined(db_name, asked.tables, asked.columns[i])) {
            const std::optional<advice> foreign = advice_for(std::string_view(sql).substr(place, length));
            const advice &said = foreign ? *foreign : *fault;
            return finding{place, length, said.sentence, said.hint};
        }
    }
    return std::nullopt;
}

found check_joined_name(const std::string &db_name, const std::string &sql, const query &asked,
                        const std::string &name) {
    std::optional<advice> fault = fault_of_joined(db_name, asked.tables, name);
    if (!fault) {
        return std::nullopt;
    }
    const text_span condition = clauses_of(sql).condition;
    const found place = point_at_name(sql, condition.place, name, *fault);
    return place ? place : found(finding{condition.place, condition.length, fault->sentence, fault->hint});
}

bool orders(QRY_LIB_OPERATION_TYPE operation) {
    return operation >= QRY_LIB_OPERATION_TYPE_LESS && operation <= QRY_LIB_OPERATION_TYPE_GREATER_EQUAL;
}

// Texts have no order in a condition, and numbers no beginning.
found check_operation(const std::string &db_name, const std::string &table, const std::string &sql,
                      const query_condition &condition, const std::string &name) {
    const auto column = find_column(db_name, table, name);
    if (!column) {
        return std::nullopt;
    }
    const bool is_text = column->type == QRY_LIB_COLUMN_TYPE_STR;
    const std::size_t where = place_of(sql, " WHERE ");
    if (is_text && orders(condition.operation)) {
        return point_at_name(sql, where, condition.column,
                             {"texts have no order in a condition", "write =, != or LIKE"});
    }
    if (!is_text && condition.operation == QRY_LIB_OPERATION_TYPE_LIKE) {
        return point_at_name(sql, where, condition.column,
                             {"a number has no beginning", "write =, !=, <, >, <= or >="});
    }
    return std::nullopt;
}

bool is_link(const query_condition &condition) {
    return !condition.quoted && condition.value.find('.') != std::string::npos;
}

found check_joined(const std::string &db_name, const std::string &sql, const query &asked) {
    if (found fault = check_joined_items(db_name, sql, asked)) {
        return fault;
    }
    for (const query_condition &condition : asked.conditions) {
        found fault = check_joined_name(db_name, sql, asked, condition.column);
        if (!fault && is_link(condition)) {
            fault = check_joined_name(db_name, sql, asked, condition.value);
        } else if (!fault) {
            const std::size_t point = condition.column.find('.');
            fault = check_operation(db_name, condition.column.substr(0, point), sql, condition,
                                    condition.column.substr(point + 1));
        }
        if (fault) {
            return fault;
        }
    }
    const auto links = std::count_if(asked.conditions.begin(), asked.conditions.end(), is_link);
    if (static_cast<std::size_t>(links) + 1 < asked.tables.size()) {
        return finding{sql.size(), 0, "each further table needs a condition of its own",
                       "write TABLE.COLUMN = TABLE.COLUMN"};
    }
    return std::nullopt;
}

found check_single(const std::string &db_name, const std::string &sql, const query &asked) {
    const std::string &table = asked.tables.front();
    if (asked.type == QRY_LIB_DB_QUERY_TYPE_SELECT) {
        if (found fault = check_selected(db_name, table, sql, asked.columns)) {
            return fault;
        }
    }
    const std::size_t where = place_of(sql, " WHERE ");
    for (const query_condition &condition : asked.conditions) {
        if (found fault = check_column(db_name, table, sql, where, condition.column)) {
            return fault;
        }
        if (found fault = check_operation(db_name, table, sql, condition, condition.column)) {
            return fault;
        }
    }
    if (asked.order_column.empty()) {
        return std::nullopt;
    }
    return check_column(db_name, table, sql, place_of(sql, " BY "), asked.order_column);
}

// What a value to be written must keep to.
found check_value(const std::string &sql, const qry_lib_catalog_column_ &column, const assignment &given) {
    const auto *text = std::get_if<std::string>(&given.value);
    if (text == nullptr || column.type != QRY_LIB_COLUMN_TYPE_STR || text->size() < column.size) {
        return std::nullopt;
    }
    const std::string written = literal(given.value);
    const std::size_t place = sql.find(written);
    return finding{place == std::string::npos ? sql.size() : place,
                   place == std::string::npos ? 0 : written.size(),
                   fmt::format("{} holds at most {} bytes, this text has {}", given.column, column.size - 1,
                               text->size()),
                   "write a shorter one"};
}

// An INSERT must name every key column.
found check_keys(const std::string &db_name, const std::string &sql, const write_statement &written) {
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, written.table)) {
        const bool is_given = std::any_of(written.values.begin(), written.values.end(),
                                          [&](const assignment &a) { return a.column == column.name; });
        if (column.is_key != 0 && !is_given) {
            return finding{sql.find('('), 1, fmt::format("the key column {} is missing", column.name),
                           "write it among the columns, and its value among the values"};
        }
    }
    return std::nullopt;
}

// A new record may not carry the key that free records have.
found check_free_key(const std::string &db_name, const write_statement &written) {
    for (const free_key &key : free_keys(db_name, written.table)) {
        const auto column = find_column(db_name, written.table, key.column);
        for (const assignment &given : written.values) {
            if (column && given.column == key.column && stored_value(given.value, *column) == key.value) {
                const std::string free = literal(key.value);
                return finding{given.place, given.length,
                               given.value == key.value
                                   ? fmt::format("{} marks a free record", free)
                                   : fmt::format("this is stored as {}, which marks a free record", free),
                               "write another key"};
            }
        }
    }
    return std::nullopt;
}

found check_write(const std::string &db_name, const std::string &sql, const query &asked) {
    const write_statement written = parse_write_statement(sql);
    for (const assignment &given : written.values) {
        const auto column = find_column(db_name, written.table, given.column);
        if (!column) {
            return check_column(db_name, written.table, sql, 0, given.column);
        }
        if (found fault = check_value(sql, *column, given)) {
            return fault;
        }
    }
    if (written.is_insert) {
        if (found fault = check_keys(db_name, sql, written)) {
            return fault;
        }
        return check_free_key(db_name, written);
    }
    return check_single(db_name, sql, asked);
}

} // namespace

std::optional<finding> find_unknown_name(const std::string &db_name, const std::string &sql) {
    const std::optional<query> asked = read_query(db_name, sql);
    if (!asked) {
        return std::nullopt;
    }
    for (const std::string &table : asked->tables) {
        if (found fault = check_table(db_name, sql, table)) {
            return fault;
        }
    }
    if (asked->tables.empty()) {
        return std::nullopt;
    }
    if (kind_of(sql) == statement_kind::write_record) {
        return check_write(db_name, sql, *asked);
    }
    return asked->tables.size() > 1 ? check_joined(db_name, sql, *asked) : check_single(db_name, sql, *asked);
}

} // namespace qrytext
