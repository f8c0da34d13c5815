// A query over several tables between its steps: the per-table queries, the join conditions, the select list
// and the per-table results.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <qrylib/types.h>

#include "parser/qry_lib_analyze_info.h"
#include "util/chunked_list.h"

namespace norvane {

// One join condition: a column of one table equals a column of another. The sides are symmetric; only their
// table and column names are used.
struct QRY_LIB_LINK {
    QRY_LIB_COLUMN left;
    QRY_LIB_COLUMN right;
};

// One row of a join in progress: full copies of the columns of the tables joined so far.
struct QRY_LIB_RECORD_LINK {
    std::vector<QRY_LIB_COLUMN> cols;
};

// The rows of a join in progress.
struct QRY_LIB_ROWSET_LINK {
    std::vector<QRY_LIB_RECORD_LINK> records;
};

// Filled once per linked SELECT, read by the join, emptied by all_clear(). Counts and indexes are 16 bits
// wide; getters answer 0xDB02 beyond the end and then copy nothing. Rowsets handed in belong to the object
// until all_clear() or its end releases them; those handed out are views that share the rows.
class qry_lib_analyze_link_info {
  public:
    qry_lib_analyze_link_info() = default;
    qry_lib_analyze_link_info(const qry_lib_analyze_link_info &) = delete;
    qry_lib_analyze_link_info &operator=(const qry_lib_analyze_link_info &) = delete;
    ~qry_lib_analyze_link_info() { all_clear(); }

    void add_analyze_info(qry_lib_analyze_info info);
    void add_analyze_infos(std::vector<qry_lib_analyze_info> infos);
    std::uint16_t get_analyze_info_num() const { return static_cast<std::uint16_t>(analyze_infos_.size()); }
    std::uint32_t get_analyze_info(std::uint16_t index, qry_lib_analyze_info &out) const;

    void add_link(const QRY_LIB_LINK &link);

    // How many links there will be in all, as far as is known.
    void expect_links(std::size_t num) { links_.expect(num); }
    std::uint16_t get_link_num() const { return static_cast<std::uint16_t>(links_.size()); }
    std::uint32_t get_link(std::uint16_t index, QRY_LIB_LINK &out) const;

    // An empty select list means every column.
    void add_cols(const char *table, const char *col);
    std::uint16_t get_cols_num() const { return static_cast<std::uint16_t>(cols_.size()); }

    // `table` holds 128 bytes, `col` 32.
    std::uint32_t get_cols(std::uint16_t index, char *table, char *col) const;

    void set_order(const char *table, const char *col, QRY_LIB_ODER_TYPE order_type);
    void get_order(char *table, char *col, QRY_LIB_ODER_TYPE &order_type) const;

    void add_rowset(qry_lib_db_rowset_ rowset);
    std::uint16_t get_rowset_num() const { return static_cast<std::uint16_t>(rowsets_.size()); }
    std::uint32_t get_rowset(std::uint16_t index, qry_lib_db_rowset_ &out) const;

    void all_clear();

  private:
    struct selected_column {
        char table_name[QRY_LIB_TABLE_NAME_MAX + 1];
        char col_name[QRY_LIB_COLUMN_NAME_MAX + 1];
    };

    std::vector<selected_column> cols_;
    chunked_list<QRY_LIB_LINK, 64> links_; // 6 KB each
    std::vector<qry_lib_analyze_info> analyze_infos_;
    std::string order_col_;
    QRY_LIB_ODER_TYPE order_type_ = QRY_LIB_ODER_TYPE_NOTHING;
    std::string order_table_;
    std::vector<qry_lib_db_rowset_> rowsets_;
};

} // namespace norvane
