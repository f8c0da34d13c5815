// Text scanning: trimming, splitting at keywords, peeling quotes, brackets and percent signs.
#include <cstring>

#include "parser/qry_lib_sql_parser.h"
#include "parser/text_pieces.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

constexpr char blank = ' ';

// The span that is left of a text of `length` characters when blanks at its ends are dropped.
struct span {
    std::size_t begin;
    std::size_t end;

    std::size_t length() const { return begin < end ? end - begin : 0; }
};

span without_outer_blanks(unsigned char mode, const char *text, std::size_t length) {
    span rest{0, length};
    if ((mode & qry_lib_sql_parser::trim_front) != 0) {
        while (rest.begin < length && text[rest.begin] == blank) {
            ++rest.begin;
        }
    }
    if ((mode & qry_lib_sql_parser::trim_rear) != 0) {
        while (rest.end > 0 && text[rest.end - 1] == blank) {
            --rest.end;
        }
    }
    return rest;
}

// Lets a string become what an operation leaves of the view of it.
template <typename Operation>
std::uint32_t on_string(std::string &text, Operation operation) {
    std::string_view view(text);
    const std::uint32_t code = operation(view);
    if (view.size() != text.size()) {
        text = std::string(view);
    }
    return code;
}

} // namespace

std::uint32_t qry_lib_sql_parser::trim_space_front_rear(unsigned char mode, char *text) const {
    // Here a text without blanks takes no block, in the form for strings it does: callers' logs show which.
    if (std::strchr(text, blank) == nullptr) {
        return 0;
    }
    const std::size_t length = std::strlen(text);
    pool_block scratch;
    if (scratch.take_text({text, length}) != 0) {
        return trace_return(__func__, 2331, QRY_LIB_NO_MEMORY);
    }
    const span rest = without_outer_blanks(mode, scratch.as<char>(), length);
    std::memcpy(text, scratch.as<char>() + rest.begin, rest.length());
    text[rest.length()] = '\0';
    return 0;
}

std::uint32_t qry_lib_sql_parser::trim_space_front_rear(unsigned char mode, std::string_view &text) const {
    pool_block scratch;
    if (scratch.take(std::uint64_t{text.size()} + 1) != 0) {
        return trace_return(__func__, 2403, QRY_LIB_NO_MEMORY);
    }
    const span rest = without_outer_blanks(mode, text.data(), text.size());
    text = text.substr(rest.begin, rest.length());
    return 0;
}

std::uint32_t qry_lib_sql_parser::trim_space_front_rear(unsigned char mode, std::string &text) const {
    return on_string(text, [&](std::string_view &view) { return trim_space_front_rear(mode, view); });
}

bool qry_lib_sql_parser::trimmed(std::string_view &text) const {
    return trim_space_front_rear(trim_both, text) == 0 && !text.empty();
}

bool qry_lib_sql_parser::trimmed(std::string &text) const {
    return trim_space_front_rear(trim_both, text) == 0 && !text.empty();
}

std::uint32_t qry_lib_sql_parser::trim_space_all(char *text) const {
    pool_block scratch;
    if (scratch.take_text(text) != 0) {
        return trace_return(__func__, 2278, QRY_LIB_NO_MEMORY);
    }
    char *out = text;
    for (const char *in = scratch.as<char>(); *in != '\0'; ++in) {
        if (*in != blank) {
            *out++ = *in;
        }
    }
    *out = '\0';
    return 0;
}

std::uint32_t qry_lib_sql_parser::check_col_val(const char *text, int &is_number) const {
    is_number = text[std::strspn(text, "0123456789")] == '\0' ? 1 : 0;
    return 0;
}

unsigned int qry_lib_sql_parser::keyword_num(std::string_view text, std::string_view keyword) {
    unsigned int count = 0;
    text_pieces pieces(text, keyword);
    std::string_view piece;
    for (pieces.next(piece); !pieces.at_end(); pieces.next(piece)) {
        ++count;
    }
    return count;
}

std::uint32_t qry_lib_sql_parser::get_keyword_num(const char *text, const char *keyword,
                                                  unsigned int &count) const {
    count = text == nullptr ? 0 : keyword_num(text, keyword);
    return 0;
}

std::uint32_t qry_lib_sql_parser::divide_keyword(const char *text, const char *keyword, unsigned int &count,
                                                 std::vector<std::string> &pieces) const {
    count = 0;
    pool_block scratch; // the text may lie in a piece that moves
    if (scratch.take_text(text) != 0) {
        return trace_return(__func__, 1063, QRY_LIB_NO_MEMORY);
    }
    text_pieces split(scratch.as<char>(), keyword);
    std::string_view piece;
    split.next(piece);
    if (split.at_end()) {
        return 0;
    }
    pieces.reserve(pieces.size() + 2); // most texts are cut in two
    do {
        pieces.emplace_back(piece);
        ++count;
    } while (split.next(piece));
    return 0;
}

bool qry_lib_sql_parser::can_divide(std::string_view text) const {
    pool_block scratch;
    if (scratch.take(std::uint64_t{text.size()} + 1) != 0) {
        trace_return("divide_keyword", 1063, QRY_LIB_NO_MEMORY);
        return false;
    }
    return true;
}

qry_lib_sql_parser::search_result
qry_lib_sql_parser::find_keyword(std::string_view text, std::string_view keyword, text_halves &out) const {
    if (!can_divide(text)) {
        return {found::no_memory, QRY_LIB_NOT_ACCEPTED, 0};
    }
    text_pieces split(text, keyword);
    split.next(out.before);
    if (split.at_end()) {
        return {found::absent, QRY_LIB_NOT_ACCEPTED, 0};
    }
    split.next(out.after);
    unsigned int count = 2;
    for (std::string_view more; split.next(more);) {
        ++count;
    }
    return count == 2 ? search_result{found::yes, 0, count}
                      : search_result{found::repeated, QRY_LIB_NOT_ACCEPTED, count};
}

qry_lib_sql_parser::search_result qry_lib_sql_parser::find_two_keyword(std::string_view text,
                                                                       std::string_view first,
                                                                       std::string_view second,
                                                                       text_halves &out) const {
    static constexpr char name[] = "divide_two_keyword";
    search_result result = find_keyword(text, first, out);
    if (result.outcome != found::yes) {
        return result;
    }
    // A blank in front lets the second keyword, which begins with one, match right behind the first.
    pool_block scratch;
    if (scratch.take_text(out.after, " ") != 0) {
        return {found::no_memory, trace_return(name, 1145, QRY_LIB_NO_MEMORY), result.count};
    }
    text_halves at_second;
    result = find_keyword({scratch.as<char>(), out.after.size() + 1}, second, at_second);
    if (result.outcome != found::yes) {
        return {result.outcome, refuse(name, 1158), result.count};
    }
    const std::uint32_t trim_code = trim_space_front_rear(trim_both, at_second.before);
    if (trim_code != 0 || !at_second.before.empty()) {
        const std::uint32_t code = refuse(name, 1170);
        return {trim_code != 0 ? found::no_memory : found::absent, code, result.count};
    }
    out.after.remove_prefix(out.after.size() - at_second.after.size());
    return result;
}

std::uint32_t qry_lib_sql_parser::divide_two_keyword(const char *text, const char *first, const char *second,
                                                     unsigned int &count,
                                                     std::vector<std::string> &out) const {
    text_halves halves;
    const search_result result = find_two_keyword(text, first, second, halves);
    count = result.count;
    if (result.outcome == found::yes) {
        out.emplace_back(halves.before);
        out.emplace_back(halves.after);
    }
    return result.code;
}

qry_lib_sql_parser::search_result qry_lib_sql_parser::find_where(std::string_view text,
                                                                 text_halves &out) const {
    const search_result result = find_keyword(text, " WHERE ", out);
    if (result.outcome != found::yes) {
        return result;
    }
    // The condition is handed on as written; only a copy of it is trimmed.
    pool_block condition;
    if (condition.take_text(out.after) != 0) {
        return {found::no_memory, trace_return("divide_where_str", 1465, QRY_LIB_NO_MEMORY), result.count};
    }
    if (trim_space_front_rear(trim_both, condition.as<char>()) != 0 ||
        trim_space_front_rear(trim_both, out.before) != 0) {
        return {found::no_memory, QRY_LIB_NOT_ACCEPTED, result.count};
    }
    if (condition.as<char>()[0] == '\0' || out.before.empty()) {
        return {found::absent, QRY_LIB_NOT_ACCEPTED, result.count};
    }
    return result;
}

std::uint32_t qry_lib_sql_parser::divide_where_str(const char *text, unsigned int &count,
                                                   std::vector<std::string> &out) const {
    text_halves halves;
    const search_result result = find_where(text, halves);
    count = result.count;
    if (result.outcome == found::yes) {
        out.emplace_back(halves.after);
        out.emplace_back(halves.before);
    }
    return result.code;
}

std::uint32_t qry_lib_sql_parser::trim_single_q_str(std::string_view &value, int *quoted) const {
    *quoted = 0;
    if (value.empty() || value.front() != '\'') {
        return 0;
    }
    pool_block scratch;
    if (scratch.take(std::uint64_t{value.size()} + 1) != 0) {
        return trace_return(__func__, 2485, QRY_LIB_NO_MEMORY);
    }
    const std::size_t last = value.rfind('\'');
    if (last == 0) {
        return refuse(__func__, 2512);
    }
    value = value.substr(1, last - 1);
    *quoted = 1;
    return 0;
}

std::uint32_t qry_lib_sql_parser::trim_single_q_str(std::string &value, int *quoted) const {
    return on_string(value, [&](std::string_view &view) { return trim_single_q_str(view, quoted); });
}

std::uint32_t qry_lib_sql_parser::trim_bracket_str(std::string_view &value) const {
    if (value.find('(') == std::string_view::npos || value.find(')') == std::string_view::npos) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    pool_block scratch;
    if (scratch.take(std::uint64_t{value.size()} + 1) != 0) {
        return trace_return(__func__, 2584, QRY_LIB_NO_MEMORY);
    }
    // Runs of brackets are dropped at both ends; they are not matched against each other. Both runs end
    // within the value, which has a bracket of the other kind.
    const std::size_t begin = value.find_first_not_of('(');
    const std::size_t last = value.find_last_not_of(')');
    if (last < begin) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    value = value.substr(begin, last + 1 - begin);
    return 0;
}

std::uint32_t qry_lib_sql_parser::trim_bracket_str(std::string &value) const {
    return on_string(value, [&](std::string_view &view) { return trim_bracket_str(view); });
}

std::uint32_t qry_lib_sql_parser::trim_percent_str(std::string_view &value) const {
    if (value.empty() || value.back() != '%') {
        return QRY_LIB_NOT_ACCEPTED;
    }
    value.remove_suffix(1);
    return 0;
}

std::uint32_t qry_lib_sql_parser::trim_percent_str(std::string &value) const {
    return on_string(value, [&](std::string_view &view) { return trim_percent_str(view); });
}

int qry_lib_sql_parser::get_is_col_name(unsigned short index, std::string name,
                                        std::vector<qry_lib_analyze_info> &infos) const {
    if (index >= infos.size()) {
        return 0;
    }
    const qry_lib_analyze_info &info = infos[index];
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        const QRY_LIB_COLUMN *column = info.col_at(i);
        if (column == nullptr) {
            trace_return(__func__, 2107, QRY_LIB_NO_SUCH_ITEM);
            return 0;
        }
        if (name == column->col_name) {
            return 1;
        }
    }
    return 0;
}

int qry_lib_sql_parser::get_is_table(unsigned short index, std::string name,
                                     qry_lib_analyze_info &info) const {
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    if (const std::uint32_t code = info.get_table(index, table); code != 0) {
        trace_return(__func__, 2069, code);
        return 0;
    }
    return name == table ? 1 : 0;
}

} // namespace norvane
