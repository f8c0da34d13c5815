// SELECT text: its four clauses, the column and table lists, the sort phrase.
#include <cstring>

#include "parser/qry_lib_sql_parser.h"
#include "parser/text_pieces.h"
#include "util/bounded_text.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

std::uint32_t qry_lib_sql_parser::divide_select_reserve_str(const char *sql, std::string &cols,
                                                            std::string &tables, std::string &where,
                                                            std::string &order) const {
    select_clauses clauses;
    const std::uint32_t code = find_clauses(sql, clauses);
    if (!clauses.cols.empty()) {
        cols = std::move(clauses.cols);
    }
    const std::pair<std::string_view, std::string *> outputs[] = {
        {clauses.tables, &tables}, {clauses.where, &where}, {clauses.order, &order}};
    for (const auto &[clause, output] : outputs) {
        if (!clause.empty()) {
            *output = clause;
        }
    }
    return code;
}

std::uint32_t qry_lib_sql_parser::find_clauses(std::string_view sql, select_clauses &out) const {
    // The blank in front lets SELECT stand at the very start.
    pool_block scratch;
    if (scratch.take_text(sql, " ") != 0) {
        return trace_return("divide_select_reserve_str", 924, QRY_LIB_NO_MEMORY);
    }
    return divide_clauses({scratch.as<char>(), sql.size() + 1}, sql, out);
}

// `text` is `sql` behind a blank, and does not last.
std::uint32_t qry_lib_sql_parser::divide_clauses(std::string_view text, std::string_view sql,
                                                 select_clauses &out) const {
    static constexpr char name[] = "divide_select_reserve_str";
    text_halves at_select;
    if (find_keyword(text, " SELECT ", at_select).outcome != found::yes) {
        return refuse(name, 936);
    }
    if (trim_space_front_rear(trim_both, at_select.before) != 0 || !at_select.before.empty()) {
        return refuse(name, 945);
    }
    text_halves at_from;
    const std::string_view selected = sql.substr(sql.size() - at_select.after.size());
    if (find_keyword(selected, " FROM ", at_from).outcome != found::yes) {
        return refuse(name, 957);
    }
    std::string list(at_from.before);
    const std::uint32_t code = trim_space_all(list.data());
    list.resize(std::strlen(list.c_str()));
    if (code != 0 || list.empty()) {
        return refuse(name, 967);
    }
    out.cols = std::move(list);
    return divide_after_from(at_from.after, out);
}

std::uint32_t qry_lib_sql_parser::divide_after_from(std::string_view text, select_clauses &out) const {
    static constexpr char name[] = "divide_select_reserve_str";
    text_halves at_order;
    const found sorted = find_two_keyword(text, " ORDER ", " BY ", at_order).outcome;
    if (sorted == found::repeated || sorted == found::no_memory) {
        return refuse(name, 985);
    }
    if (sorted == found::yes) {
        text = at_order.before;
        // A blank sort phrase is dropped: the query runs unsorted.
        if (at_order.after.find_first_not_of(' ') != std::string_view::npos) {
            out.order = at_order.after;
        }
    }
    text_halves at_where;
    const found filtered = find_where(text, at_where).outcome;
    if (filtered == found::repeated || filtered == found::no_memory) {
        return refuse(name, 1007);
    }
    if (filtered == found::yes) {
        out.where = at_where.after;
        out.tables = at_where.before;
        return 0;
    }
    if (!trimmed(text)) {
        return refuse(name, 1019);
    }
    out.tables = text;
    return 0;
}

std::uint32_t qry_lib_sql_parser::analyze_sql_select(const char *db_name, const char *sql,
                                                     qry_lib_analyze_info &info) const {
    info.set_db_name(db_name);
    select_clauses clauses;
    if (find_clauses(sql, clauses) != 0) {
        return refuse(__func__, 165);
    }
    if (const std::uint32_t code = set_select_tables(clauses.tables, info); code != 0) {
        return code;
    }
    if (!clauses.where.empty() && set_filter(clauses.where, info) != 0) {
        return refuse(__func__, 213);
    }
    const bool sorted = !clauses.order.empty();
    if (sorted && set_sort_str(std::string(clauses.order).c_str(), info) != 0) {
        return refuse(__func__, 222);
    }
    return set_select_cols(clauses.cols, sorted, info);
}

std::uint32_t qry_lib_sql_parser::set_select_tables(std::string_view tables,
                                                    qry_lib_analyze_info &info) const {
    static constexpr char name[] = "analyze_sql_select";
    const unsigned int comma_num = keyword_num(tables, ",");
    if (!can_divide(tables)) {
        return refuse(name, 172);
    }
    if (comma_num >= UINT16_MAX || (comma_num == 0 && tables.size() > QRY_LIB_TABLE_NAME_MAX)) {
        return refuse(name, __LINE__);
    }
    if (comma_num == 0) {
        info.set_table(std::string(tables).c_str());
        return 0;
    }
    text_pieces items(tables, ",");
    for (std::string_view item; items.next(item);) {
        pool_block table;
        if (table.take_text(item) != 0) {
            return trace_return(name, 180, QRY_LIB_NO_MEMORY);
        }
        if (trim_space_front_rear(trim_both, table.as<char>()) != 0 || table.as<char>()[0] == '\0') {
            return refuse(name, 191);
        }
        if (!fits(table.as<char>(), QRY_LIB_TABLE_NAME_MAX)) {
            return refuse(name, __LINE__);
        }
        info.add_table(table.as<char>());
    }
    return 0;
}

std::uint32_t qry_lib_sql_parser::set_select_cols(const std::string &cols, bool sorted,
                                                  qry_lib_analyze_info &info) const {
    static constexpr char name[] = "analyze_sql_select";
    pool_block list;
    if (list.take_text(cols) != 0) {
        return trace_return(name, 231, QRY_LIB_NO_MEMORY);
    }
    const std::string_view text(list.as<char>(), cols.size());
    const unsigned int comma_num = keyword_num(text, ",");
    const unsigned int count_num = keyword_num(text, "COUNT(*)");
    if (count_num > 0 && (comma_num > 0 || sorted)) {
        return refuse_showing_0(name, comma_num > 0 ? 242 : 249);
    }
    if (count_num > 0) {
        info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_COUNT);
        return 0;
    }
    info.set_exec_type(QRY_LIB_DB_QUERY_TYPE_SELECT);
    if (!can_divide(text)) {
        return refuse(name, 269);
    }
    if (comma_num >= UINT16_MAX) {
        return refuse(name, __LINE__);
    }
    info.expect_cols(comma_num + 1);
    text_pieces items(text, ",");
    for (std::string_view item; items.next(item);) {
        if (item.empty()) {
            return refuse(name, 289);
        }
        if (item.size() > QRY_LIB_COLUMN_NAME_MAX) {
            return refuse(name, __LINE__);
        }
        info.add_empty_col(item);
    }
    return 0;
}

std::uint32_t qry_lib_sql_parser::set_sort_str(const char *sort_phrase, qry_lib_analyze_info &info) const {
    pool_block column;
    if (column.take_zeroed(std::uint64_t{std::strlen(sort_phrase)} + 1) != 0) {
        return trace_return(__func__, 1597, QRY_LIB_NO_MEMORY);
    }
    unsigned char order = QRY_LIB_ODER_TYPE_NOTHING;
    if (const std::uint32_t code = analyze_sort(sort_phrase, column.as<char>(), order); code != 0) {
        return trace_return(__func__, 1604, code);
    }
    if (!fits(column.as<char>(), QRY_LIB_COLUMN_NAME_MAX)) {
        return refuse(__func__, __LINE__);
    }
    info.set_order(column.as<char>(), static_cast<QRY_LIB_ODER_TYPE>(order));
    return 0;
}

std::uint32_t qry_lib_sql_parser::analyze_sort(const char *sort_phrase, char *column,
                                               unsigned char &order) const {
    if (std::strchr(sort_phrase, ',') != nullptr) {
        return refuse(__func__, 2182);
    }
    unsigned int desc_num = 0;
    unsigned int asc_num = 0;
    get_keyword_num(sort_phrase, " DESC", desc_num);
    get_keyword_num(sort_phrase, " ASC", asc_num);
    if (desc_num > 0 && asc_num > 0) {
        return refuse(__func__, 2194);
    }
    if (desc_num == 0 && asc_num == 0) {
        std::memcpy(column, sort_phrase, std::strlen(sort_phrase) + 1);
        const std::uint32_t code = trim_space_front_rear(trim_both, column);
        if (code != 0 || column[0] == '\0') {
            // A blank phrase is traced like a refusal and is none: the trim's 0 goes back, nothing is sorted.
            return trace_return(__func__, 2203, code);
        }
        order = QRY_LIB_ODER_TYPE_ASC;
        return 0;
    }
    order = desc_num > 0 ? QRY_LIB_ODER_TYPE_DESC : QRY_LIB_ODER_TYPE_ASC;
    return split_sort(sort_phrase, desc_num > 0 ? " DESC" : " ASC", column);
}

// The column is what stands before the direction word; what follows the word is ignored.
std::uint32_t qry_lib_sql_parser::split_sort(const char *sort_phrase, const char *direction,
                                             char *column) const {
    static constexpr char name[] = "analyze_sort";
    std::vector<std::string> pieces;
    unsigned int count = 0;
    if (divide_keyword(sort_phrase, direction, count, pieces) != 0 || count != 2) {
        return refuse(name, 2226);
    }
    pool_block scratch;
    if (scratch.take_text(pieces[0]) != 0) {
        return trace_return(name, 2234, QRY_LIB_NO_MEMORY);
    }
    if (trim_space_front_rear(trim_both, scratch.as<char>()) != 0 || scratch.as<char>()[0] == '\0') {
        return refuse(name, 2243);
    }
    std::memcpy(column, scratch.as<char>(), std::strlen(scratch.as<char>()) + 1);
    return 0;
}

} // namespace norvane
