// Rowsets for callers: walking the rows and reading columns by type.
#include <algorithm>
#include <cstring>

#include "api/qry_lib_db_rowset_lib.h"
#include "api/qry_lib_db_wrapper.h"
#include "util/bounded_text.h"
#include "util/element_type.h"
#include "util/trace.h"

using norvane::qry_lib_db_rowset_lib;
using norvane::trace_return;

namespace {

// A stored number: its 32 bits, or its bits with zeros before them.
struct number {
    std::uint32_t bits;
    std::uint32_t width; // bytes stored; 0: the column is no number
    bool is_signed;
};

number stored_number(const QRY_LIB_COLUMN &column) {
    const std::uint32_t width = norvane::number_width(column.type);
    return {width == 0 ? 0 : norvane::load_number(&column.value, width), width,
            column.type == QRY_LIB_COLUMN_TYPE_INT};
}

// The column under the cursor; null, traced in the read's name, when there is none.
const QRY_LIB_COLUMN *column_to_read(const char *function, qry_lib_db_rowset_ *rowset,
                                     std::uint16_t col_index) {
    const QRY_LIB_COLUMN *column =
        rowset == nullptr ? nullptr : qry_lib_db_rowset_lib().col_at(*rowset, col_index);
    if (column == nullptr) {
        trace_return(function, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    }
    return column;
}

// True when the number is above what a signed 32-bit read can return, or below zero for an unsigned one.
bool has_top_bit(const number &value) {
    return (value.bits & 0x80000000u) != 0;
}

std::uint32_t read_unsigned(const char *function, qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                            std::uint32_t default_value, bool takes_ulong) {
    const QRY_LIB_COLUMN *column = column_to_read(function, rowset, col_index);
    if (column == nullptr) {
        return default_value;
    }
    const number value = stored_number(*column);
    const bool negative = value.is_signed && has_top_bit(value);
    if (value.width == 0 || negative || (!takes_ulong && column->type == QRY_LIB_COLUMN_TYPE_ULONG)) {
        trace_return(function, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return default_value;
    }
    return value.bits;
}

// Writes the default where it is no longer than the buffer, cut by one where it is as long. False: it is.
bool write_default(char *buffer, std::uint32_t buffer_len, const char *default_str) {
    const std::size_t length = std::strlen(default_str);
    if (length > buffer_len) {
        return false;
    }
    const std::size_t kept = std::min<std::size_t>(length, buffer_len - 1);
    std::memcpy(buffer, default_str, kept);
    buffer[kept] = '\0';
    return true;
}

// The buffer's last byte is a terminator whatever the length: callers may hand on the whole buffer.
void write_text(char *buffer, std::uint32_t buffer_len, const char *text, std::size_t text_capacity) {
    const std::size_t length =
        norvane::bounded_length(text, std::min<std::size_t>(text_capacity, buffer_len - 1));
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    buffer[buffer_len - 1] = '\0';
}

// A number's raw bytes as text, most significant first on every machine, as the device stores them.
void write_raw_number(char *buffer, std::uint32_t buffer_len, const number &value) {
    char raw[sizeof value.bits] = {};
    for (std::uint32_t i = 0; i < value.width; ++i) {
        raw[i] = static_cast<char>(value.bits >> (8 * (value.width - 1 - i)));
    }
    write_text(buffer, buffer_len, raw, value.width);
}

} // namespace

extern "C" {

void qry_lib_db_wrapper_rowset_init(qry_lib_db_rowset_ *rowset) {
    if (rowset == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    qry_lib_db_rowset_lib().delete_rowset(*rowset);
}

void qry_lib_db_wrapper_rowset_term(qry_lib_db_rowset_ *rowset) {
    if (rowset == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    qry_lib_db_rowset_lib().delete_rowset(*rowset);
}

std::uint32_t qry_lib_db_wrapper_rowset_next(qry_lib_db_rowset_ *rowset) {
    if (rowset == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return 0;
    }
    return qry_lib_db_rowset_lib().next_record_index(*rowset);
}

void qry_lib_db_wrapper_rowset_init_value(qry_lib_db_rowset_ *rowset) {
    if (rowset == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    qry_lib_db_rowset_lib().first_record_index(*rowset);
}

std::uint16_t qry_lib_db_wrapper_rowset_get_row_num(qry_lib_db_rowset_ *rowset) {
    if (rowset == nullptr) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return 0;
    }
    return qry_lib_db_rowset_lib().get_record_num(*rowset);
}

std::uint32_t qry_lib_db_wrapper_rowset_get_ulong(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                                  std::uint32_t default_value) {
    return read_unsigned(__func__, rowset, col_index, default_value, true);
}

std::uint32_t qry_lib_db_wrapper_rowset_get_uint(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                                 std::uint32_t default_value) {
    return read_unsigned(__func__, rowset, col_index, default_value, false);
}

std::int32_t qry_lib_db_wrapper_rowset_get_int(qry_lib_db_rowset_ *rowset, std::uint16_t col_index,
                                               std::int32_t default_value) {
    const QRY_LIB_COLUMN *column = column_to_read(__func__, rowset, col_index);
    if (column == nullptr) {
        return default_value;
    }
    const number value = stored_number(*column);
    if (value.width == 0 || (!value.is_signed && has_top_bit(value))) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return default_value;
    }
    return static_cast<std::int32_t>(value.bits);
}

void qry_lib_db_wrapper_rowset_get_str(char *buffer, std::uint32_t buffer_len, qry_lib_db_rowset_ *rowset,
                                       std::uint16_t col_index, const char *default_str) {
    if (buffer == nullptr || buffer_len == 0) {
        trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        return;
    }
    const char *fallback = default_str == nullptr ? "" : default_str;
    const QRY_LIB_COLUMN *column = column_to_read(__func__, rowset, col_index);
    if (column == nullptr) {
        write_default(buffer, buffer_len, fallback);
        return;
    }
    if (column->type == QRY_LIB_COLUMN_TYPE_STR) {
        write_text(buffer, buffer_len, column->value.str_value, QRY_LIB_STRING_MAX);
        return;
    }
    trace_return(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
    if (!write_default(buffer, buffer_len, fallback)) {
        return;
    }
    // The raw bytes go over the default even so: an int 5 reads as an empty string.
    const number value = stored_number(*column);
    if (value.width == 0) {
        write_text(buffer, buffer_len, column->value.str_value, QRY_LIB_STRING_MAX);
    } else {
        write_raw_number(buffer, buffer_len, value);
    }
}

} // extern "C"
