// The link model's lists.
#include "api/qry_lib_db_rowset_lib.h"
#include "link/qry_lib_analyze_link_info.h"
#include "util/bounded_text.h"

namespace norvane {

void qry_lib_analyze_link_info::add_analyze_info(qry_lib_analyze_info info) {
    analyze_infos_.push_back(std::move(info));
}

void qry_lib_analyze_link_info::add_analyze_infos(std::vector<qry_lib_analyze_info> infos) {
    if (analyze_infos_.empty()) {
        analyze_infos_ = std::move(infos);
        return;
    }
    for (qry_lib_analyze_info &info : infos) {
        add_analyze_info(std::move(info));
    }
}

std::uint32_t qry_lib_analyze_link_info::get_analyze_info(std::uint16_t index,
                                                          qry_lib_analyze_info &out) const {
    if (index >= get_analyze_info_num()) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    out = qry_lib_analyze_info(analyze_infos_[index]); // less code than assigning each list
    return 0;
}

void qry_lib_analyze_link_info::add_link(const QRY_LIB_LINK &link) {
    links_.emplace_back(link);
}

std::uint32_t qry_lib_analyze_link_info::get_link(std::uint16_t index, QRY_LIB_LINK &out) const {
    if (index >= get_link_num()) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    out = links_[index];
    return 0;
}

void qry_lib_analyze_link_info::add_cols(const char *table, const char *col) {
    selected_column &column = cols_.emplace_back();
    copy_bounded(column.table_name, table);
    copy_bounded(column.col_name, col);
}

std::uint32_t qry_lib_analyze_link_info::get_cols(std::uint16_t index, char *table, char *col) const {
    if (index >= get_cols_num()) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(table, cols_[index].table_name);
    copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(col, cols_[index].col_name);
    return 0;
}

void qry_lib_analyze_link_info::set_order(const char *table, const char *col, QRY_LIB_ODER_TYPE order_type) {
    order_col_ = col;
    order_type_ = order_type;
    order_table_ = table;
}

void qry_lib_analyze_link_info::get_order(char *table, char *col, QRY_LIB_ODER_TYPE &order_type) const {
    copy_bounded<QRY_LIB_COLUMN_NAME_MAX>(col, order_col_.c_str());
    order_type = order_type_;
    copy_bounded<QRY_LIB_TABLE_NAME_MAX>(table, order_table_.c_str());
}

void qry_lib_analyze_link_info::add_rowset(qry_lib_db_rowset_ rowset) {
    rowsets_.push_back(rowset);
}

std::uint32_t qry_lib_analyze_link_info::get_rowset(std::uint16_t index, qry_lib_db_rowset_ &out) const {
    if (index >= get_rowset_num()) {
        return QRY_LIB_NO_SUCH_ITEM;
    }
    out = rowsets_[index];
    return 0;
}

void qry_lib_analyze_link_info::all_clear() {
    cols_.clear();
    links_ = {};
    analyze_infos_.clear();
    order_col_.clear();
    order_table_.clear();
    order_type_ = QRY_LIB_ODER_TYPE_NOTHING;
    for (qry_lib_db_rowset_ &rowset : rowsets_) {
        qry_lib_db_rowset_lib().delete_rowset(rowset);
    }
    rowsets_.clear();
}

} // namespace norvane
