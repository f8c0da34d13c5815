// Tables and rows through libsqlite3, in memory: the file is written like any other.
#include "tools/qrysh/transfer/sqlite_export.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>

#include "tools/files/whole_file.h"

namespace qrysh {

namespace {

struct database_closer {
    void operator()(sqlite3 *database) const { sqlite3_close(database); }
};
using database_pointer = std::unique_ptr<sqlite3, database_closer>;

struct statement_closer {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using statement_pointer = std::unique_ptr<sqlite3_stmt, statement_closer>;

void require(bool done, sqlite3 *database) {
    if (!done) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

void run(sqlite3 *database, const std::string &sql) {
    require(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, database);
}

std::string quoted(const std::string &name) {
    std::string text = "\"";
    for (const char c : name) {
        text += c == '"' ? "\"\"" : std::string(1, c);
    }
    return text + '"';
}

bool keys_are_distinct(const sqlite_table &table) {
    std::vector<std::size_t> places;
    for (const std::string &key : table.keys) {
        const auto title = std::find(table.rows.titles.begin(), table.rows.titles.end(), key);
        places.push_back(static_cast<std::size_t>(title - table.rows.titles.begin()));
    }
    std::set<std::vector<cell>> seen;
    return std::all_of(table.rows.rows.begin(), table.rows.rows.end(), [&](const std::vector<cell> &row) {
        std::vector<cell> key;
        key.reserve(places.size());
        for (const std::size_t place : places) {
            key.push_back(row[place]);
        }
        return seen.insert(std::move(key)).second;
    });
}

std::string create_statement(const sqlite_table &table) {
    std::string sql = "CREATE TABLE " + quoted(table.rows.table) + " (";
    for (std::size_t i = 0; i < table.rows.titles.size(); ++i) {
        sql += (i == 0 ? "" : ", ") + quoted(table.rows.titles[i]);
        sql += table.text_column[i] ? " TEXT NOT NULL" : " INTEGER NOT NULL";
    }
    if (!table.keys.empty() && keys_are_distinct(table)) {
        for (std::size_t i = 0; i < table.keys.size(); ++i) {
            sql += (i == 0 ? ", PRIMARY KEY (" : ", ") + quoted(table.keys[i]);
        }
        sql += ")";
    }
    return sql + ")";
}

std::string insert_statement(const sqlite_table &table) {
    std::string marks;
    for (std::size_t i = 0; i < table.rows.titles.size(); ++i) {
        marks += i == 0 ? "?" : ", ?";
    }
    return "INSERT INTO " + quoted(table.rows.table) + " VALUES (" + marks + ")";
}

void bind(sqlite3 *database, sqlite3_stmt *statement, int index, const cell &value) {
    if (const auto *number = std::get_if<std::int64_t>(&value)) {
        require(sqlite3_bind_int64(statement, index, *number) == SQLITE_OK, database);
        return;
    }
    const auto &text = std::get<std::string>(value);
    require(sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC) ==
                SQLITE_OK,
            database);
}

void write_table(sqlite3 *database, const sqlite_table &table) {
    run(database, create_statement(table));
    sqlite3_stmt *prepared = nullptr;
    require(sqlite3_prepare_v2(database, insert_statement(table).c_str(), -1, &prepared, nullptr) ==
                SQLITE_OK,
            database);
    const statement_pointer insert(prepared);
    for (const std::vector<cell> &row : table.rows.rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            bind(database, insert.get(), static_cast<int>(i) + 1, row[i]);
        }
        require(sqlite3_step(insert.get()) == SQLITE_DONE, database);
        require(sqlite3_reset(insert.get()) == SQLITE_OK, database);
    }
}

struct memory_freer {
    void operator()(unsigned char *bytes) const { sqlite3_free(bytes); }
};

std::string bytes_of(sqlite3 *database) {
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, memory_freer> bytes(sqlite3_serialize(database, "main", &size, 0));
    require(bytes != nullptr, database);
    return {reinterpret_cast<const char *>(bytes.get()), static_cast<std::size_t>(size)};
}

} // namespace

std::string sqlite_file(const std::vector<sqlite_table> &tables) {
    sqlite3 *opened = nullptr;
    const bool is_open = sqlite3_open(":memory:", &opened) == SQLITE_OK;
    const database_pointer database(opened);
    require(is_open, opened);
    run(opened, "PRAGMA application_id = " + std::to_string(qryfiles::database_mark) + "; BEGIN");
    for (const sqlite_table &table : tables) {
        write_table(opened, table);
    }
    run(opened, "COMMIT");
    return bytes_of(opened);
}

} // namespace qrysh
