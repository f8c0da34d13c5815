// INSERT, UPDATE and DELETE. There is no undo: what was written before a failure stays written.
#include "exec/element_buffer.h"
#include "exec/qry_lib_db_executer.h"
#include "util/trace.h"

namespace norvane {

namespace {

constexpr std::uint32_t requester = 0x2301; // who writes, as the element tables know this library

bool fits_element(const QRY_LIB_COLUMN &column, const QRY_LIB_ELEMENT_INFO &element) {
    return !is_string_element(element.elem_type) || column_text(column).length() < element.size;
}

} // namespace

int qry_lib_db_executer::exec_insert(const qry_lib_analyze_info &info, unsigned int category,
                                     const record_numbers &records) {
    // An existing key is overwritten.
    return records.empty() ? exec_new_insert(info, category) : exec_update_insert(info, records);
}

int qry_lib_db_executer::exec_new_insert(const qry_lib_analyze_info &info, unsigned int category) {
    light_keys keys;
    if (const int code = create_primary_filter_key(info.get_table(), QRY_LIB_OPERATION_TYPE_EQUAL, keys);
        code != 0) {
        return code;
    }
    record_numbers free_records;
    if (const int code = create_search_table_id(category, keys, free_records); code != 0) {
        return trace_code(__func__, 595, code);
    }
    if (free_records.empty()) {
        return trace_code(__func__, 603, QRY_LIB_NO_FREE_ENTRY);
    }
    const int code = set_tb_table(info, {free_records.front()});
    return code == 0 ? 0 : trace_code(__func__, 615, code);
}

int qry_lib_db_executer::exec_update_insert(const qry_lib_analyze_info &info, const record_numbers &records) {
    const int code = set_tb_table(info, records);
    return code == 0 ? 0 : trace_code(__func__, 642, code);
}

int qry_lib_db_executer::exec_update(const qry_lib_analyze_info &info, const record_numbers &records) {
    if (records.empty()) {
        return trace_code(__func__, 705, QRY_LIB_NO_SUCH_ITEM);
    }
    const int code = set_tb_table(info, records);
    return code == 0 ? 0 : trace_code(__func__, 712, code);
}

int qry_lib_db_executer::exec_delete(const qry_lib_analyze_info &, unsigned int category,
                                     const record_numbers &records) {
    for (const unsigned short record : records) {
        if (qry_lib_tb_reset_one_stc_table(category, record) != 0) {
            return trace_code(__func__, 680, QRY_LIB_FAILURE);
        }
    }
    return 0;
}

int qry_lib_db_executer::set_tb_table(const qry_lib_analyze_info &info, const record_numbers &records) {
    target_columns columns;
    if (const int code = resolve_columns(info, __func__, 1134, 1142, columns); code != 0) {
        return code;
    }
    if (records.empty()) {
        return 0;
    }
    for (const target_column &target : columns) {
        if (!fits_element(*target.column, *target.element)) {
            return trace_code(__func__, __LINE__, QRY_LIB_INVALID_ARGUMENT);
        }
    }
    for (const unsigned short record : records) {
        for (const target_column &target : columns) {
            if (const int code = write_column(target, record); code != 0) {
                return code;
            }
        }
    }
    return 0;
}

int qry_lib_db_executer::write_column(const target_column &target, unsigned short record) {
    static constexpr char name[] = "set_tb_table";
    const QRY_LIB_ELEMENT_INFO &element = *target.element;
    element_buffer buffer;
    buffer.clear();
    // The other members of a composite element keep their values.
    if (element.is_member == 1) {
        const std::uint32_t code =
            qry_lib_tb_get_stc_table(element.category_id, record, element.element_id, buffer.data());
        if (code != 0) {
            return trace_code(name, 1167, static_cast<int>(code));
        }
    }
    if (const int code = catalog_->conv_val_db2e_to_tbdb(element, *target.column, buffer.data()); code != 0) {
        return trace_code(name, 1175, code);
    }
    const std::uint32_t code =
        qry_lib_tb_set_stc_table(requester, element.category_id, record, element.element_id, buffer.data());
    return code == 0 ? 0 : trace_code(name, 1183, static_cast<int>(code));
}

} // namespace norvane
