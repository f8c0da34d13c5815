// Read with every length checked against its capacity: a file may hold anything.
#include "tools/field/statement_contents.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "util/element_type.h"

namespace field {

namespace {

constexpr std::uint32_t columns_max = 4096;

template <std::size_t Size>
void copy_text(char (&to)[Size], const std::string &text) {
    const std::size_t length = std::min(text.size(), Size - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

void replace_text(char *&place, const std::optional<std::string> &text) {
    std::free(place);
    place = text ? ::strdup(text->c_str()) : nullptr;
}

void fill_column(const statement_column &from, QRY_LIB_COLUMN &to) {
    copy_text(to.col_name, from.name);
    to.type = static_cast<QRY_LIB_COLUMN_TYPE>(from.value.type);
    if (from.value.type == QRY_LIB_COLUMN_TYPE_STR) {
        copy_text(to.value.str_value, from.value.text);
    } else {
        norvane::store_number(&to.value, norvane::number_width(from.value.type), from.value.number);
    }
}

} // namespace

statement_contents take_statement(payload_reader &payload) {
    statement_contents contents;
    contents.pointer = payload.take64();
    const std::uint32_t kind = payload.take8();
    contents.is_null = kind == 0;
    contents.is_whole = kind == 2;
    if (contents.is_null) {
        return contents;
    }
    contents.db_name = payload.take_bytes();
    if (!contents.is_whole) {
        return contents;
    }
    contents.exec_type = payload.take32();
    contents.table_name = payload.take_text();
    contents.where_phrase = payload.take_text();
    contents.orderby_phrase = payload.take_text();
    contents.col_num = static_cast<std::int32_t>(payload.take32());
    const std::uint32_t num = std::min(payload.take32(), columns_max);
    for (std::uint32_t i = 0; i < num && !payload.is_short(); ++i) {
        statement_column column;
        column.name = payload.take_bytes();
        column.value.type = payload.take8();
        if (column.value.type == QRY_LIB_COLUMN_TYPE_STR) {
            column.value.text = payload.take_bytes();
        } else {
            column.value.number = payload.take32();
        }
        contents.columns.push_back(std::move(column));
    }
    return contents;
}

void fill(const statement_contents &contents, qry_lib_db_stmt_ &record) {
    copy_text(record.db_name, contents.db_name);
    if (!contents.is_whole) {
        return;
    }
    record.exec_type = static_cast<QRY_LIB_DB_QUERY_TYPE>(contents.exec_type);
    replace_text(record.table_name, contents.table_name);
    replace_text(record.where_phrase, contents.where_phrase);
    replace_text(record.orderby_phrase, contents.orderby_phrase);
    std::free(record.record.cols);
    record.record.cols = nullptr;
    record.record.col_num =
        contents.columns.empty() ? contents.col_num : static_cast<std::int32_t>(contents.columns.size());
    if (!contents.columns.empty()) {
        record.record.cols =
            static_cast<QRY_LIB_COLUMN *>(std::calloc(contents.columns.size(), sizeof(QRY_LIB_COLUMN)));
        for (std::size_t i = 0; i < contents.columns.size(); ++i) {
            fill_column(contents.columns[i], record.record.cols[i]);
        }
    }
}

} // namespace field
