// The parser's entry for each kind of statement, and its result read out.
#include "tools/text/query_reader.h"

#include <fmt/format.h>

#include "parser/qry_lib_sql_parser.h"
#include "tools/text/engine.h"
#include "tools/text/statement_builder.h"

namespace qrytext {

namespace {

std::string value_text(const QRY_LIB_COLUMN_VALUE &value, QRY_LIB_COLUMN_TYPE type) {
    switch (type) {
    case QRY_LIB_COLUMN_TYPE_STR:
        return value.str_value;
    case QRY_LIB_COLUMN_TYPE_INT:
        return fmt::format("{}", value.int_value);
    default:
        return fmt::format("{}", value.ulong_value);
    }
}

void describe_columns(const norvane::qry_lib_analyze_info &info, query &asked) {
    char name[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_COLUMN_TYPE type;
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        info.get_cols(i, name, &value, type);
        asked.columns.emplace_back(name);
        asked.values.push_back(value_text(value, type));
    }
}

void describe_conditions(const norvane::qry_lib_analyze_info &info, query &asked) {
    char name[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        query_condition condition{};
        std::int32_t quoted = 0;
        info.get_filter_cols(i, name, value.str_value, condition.operation, condition.join, quoted);
        condition.column = name;
        condition.value = value.str_value;
        condition.quoted = quoted != 0;
        asked.conditions.push_back(std::move(condition));
    }
}

} // namespace

query describe(const norvane::qry_lib_analyze_info &info) {
    query asked{};
    asked.type = info.get_exec_type();
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    for (std::uint16_t i = 0; i < info.get_table_num(); ++i) {
        info.get_table(i, table);
        if (*table != '\0') { // a CREATE has an empty one
            asked.tables.emplace_back(table);
        }
    }
    describe_columns(info, asked);
    describe_conditions(info, asked);
    char column[QRY_LIB_COLUMN_NAME_MAX + 1];
    info.get_order(column, asked.order);
    asked.order_column = column;
    return asked;
}

std::uint32_t analyze(const std::string &db_name, const std::string &sql,
                      norvane::qry_lib_analyze_info &info) {
    const norvane::qry_lib_sql_parser parser;
    switch (kind_of(sql)) {
    case statement_kind::select:
        return parser.analyze_sql_select(db_name.c_str(), sql.c_str(), info);
    case statement_kind::write_record: {
        statement record(db_name, parse_write_statement(sql));
        return parser.analyze_param(record.get(), info);
    }
    default:
        return parser.analyze_sql(db_name.c_str(), sql.c_str(), info);
    }
}

std::optional<query> read_query(const std::string &db_name, const std::string &sql) {
    norvane::qry_lib_analyze_info info;
    try {
        if (analyze(db_name, sql, info) != 0) {
            return std::nullopt;
        }
    } catch (const syntax_error &) {
        return std::nullopt;
    }
    return describe(info);
}

} // namespace qrytext
