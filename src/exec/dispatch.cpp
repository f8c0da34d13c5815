// The single route of every statement: catalog, filter keys, search, then the operation for its type.
#include "api/qry_lib_db_rowset_lib.h"
#include "exec/qry_lib_db_executer.h"
#include "util/trace.h"

namespace norvane {

namespace {

// Labels by statement type. The label of CREATE carries a bracket of its own, so that its summary shows two.
constexpr const char *type_labels[] = {"", "INSERT", "UPDATE", "DELETE", "SELECT", "COUNT", "CREATE]"};
constexpr const char *order_labels[] = {"NOTHING ]", "ASC ]", "DESC ]"};

// Most summaries fit without growing.
constexpr std::size_t summary_size = 160;

template <std::size_t Num>
const char *label(const char *const (&labels)[Num], std::uint32_t value) {
    return value < Num ? labels[value] : "";
}

// Fetches every column and condition, as a fuller summary would; none is added to it.
void fetch_all(const qry_lib_analyze_info &info) {
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        info.col_at(i);
    }
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        info.filter_at(i);
    }
}

} // namespace

int qry_lib_db_executer::exec(const qry_lib_analyze_info &info) {
    return exec_internal(info, nullptr);
}

int qry_lib_db_executer::exec(const qry_lib_analyze_info &info, qry_lib_db_rowset_ &rowset) {
    return exec_internal(info, &rowset);
}

int qry_lib_db_executer::open_catalog(const char *db_name) {
    return qry_lib_table_element_factory::create_elemet(db_name, &catalog_);
}

int qry_lib_db_executer::exec_internal(const qry_lib_analyze_info &info, qry_lib_db_rowset_ *rowset) {
    if (info.get_exec_type() == QRY_LIB_DB_QUERY_TYPE_CREATE) {
        return 0;
    }
    if (open_catalog(info.get_db_name()) != 0) {
        return trace_code(__func__, 222, QRY_LIB_INVALID_ARGUMENT);
    }
    unsigned int category = 0;
    light_keys keys;
    if (const int code = create_filter_key(info, category, keys); code != 0) {
        close_catalog();
        return trace_code(__func__, 231, code);
    }
    record_numbers records;
    if (const int code = create_search_table_id(category, keys, records); code != 0) {
        close_catalog();
        return trace_code(__func__, 240, code);
    }
    const int code = dispatch(info, category, std::move(records), rowset);
    if (rowset != nullptr) {
        qry_lib_db_rowset_lib().first_record_index(*rowset);
    }
    close_catalog();
    return code;
}

int qry_lib_db_executer::dispatch(const qry_lib_analyze_info &info, unsigned int category,
                                  record_numbers records, qry_lib_db_rowset_ *rowset) {
    switch (info.get_exec_type()) {
    case QRY_LIB_DB_QUERY_TYPE_INSERT:
        return exec_insert(info, category, records);
    case QRY_LIB_DB_QUERY_TYPE_UPDATE:
        return exec_update(info, records);
    case QRY_LIB_DB_QUERY_TYPE_DELETE:
        return exec_delete(info, category, records);
    case QRY_LIB_DB_QUERY_TYPE_SELECT:
    case QRY_LIB_DB_QUERY_TYPE_COUNT:
        return rowset == nullptr ? 0 : exec_select(info, std::move(records), *rowset);
    default:
        return QRY_LIB_INVALID_ARGUMENT;
    }
}

std::string qry_lib_db_executer::log_out_put_analyze_info(const qry_lib_analyze_info &info) const {
    char order_col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_ODER_TYPE order_type;
    info.get_order(order_col, order_type);

    std::string line;
    line.reserve(summary_size);
    line += "EXE_TYPE=[";
    line += label(type_labels, info.get_exec_type());
    line += "] TABLE=[";
    line += info.get_table();
    line += "]DB_NAME=[";
    line += info.get_db_name();
    line += "] SORT ";
    line += order_col;
    line += " [";
    line += label(order_labels, order_type);
    fetch_all(info);
    return line;
}

} // namespace norvane
