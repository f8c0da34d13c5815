// SELECT and COUNT: the found records become the rows of the caller's rowset.
#include <cstring>

#include "api/qry_lib_db_rowset_lib.h"
#include "exec/element_buffer.h"
#include "exec/qry_lib_db_executer.h"
#include "util/bounded_text.h"
#include "util/trace.h"

namespace norvane {

namespace {

// Copies a name in steps of so many bytes: a move or two instead of a call. No more, for what lies behind the
// name in its array is another cache line, and a large result has to fetch each of them from memory.
constexpr std::size_t name_step = 16;

template <std::size_t Size>
void copy_name(char (&to)[Size], const char (&from)[Size], std::size_t length) {
    static_assert(Size % name_step == 0);
    for (std::size_t i = 0; i <= length; i += name_step) {
        std::memcpy(to + i, from + i, name_step);
    }
}

} // namespace

int qry_lib_db_executer::exec_select(const qry_lib_analyze_info &info, record_numbers records,
                                     qry_lib_db_rowset_ &rowset) {
    if (info.get_cols_num() != 0) {
        const int code = exec_select_proc(info, std::move(records), rowset);
        return code == 0 ? 0 : trace_code(__func__, 316, code);
    }
    // What the rows are read by, without the conditions: they have been used.
    qry_lib_analyze_info counted;
    counted.set_table(info.get_table());
    info.copy_order(counted);
    if (const int code = add_standard_cols(counted); code != 0) {
        return trace_code(__func__, 326, code);
    }
    const int code = exec_select_proc(counted, std::move(records), rowset);
    return code == 0 ? 0 : trace_code(__func__, 332, code);
}

// A COUNT reads the key columns, or the edit counter's first, so that there is a row for each record.
int qry_lib_db_executer::add_standard_cols(qry_lib_analyze_info &info) {
    if (!catalog_->is_primary_filter_key(info.get_table())) {
        char name[sizeof(QRY_LIB_ELEMENT_INFO::name)];
        if (const int code = catalog_->get_first_field_name(info.get_table(), name); code != 0) {
            return trace_code(__func__, 1495, code);
        }
        info.add_empty_col(name);
        return 0;
    }
    const std::uint16_t before = info.get_cols_num();
    for (const QRY_LIB_ELEMENT_DEF &column : catalog_->columns_of(info.get_table())) {
        if (column.is_primary == 1) {
            info.add_empty_col(column.info.name);
        }
    }
    return info.get_cols_num() != before ? 0 : trace_code(__func__, 1505, QRY_LIB_INVALID_ARGUMENT);
}

int qry_lib_db_executer::exec_select_proc(const qry_lib_analyze_info &info, record_numbers records,
                                          qry_lib_db_rowset_ &rowset) {
    const auto row_num = static_cast<std::uint16_t>(records.size());
    if (qry_lib_db_rowset_lib().init_rowset(info.get_cols_num(), row_num, rowset) != 0) {
        return trace_code(__func__, 380, QRY_LIB_ROWSET_NOT_CREATED);
    }
    rowset_guard unfinished(rowset);
    record_numbers sorted;
    if (const int code = sort_tbdb_table_id(info, std::move(records), sorted); code != 0) {
        return trace_code(__func__, 387, code);
    }
    target_columns columns;
    if (const int code = resolve_columns(info, __func__, 400, 408, columns); code != 0) {
        return code;
    }
    if (const int code = read_rows(columns, info.get_table(), sorted, rowset); code != 0) {
        return code;
    }
    unfinished.release();
    return 0;
}

int qry_lib_db_executer::resolve_columns(const qry_lib_analyze_info &info, const char *function,
                                         int fetch_line, int unknown_line, target_columns &columns) {
    const row_range<QRY_LIB_ELEMENT_DEF> known = catalog_->columns_of(info.get_table());
    columns.reserve(info.get_cols_num());
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        target_column &target = columns.emplace_back();
        target.column = info.col_at(i);
        if (target.column == nullptr) {
            return trace_code(function, fetch_line, QRY_LIB_NO_SUCH_ITEM);
        }
        const QRY_LIB_ELEMENT_DEF *row = find_column(known, target.column->col_name);
        if (row == nullptr) {
            return trace_code(function, unknown_line, QRY_LIB_INVALID_ARGUMENT);
        }
        target.element = &row->info;
        target.name_length = std::strlen(target.column->col_name);
    }
    return 0;
}

// Writes each value once, where the caller will read it.
int qry_lib_db_executer::read_rows(const target_columns &columns, const char *table,
                                   const record_numbers &records, qry_lib_db_rowset_ &rowset) {
    static constexpr char name[] = "exec_select_proc";
    const qry_lib_db_rowset_lib rows;
    char table_name[sizeof QRY_LIB_COLUMN::table_name] = {};
    copy_bounded(table_name, table);
    const std::size_t table_length = std::strlen(table_name);
    element_buffer buffer;
    for (const unsigned short record : records) {
        rows.next_record_index(rowset);
        std::uint16_t index = 0;
        for (const target_column &selected : columns) {
            const QRY_LIB_ELEMENT_INFO &element = *selected.element;
            buffer.clear(element);
            const std::uint32_t code =
                qry_lib_tb_get_stc_table(element.category_id, record, element.element_id, buffer.data());
            if (code != 0) {
                return trace_code(name, 436, static_cast<int>(code));
            }
            QRY_LIB_COLUMN *column = rows.col_at(rowset, index++);
            if (column == nullptr) {
                return trace_code(name, 450, QRY_LIB_INVALID_ARGUMENT);
            }
            copy_name(column->col_name, selected.column->col_name, selected.name_length);
            copy_name(column->table_name, table_name, table_length);
            catalog_->conv_val_tbdb_to_db2e(element, buffer.data(), *column);
        }
    }
    return 0;
}

} // namespace norvane
