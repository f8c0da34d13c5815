// Keys name elements; the catalog knows what columns those are.
#include "tools/text/filter_key_text.h"

#include <cstring>

#include <fmt/format.h>

#include "exec/qry_lib_db_executer.h"

namespace qrytext {

namespace {

template <typename Number>
Number number_in(const char *value) {
    Number number;
    std::memcpy(&number, value, sizeof number);
    return number;
}

} // namespace

std::string key_column(const std::string &db_name, const std::string &table,
                       const qry_lib_tb_list_filter_key_ &key) {
    norvane::qry_lib_table_element *catalog = nullptr;
    norvane::qry_lib_table_element_factory::create_elemet(db_name.c_str(), &catalog);
    short column_num = 0;
    const QRY_LIB_ELEMENT_DEF *columns = catalog->get_table_info_(table.c_str(), column_num);
    for (short i = 0; i < column_num; ++i) {
        const QRY_LIB_ELEMENT_INFO &info = columns[i].info;
        if (info.element_id == key.element_id && info.member_offset == key.member_offset) {
            return info.name;
        }
    }
    return fmt::format("element 0x{:08X}", key.element_id);
}

cell key_value(const qry_lib_tb_list_filter_key_ &key) {
    switch (key.elem_type) {
    case norvane::element_int:
        return std::int64_t{number_in<std::int32_t>(key.value)};
    case norvane::element_uchar:
        return std::int64_t{number_in<std::uint8_t>(key.value)};
    case norvane::element_ushort:
        return std::int64_t{number_in<std::uint16_t>(key.value)};
    case norvane::element_string:
    case norvane::element_name:
        return std::string(key.value);
    default:
        return std::int64_t{number_in<std::uint32_t>(key.value)};
    }
}

std::vector<free_key> free_keys(const std::string &db_name, const std::string &table) {
    norvane::qry_lib_db_executer executer;
    norvane::qry_lib_db_executer::filter_keys keys;
    if (executer.open_catalog(db_name.c_str()) == 0) {
        executer.create_primary_filter_key(table.c_str(), QRY_LIB_OPERATION_TYPE_EQUAL, keys);
    }
    std::vector<free_key> found;
    for (const qry_lib_tb_list_filter_key_ &key : keys) {
        found.push_back({key_column(db_name, table, key), key_value(key)});
    }
    return found;
}

} // namespace qrytext
