// Statement records: filling and freeing a qry_lib_db_stmt_.
#include <cstdio>
#include <cstring>

#include "api/qry_lib_db_wrapper.h"
#include "util/bounded_text.h"
#include "util/pool_block.h"
#include "util/trace.h"

using norvane::copy_bounded;
using norvane::fits;
using norvane::pool_block;
using norvane::trace_return;

namespace {

constexpr std::size_t equality_text_size = 256;

// The column at `index`, with the array created on first use; null, traced, when the call is to be ignored.
QRY_LIB_COLUMN *column_for_write(const char *function, qry_lib_db_stmt_ *stmt, std::int32_t index) {
    if (stmt == nullptr || index < 0 || index >= stmt->record.col_num) {
        trace_return(function, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return nullptr;
    }
    if (qry_lib_db_wrapper_stmt_set_alloc(stmt) != 0) {
        trace_return(function, __LINE__, QRY_LIB_NO_MEMORY);
        return nullptr;
    }
    return &stmt->record.cols[index];
}

void free_text(char *&text) {
    pool_block owner(text);
    text = nullptr;
}

// Copies `text` into a fresh block behind `field`, whose earlier block is the caller's business. The code of
// the memory partition, 0 for success; on failure the field stays.
std::uint32_t store_text(char *&field, const char *text) {
    pool_block block;
    const std::uint32_t code = block.take_text(text);
    if (code == 0) {
        field = static_cast<char *>(block.release());
    }
    return code;
}

bool is_column_name(const char *name) {
    return name != nullptr && fits(name, QRY_LIB_COLUMN_NAME_MAX);
}

// Makes `text` the statement's condition. `length` is what snprintf answered for it.
void replace_where(const char *function, qry_lib_db_stmt_ *stmt, const char *text, int length) {
    if (length < 0 || static_cast<std::size_t>(length) >= equality_text_size) {
        trace_return(function, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    // An earlier condition's block takes the new text, or is given back where its own is shorter.
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    if (stmt->where_phrase != nullptr && std::strlen(stmt->where_phrase) + 1 >= size) {
        std::memcpy(stmt->where_phrase, text, size);
        return;
    }
    char *earlier = stmt->where_phrase;
    if (store_text(stmt->where_phrase, text) != 0) {
        trace_return(function, __LINE__, QRY_LIB_NO_MEMORY);
        return;
    }
    free_text(earlier);
}

} // namespace

extern "C" {

void qry_lib_db_wrapper_stmt_init(qry_lib_db_stmt_ *stmt) {
    if (stmt == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    std::memset(stmt, 0, sizeof *stmt);
}

std::uint32_t qry_lib_db_wrapper_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt) {
    // A refused record is initialised too: setters and the end of a statement take its pointers for blocks.
    const bool is_named = db_name != nullptr && fits(db_name, QRY_LIB_DB_NAME_MAX);
    if (stmt != nullptr) {
        qry_lib_db_wrapper_stmt_init(stmt);
    }
    if (stmt == nullptr || !is_named) {
        return trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    copy_bounded(stmt->db_name, db_name);
    return 0;
}

void qry_lib_db_wrapper_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name) {
    if (stmt == nullptr || name == nullptr || !fits(name, QRY_LIB_TABLE_NAME_MAX)) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    if (stmt->table_name == nullptr && store_text(stmt->table_name, name) != 0) {
        trace_return(__func__, __LINE__, QRY_LIB_NO_MEMORY);
    }
}

void qry_lib_db_wrapper_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type) {
    if (stmt == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    stmt->exec_type = type;
}

void qry_lib_db_wrapper_stmt_set_col_num(qry_lib_db_stmt_ *stmt, std::int32_t col_num) {
    if (stmt == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    stmt->record.col_num = col_num;
    pool_block earlier(stmt->record.cols);
    stmt->record.cols = nullptr;
}

std::uint32_t qry_lib_db_wrapper_stmt_set_alloc(qry_lib_db_stmt_ *stmt) {
    if (stmt->record.cols != nullptr) {
        return 0;
    }
    pool_block columns;
    if (columns.take_zeroed(static_cast<std::uint64_t>(stmt->record.col_num), sizeof(QRY_LIB_COLUMN)) != 0) {
        return trace_return(__func__, __LINE__, QRY_LIB_NO_MEMORY);
    }
    stmt->record.cols = static_cast<QRY_LIB_COLUMN *>(columns.release());
    return 0;
}

void qry_lib_db_wrapper_stmt_set_col_name(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *name) {
    if (!is_column_name(name)) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        copy_bounded(column->col_name, name);
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_int(qry_lib_db_stmt_ *stmt, std::int32_t index, std::int32_t value) {
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        column->value.int_value = value;
        column->type = QRY_LIB_COLUMN_TYPE_INT;
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_uchar(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                               std::uint8_t value) {
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        column->value.uchar_value = value;
        column->type = QRY_LIB_COLUMN_TYPE_UCHAR;
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_ushort(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                                std::uint16_t value) {
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        column->value.ushort_value = value;
        column->type = QRY_LIB_COLUMN_TYPE_USHORT;
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_uint(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                              std::uint32_t value) {
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        column->value.uint_value = value;
        column->type = QRY_LIB_COLUMN_TYPE_UINT;
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_ulong(qry_lib_db_stmt_ *stmt, std::int32_t index,
                                               std::uint32_t value) {
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        column->value.ulong_value = value;
        column->type = QRY_LIB_COLUMN_TYPE_ULONG;
    }
}

void qry_lib_db_wrapper_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *value) {
    if (value == nullptr || !fits(value, QRY_LIB_STRING_MAX)) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    if (QRY_LIB_COLUMN *column = column_for_write(__func__, stmt, index)) {
        copy_bounded(column->value.str_value, value);
        column->type = QRY_LIB_COLUMN_TYPE_STR;
    }
}

void qry_lib_db_wrapper_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    if (stmt == nullptr || text == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    // The block of an earlier phrase is lost, as callers are told: only set_where_equal calls use it again.
    if (store_text(stmt->where_phrase, text) != 0) {
        trace_return(__func__, __LINE__, QRY_LIB_NO_MEMORY);
    }
}

void qry_lib_db_wrapper_stmt_set_where_equal_int(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                 std::int32_t value) {
    if (stmt == nullptr || !is_column_name(col_name)) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    char text[equality_text_size] = {};
    replace_where(__func__, stmt, text, std::snprintf(text, sizeof text, "%s = %d", col_name, value));
}

void qry_lib_db_wrapper_stmt_set_where_equal_ulong(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                   std::uint32_t value) {
    if (stmt == nullptr || !is_column_name(col_name)) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    // The device prints the value through a signed 32-bit conversion; so does every other machine.
    char text[equality_text_size] = {};
    replace_where(__func__, stmt, text,
                  std::snprintf(text, sizeof text, "%s = %d", col_name, static_cast<std::int32_t>(value)));
}

void qry_lib_db_wrapper_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name,
                                                 const char *value) {
    if (stmt == nullptr || !is_column_name(col_name) || value == nullptr || value[0] == '\0') {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    char text[equality_text_size] = {};
    replace_where(__func__, stmt, text, std::snprintf(text, sizeof text, "%s = '%s'", col_name, value));
}

void qry_lib_db_wrapper_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    if (stmt == nullptr || text == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    const std::uint32_t code = store_text(stmt->orderby_phrase, text);
    if (code != 0) {
        trace_return(__func__, __LINE__, code);
    }
}

void qry_lib_db_wrapper_stmt_set_max_rows(qry_lib_db_stmt_ *, std::uint32_t) {}

void qry_lib_db_wrapper_stmt_term(qry_lib_db_stmt_ *stmt) {
    if (stmt == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    qry_lib_db_wrapper_stmt_set_col_num(stmt, 0);
    free_text(stmt->table_name);
    free_text(stmt->where_phrase);
    free_text(stmt->orderby_phrase);
    qry_lib_db_wrapper_stmt_init(stmt);
}

} // extern "C"
