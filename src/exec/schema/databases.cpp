// The four databases, and what is looked up in the schema by name or id.
#include "exec/schema/schema.h"

#include <cstdint>
#include <cstring>

#include "util/tb_string.h"

namespace norvane {

const database_schema *const databases[database_num] = {&adbk_schema, &department_schema, &usrac_schema,
                                                        &log_schema};

namespace {

const char *name_of(const QRY_LIB_TABLE_DEF &table) {
    return table.table_name;
}

const char *name_of(const QRY_LIB_ELEMENT_DEF &column) {
    return column.info.name;
}

// Binary search by name over sorted rows; null when there is none. Bounds are signed, so that the search
// stops at the lower end.
template <typename Row>
const Row *find_row(const row_range<Row> &range, const char *name) {
    const Row *const rows = range.begin();
    std::int32_t lower = 0;
    std::int32_t upper = static_cast<std::int32_t>(range.num) - 1;
    while (lower <= upper) {
        const std::int32_t middle = (lower + upper) / 2;
        const int order = tb_strcmp(name, name_of(rows[middle]));
        if (order == 0) {
            return rows + middle;
        }
        if (order > 0) {
            lower = middle + 1;
        } else {
            upper = middle - 1;
        }
    }
    return nullptr;
}

} // namespace

const database_schema *find_database(const char *name) {
    for (const database_schema *database : databases) {
        if (std::strcmp(database->name, name) == 0) {
            return database;
        }
    }
    return nullptr;
}

const QRY_LIB_TABLE_DEF *find_table(const database_schema &database, const char *name) {
    return find_row(tables_of(database), name);
}

const QRY_LIB_TABLE_DEF *find_table(std::uint32_t category) {
    for (const database_schema *database : databases) {
        for (const QRY_LIB_TABLE_DEF &table : tables_of(*database)) {
            if (category_of(table) == category) {
                return &table;
            }
        }
    }
    return nullptr;
}

const QRY_LIB_ELEMENT_DEF *find_column(row_range<QRY_LIB_ELEMENT_DEF> columns, const char *name) {
    return find_row(columns, name);
}

const QRY_LIB_TB_MAX_ROW *find_capacity(std::uint32_t category) {
    for (const QRY_LIB_TB_MAX_ROW &row : QRY_LIB_TB_MAX_TABLE) {
        if (row.category == category) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace norvane
