// The parsed form of one query: what the parser fills and the executer reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <qrylib/types.h>

#include "util/chunked_list.h"

namespace norvane {

// One comparison of a WHERE clause. The value is text without its quotes; it becomes a number where the
// column's type is known.
struct QRY_LIB_CONDITION {
    // Copies as much of the text as a value holds; the bytes behind it mean nothing.
    QRY_LIB_CONDITION(std::string_view table, std::string_view col, std::string_view text,
                      QRY_LIB_OPERATION_TYPE how, QRY_LIB_JOIN_TYPE joined_by, std::int32_t quoted);

    std::string col_name;
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::string table_name;
    std::int32_t value_is_quoted; // 1: written between single quotes
};

// A value type, created empty for each query. Copies are deep. Counts and indexes are 16 bits wide; the
// parser refuses a query with more. Getters that take an index answer 0xDB02 beyond the end and then copy
// nothing. Buffers handed to getters hold a column name (32 bytes), a table name (128) or a value (3000);
// a longer name is cut to fit and terminated.
class qry_lib_analyze_info {
  public:
    void set_exec_type(QRY_LIB_DB_QUERY_TYPE type) { exec_type_ = type; }
    void set_db_name(const char *name) { db_name_ = name; }

    // Replaces the first table, or adds it where there is none.
    void set_table(const char *name);
    void add_table(const char *name) { tables_.emplace_back(name); }

    // The forms without a table name the first table.
    void add_cols(const char *table, const char *col, const QRY_LIB_COLUMN_VALUE &value,
                  QRY_LIB_COLUMN_TYPE type);
    void add_cols(const char *col, const QRY_LIB_COLUMN_VALUE &value, QRY_LIB_COLUMN_TYPE type);

    // A column that has no value yet: the empty string, zeros behind it.
    void add_empty_col(const char *table, std::string_view col);
    void add_empty_col(std::string_view col) { add_empty_col(get_table(), col); }
    void add_filter_cols(const char *table, const char *col, const char *value,
                         QRY_LIB_OPERATION_TYPE operation, QRY_LIB_JOIN_TYPE join, std::int32_t quoted);
    void add_filter_cols(const char *col, const char *value, QRY_LIB_OPERATION_TYPE operation,
                         QRY_LIB_JOIN_TYPE join, std::int32_t quoted);

    void add_filter(std::string_view col, std::string_view value, QRY_LIB_OPERATION_TYPE operation,
                    QRY_LIB_JOIN_TYPE join, std::int32_t quoted) {
        filters_.emplace_back(get_table(), col, value, operation, join, quoted);
    }

    // How many columns or conditions there will be in all, as far as is known.
    void expect_cols(std::size_t num) { cols_.expect(num); }
    void expect_filter_cols(std::size_t num) { filters_.expect(num); }

    void set_order(const char *table, const char *col, QRY_LIB_ODER_TYPE order_type);
    void set_order(const char *col, QRY_LIB_ODER_TYPE order_type);
    void copy_order(qry_lib_analyze_info &to) const {
        to.set_order(order_table_.c_str(), order_col_.c_str(), order_type_);
    }
    void all_clear();

    QRY_LIB_DB_QUERY_TYPE get_exec_type() const { return exec_type_; }

    // Texts are owned by the object and live until it changes. The empty text where there is no table.
    const char *get_db_name() const { return db_name_.c_str(); }
    const char *get_table() const { return tables_.empty() ? "" : tables_.front().c_str(); }

    std::uint16_t get_table_num() const { return static_cast<std::uint16_t>(tables_.size()); }
    std::uint32_t get_table(std::uint16_t index, char *name) const;

    // The name itself; null beyond the end.
    const char *table_at(std::uint16_t index) const {
        return index < get_table_num() ? tables_[index].c_str() : nullptr;
    }
    std::uint16_t get_cols_num() const { return static_cast<std::uint16_t>(cols_.size()); }

    // The column itself, for reading without a copy of its 3000 bytes; null beyond the end.
    const QRY_LIB_COLUMN *col_at(std::uint16_t index) const {
        return index < get_cols_num() ? &cols_[index] : nullptr;
    }
    std::uint32_t get_cols(std::uint16_t index, char *table, char *col, QRY_LIB_COLUMN_VALUE *value,
                           QRY_LIB_COLUMN_TYPE &type) const;
    std::uint32_t get_cols(std::uint16_t index, char *col, QRY_LIB_COLUMN_VALUE *value,
                           QRY_LIB_COLUMN_TYPE &type) const;
    std::uint16_t get_filter_cols_num() const { return static_cast<std::uint16_t>(filters_.size()); }

    // The condition itself, likewise.
    const QRY_LIB_CONDITION *filter_at(std::uint16_t index) const {
        return index < get_filter_cols_num() ? &filters_[index] : nullptr;
    }
    std::uint32_t get_filter_cols(std::uint16_t index, char *table, char *col, char *value,
                                  QRY_LIB_OPERATION_TYPE &operation, QRY_LIB_JOIN_TYPE &join,
                                  std::int32_t &quoted) const;
    std::uint32_t get_filter_cols(std::uint16_t index, char *col, char *value,
                                  QRY_LIB_OPERATION_TYPE &operation, QRY_LIB_JOIN_TYPE &join,
                                  std::int32_t &quoted) const;
    void get_order(char *table, char *col, QRY_LIB_ODER_TYPE &order_type) const;
    void get_order(char *col, QRY_LIB_ODER_TYPE &order_type) const;

  private:
    // Columns and conditions are 3 KB each, and a text may announce thousands of which the first is refused.
    static constexpr std::size_t chunk_size = 256;

    QRY_LIB_COLUMN &add_col(const char *table, std::string_view col, QRY_LIB_COLUMN_TYPE type);

    QRY_LIB_DB_QUERY_TYPE exec_type_ = QRY_LIB_DB_QUERY_TYPE_NONE;
    chunked_list<QRY_LIB_COLUMN, chunk_size> cols_;
    std::vector<std::string> tables_; // the first is the query's main table
    chunked_list<QRY_LIB_CONDITION, chunk_size> filters_;
    std::string order_col_;
    QRY_LIB_ODER_TYPE order_type_ = QRY_LIB_ODER_TYPE_NOTHING;
    std::string order_table_;
    std::string db_name_;
};

} // namespace norvane
