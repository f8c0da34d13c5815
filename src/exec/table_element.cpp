// Lookups in the schema, conversions of values, and the four catalogs.
#include "exec/qry_lib_table_element.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "util/bounded_text.h"
#include "util/number_text.h"
#include "util/tb_string.h"
#include "util/trace.h"

namespace norvane {

namespace {

const QRY_LIB_ELEMENT_DEF *rows_of(const database_schema &schema, const char *table_name,
                                   short &element_num) {
    const QRY_LIB_TABLE_DEF *table = find_table(schema, table_name);
    if (table == nullptr) {
        return nullptr;
    }
    element_num = table->element_num;
    return table->elements;
}

bool is_searched_by_key(const char *table_name) {
    return tb_strcmp(table_name, "EDIT_CNT_TBL") != 0;
}

// The value at `from`, however it lies in its element.
void convert_element(const QRY_LIB_ELEMENT_INFO &info, const char *from, QRY_LIB_COLUMN &column) {
    if (const std::uint32_t width = number_width(info.elem_type); width != 0) {
        // Zeros behind a number, so that its raw bytes read as text end there.
        std::memset(&column.value, 0, 2 * sizeof(std::uint32_t));
        copy_number(&column.value, from, width);
        column.type = static_cast<QRY_LIB_COLUMN_TYPE>(info.elem_type);
    } else if (is_string_element(info.elem_type)) {
        const std::size_t length =
            bounded_length(from, std::min(std::size_t{info.size}, std::size_t{QRY_LIB_STRING_MAX}));
        std::memcpy(column.value.str_value, from, length);
        column.value.str_value[length] = '\0';
        column.type = QRY_LIB_COLUMN_TYPE_STR;
    }
}

} // namespace

column_text::column_text(const QRY_LIB_COLUMN &column) {
    if (is_string_element(column.type)) {
        string_ = column.value.str_value;
        length_ = bounded_length(string_, QRY_LIB_STRING_MAX);
    } else if (const std::uint32_t width = number_width(column.type); width != 0) {
        const auto number = static_cast<std::int32_t>(load_number(&column.value, width));
        length_ = int32_to_text(number, number_);
    }
}

row_range<QRY_LIB_ELEMENT_DEF> qry_lib_table_element::columns_of(const char *table_name) {
    short element_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = get_table_info_(table_name, element_num);
    return {rows,
            rows == nullptr || element_num < 1 ? std::size_t{0} : static_cast<std::size_t>(element_num)};
}

const QRY_LIB_ELEMENT_INFO *qry_lib_table_element::find_info(const char *table_name, const char *col_name) {
    const QRY_LIB_ELEMENT_DEF *row = find_column(columns_of(table_name), col_name);
    return row == nullptr ? nullptr : &row->info;
}

int qry_lib_table_element::get_info(const char *table_name, const char *col_name,
                                    QRY_LIB_ELEMENT_INFO &info) {
    const QRY_LIB_ELEMENT_INFO *found = find_info(table_name, col_name);
    if (found == nullptr) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    info = *found;
    return 0;
}

int qry_lib_table_element::get_primary_key(const char *table_name, std::list<QRY_LIB_ELEMENT_INFO> &keys) {
    int code = QRY_LIB_INVALID_ARGUMENT;
    for (const QRY_LIB_ELEMENT_DEF &column : columns_of(table_name)) {
        if (column.is_primary == 1) {
            keys.push_back(column.info);
            code = 0;
        }
    }
    return code;
}

int qry_lib_table_element::get_first_field_name(const char *table_name, char *out) {
    const row_range<QRY_LIB_ELEMENT_DEF> columns = columns_of(table_name);
    if (columns.num == 0) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    copy_bounded<sizeof(columns.rows->info.name) - 1>(out,
                                                      static_cast<const char *>(columns.rows->info.name));
    return 0;
}

int qry_lib_table_element::get_tbdb_category_id(const char *table_name, unsigned int &category) {
    const row_range<QRY_LIB_ELEMENT_DEF> columns = columns_of(table_name);
    if (columns.num == 0) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    category = columns.rows->info.category_id;
    return 0;
}

void qry_lib_table_element::conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, const char *col_name,
                                                  const char *buffer, QRY_LIB_COLUMN &column) {
    if (info.is_member == 1) {
        conv_val_tbdb_to_db2e_internal(info, col_name, buffer, column);
        return;
    }
    copy_bounded(column.col_name, col_name);
    convert_element(info, buffer, column);
}

void qry_lib_table_element::conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, const char *buffer,
                                                  QRY_LIB_COLUMN &column) {
    if (info.is_member == 1) {
        conv_val_tbdb_to_db2e_internal(info, column.col_name, buffer, column);
    } else {
        convert_element(info, buffer, column);
    }
}

int qry_lib_table_element::conv_val_db2e_to_tbdb(const QRY_LIB_ELEMENT_INFO &info,
                                                 const QRY_LIB_COLUMN &column, char *buffer) {
    const std::uint32_t from = number_width(column.type);
    const std::uint32_t to = number_width(info.elem_type);
    if (from == 0 || to == 0) {
        return conv_text_to_tbdb(info, column_text(column).text(), buffer);
    }
    // Its text would be that of the signed number, and the same bits again.
    store_number(info.is_member == 1 ? buffer + info.member_offset : buffer, to,
                 load_number(&column.value, from));
    return 0;
}

int qry_lib_table_element::conv_text_to_tbdb(const QRY_LIB_ELEMENT_INFO &info, const char *text,
                                             char *buffer) {
    char *target = info.is_member == 1 ? buffer + info.member_offset : buffer;
    if (const std::uint32_t width = number_width(info.elem_type); width != 0) {
        store_number(target, width, static_cast<std::uint32_t>(text_to_int32(text)));
    } else if (is_string_element(info.elem_type)) {
        copy_bounded<QRY_LIB_STRING_MAX>(target, text);
    }
    return 0;
}

bool qry_lib_table_element_address::is_primary_filter_key(const char *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_address::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                                  QRY_LIB_COLUMN_TYPE, const char *, char *) {
    trace_enter(__func__, 402);
    trace_leave(__func__, 403);
    return 0;
}

void qry_lib_table_element_address::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                                   const char *, QRY_LIB_COLUMN &) {
    trace_enter(__func__, 420);
    trace_leave(__func__, 421);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_address::get_table_info_(const char *table_name,
                                                                          short &element_num) {
    return rows_of(adbk_schema, table_name, element_num);
}

bool qry_lib_table_element_dept::is_primary_filter_key(const char *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_dept::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                               QRY_LIB_COLUMN_TYPE, const char *, char *) {
    trace_enter(__func__, 202);
    trace_leave(__func__, 203);
    return 0;
}

void qry_lib_table_element_dept::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                                const char *, QRY_LIB_COLUMN &) {
    trace_enter(__func__, 220);
    trace_leave(__func__, 221);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_dept::get_table_info_(const char *table_name,
                                                                       short &element_num) {
    return rows_of(department_schema, table_name, element_num);
}

bool qry_lib_table_element_user::is_primary_filter_key(const char *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_user::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                               QRY_LIB_COLUMN_TYPE, const char *, char *) {
    return 0;
}

void qry_lib_table_element_user::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                                const char *, QRY_LIB_COLUMN &) {}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_user::get_table_info_(const char *table_name,
                                                                       short &element_num) {
    return rows_of(usrac_schema, table_name, element_num);
}

bool qry_lib_table_element_log::is_primary_filter_key(const char *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_log::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, const char *,
                                                              QRY_LIB_COLUMN_TYPE, const char *, char *) {
    return 0;
}

void qry_lib_table_element_log::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info,
                                                               const char *col_name, const char *buffer,
                                                               QRY_LIB_COLUMN &column) {
    copy_bounded(column.col_name, col_name);
    // Members overlap, so what lies behind a value belongs to another one: none of it may show.
    if (is_string_element(info.elem_type)) {
        std::memset(column.value.str_value, 0, std::min(std::size_t{info.size}, sizeof column.value));
    }
    convert_element(info, buffer + info.member_offset, column);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_log::get_table_info_(const char *table_name,
                                                                      short &element_num) {
    return rows_of(log_schema, table_name, element_num);
}

int qry_lib_table_element_factory::create_elemet(const char *db_name, qry_lib_table_element **out) {
    // A catalog has no state, so one of each serves every thread.
    static qry_lib_table_element_address address;
    static qry_lib_table_element_dept dept;
    static qry_lib_table_element_user user;
    static qry_lib_table_element_log log;
    const struct {
        const database_schema &schema;
        qry_lib_table_element *catalog;
    } catalogs[] = {
        {adbk_schema, &address}, {department_schema, &dept}, {usrac_schema, &user}, {log_schema, &log}};
    for (const auto &row : catalogs) {
        if (std::strcmp(db_name, row.schema.name) == 0) {
            *out = row.catalog;
            return 0;
        }
    }
    *out = nullptr;
    return QRY_LIB_INVALID_ARGUMENT;
}

void qry_lib_table_element_factory::delete_elemet(qry_lib_table_element **element) {
    *element = nullptr;
}

} // namespace norvane
