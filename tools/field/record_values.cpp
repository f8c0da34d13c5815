// Nothing secret is ever put and masked later than in the same breath: a frame is written as it stands.
#include "tools/field/record_values.h"

#include <cstring>

#include "exec/schema/secret_columns.h"
#include "tools/field/text_mask.h"
#include "util/element_type.h"

namespace field {

namespace {

bool masks_secrets() {
    return !recorder::get().keeps_secrets();
}

void mask(frame_writer &frame, std::uint8_t *place, std::uint32_t size) {
    if (place != nullptr && size != 0) {
        recorder::get().masks().mask(place, size);
        frame.mark(flag_masked);
    }
}

// The secret members of an element's value.
void mask_members(frame_writer &frame, std::uint32_t category, std::uint32_t element, std::uint8_t *value) {
    for (std::size_t i = 0; const QRY_LIB_ELEMENT_INFO *column = column_of(category, element, i); ++i) {
        if (value != nullptr && norvane::is_secret_column(column->name) &&
            value[column->member_offset] != 0) {
            mask(frame, value + column->member_offset, column->size);
        }
    }
}

std::uint32_t length_of(const char *text, std::size_t most) {
    return static_cast<std::uint32_t>(::strnlen(text, most));
}

} // namespace

bool is_masked_column(const char *name) {
    if (!masks_secrets()) {
        return false;
    }
    const std::string_view whole(name, ::strnlen(name, QRY_LIB_COLUMN_NAME_MAX + 1));
    const std::string_view last = whole.substr(whole.rfind('.') + 1);
    return last.empty() || norvane::is_secret_column(last);
}

void put_value(frame_writer &frame, std::uint32_t category, std::uint32_t element, const void *value) {
    const element_shape *const shape = find_shape(category, element);
    if (value == nullptr || shape == nullptr || !recorder::has_values()) {
        frame.put32(0);
        frame.mark(flag_no_value);
        return;
    }
    std::uint8_t *const place = frame.put_bytes(value, shape->size);
    if (shape->is_secret && masks_secrets()) {
        mask_members(frame, category, element, place);
    }
}

void put_list_value(frame_writer &frame, const open_list &list, const void *value) {
    std::uint8_t *const place = frame.put_bytes(value, list.size);
    if (list.is_secret && masks_secrets()) {
        mask_members(frame, list.category, list.element, place);
    }
}

void put_name(frame_writer &frame, const char *name) {
    if (name == nullptr) {
        frame.put32(no_text);
    } else {
        frame.put_bytes(name, length_of(name, frame_size_max));
    }
}

void put_sql(frame_writer &frame, const char *text) {
    if (text == nullptr) {
        frame.put32(no_text);
        return;
    }
    const std::uint32_t length = length_of(text, frame_size_max);
    std::uint8_t *const place = frame.put_bytes(text, length);
    if (place != nullptr && masks_secrets() &&
        mask_text(recorder::get().masks(), reinterpret_cast<char *>(place), length)) {
        frame.mark(flag_masked);
    }
}

void put_column_text(frame_writer &frame, const char *column_name, const char *text, std::uint32_t size_max) {
    if (text == nullptr) {
        frame.put32(no_text);
        return;
    }
    const std::uint32_t length = length_of(text, size_max);
    std::uint8_t *const place = frame.put_bytes(text, length);
    if (is_masked_column(column_name)) {
        mask(frame, place, length);
    }
}

void put_column(frame_writer &frame, const QRY_LIB_COLUMN &column) {
    frame.put8(column.type);
    if (column.type == QRY_LIB_COLUMN_TYPE_STR) {
        put_column_text(frame, column.col_name, column.value.str_value, sizeof column.value.str_value);
        return;
    }
    const std::uint32_t width = norvane::number_width(column.type);
    frame.put32(width == 0 ? 0 : norvane::load_number(&column.value, width));
}

void put_statement(frame_writer &frame, const qry_lib_db_stmt_ *stmt, bool is_whole) {
    frame.put_pointer(stmt);
    frame.put8(stmt == nullptr ? 0 : is_whole ? 2 : 1);
    if (stmt == nullptr) {
        return;
    }
    frame.put_bytes(stmt->db_name, length_of(stmt->db_name, sizeof stmt->db_name));
    if (!is_whole) {
        return;
    }
    frame.put32(stmt->exec_type);
    put_name(frame, stmt->table_name);
    put_sql(frame, stmt->where_phrase);
    put_sql(frame, stmt->orderby_phrase);
    const bool has_columns = stmt->record.cols != nullptr && stmt->record.col_num > 0;
    frame.put32(static_cast<std::uint32_t>(stmt->record.col_num));
    frame.put32(has_columns ? static_cast<std::uint32_t>(stmt->record.col_num) : 0);
    for (std::int32_t i = 0; has_columns && i < stmt->record.col_num; ++i) {
        const QRY_LIB_COLUMN &column = stmt->record.cols[i];
        frame.put_bytes(column.col_name, length_of(column.col_name, sizeof column.col_name));
        put_column(frame, column);
    }
}

void put_filter_key(frame_writer &frame, std::uint32_t category, const qry_lib_tb_list_filter_key_ &key) {
    frame.put32(key.category_id);
    frame.put32(key.element_id);
    frame.put8(key.elem_type);
    frame.put8(key.cmp_size);
    frame.put16(key.member_offset);
    frame.put32(key.operation);
    frame.put32(key.join);
    const std::uint32_t width = norvane::number_width(key.elem_type);
    if (width != 0) {
        frame.put32(norvane::load_number(key.value, width));
        return;
    }
    const std::uint32_t length = length_of(key.value, sizeof key.value);
    std::uint8_t *const place = frame.put_bytes(key.value, length);
    const element_shape *const shape = find_shape(category, key.element_id);
    if (masks_secrets() && (shape == nullptr || shape->is_secret)) {
        mask(frame, place, length);
    }
}

} // namespace field
