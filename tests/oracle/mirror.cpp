// SQLite's side. Numbers are kept as unsigned, records that are not in use are rows too, and the default
// record is row -1; every condition goes in as the library's rules read it.
#include <cstdio>
#include <cstdlib>

#include "oracle/engines.h"

namespace oracle {

namespace {

[[noreturn]] void fail(const std::string &what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

std::string table_id(const table_def &table) {
    return "\"" + table.database + "_" + table.name + "\"";
}

std::string column_id(const std::string &alias, const std::string &column) {
    return alias + ".\"" + column + "\"";
}

// Any bytes as a text value.
std::string literal(const std::string &text) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
    }
    return "CAST(X'" + hex + "' AS TEXT)";
}

// The leading number, held within 32 bits, then cut to the element's width.
std::string number(const column_def &column, const std::string &text) {
    const char *mask = column.info.size == 1 ? "255" : column.info.size == 2 ? "65535" : "4294967295";
    return "(max(-2147483648, min(2147483647, CAST(" + literal(text) + " AS INTEGER))) & " + mask + ")";
}

std::string value_of(const column_def &column, const std::string &text) {
    return column.is_text ? literal(text) : number(column, text);
}

// A value given with a type goes through its decimal text, signed for all types of 32 bits.
std::string text_of_given(const given_value &value) {
    switch (value.type) {
    case QRY_LIB_COLUMN_TYPE_STR:
        return value.text;
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return std::to_string(value.number & 0xFF);
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return std::to_string(value.number & 0xFFFF);
    default:
        return std::to_string(static_cast<std::int32_t>(value.number));
    }
}

std::string in_use(const table_def &table, const std::string &alias, const char *relation, const char *last) {
    std::string condition;
    for (const column_def &column : table.columns) {
        if (table.has_keys && column.is_key) {
            condition += column_id(alias, column.name) + relation + "(SELECT \"" + column.name + "\" FROM " +
                         table_id(table) + " WHERE slot = -1) AND ";
        }
    }
    return condition + last;
}

std::string comparison_sql(const std::string &alias, const column_def &column, comparison operation,
                           const std::string &value) {
    static constexpr const char *relations[] = {" = ", " <> ", " < ", " > ", " <= ", " >= "};
    const std::string left = column_id(alias, column.name);
    if (is_prefix(operation) && value.empty()) {
        return "1"; // SQLite has no part of an empty text, not even an empty one
    }
    if (is_prefix(operation)) {
        return "substr(CAST(" + left + " AS BLOB), 1, " + std::to_string(value.size()) + ") = CAST(" +
               literal(value) + " AS BLOB)";
    }
    const comparison relation = operation == comparison::in ? comparison::equal : operation;
    return left + relations[static_cast<std::size_t>(relation)] + value_of(column, value);
}

// One test after the other: an AND that fails and an OR that holds end it. So each covers all that follow.
// The elements of a list are tests joined by OR.
std::string conditions_sql(const statement &made, std::size_t t, const std::string &alias) {
    std::string sql;
    std::string closing;
    for (const condition &tested : made.conditions) {
        if (tested.column.table != t) {
            continue;
        }
        const column_def &column = *made.from[t]->find(tested.column.name);
        for (const std::string &value : tested.values) {
            if (!sql.empty()) {
                sql += "(";
                closing += ")";
            }
            sql += comparison_sql(alias, column, tested.operation, value) +
                   (made.is_any || is_list(tested.operation) ? " OR " : " AND ");
        }
    }
    if (sql.empty()) {
        return "1";
    }
    sql.erase(sql.rfind(sql.compare(sql.size() - 4, 4, " OR ") == 0 ? " OR " : " AND "));
    return sql + closing;
}

std::string where_sql(const statement &made, std::size_t t, const std::string &alias) {
    return alias + ".slot >= 0 AND " +
           in_use(*made.from[t], alias, " <> ", ("(" + conditions_sql(made, t, alias) + ")").c_str());
}

// Sorting a name leaves the case of ASCII letters out; whatever is equal keeps the order of the records.
std::string order_sql(const statement &made) {
    if (made.order.empty()) {
        return " ORDER BY t.slot";
    }
    const char *direction = made.descends ? " DESC" : " ASC";
    const std::string key = column_id("t", made.order);
    const bool is_name = made.from[0]->find(made.order)->info.elem_type == norvane::element_name;
    return " ORDER BY " + (is_name ? key + " COLLATE NOCASE" + direction + ", " : "") + key +
           " COLLATE BINARY" + direction + ", t.slot";
}

// What is refused before any record is looked at; 0 when nothing is.
std::uint32_t refusal_of_conditions(const statement &made) {
    for (const condition &tested : made.conditions) {
        if (made.from[0]->find(tested.column.name) == nullptr) {
            return QRY_LIB_INVALID_ARGUMENT;
        }
    }
    for (const condition &tested : made.conditions) {
        const bool is_text = made.from[0]->find(tested.column.name)->is_text;
        if (is_text ? is_range(tested.operation) : is_prefix(tested.operation)) {
            return QRY_LIB_TABLE_ARGUMENT;
        }
    }
    return 0;
}

std::uint32_t refusal_of_columns(const statement &made) {
    for (const column_ref &column : made.columns) {
        if (made.from[0]->find(column.name) == nullptr) {
            return QRY_LIB_INVALID_ARGUMENT;
        }
    }
    for (std::size_t i = 0; i < made.values.size(); ++i) {
        const column_def &column = *made.from[0]->find(made.columns[i].name);
        if (column.is_text && text_of_given(made.values[i]).size() >= column.info.size) {
            return QRY_LIB_INVALID_ARGUMENT;
        }
    }
    return 0;
}

// Table, dot and column are one name of 31 characters, wherever they are read as one.
bool is_named_too_long(const statement &made) {
    const auto is_long = [&](const column_ref &column) {
        return made.from[column.table]->name.size() + column.name.size() >= QRY_LIB_COLUMN_NAME_MAX;
    };
    bool found = false;
    for (const column_ref &column : made.columns) {
        found = found || is_long(column);
    }
    for (const condition &tested : made.conditions) {
        found = found || is_long(tested.column);
    }
    for (const join &joined : made.joins) {
        found = found || is_long(joined.left);
    }
    return found;
}

std::string alias_of(std::size_t t) {
    return "t" + std::to_string(t);
}

} // namespace

mirror::mirror() {
    if (sqlite3_open(":memory:", &database_) != SQLITE_OK) {
        fail("SQLite does not open");
    }
    for (const table_def &table : tables()) {
        std::string sql = "CREATE TABLE " + table_id(table) + " (slot INTEGER PRIMARY KEY";
        for (const column_def &column : table.columns) {
            sql += ", \"" + column.name + "\"" + (column.is_text ? " DEFAULT ''" : " DEFAULT 0");
        }
        query(sql + ")");
        for (int record = default_record; record < record_num; ++record) {
            query("INSERT INTO " + table_id(table) + " (slot) VALUES (" + std::to_string(record) + ")");
        }
    }
}

mirror::~mirror() {
    sqlite3_close(database_);
}

std::vector<row> mirror::query(const std::string &sql) {
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
        fail(sql + ": " + sqlite3_errmsg(database_));
    }
    std::vector<row> rows;
    int state = sqlite3_step(prepared);
    for (; state == SQLITE_ROW; state = sqlite3_step(prepared)) {
        row &read = rows.emplace_back();
        for (int c = 0; c < sqlite3_column_count(prepared); ++c) {
            const auto *bytes = static_cast<const char *>(sqlite3_column_blob(prepared, c));
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(prepared, c));
            read.push_back(bytes == nullptr ? "" : std::string(bytes, size));
        }
    }
    if (state != SQLITE_DONE) {
        fail(sql + ": " + sqlite3_errmsg(database_));
    }
    sqlite3_finalize(prepared);
    return rows;
}

void mirror::put(const table_def &table, int record, const std::vector<given_value> &values) {
    std::string assignments;
    for (std::size_t c = 0; c < values.size(); ++c) {
        const column_def &column = table.columns[c];
        assignments += (c == 0 ? "\"" : ", \"") + column.name + "\" = " +
                       (column.is_text ? literal(values[c].text) : std::to_string(values[c].number));
    }
    query("UPDATE " + table_id(table) + " SET " + assignments + " WHERE slot = " + std::to_string(record));
}

std::vector<row> mirror::content(const table_def &table) {
    std::string columns;
    for (const column_def &column : table.columns) {
        columns += (columns.empty() ? "\"" : ", \"") + column.name + "\"";
    }
    return query("SELECT " + columns + " FROM " + table_id(table) + " ORDER BY slot");
}

void mirror::begin() {
    query("SAVEPOINT statement");
}

void mirror::undo() {
    query("ROLLBACK TO statement");
}

void mirror::keep() {
    query("RELEASE statement");
}

answer mirror::run(const statement &made) {
    if (made.is_linked()) {
        return run_linked(made);
    }
    if (made.what == kind::insert) {
        return insert(made);
    }
    if (const std::uint32_t code = refusal_of_conditions(made); code != 0) {
        return {code, {}};
    }
    const std::string which = where_sql(made, 0, "t");
    if (made.is_write()) {
        return change(made, which);
    }
    if (made.what == kind::count) {
        const row counted = query("SELECT count(*) FROM " + table_id(*made.from[0]) + " t WHERE " + which)[0];
        return {0, {{cell_text("", "", QRY_LIB_COLUMN_TYPE_UINT, counted[0])}}};
    }
    if (refusal_of_columns(made) != 0 || (!made.order.empty() && made.from[0]->find(made.order) == nullptr)) {
        return {QRY_LIB_INVALID_ARGUMENT, {}};
    }
    return {0, select(made)};
}

// Every value with its names and its type, as the library hands it out.
std::vector<row> mirror::select(const statement &made) {
    std::string list;
    std::string from;
    std::string which;
    std::string order;
    for (std::size_t t = 0; t < made.from.size(); ++t) {
        const std::string alias = made.is_linked() ? alias_of(t) : "t";
        from += (t == 0 ? "" : ", ") + table_id(*made.from[t]) + " " + alias;
        which += (t == 0 ? "" : " AND ") + where_sql(made, t, alias);
        order = alias + ".slot" + (t == 0 ? "" : ", ") + order; // the last table's order comes first
    }
    for (const join &joined : made.joins) {
        which += " AND " + column_id(alias_of(joined.left.table), joined.left.name) + " = " +
                 column_id(alias_of(joined.right.table), joined.right.name);
    }
    for (const column_ref &column : made.columns) {
        list += (list.empty() ? "" : ", ") +
                column_id(made.is_linked() ? alias_of(column.table) : "t", column.name);
    }
    std::vector<row> rows = query("SELECT " + (list.empty() ? "1" : list) + " FROM " + from + " WHERE " +
                                  which + (made.is_linked() ? " ORDER BY " + order : order_sql(made)));
    for (row &read : rows) {
        for (std::size_t c = 0; c < made.columns.size(); ++c) {
            const table_def &table = *made.from[made.columns[c].table];
            const column_def &column = *table.find(made.columns[c].name);
            read[c] = cell_text(table.name, column.name,
                                column.is_text ? QRY_LIB_COLUMN_TYPE_STR : column.info.elem_type, read[c]);
        }
    }
    return rows;
}

answer mirror::run_linked(const statement &made) {
    if (is_named_too_long(made)) {
        return {QRY_LIB_NOT_ACCEPTED, {}};
    }
    std::vector<row> rows = select(made);
    if (made.what == kind::count) {
        return {0, {{cell_text("", "", QRY_LIB_COLUMN_TYPE_UINT, std::to_string(rows.size() & 0xFFFF))}}};
    }
    return {0, std::move(rows)};
}

answer mirror::change(const statement &made, const std::string &which) {
    const table_def &table = *made.from[0];
    std::string assignments;
    if (made.what == kind::update) {
        if (query("SELECT 1 FROM " + table_id(table) + " t WHERE " + which).empty()) {
            return {QRY_LIB_NO_SUCH_ITEM, {}};
        }
        if (const std::uint32_t code = refusal_of_columns(made); code != 0) {
            return {code, {}};
        }
        for (std::size_t i = 0; i < made.columns.size(); ++i) {
            const column_def &column = *table.find(made.columns[i].name);
            assignments += (i == 0 ? "\"" : ", \"") + column.name +
                           "\" = " + value_of(column, text_of_given(made.values[i]));
        }
    } else {
        for (const column_def &column : table.columns) {
            assignments += (assignments.empty() ? "\"" : ", \"") + column.name + "\" = (SELECT \"" +
                           column.name + "\" FROM " + table_id(table) + " WHERE slot = -1)";
        }
    }
    query("UPDATE " + table_id(table) + " AS t SET " + assignments + " WHERE " + which);
    return {0, {}};
}

// The records that have the key, or else the first that is free; a key as the default record's marks a free
// one.
answer mirror::insert(const statement &made) {
    const table_def &table = *made.from[0];
    std::string same_key = "slot >= 0";
    for (const column_def &column : table.columns) {
        if (!table.has_keys || !column.is_key) {
            continue;
        }
        std::size_t given = 0;
        while (given < made.columns.size() && made.columns[given].name != column.name) {
            ++given;
        }
        if (given == made.columns.size()) {
            return {QRY_LIB_INVALID_ARGUMENT, {}};
        }
        const std::string test =
            "\"" + column.name + "\" = " + value_of(column, text_of_given(made.values[given]));
        if (!query("SELECT 1 FROM " + table_id(table) + " WHERE slot = -1 AND " + test).empty()) {
            return {QRY_LIB_INVALID_ARGUMENT, {}};
        }
        same_key += " AND " + test;
    }
    statement target = made;
    target.what = kind::update;
    if (!query("SELECT 1 FROM " + table_id(table) + " WHERE " + same_key).empty()) {
        return change(target, same_key);
    }
    const std::vector<row> free = query("SELECT slot FROM " + table_id(table) + " t WHERE slot >= 0 AND " +
                                        in_use(table, "t", " = ", "1") + " ORDER BY slot LIMIT 1");
    return free.empty() ? answer{QRY_LIB_NO_FREE_ENTRY, {}} : change(target, "slot = " + free[0][0]);
}

} // namespace oracle
