// The analyzed query's lists and their getters.
#include "parser/qry_lib_analyze_info.h"

#include <cstring>

#include "util/bounded_text.h"

namespace norvane {

QRY_LIB_CONDITION::QRY_LIB_CONDITION(std::string_view table, std::string_view col, std::string_view text,
                                     QRY_LIB_OPERATION_TYPE how, QRY_LIB_JOIN_TYPE joined_by,
                                     std::int32_t quoted)
    : col_name(col), operation(how), join(joined_by), table_name(table), value_is_quoted(quoted) {
    copy_bounded(value.str_value, text);
}

void qry_lib_analyze_info::set_table(const char *name) {
    if (tables_.empty()) {
        add_table(name);
    } else {
        tables_.front() = name;
    }
}

QRY_LIB_COLUMN &qry_lib_analyze_info::add_col(const char *table, std::string_view col,
                                              QRY_LIB_COLUMN_TYPE type) {
    QRY_LIB_COLUMN &column = cols_.emplace_back();
    copy_bounded(column.col_name, col);
    column.type = type;
    copy_bounded(column.table_name, table);
    return column;
}

void qry_lib_analyze_info::add_cols(const char *table, const char *col, const QRY_LIB_COLUMN_VALUE &value,
                                    QRY_LIB_COLUMN_TYPE type) {
    std::memcpy(&add_col(table, col, type).value, &value, sizeof value);
}

void qry_lib_analyze_info::add_empty_col(const char *table, std::string_view col) {
    add_col(table, col, QRY_LIB_COLUMN_TYPE_STR);
}

void qry_lib_analyze_info::add_cols(const char *col, const QRY_LIB_COLUMN_VALUE &value,
                                    QRY_LIB_COLUMN_TYPE type) {
    add_cols(get_table(), col, value, type);
}

void qry_lib_analyze_info::add_filter_cols(const char *table, const char *col, const char *value,
                                           QRY_LIB_OPERATION_TYPE operation, QRY_LIB_JOIN_TYPE join,
                                           std::int32_t quoted) {
    filters_.emplace_back(table, col, value, operation, join, quoted);
}

void qry_lib_analyze_info::add_filter_cols(const char *col, const char *value,
                                           QRY_LIB_OPERATION_TYPE operation, QRY_LIB_JOIN_TYPE join,
                                           std::int32_t quoted) {
    add_filter_cols(get_table(), col, value, operation, join, quoted);
}

void qry_lib_analyze_info::set_order(const char *table, const char *col, QRY_LIB_ODER_TYPE order_type) {
    order_table_ = table;
    order_col_ = col;
    order_type_ = order_type;
}

void qry_lib_analyze_info::set_order(const char *col, QRY_LIB_ODER_TYPE order_type) {
    set_order(get_table(), col, order_type);
}

void qry_lib_analyze_info::all_clear() {
    *this = qry_lib_analyze_info();
}

std::uint32_t qry_lib_analyze_info::get_table(std::uint16_t index, char *name) const {
    if (index >= get_table_num()) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(name, tables_[index].c_str());
    return 0;
}

std::uint32_t qry_lib_analyze_info::get_cols(std::uint16_t index, char *table, char *col,
                                             QRY_LIB_COLUMN_VALUE *value, QRY_LIB_COLUMN_TYPE &type) const {
    if (const std::uint32_t code = get_cols(index, col, value, type); code != 0) {
        return code;
    }
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(table, cols_[index].table_name);
    return 0;
}

std::uint32_t qry_lib_analyze_info::get_cols(std::uint16_t index, char *col, QRY_LIB_COLUMN_VALUE *value,
                                             QRY_LIB_COLUMN_TYPE &type) const {
    const QRY_LIB_COLUMN *column = col_at(index);
    if (column == nullptr) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(col, column->col_name);
    std::memcpy(value, &column->value, sizeof *value);
    type = column->type;
    return 0;
}

std::uint32_t qry_lib_analyze_info::get_filter_cols(std::uint16_t index, char *table, char *col, char *value,
                                                    QRY_LIB_OPERATION_TYPE &operation,
                                                    QRY_LIB_JOIN_TYPE &join, std::int32_t &quoted) const {
    if (const std::uint32_t code = get_filter_cols(index, col, value, operation, join, quoted); code != 0) {
        return code;
    }
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(table, filters_[index].table_name.c_str());
    return 0;
}

std::uint32_t qry_lib_analyze_info::get_filter_cols(std::uint16_t index, char *col, char *value,
                                                    QRY_LIB_OPERATION_TYPE &operation,
                                                    QRY_LIB_JOIN_TYPE &join, std::int32_t &quoted) const {
    const QRY_LIB_CONDITION *condition = filter_at(index);
    if (condition == nullptr) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(col, condition->col_name.c_str());
    copy_bounded<QRY_LIB_STRING_MAX>(value, condition->value.str_value);
    operation = condition->operation;
    join = condition->join;
    quoted = condition->value_is_quoted;
    return 0;
}

void qry_lib_analyze_info::get_order(char *table, char *col, QRY_LIB_ODER_TYPE &order_type) const {
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(table, order_table_.c_str());
    get_order(col, order_type);
}

void qry_lib_analyze_info::get_order(char *col, QRY_LIB_ODER_TYPE &order_type) const {
    copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(col, order_col_.c_str());
    order_type = order_type_;
}

} // namespace norvane
