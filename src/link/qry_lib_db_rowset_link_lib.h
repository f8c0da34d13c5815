// The join: per-table rowsets become the caller's rowset.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <qrylib/types.h>

#include "link/qry_lib_analyze_link_info.h"

namespace norvane {

// A nested-loop equi-join over the rowsets of the link model in FROM order, driven by its links: for each row
// of the table being joined, every row joined so far is copied and its keys compared. That is right for the
// small tables of the device. No state.
class qry_lib_db_rowset_link_lib {
  public:
    // Creates `rowset` from the join: 0; 0xDB05 when the join fails; 0xDB02 when a rowset cannot be fetched.
    // Rows come in the order of the last joined table first. After a failure the rowset is empty.
    int link_rowset(const qry_lib_analyze_link_info &link_info, qry_lib_db_rowset_ &rowset);

    // Projects the joined rows onto the select list, or onto every column when it is empty. 0 or 0xDB05.
    int covert_rowset(QRY_LIB_ROWSET_LINK &rows, const qry_lib_analyze_link_info &link_info,
                      qry_lib_db_rowset_ &rowset);

    // 1 when the values are equal: numbers by their bits, zero-extended; strings as strings; a number and a
    // string never.
    int check_column_hit(const QRY_LIB_COLUMN &a, const QRY_LIB_COLUMN &b);

    // Called for every column that is copied into a joined row. Does nothing.
    void output_print_add_col(const char *, const QRY_LIB_COLUMN &) {}

    // Release the columns of a row, the rows of a join.
    void free_record(QRY_LIB_RECORD_LINK &record);
    void free_rowset(QRY_LIB_ROWSET_LINK &rowset);

  private:
    // A column of the table being joined, and the column of the rows joined so far that it must equal.
    struct join_key {
        std::uint16_t index;
        std::string table_name;
        std::string col_name;
    };

    int take_first(qry_lib_db_rowset_ &table, QRY_LIB_ROWSET_LINK &joined);
    int join_table(const qry_lib_analyze_link_info &link_info, qry_lib_db_rowset_ &table,
                   QRY_LIB_ROWSET_LINK &joined);
    int select_keys(const qry_lib_analyze_link_info &link_info, const qry_lib_db_rowset_ &table,
                    const QRY_LIB_RECORD_LINK &first, std::vector<join_key> &keys);
    int join_row(const qry_lib_db_rowset_ &table, const std::vector<join_key> &keys,
                 const QRY_LIB_ROWSET_LINK &previous, QRY_LIB_RECORD_LINK &candidate,
                 QRY_LIB_ROWSET_LINK &joined);
    void append_row(const qry_lib_db_rowset_ &table, const char *label, QRY_LIB_RECORD_LINK &record);
    int fill_next_row(const QRY_LIB_RECORD_LINK &record, const qry_lib_analyze_link_info &link_info,
                      std::uint16_t col_num, qry_lib_db_rowset_ &rowset);
};

} // namespace norvane
