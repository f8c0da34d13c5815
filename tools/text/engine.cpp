// Texts go to the library as they are; INSERT and UPDATE become statement records first.
#include "tools/text/engine.h"

#include <qrylib/query.h>

#include <stdexcept>

#include <fmt/format.h>

#include "tools/text/column_titles.h"
#include "tools/text/result_reader.h"
#include "tools/text/schema.h"
#include "tools/text/statement_builder.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

std::string first_word_in_capitals(std::string_view text) {
    std::string word;
    for (const char c : text) {
        const bool is_lower = c >= 'a' && c <= 'z';
        if (!is_lower && (c < 'A' || c > 'Z')) {
            break;
        }
        word += is_lower ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return word;
}

// Without a row that names them, the columns are those of the text.
std::vector<result_column> describe_columns(const std::string &db_name, const std::string &sql,
                                            const qry_lib_db_rowset_ &rows) {
    std::vector<result_column> columns;
    if (rows.record_num > 0) {
        const QRY_LIB_RECORD &row = rows.records[0];
        for (std::int32_t i = 0; i < row.col_num; ++i) {
            const QRY_LIB_COLUMN &column = row.cols[i];
            const bool is_count = *column.col_name == '\0';
            columns.push_back({column.table_name, is_count ? "COUNT(*)" : column.col_name,
                               column.type == QRY_LIB_COLUMN_TYPE_STR});
        }
        return columns;
    }
    for (const column_name &column : select_list(sql)) {
        const std::string table = column.table.empty() ? first_table(sql) : column.table;
        const auto known = find_column(db_name, table, column.name);
        columns.push_back({table, column.name, !known || known->type == QRY_LIB_COLUMN_TYPE_STR});
    }
    return columns;
}

reply select_rows(const std::string &db_name, const std::string &sql) {
    statement bound(db_name);
    rowset rows;
    const std::uint32_t code = qry_lib_db_exec_query(bound.get(), sql.c_str(), rows.get());
    if (code != QRY_LIB_OK) {
        return {code, std::nullopt};
    }
    result answer = read_result(*rows.get(), sql);
    answer.table = first_table(sql);
    answer.columns = describe_columns(db_name, sql, *rows.get());
    return {code, std::move(answer)};
}

} // namespace

statement_kind kind_of(std::string_view sql) {
    const std::string word = first_word_in_capitals(trim(sql));
    if (word == "SELECT") {
        return statement_kind::select;
    }
    return word == "INSERT" || word == "UPDATE" ? statement_kind::write_record : statement_kind::other_text;
}

reply execute(const std::string &db_name, const std::string &sql) {
    switch (kind_of(sql)) {
    case statement_kind::select:
        return select_rows(db_name, sql);
    case statement_kind::write_record: {
        statement record(db_name, parse_write_statement(sql));
        return {qry_lib_db_stmt_exec(record.get()), std::nullopt};
    }
    default: {
        statement bound(db_name);
        return {qry_lib_db_exec(bound.get(), sql.c_str()), std::nullopt};
    }
    }
}

std::int64_t records_in_use(const std::string &db_name, const std::string &table_name) {
    const reply counted = execute(db_name, fmt::format("SELECT COUNT(*) FROM {}", table_name));
    if (!counted.rows) {
        throw std::runtime_error(
            fmt::format("{} cannot be counted: code 0x{:04X}", table_name, counted.code));
    }
    return std::get<std::int64_t>(counted.rows->rows.at(0).at(0));
}

std::string first_table(std::string_view sql) {
    constexpr std::string_view from_word = " FROM ";
    const std::size_t from = sql.find(from_word);
    if (from == std::string_view::npos) {
        return "";
    }
    const std::string_view rest = trim(sql.substr(from + from_word.size()));
    return std::string(rest.substr(0, rest.find_first_of(" ,")));
}

} // namespace qrytext
