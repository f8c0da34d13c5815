// Filling and querying this library.
#include "library.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <qrylib/qrylib.h>

#include "platform/host/qryhost.h"

namespace bench {

namespace {

constexpr char database_name[] = "department_db";

// A table's records as a fixture has them. No value needs an escape.
std::string records_text(const char *table) {
    const std::vector<column> columns = columns_of(table);
    std::string text;
    for (int id = 1; id <= capacity(table); ++id) {
        text += id == 1 ? "{" : ",{";
        for (const column &column : columns) {
            text += (&column == columns.data() ? "\"" : ",\"") + column.name + "\":";
            text += column.is_text ? '"' + text_value(column, id) + '"'
                                   : std::to_string(number_value(column, id));
        }
        text += '}';
    }
    return text;
}

qry_lib_db_stmt_ *bound_statement() {
    static qry_lib_db_stmt_ stmt;
    static const std::uint32_t code = qry_lib_db_get_stmt(database_name, &stmt);
    require(code == 0, "get_stmt");
    return &stmt;
}

} // namespace

void require(bool holds, const std::string &what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what.c_str());
        std::exit(1);
    }
}

std::vector<column> columns_of(const char *table) {
    std::vector<column> columns;
    qry_lib_catalog_column_ row;
    for (std::uint16_t i = 0; qry_lib_catalog_column(database_name, table, i, &row) == 0; ++i) {
        columns.push_back({row.name, row.type == QRY_LIB_COLUMN_TYPE_STR, row.is_key == 1});
    }
    return columns;
}

std::uint16_t capacity(const char *table) {
    std::uint16_t records = 0;
    require(qry_lib_catalog_capacity(database_name, table, &records) == 0, "no such table");
    return records;
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

std::uint64_t fold(std::uint64_t seed, std::uint64_t value) {
    return (seed ^ value) * 1099511628211u;
}

std::uint64_t fold(std::uint64_t seed, const char *text, std::size_t length) {
    const auto first = static_cast<unsigned char>(text[0]);
    const auto last = static_cast<unsigned char>(length == 0 ? 0 : text[length - 1]);
    return fold(seed, length << 16 | std::size_t{first} << 8 | last);
}

std::uint16_t department_num() {
    return capacity(table_names[0]);
}

void fill_element_tables() {
    std::string text = R"({"format":1,"databases":{")" + std::string(database_name) + "\":{";
    for (const char *table : table_names) {
        text += (table == table_names[0] ? "\"" : ",\"") + std::string(table) + R"(":{"records":[)" +
                records_text(table) + "]}";
    }
    require(qryhost_load_text((text + "}}}").c_str()) == 0, qryhost_error());
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

} // namespace bench
