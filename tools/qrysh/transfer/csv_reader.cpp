// One walk over the text.
#include "tools/qrysh/transfer/csv_reader.h"

namespace qrysh {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

class csv_scanner {
  public:
    explicit csv_scanner(std::string_view text) : text_(text) {}

    bool at_end() const { return position_ == text_.size(); }

    std::vector<csv_field> row() {
        std::vector<csv_field> fields;
        do {
            fields.push_back(field());
        } while (take(','));
        if (!at_end() && !take_line_end()) {
            throw csv_error(place_, "expected a comma or a line end behind the closing quote");
        }
        return fields;
    }

  private:
    csv_field field() {
        const file_place begin = place_;
        return {take('"') ? quoted(begin) : plain(), begin};
    }

    std::string plain() {
        std::string value;
        while (!at_end() && !at_line_end() && text_[position_] != ',') {
            if (text_[position_] == '"') {
                throw csv_error(place_,
                                "a field with a quote in it stands between quotes, the quote doubled");
            }
            value += advance();
        }
        return value;
    }

    std::string quoted(file_place begin) {
        std::string value;
        for (;;) {
            if (at_end()) {
                throw csv_error(begin, "the quote is not closed");
            }
            if (take('"')) {
                if (!take('"')) {
                    return value;
                }
                value += '"';
            } else {
                value += advance();
            }
        }
    }

    bool at_line_end() const { return text_[position_] == '\n' || text_.substr(position_, 2) == "\r\n"; }

    bool take_line_end() {
        take('\r');
        return take('\n');
    }

    bool take(char wanted) {
        if (at_end() || text_[position_] != wanted) {
            return false;
        }
        advance();
        return true;
    }

    // Bytes within a character do not count as columns.
    char advance() {
        const char c = text_[position_++];
        if (c == '\n') {
            place_ = {place_.line + 1, 1};
        } else if (at_end() || (static_cast<unsigned char>(text_[position_]) & 0xC0) != 0x80) {
            ++place_.column;
        }
        return c;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    file_place place_{1, 1};
};

} // namespace

std::vector<std::vector<csv_field>> read_csv(std::string_view text) {
    if (text.substr(0, byte_order_mark.size()) == byte_order_mark) {
        text.remove_prefix(byte_order_mark.size());
    }
    csv_scanner scan(text);
    std::vector<std::vector<csv_field>> rows;
    while (!scan.at_end()) {
        rows.push_back(scan.row());
    }
    return rows;
}

} // namespace qrysh
