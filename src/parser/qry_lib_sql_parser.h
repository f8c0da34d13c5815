// The parser: SQL text and statement records become analyzed queries.
//
// Only the blank (0x20) separates words, keywords are upper case and found as plain text, nothing is ever
// unescaped. Every operation is independent and re-entrant. Codes: 0; 1 when an operation's own scratch block
// could not be had; 0xDB00 for a text that is not accepted. A step that fails for memory inside a caller ends
// the caller as the malformed case at the same place does.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "parser/qry_lib_analyze_info.h"

namespace norvane {

class qry_lib_analyze_link_info;

class qry_lib_sql_parser {
  public:
    // Modes of trim_space_front_rear; callers combine them.
    static constexpr unsigned char trim_front = 0x01;
    static constexpr unsigned char trim_rear = 0x10;
    static constexpr unsigned char trim_both = trim_front | trim_rear;

    // Text scanning (text_scan.cpp). A view is narrowed where its text stands; the memory partition sees the
    // same of it as of a string.
    std::uint32_t trim_space_front_rear(unsigned char mode, char *text) const;
    std::uint32_t trim_space_front_rear(unsigned char mode, std::string &text) const;
    std::uint32_t trim_space_front_rear(unsigned char mode, std::string_view &text) const;
    std::uint32_t trim_space_all(char *text) const;

    // Trims both ends; false for a text that could not be trimmed or has nothing left.
    bool trimmed(std::string &text) const;
    bool trimmed(std::string_view &text) const;

    // is_number becomes 1 when there are only decimal digits (also for the empty text), else 0.
    std::uint32_t check_col_val(const char *text, int &is_number) const;

    // Occurrences of the keyword, not overlapping. A null text holds none.
    std::uint32_t get_keyword_num(const char *text, const char *keyword, unsigned int &count) const;
    static unsigned int keyword_num(std::string_view text, std::string_view keyword);

    // Appends the pieces between the keyword's occurrences; count is the number of pieces, 0 without any
    // occurrence, when nothing is appended.
    std::uint32_t divide_keyword(const char *text, const char *keyword, unsigned int &count,
                                 std::vector<std::string> &pieces) const;

    // Whether divide_keyword's scratch block can be had; false is traced in its name. For callers that read
    // the pieces one by one where the text stands: they take that block as well, so that a split costs the
    // memory partition the same, and may fail there, wherever it is made.
    bool can_divide(std::string_view text) const;

    // Splits at two keywords that stand next to each other: appends the text before the first and the text
    // after the second. count is that of the last split made; above 2, a keyword is repeated.
    std::uint32_t divide_two_keyword(const char *text, const char *first, const char *second,
                                     unsigned int &count, std::vector<std::string> &out) const;

    // Appends the condition behind " WHERE " as written, then the trimmed text before it.
    std::uint32_t divide_where_str(const char *text, unsigned int &count,
                                   std::vector<std::string> &out) const;

    // Peels one pair of single quotes off a value that begins with one; *quoted tells whether it did.
    std::uint32_t trim_single_q_str(std::string &value, int *quoted) const;
    std::uint32_t trim_single_q_str(std::string_view &value, int *quoted) const;
    std::uint32_t trim_bracket_str(std::string &value) const;
    std::uint32_t trim_bracket_str(std::string_view &value) const;
    std::uint32_t trim_percent_str(std::string &value) const;
    std::uint32_t trim_percent_str(std::string_view &value) const;

    // 1 when the analyzed query at `index` selects the column, or names the table first; else 0.
    int get_is_col_name(unsigned short index, std::string name,
                        std::vector<qry_lib_analyze_info> &infos) const;
    int get_is_table(unsigned short index, std::string name, qry_lib_analyze_info &info) const;

    // Statements that return no rows (statement_analysis.cpp).
    std::uint32_t analyze_sql(const char *db_name, const char *sql, qry_lib_analyze_info &info) const;

    // SELECT (select_analysis.cpp).
    std::uint32_t analyze_sql_select(const char *db_name, const char *sql, qry_lib_analyze_info &info) const;

    // Cuts a SELECT into its clauses; a clause that is absent leaves its output as it was.
    std::uint32_t divide_select_reserve_str(const char *sql, std::string &cols, std::string &tables,
                                            std::string &where, std::string &order) const;
    std::uint32_t set_sort_str(const char *sort_phrase, qry_lib_analyze_info &info) const;

    // `column` is zero-filled and holds the phrase's length plus one; `order` is left alone by a blank
    // phrase.
    std::uint32_t analyze_sort(const char *sort_phrase, char *column, unsigned char &order) const;

    // WHERE (where_analysis.cpp). `join` is a QRY_LIB_JOIN_TYPE.
    std::uint32_t set_filter_str(const char *where_text, qry_lib_analyze_info &info) const;
    std::uint32_t divide_operate(const char *condition, unsigned char join, qry_lib_analyze_info &info) const;

    // Statement records (record_analysis.cpp). A null table name is an empty one.
    std::uint32_t analyze_param(const qry_lib_db_stmt_ *stmt, qry_lib_analyze_info &info) const;
    std::uint32_t analyze_param_insert(const char *db_name, const QRY_LIB_RECORD *record, const char *table,
                                       qry_lib_analyze_info &info) const;
    std::uint32_t analyze_param_update(const char *db_name, const QRY_LIB_RECORD *record, const char *table,
                                       const char *where, qry_lib_analyze_info &info) const;
    std::uint32_t analyze_param_delete(const char *db_name, const char *table, const char *where,
                                       qry_lib_analyze_info &info) const;
    std::uint32_t analyze_param_select(const char *db_name, const QRY_LIB_RECORD *record, const char *table,
                                       const char *where, const char *order,
                                       qry_lib_analyze_info &info) const;

    // SELECT over several tables, split into one query for each (link/link_analysis.cpp).
    std::uint32_t analyze_sql_select_link(qry_lib_analyze_info &info,
                                          qry_lib_analyze_link_info &link_info) const;
    std::uint32_t set_link_select_cols(qry_lib_analyze_info &info,
                                       std::vector<qry_lib_analyze_info> &per_table,
                                       qry_lib_analyze_link_info &link_info) const;
    std::uint32_t set_link_filter_cols(qry_lib_analyze_info &info,
                                       std::vector<qry_lib_analyze_info> &per_table,
                                       qry_lib_analyze_link_info &link_info) const;
    std::uint32_t set_link_filter_val(unsigned short index, qry_lib_analyze_info &info,
                                      std::vector<qry_lib_analyze_info> &per_table,
                                      qry_lib_analyze_link_info &link_info) const;

  private:
    // What a search for a keyword came to. Callers must tell an absent clause from one that could not be
    // looked for: the first is skipped, the second ends the statement.
    enum class found { yes, absent, repeated, no_memory };
    struct search_result {
        found outcome;
        std::uint32_t code; // what the public form answers
        unsigned int count;
    };

    // What stands before and behind a keyword, or two next to each other.
    struct text_halves {
        std::string_view before;
        std::string_view after;
    };

    // The clauses of a SELECT where its text stands, the columns without blanks. Empty where there is none.
    struct select_clauses {
        std::string cols;
        std::string_view tables;
        std::string_view where;
        std::string_view order;
    };

    search_result find_keyword(std::string_view text, std::string_view keyword, text_halves &out) const;
    search_result find_two_keyword(std::string_view text, std::string_view first, std::string_view second,
                                   text_halves &out) const;
    search_result find_where(std::string_view text, text_halves &out) const;

    std::uint32_t analyze_statement(const char *db_name, const char *text, qry_lib_analyze_info &info) const;
    std::uint32_t analyze_drop(text_halves parts, qry_lib_analyze_info &info) const;
    std::uint32_t analyze_delete(std::string_view text, qry_lib_analyze_info &info) const;
    std::uint32_t set_filter(std::string_view where, qry_lib_analyze_info &info) const;
    std::uint32_t find_clauses(std::string_view sql, select_clauses &out) const;
    std::uint32_t divide_clauses(std::string_view text, std::string_view sql, select_clauses &out) const;
    std::uint32_t divide_after_from(std::string_view text, select_clauses &out) const;
    std::uint32_t set_select_tables(std::string_view tables, qry_lib_analyze_info &info) const;
    std::uint32_t set_select_cols(const std::string &cols, bool sorted, qry_lib_analyze_info &info) const;
    std::uint32_t add_condition(std::string_view condition, QRY_LIB_JOIN_TYPE join,
                                qry_lib_analyze_info &info) const;
    std::uint32_t split_sort(const char *sort_phrase, const char *direction, char *column) const;
};

} // namespace norvane
