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

namespace qrytext {

namespace {

using found = std::optional<finding>;

// Points at a name, wherever it stands first behind `from`.
found point_at_name(const std::string &sql, std::size_t from, const std::string &name, std::string sentence) {
    const std::optional<std::size_t> place = find_word(sql, name, from);
    return place ? found(finding{*place, name.size(), std::move(sentence)}) : std::nullopt;
}

std::size_t place_of(const std::string &sql, std::string_view keyword) {
    const std::size_t place = sql.find(keyword);
    return place == std::string::npos ? 0 : place;
}

// A table's name that holds a blank is a clause that the parser did not recognise.
found check_clause_in_table(const std::string &sql, const std::string &table) {
    const std::size_t table_place = sql.find(table);
    const std::size_t blank = table.find(' ');
    if (table_place == std::string::npos || blank == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t begin = table.find_first_not_of(' ', blank);
    const std::string word = table.substr(begin, std::min(table.find(' ', begin), table.size()) - begin);
    const finding place{table_place + begin, word.size(), ""};
    static const std::vector<std::string> clauses = {"WHERE", "ORDER"};
    const std::string near = nearest(word, clauses);
    if (near == word) {
        return finding{place.place, place.length, fmt::format("{} is not complete", word)};
    }
    if (near == in_capitals(word)) {
        return finding{place.place, place.length, fmt::format("keywords are upper case: write {}", near)};
    }
    return finding{place.place, place.length,
                   "expected WHERE, ORDER BY or the end of the statement" + did_you_mean(word, clauses)};
}

// Tables of other databases are named more often than tables are mistyped.
std::string where_table_is(const std::string &db_name, const std::string &table) {
    for (const std::string &other : database_names()) {
        if (table_exists(other, table)) {
            return fmt::format("; {0} has: .db {0}", other);
        }
    }
    return did_you_mean(table, table_names(db_name));
}

found check_table(const std::string &db_name, const std::string &sql, const std::string &table) {
    if (table_exists(db_name, table)) {
        return std::nullopt;
    }
    if (table.find('\t') != std::string::npos) {
        return point_at_name(sql, place_of(sql, " FROM "), table, "only blanks divide words, not tabs");
    }
    if (found clause = check_clause_in_table(sql, table)) {
        return clause;
    }
    return point_at_name(
        sql, place_of(sql, " FROM "), table,
        fmt::format("{} has no table \"{}\"{}", db_name, printable(table), where_table_is(db_name, table)));
}

// What is written elsewhere and cannot be here; null for any other name.
const char *foreign_habit(const std::string &column) {
    if (in_capitals(column) == "COUNT(*)") {
        return "keywords are upper case: write COUNT(*)";
    }
    if (!column.empty() && column.back() == '<') {
        return "there is no <>: write !=";
    }
    if (!column.empty() && column.front() == '(') {
        return "brackets group nothing: a condition is one list, joined all by AND or all by OR";
    }
    return column.find('\t') != std::string::npos ? "only blanks divide words, not tabs" : nullptr;
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
                   : found(finding{star, 1, "columns are named one by one; .schema lists them"});
    }
    if (const char *const habit = foreign_habit(column)) {
        return point_at_name(sql, from, column, habit);
    }
    const std::size_t point = column.find('.');
    if (point != std::string::npos && column.substr(0, point) == table) {
        return point_at_name(sql, from, column,
                             "over one table a column is written without the table's name");
    }
    return point_at_name(
        sql, from, column,
        fmt::format("{} has no column \"{}\"{}", table, printable(column), did_you_mean(column, names)));
}

// A selected item of several words, of which the parser makes one name without blanks.
found check_item(const std::string &db_name, const std::string &table, const std::string &sql,
                 text_span item) {
    const std::string text = sql.substr(item.place, item.length);
    if (const std::string advice = advice_for(text); !advice.empty()) {
        return finding{item.place, item.length, advice};
    }
    const std::size_t blank = text.find(' ');
    const std::string second(trim(std::string_view(text).substr(blank)));
    if (find_column(db_name, table, text.substr(0, blank)) && find_column(db_name, table, second)) {
        return finding{item.place + blank, 1, "a comma is missing here"};
    }
    return finding{item.place, item.length, "a column stands alone: nothing is worked out or renamed"};
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
found check_joined_column(const std::string &db_name, const std::vector<std::string> &tables,
                          const std::string &sql, std::size_t from, const std::string &name) {
    const std::size_t point = name.find('.');
    if (point == std::string::npos) {
        return point_at_name(sql, from, name, "over several tables a column is written TABLE.COLUMN");
    }
    const std::string table = name.substr(0, point);
    if (std::find(tables.begin(), tables.end(), table) == tables.end()) {
        return point_at_name(sql, from, name,
                             fmt::format("FROM does not name the table \"{}\"{}", printable(table),
                                         did_you_mean(table, tables)));
    }
    const std::string column = name.substr(point + 1);
    const std::vector<std::string> names = column_names(db_name, table);
    if (std::find(names.begin(), names.end(), column) != names.end()) {
        return std::nullopt;
    }
    return point_at_name(
        sql, from, name,
        fmt::format("{} has no column \"{}\"{}", table, printable(column), did_you_mean(column, names)));
}

bool orders(QRY_LIB_OPERATION_TYPE operation) {
    return operation >= QRY_LIB_OPERATION_TYPE_LESS && operation <= QRY_LIB_OPERATION_TYPE_GREATER_EQUAL;
}

// Texts have no order in a condition, and numbers no beginning.
found check_operation(const std::string &db_name, const std::string &table, const std::string &sql,
                      const query_condition &condition) {
    const auto column = find_column(db_name, table, condition.column);
    if (!column) {
        return std::nullopt;
    }
    const bool is_text = column->type == QRY_LIB_COLUMN_TYPE_STR;
    const char *sentence = nullptr;
    if (is_text && orders(condition.operation)) {
        sentence = "a text is compared with =, != or LIKE";
    } else if (!is_text && condition.operation == QRY_LIB_OPERATION_TYPE_LIKE) {
        sentence = "a number is not compared with LIKE";
    }
    return sentence == nullptr ? std::nullopt
                               : point_at_name(sql, place_of(sql, " WHERE "), condition.column, sentence);
}

bool is_link(const query_condition &condition) {
    return !condition.quoted && condition.value.find('.') != std::string::npos;
}

found check_joined(const std::string &db_name, const std::string &sql, const query &asked) {
    for (const std::string &column : asked.columns) {
        if (found fault = check_joined_column(db_name, asked.tables, sql, 0, column)) {
            return fault;
        }
    }
    const std::size_t where = place_of(sql, " WHERE ");
    for (const query_condition &condition : asked.conditions) {
        found fault = check_joined_column(db_name, asked.tables, sql, where, condition.column);
        if (!fault && is_link(condition)) {
            fault = check_joined_column(db_name, asked.tables, sql, where, condition.value);
        }
        if (fault) {
            return fault;
        }
    }
    const auto links = std::count_if(asked.conditions.begin(), asked.conditions.end(), is_link);
    if (static_cast<std::size_t>(links) + 1 < asked.tables.size()) {
        return finding{sql.size(), 0, "each further table needs a condition TABLE.COLUMN = TABLE.COLUMN"};
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
        if (found fault = check_operation(db_name, table, sql, condition)) {
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
                               text->size())};
}

// An INSERT must name every key column.
found check_keys(const std::string &db_name, const std::string &sql, const write_statement &written) {
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, written.table)) {
        const bool is_given = std::any_of(written.values.begin(), written.values.end(),
                                          [&](const assignment &a) { return a.column == column.name; });
        if (column.is_key != 0 && !is_given) {
            return finding{sql.find('('), 1, fmt::format("the key column {} is missing", column.name)};
        }
    }
    return std::nullopt;
}

// A new record may not carry the key that free records have.
found check_free_key(const std::string &db_name, const std::string &sql, const write_statement &written) {
    for (const free_key &key : free_keys(db_name, written.table)) {
        for (const assignment &given : written.values) {
            if (given.column == key.column && given.value == key.value) {
                return point_at_name(sql, 0, key.column,
                                     fmt::format("{} marks a free record", literal(key.value)));
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
        return check_free_key(db_name, sql, written);
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
