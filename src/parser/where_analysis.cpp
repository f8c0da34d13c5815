// WHERE: a flat list of comparisons, joined all by AND or all by OR.
#include <cstring>

#include "parser/qry_lib_sql_parser.h"
#include "parser/text_pieces.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

constexpr char function_name[] = "divide_operate";

struct operator_row {
    QRY_LIB_OPERATION_TYPE operation;
    char text[9];
};

// In the order of search: an operator comes before the shorter ones that it contains. "==" is listed only to
// be refused; its code means nothing.
constexpr operator_row operators[] = {
    {QRY_LIB_OPERATION_TYPE_EQUAL, "=="},         {QRY_LIB_OPERATION_TYPE_LIKE, " LIKE "},
    {QRY_LIB_OPERATION_TYPE_INLIKE, " INLIKE"},   {QRY_LIB_OPERATION_TYPE_IN, " IN"},
    {QRY_LIB_OPERATION_TYPE_GREATER_EQUAL, ">="}, {QRY_LIB_OPERATION_TYPE_LESS_EQUAL, "<="},
    {QRY_LIB_OPERATION_TYPE_GREATER, ">"},        {QRY_LIB_OPERATION_TYPE_LESS, "<"},
    {QRY_LIB_OPERATION_TYPE_NOT_EQUAL, "!="},     {QRY_LIB_OPERATION_TYPE_EQUAL, "="},
};

// The chosen operator and where it stands. Operators inside a quoted value are passed over.
struct operator_place {
    const operator_row *row; // null: none
    const char *at;
};

operator_place find_operator(const char *condition) {
    const char *quote = std::strchr(condition, '\'');
    for (const operator_row &row : operators) {
        const char *at = std::strstr(condition, row.text);
        if (at != nullptr && (quote == nullptr || at <= quote)) {
            return {&row, at};
        }
    }
    return {nullptr, nullptr};
}

// The lines of the refusals of one value, by where the value stands: it is blank, its quote is not closed, a
// LIKE value is no prefix.
struct value_lines {
    int blank;
    int quote;
    int percent;
};

constexpr value_lines lone_element{1330, 1337, 1347};
constexpr value_lines list_element{1370, 1377, 1387};
constexpr value_lines plain_value{1300, 1408, 1416};

// A comparison as it goes into the analyzed query, but for its value.
struct comparison {
    std::string_view column;
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
};

std::uint32_t add_value(const qry_lib_sql_parser &parser, const comparison &compared, std::string_view value,
                        const value_lines &lines, qry_lib_analyze_info &info) {
    int quoted = 0;
    if (!parser.trimmed(value)) {
        return refuse(function_name, lines.blank);
    }
    if (parser.trim_single_q_str(value, &quoted) != 0) {
        return refuse(function_name, lines.quote);
    }
    if (compared.operation == QRY_LIB_OPERATION_TYPE_LIKE && parser.trim_percent_str(value) != 0) {
        return refuse(function_name, lines.percent);
    }
    if (compared.column.size() > QRY_LIB_COLUMN_NAME_MAX || value.size() > QRY_LIB_STRING_MAX ||
        info.get_filter_cols_num() == UINT16_MAX) {
        return refuse(function_name, __LINE__);
    }
    info.add_filter(compared.column, value, compared.operation, compared.join, quoted);
    return 0;
}

// A list is its elements, each a comparison of its own joined by OR.
std::uint32_t add_list(const qry_lib_sql_parser &parser, const comparison &compared, std::string_view list,
                       qry_lib_analyze_info &info) {
    if (!parser.trimmed(list)) {
        return refuse(function_name, plain_value.blank);
    }
    if (parser.trim_bracket_str(list) != 0) {
        return refuse(function_name, 1315);
    }
    if (!parser.can_divide(list)) {
        return refuse(function_name, 1322);
    }
    const unsigned int comma_num = qry_lib_sql_parser::keyword_num(list, ",");
    if (comma_num == 0) {
        return add_value(parser, compared, list, lone_element, info);
    }
    info.expect_filter_cols(std::size_t{info.get_filter_cols_num()} + comma_num + 1);
    text_pieces elements(list, ",");
    for (std::string_view element; elements.next(element);) {
        if (const std::uint32_t code = add_value(parser, compared, element, list_element, info); code != 0) {
            return code;
        }
    }
    return 0;
}

} // namespace

std::uint32_t qry_lib_sql_parser::set_filter_str(const char *where_text, qry_lib_analyze_info &info) const {
    return set_filter(where_text, info);
}

std::uint32_t qry_lib_sql_parser::set_filter(std::string_view where, qry_lib_analyze_info &info) const {
    static constexpr char name[] = "set_filter_str";
    const unsigned int and_num = keyword_num(where, " AND ");
    const unsigned int or_num = keyword_num(where, " OR ");
    if (and_num > 0 && or_num > 0) {
        return refuse_showing_0(name, 1527);
    }
    if (and_num == 0 && or_num == 0) {
        if (add_condition(where, QRY_LIB_JOIN_TYPE_AND, info) != 0) {
            return refuse(name, 1534);
        }
        return 0;
    }
    if (!can_divide(where)) {
        return refuse(name, 1552);
    }
    const QRY_LIB_JOIN_TYPE join = and_num > 0 ? QRY_LIB_JOIN_TYPE_AND : QRY_LIB_JOIN_TYPE_OR;
    info.expect_filter_cols(std::size_t{and_num} + or_num + 1);
    text_pieces conditions(where, and_num > 0 ? " AND " : " OR ");
    for (std::string_view condition; conditions.next(condition);) {
        if (add_condition(condition, join, info) != 0) {
            return refuse(name, 1561);
        }
    }
    return 0;
}

std::uint32_t qry_lib_sql_parser::divide_operate(const char *condition, unsigned char join,
                                                 qry_lib_analyze_info &info) const {
    return add_condition(condition, static_cast<QRY_LIB_JOIN_TYPE>(join), info);
}

std::uint32_t qry_lib_sql_parser::add_condition(std::string_view condition, QRY_LIB_JOIN_TYPE join,
                                                qry_lib_analyze_info &info) const {
    pool_block scratch;
    if (scratch.take_text(condition) != 0) {
        return trace_return(function_name, 1235, QRY_LIB_NO_MEMORY);
    }
    const char *text = scratch.as<char>();
    const operator_place place = find_operator(text);
    if (place.row == nullptr) {
        return refuse(function_name, 1271);
    }
    if (place.row == operators) {
        return refuse(function_name, 1257);
    }
    const char *behind = place.at + std::strlen(place.row->text);
    std::string_view column(text, static_cast<std::size_t>(place.at - text));
    const std::string_view value(behind, static_cast<std::size_t>(text + condition.size() - behind));
    if (!trimmed(column)) {
        return refuse(function_name, 1294);
    }
    switch (place.row->operation) {
    case QRY_LIB_OPERATION_TYPE_IN:
        return add_list(*this, {column, QRY_LIB_OPERATION_TYPE_EQUAL, QRY_LIB_JOIN_TYPE_OR}, value, info);
    case QRY_LIB_OPERATION_TYPE_INLIKE:
        return add_list(*this, {column, QRY_LIB_OPERATION_TYPE_LIKE, QRY_LIB_JOIN_TYPE_OR}, value, info);
    default:
        return add_value(*this, {column, place.row->operation, join}, value, plain_value, info);
    }
}

} // namespace norvane
