// Lookups in the schema, conversions of values, and the four catalogs.
#include "exec/qry_lib_table_element.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "util/bounded_text.h"
#include "util/number_text.h"
#include "util/tb_string.h"
#include "util/trace.h"

namespace norvane {

namespace {

// Binary search by name over sorted rows; null when there is none. Bounds are signed, so that the search
// stops at the lower end.
template <typename Row, typename Name>
const Row *find_row(const Row *rows, std::int32_t row_num, const char *wanted, Name name_of) {
    std::int32_t lower = 0;
    std::int32_t upper = row_num - 1;
    while (lower <= upper) {
        const std::int32_t middle = (lower + upper) / 2;
        const int order = tb_strcmp(wanted, name_of(rows[middle]));
        if (order == 0) {
            return &rows[middle];
        }
        if (order > 0) {
            lower = middle + 1;
        } else {
            upper = middle - 1;
        }
    }
    return nullptr;
}

const QRY_LIB_ELEMENT_DEF *find_table(const database_schema &schema, const char *table_name,
                                      short &element_num) {
    const QRY_LIB_TABLE_DEF *table =
        find_row(schema.tables, schema.table_num, table_name,
                 [](const QRY_LIB_TABLE_DEF &row) -> const char * { return row.table_name; });
    if (table == nullptr) {
        return nullptr;
    }
    element_num = table->element_num;
    return table->elements;
}

bool is_searched_by_key(const char *table_name) {
    return tb_strcmp(table_name, "EDIT_CNT_TBL") != 0;
}

// The number at `from`, in the machine's byte order; it may stand at any address.
template <typename Number>
Number load(const char *from) {
    Number number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

template <typename Number>
void store(char *to, Number number) {
    std::memcpy(to, &number, sizeof number);
}

// Zeros behind a number, so that its raw bytes read as text end there.
void store_number(QRY_LIB_COLUMN &column, std::uint32_t elem_type, const char *from, std::size_t width) {
    std::memcpy(&column.value, from, width);
    std::memset(column.value.str_value + width, 0, 2 * sizeof(std::uint32_t) - width);
    column.type = static_cast<QRY_LIB_COLUMN_TYPE>(elem_type);
}

// The value at `from`, however it lies in its element.
void convert_element(const QRY_LIB_ELEMENT_INFO &info, const char *from, QRY_LIB_COLUMN &column) {
    switch (info.elem_type) {
    case element_int:
    case element_uint:
    case element_ulong:
        store_number(column, info.elem_type, from, sizeof(std::uint32_t));
        break;
    case element_uchar:
        store_number(column, info.elem_type, from, sizeof(std::uint8_t));
        break;
    case element_ushort:
        store_number(column, info.elem_type, from, sizeof(std::uint16_t));
        break;
    case element_string:
    case element_name: {
        const std::size_t capacity =
            info.size < QRY_LIB_STRING_MAX ? info.size : std::size_t{QRY_LIB_STRING_MAX};
        const std::size_t length = bounded_length(from, capacity);
        std::memcpy(column.value.str_value, from, length);
        column.value.str_value[length] = '\0';
        column.type = QRY_LIB_COLUMN_TYPE_STR;
        break;
    }
    default:
        break; // no such type is stored in the schema
    }
}

} // namespace

column_text::column_text(const QRY_LIB_COLUMN &column) {
    std::int32_t number = 0;
    switch (static_cast<std::uint32_t>(column.type)) {
    case element_int:
    case element_uint:
    case element_ulong:
        number = column.value.int_value;
        break;
    case element_uchar:
        number = column.value.uchar_value;
        break;
    case element_ushort:
        number = column.value.ushort_value;
        break;
    case element_string:
    case element_name:
        string_ = column.value.str_value;
        length_ = bounded_length(string_, QRY_LIB_STRING_MAX);
        return;
    default:
        return; // a type that has no text
    }
    length_ = static_cast<std::size_t>(std::snprintf(number_, sizeof number_, "%d", number));
}

int qry_lib_table_element::get_info(char const *table_name, char const *col_name,
                                    QRY_LIB_ELEMENT_INFO &info) {
    short element_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = get_table_info_(table_name, element_num);
    if (rows == nullptr) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    const QRY_LIB_ELEMENT_DEF *row =
        find_row(rows, element_num, col_name,
                 [](const QRY_LIB_ELEMENT_DEF &def) -> const char * { return def.info.name; });
    if (row == nullptr) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    info = row->info;
    return 0;
}

int qry_lib_table_element::get_primary_key(char const *table_name, std::list<QRY_LIB_ELEMENT_INFO> &keys) {
    short element_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = get_table_info_(table_name, element_num);
    int code = QRY_LIB_INVALID_ARGUMENT;
    for (short i = 0; rows != nullptr && i < element_num; ++i) {
        if (rows[i].is_primary == 1) {
            keys.push_back(rows[i].info);
            code = 0;
        }
    }
    return code;
}

int qry_lib_table_element::get_first_field_name(char const *table_name, char *out) {
    short element_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = get_table_info_(table_name, element_num);
    if (rows == nullptr || element_num < 1) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    copy_bounded<sizeof(rows->info.name) - 1>(out, static_cast<const char *>(rows->info.name));
    return 0;
}

int qry_lib_table_element::get_tbdb_category_id(char const *table_name, unsigned int &category) {
    short element_num = 0;
    const QRY_LIB_ELEMENT_DEF *rows = get_table_info_(table_name, element_num);
    if (rows == nullptr || element_num < 1) {
        return QRY_LIB_INVALID_ARGUMENT;
    }
    category = rows->info.category_id;
    return 0;
}

void qry_lib_table_element::conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, char const *col_name,
                                                  char const *buffer, QRY_LIB_COLUMN &column) {
    if (info.is_member == 1) {
        conv_val_tbdb_to_db2e_internal(info, col_name, buffer, column);
        return;
    }
    copy_bounded(column.col_name, col_name);
    convert_element(info, buffer, column);
}

void qry_lib_table_element::conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, char const *buffer,
                                                  QRY_LIB_COLUMN &column) {
    if (info.is_member == 1) {
        conv_val_tbdb_to_db2e_internal(info, column.col_name, buffer, column);
    } else {
        convert_element(info, buffer, column);
    }
}

int qry_lib_table_element::conv_val_db2e_to_tbdb(const QRY_LIB_ELEMENT_INFO &info,
                                                 QRY_LIB_COLUMN const &column, char *buffer) {
    const column_text value(column);
    char *target = info.is_member == 1 ? buffer + info.member_offset : buffer;
    switch (info.elem_type) {
    case element_int:
    case element_uint:
    case element_ulong:
        store(target, text_to_int32(value.text()));
        break;
    case element_uchar:
        store(target, static_cast<std::uint8_t>(text_to_int32(value.text())));
        break;
    case element_ushort:
        store(target, static_cast<std::uint16_t>(text_to_int32(value.text())));
        break;
    case element_string:
    case element_name:
        std::memcpy(target, value.text(), value.length());
        target[value.length()] = '\0';
        break;
    default:
        break; // no such type is stored in the schema
    }
    return 0;
}

bool qry_lib_table_element_address::is_primary_filter_key(char const *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_address::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                                  QRY_LIB_COLUMN_TYPE, char const *, char *) {
    trace_enter(__func__, 402);
    trace_leave(__func__, 403);
    return 0;
}

void qry_lib_table_element_address::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                                   char const *, QRY_LIB_COLUMN &) {
    trace_enter(__func__, 420);
    trace_leave(__func__, 421);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_address::get_table_info_(char const *table_name,
                                                                          short &element_num) {
    return find_table(adbk_schema, table_name, element_num);
}

bool qry_lib_table_element_dept::is_primary_filter_key(char const *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_dept::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                               QRY_LIB_COLUMN_TYPE, char const *, char *) {
    trace_enter(__func__, 202);
    trace_leave(__func__, 203);
    return 0;
}

void qry_lib_table_element_dept::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                                char const *, QRY_LIB_COLUMN &) {
    trace_enter(__func__, 220);
    trace_leave(__func__, 221);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_dept::get_table_info_(char const *table_name,
                                                                       short &element_num) {
    return find_table(department_schema, table_name, element_num);
}

bool qry_lib_table_element_user::is_primary_filter_key(char const *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_user::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                               QRY_LIB_COLUMN_TYPE, char const *, char *) {
    return 0;
}

void qry_lib_table_element_user::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                                char const *, QRY_LIB_COLUMN &) {}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_user::get_table_info_(char const *table_name,
                                                                       short &element_num) {
    return find_table(usrac_schema, table_name, element_num);
}

bool qry_lib_table_element_log::is_primary_filter_key(char const *table_name) {
    return is_searched_by_key(table_name);
}

int qry_lib_table_element_log::conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO, char const *,
                                                              QRY_LIB_COLUMN_TYPE, char const *, char *) {
    return 0;
}

void qry_lib_table_element_log::conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info,
                                                               char const *col_name, char const *buffer,
                                                               QRY_LIB_COLUMN &column) {
    copy_bounded(column.col_name, col_name);
    // Members overlap, so what lies behind a value belongs to another one: none of it may show.
    if (is_string_element(info.elem_type)) {
        std::memset(column.value.str_value, 0, std::min(std::size_t{info.size}, sizeof column.value));
    }
    convert_element(info, buffer + info.member_offset, column);
}

const QRY_LIB_ELEMENT_DEF *qry_lib_table_element_log::get_table_info_(char const *table_name,
                                                                      short &element_num) {
    return find_table(log_schema, table_name, element_num);
}

int qry_lib_table_element_factory::create_elemet(char const *db_name, qry_lib_table_element **out) {
    // A catalog has no state, so one of each serves every thread.
    static qry_lib_table_element_address address;
    static qry_lib_table_element_dept dept;
    static qry_lib_table_element_user user;
    static qry_lib_table_element_log log;
    struct catalog_row {
        const char *db_name;
        qry_lib_table_element *catalog;
    };
    const catalog_row catalogs[] = {
        {"adbk_db", &address}, {"department_db", &dept}, {"usrac_db", &user}, {"log_db", &log}};
    for (const catalog_row &row : catalogs) {
        if (std::strcmp(db_name, row.db_name) == 0) {
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
