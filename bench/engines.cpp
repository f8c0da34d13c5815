// Filling and querying both engines.
#include "engines.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "exec/qry_lib_table_element.h"
#include "platform/host/qryhost.h"

namespace bench {

namespace {

constexpr char database_name[] = "department_db";
constexpr char table_name[] = "DEPT_TBL";

[[noreturn]] void fail(const std::string &what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

void require(bool holds, const std::string &what) {
    if (!holds) {
        fail(what);
    }
}

// Folds a value into what was read; both engines fold alike, so that their answers can be compared.
std::uint64_t fold(std::uint64_t seed, std::uint64_t value) {
    return (seed ^ value) * 1099511628211u;
}

// A text counts with its length and its ends: enough to tell wrong answers, and cheap beside reading it.
std::uint64_t fold(std::uint64_t seed, const char *text, std::size_t length) {
    const auto first = static_cast<unsigned char>(text[0]);
    const auto last = static_cast<unsigned char>(length == 0 ? 0 : text[length - 1]);
    return fold(seed, length << 16 | std::size_t{first} << 8 | last);
}

struct column {
    std::string name;
    bool is_text;
    bool is_key;
};

std::vector<column> columns_of(const char *table) {
    std::vector<column> columns;
    qry_lib_catalog_column_ row;
    for (std::uint16_t i = 0; qry_lib_catalog_column(database_name, table, i, &row) == 0; ++i) {
        columns.push_back({row.name, row.type == QRY_LIB_COLUMN_TYPE_STR, row.is_key == 1});
    }
    return columns;
}

std::string text_value(const column &column, int id) {
    static const char *const kinds[] = {"Sales", "Support", "Planning", "Accounting", "Design"};
    if (column.name == "DEPT_CODE") {
        return std::to_string(10000000 + id * 7919 % 89999999).substr(0, 8);
    }
    return std::string(kinds[id % 5]) + " " + std::to_string(id * 7919 % 100003);
}

std::uint32_t number_value(const column &column, int id) {
    if (column.is_key) {
        return static_cast<std::uint32_t>(id);
    }
    const auto spread = static_cast<std::uint32_t>(id) * 2654435761u;
    return column.name.back() == 'L' ? spread >> 31 : spread >> 16;
}

QRY_LIB_COLUMN column_value(const column &column, int id) {
    QRY_LIB_COLUMN value{};
    if (column.is_text) {
        std::snprintf(value.value.str_value, sizeof value.value.str_value, "%s",
                      text_value(column, id).c_str());
        value.type = QRY_LIB_COLUMN_TYPE_STR;
    } else {
        value.value.ulong_value = number_value(column, id);
        value.type = QRY_LIB_COLUMN_TYPE_ULONG;
    }
    return value;
}

// Writes the elements directly: an INSERT would search all records for each of tens of thousands.
void insert_record(norvane::qry_lib_table_element &catalog, const char *table,
                   const std::vector<column> &columns, int id) {
    for (const column &column : columns) {
        QRY_LIB_ELEMENT_INFO element;
        alignas(8) char buffer[sizeof(QRY_LIB_COLUMN_VALUE) + 1] = {};
        require(catalog.get_info(table, column.name.c_str(), element) == 0, "unknown column");
        catalog.conv_val_db2e_to_tbdb(element, column_value(column, id), buffer);
        require(qry_lib_tb_set_stc_table(0x2301, element.category_id, static_cast<std::uint32_t>(id - 1),
                                         element.element_id, buffer) == 0,
                "an element cannot be written");
    }
}

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

std::uint16_t capacity(const char *table) {
    std::uint16_t records = 0;
    require(qry_lib_catalog_capacity(database_name, table, &records) == 0, "no such table");
    return records;
}

constexpr const char *tables[] = {table_name, "EDIT_CNT_TBL"};

void fill_elements(const char *table) {
    const std::vector<column> columns = columns_of(table);
    norvane::qry_lib_table_element *catalog = nullptr;
    norvane::qry_lib_table_element_factory::create_elemet(database_name, &catalog);
    for (int id = 1; id <= capacity(table); ++id) {
        insert_record(*catalog, table, columns, id);
    }
    norvane::qry_lib_table_element_factory::delete_elemet(&catalog);
}

void fill_table(sqlite3 *database, const char *table) {
    const std::vector<column> columns = columns_of(table);
    create_table(database, table, columns);
    for (int id = 1; id <= capacity(table); ++id) {
        insert_record(database, table, columns, id);
    }
}

qry_lib_db_stmt_ *bound_statement() {
    static qry_lib_db_stmt_ stmt;
    static const std::uint32_t code = qry_lib_db_get_stmt(database_name, &stmt);
    require(code == 0, "get_stmt");
    return &stmt;
}

} // namespace

std::uint16_t department_num() {
    return capacity(table_name);
}

sqlite3 *open_database() {
    sqlite3 *database = nullptr;
    require(sqlite3_open_v2(":memory:", &database,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                            nullptr) == SQLITE_OK,
            "SQLite does not open");
    return database;
}

void fill_element_tables() {
    qryhost_reset();
    for (const char *table : tables) {
        fill_elements(table);
    }
}

void fill(sqlite3 *database) {
    fill_element_tables();
    execute(database, "BEGIN");
    for (const char *table : tables) {
        fill_table(database, table);
    }
    execute(database, "COMMIT");
}

std::uint64_t query(const char *sql) {
    qry_lib_db_rowset_ rowset{};
    const std::uint32_t code = qry_lib_db_exec_query(bound_statement(), sql, &rowset);
    require(code == 0, std::string(sql) + ": " + qry_lib_code_text(code));
    const int column_num = rowset.record_num > 0 ? rowset.records[0].col_num : 0;
    std::uint64_t read = 0;
    while (qry_lib_db_rowset_next(&rowset) == 1) {
        const QRY_LIB_COLUMN *columns = rowset.records[rowset.current].cols;
        for (std::uint16_t i = 0; i < column_num; ++i) {
            if (columns[i].type == QRY_LIB_COLUMN_TYPE_STR) {
                char text[200];
                qry_lib_db_rowset_get_str(text, sizeof text, &rowset, i, "");
                read = fold(read, text, std::strlen(text));
            } else {
                read = fold(read, qry_lib_db_rowset_get_ulong(&rowset, i, 0));
            }
        }
    }
    qry_lib_db_rowset_term(&rowset);
    return read;
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
