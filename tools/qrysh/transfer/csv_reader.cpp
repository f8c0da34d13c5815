// One walk over the text.
#include "tools/qrysh/transfer/csv_reader.h"

namespace qrysh {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// Records are counted in 16 bits, and the first row names the columns; a table has far fewer columns, and a
// text far fewer bytes.
constexpr std::size_t rows_max = 65536;
constexpr std::size_t fields_max = 1024;
constexpr std::size_t field_bytes_max = 65536;

} // namespace

csv_reader::csv_reader(std::string_view text) : text_(text) {
    if (text_.substr(0, byte_order_mark.size()) == byte_order_mark) {
        text_.remove_prefix(byte_order_mark.size());
    }
}

std::optional<std::vector<csv_field>> csv_reader::next() {
    if (at_end()) {
        return std::nullopt;
    }
    if (row_num_++ == rows_max) {
        throw csv_error(place_, "no table has more than " + std::to_string(rows_max - 1) + " records");
    }
    std::vector<csv_field> fields;
    do {
        if (fields.size() == fields_max) {
            throw csv_error(place_, "no table has more than " + std::to_string(fields_max) + " columns");
        }
        fields.push_back(field());
    } while (take(','));
    if (!at_end() && !take_line_end()) {
        throw csv_error(place_, "expected a comma or a line end behind the closing quote");
    }
    return fields;
}

csv_field csv_reader::field() {
    const file_place begin = place_;
    return {take('"') ? quoted(begin) : plain(), begin};
}

std::string csv_reader::plain() {
    const file_place begin = place_;
    std::string value;
    while (!at_end() && !at_line_end() && text_[position_] != ',') {
        if (text_[position_] == '"') {
            throw csv_error(place_, "a field with a quote in it stands between quotes, the quote doubled");
        }
        add(value, advance(), begin);
    }
    return value;
}

std::string csv_reader::quoted(file_place begin) {
    std::string value;
    for (;;) {
        if (at_end()) {
            throw csv_error(begin, "the quote is not closed");
        }
        if (take('"')) {
            if (!take('"')) {
                return value;
            }
            add(value, '"', begin);
        } else {
            add(value, advance(), begin);
        }
    }
}

void csv_reader::add(std::string &value, char c, file_place begin) {
    if (value.size() == field_bytes_max) {
        throw csv_error(begin, "no text has more than " + std::to_string(field_bytes_max) + " bytes");
    }
    value += c;
}

bool csv_reader::at_line_end() const {
    return text_[position_] == '\n' || text_.substr(position_, 2) == "\r\n";
}

bool csv_reader::take_line_end() {
    take('\r');
    return take('\n');
}

bool csv_reader::take(char wanted) {
    if (at_end() || text_[position_] != wanted) {
        return false;
    }
    advance();
    return true;
}

// Bytes within a character do not count as columns.
char csv_reader::advance() {
    const char c = text_[position_++];
    if (c == '\n') {
        place_ = {place_.line + 1, 1};
    } else if (at_end() || (static_cast<unsigned char>(text_[position_]) & 0xC0) != 0x80) {
        ++place_.column;
    }
    return c;
}

} // namespace qrysh
