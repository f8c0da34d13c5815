// The built-in schema shown to people and tools.
#include <qrylib/catalog.h>

#include <qrylib/element_table.h>
#include <qrylib/types.h>

#include "exec/schema/schema.h"
#include "util/bounded_text.h"
#include "util/trace.h"

using norvane::database_schema;

namespace {

const database_schema *named_database(const char *db_name) {
    return db_name == nullptr ? nullptr : norvane::find_database(db_name);
}

const QRY_LIB_TABLE_DEF *named_table(const char *db_name, const char *table_name) {
    const database_schema *database = named_database(db_name);
    return database == nullptr || table_name == nullptr ? nullptr
                                                        : norvane::find_table(*database, table_name);
}

std::uint8_t column_type(std::uint32_t elem_type) {
    return static_cast<std::uint8_t>(norvane::is_string_element(elem_type)
                                         ? static_cast<std::uint32_t>(QRY_LIB_COLUMN_TYPE_STR)
                                         : elem_type);
}

} // namespace

extern "C" {

std::uint16_t qry_lib_catalog_db_num(void) {
    return norvane::database_num;
}

const char *qry_lib_catalog_db(std::uint16_t index) {
    return index < norvane::database_num ? norvane::databases[index]->name : nullptr;
}

std::uint16_t qry_lib_catalog_table_num(const char *db_name) {
    const database_schema *database = named_database(db_name);
    return database == nullptr ? std::uint16_t{0} : database->table_num;
}

const char *qry_lib_catalog_table(const char *db_name, std::uint16_t index) {
    const database_schema *database = named_database(db_name);
    return database != nullptr && index < database->table_num ? database->tables[index].table_name : nullptr;
}

std::uint16_t qry_lib_catalog_column_num(const char *db_name, const char *table_name) {
    const QRY_LIB_TABLE_DEF *table = named_table(db_name, table_name);
    return table == nullptr ? std::uint16_t{0} : static_cast<std::uint16_t>(table->element_num);
}

std::uint32_t qry_lib_catalog_column(const char *db_name, const char *table_name, std::uint16_t index,
                                     qry_lib_catalog_column_ *out) {
    const QRY_LIB_TABLE_DEF *table = named_table(db_name, table_name);
    if (table == nullptr || out == nullptr) {
        return norvane::trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    if (index >= table->element_num) {
        return norvane::trace_return(__func__, __LINE__, QRY_LIB_NO_SUCH_ITEM);
    }
    const QRY_LIB_ELEMENT_DEF &row = table->elements[index];
    norvane::copy_bounded(out->name, row.info.name);
    out->type = column_type(row.info.elem_type);
    out->size = row.info.size;
    out->is_key = row.is_primary;
    return 0;
}

std::uint32_t qry_lib_catalog_capacity(const char *db_name, const char *table_name,
                                       std::uint16_t *max_records) {
    const QRY_LIB_TABLE_DEF *table = named_table(db_name, table_name);
    if (table == nullptr || max_records == nullptr) {
        return norvane::trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    return qry_lib_tb_get_max_stc_table_number(norvane::category_of(*table), max_records);
}

} // extern "C"
