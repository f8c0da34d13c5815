// Filling and querying SQLite.
#include "engines.h"

namespace bench {

namespace {

void execute(sqlite3 *database, const std::string &sql) {
    char *error = nullptr;
    require(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &error) == SQLITE_OK,
            sql + ": " + (error == nullptr ? "?" : error));
}

void create_table(sqlite3 *database, const char *table, const std::vector<column> &columns) {
    std::string sql = std::string("CREATE TABLE ") + table + " (";
    for (const column &column : columns) {
        sql += (&column == columns.data() ? "" : ", ") + column.name +
               (column.is_text ? " TEXT" : " INTEGER") + (column.is_key ? " PRIMARY KEY" : "");
    }
    execute(database, sql + ")");
}

void insert_record(sqlite3 *database, const char *table, const std::vector<column> &columns, int id) {
    std::string values;
    for (const column &column : columns) {
        values += values.empty() ? "" : ", ";
        values +=
            column.is_text ? "'" + text_value(column, id) + "'" : std::to_string(number_value(column, id));
    }
    execute(database, std::string("INSERT INTO ") + table + " VALUES (" + values + ")");
}

void fill_table(sqlite3 *database, const char *table) {
    const std::vector<column> columns = columns_of(table);
    create_table(database, table, columns);
    for (int id = 1; id <= capacity(table); ++id) {
        insert_record(database, table, columns, id);
    }
}

} // namespace

sqlite3 *open_database() {
    sqlite3 *database = nullptr;
    require(sqlite3_open_v2(":memory:", &database,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                            nullptr) == SQLITE_OK,
            "SQLite does not open");
    return database;
}

void fill(sqlite3 *database) {
    fill_element_tables();
    execute(database, "BEGIN");
    for (const char *table : table_names) {
        fill_table(database, table);
    }
    execute(database, "COMMIT");
}

std::uint64_t query(sqlite3_stmt *statement) {
    const int column_num = sqlite3_column_count(statement);
    std::uint64_t read = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int i = 0; i < column_num; ++i) {
            if (sqlite3_column_type(statement, i) == SQLITE_TEXT) {
                read = fold(read, reinterpret_cast<const char *>(sqlite3_column_text(statement, i)),
                            static_cast<std::size_t>(sqlite3_column_bytes(statement, i)));
            } else {
                read = fold(read, static_cast<std::uint64_t>(sqlite3_column_int64(statement, i)));
            }
        }
    }
    require(sqlite3_reset(statement) == SQLITE_OK, "a kept SQLite statement fails");
    return read;
}

sqlite3_stmt *prepare(sqlite3 *database, const char *sql) {
    sqlite3_stmt *statement = nullptr;
    require(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK,
            std::string(sql) + ": " + sqlite3_errmsg(database));
    return statement;
}

std::uint64_t query(sqlite3 *database, const char *sql) {
    sqlite3_stmt *statement = prepare(database, sql);
    const std::uint64_t read = query(statement);
    sqlite3_finalize(statement);
    return read;
}

} // namespace bench
