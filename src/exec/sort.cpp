// ORDER BY: record numbers ordered by the value of one column, before any row is built.
#include <cstring>

#include "exec/element_buffer.h"
#include "exec/qry_lib_db_executer.h"
#include "util/bounded_text.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

// A sort item is a record number and, right behind it, the column's raw value.
constexpr std::size_t record_number_size = sizeof(std::uint16_t);

struct compare_kind_row {
    std::uint32_t elem_type;
    QRY_LIB_ODER_TYPE order;
    std::uint32_t kind; // the sort utility's: even ascending, odd descending
};

// Signed numbers share the kinds of unsigned ones: a negative value comes after every positive one.
constexpr compare_kind_row compare_kinds[] = {
    {element_int, QRY_LIB_ODER_TYPE_ASC, 4},    {element_int, QRY_LIB_ODER_TYPE_DESC, 5},
    {element_uchar, QRY_LIB_ODER_TYPE_ASC, 0},  {element_uchar, QRY_LIB_ODER_TYPE_DESC, 1},
    {element_ushort, QRY_LIB_ODER_TYPE_ASC, 2}, {element_ushort, QRY_LIB_ODER_TYPE_DESC, 3},
    {element_uint, QRY_LIB_ODER_TYPE_ASC, 4},   {element_uint, QRY_LIB_ODER_TYPE_DESC, 5},
    {element_ulong, QRY_LIB_ODER_TYPE_ASC, 4},  {element_ulong, QRY_LIB_ODER_TYPE_DESC, 5},
    {element_string, QRY_LIB_ODER_TYPE_ASC, 6}, {element_string, QRY_LIB_ODER_TYPE_DESC, 7},
    {element_name, QRY_LIB_ODER_TYPE_ASC, 8},   {element_name, QRY_LIB_ODER_TYPE_DESC, 9},
};

// Of a string no more than its end, cut where it fills its element: it must not run into the next item.
void copy_key(const QRY_LIB_ELEMENT_INFO &element, const char *value, char *key) {
    if (!is_string_element(element.elem_type) || element.size == 0) {
        std::memcpy(key, value, element.size);
        return;
    }
    const std::size_t length = bounded_length(value, std::size_t{element.size} - 1);
    std::memcpy(key, value, length);
    key[length] = '\0';
}

} // namespace

int qry_lib_db_executer::sort_tbdb_table_id(const qry_lib_analyze_info &info, record_numbers records,
                                            record_numbers &sorted) {
    char column[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_ODER_TYPE order;
    info.get_order(column, order);
    if (order == QRY_LIB_ODER_TYPE_NOTHING) {
        sorted = std::move(records);
        return 0;
    }
    QRY_LIB_ELEMENT_INFO element;
    if (const int code = catalog_->get_info(info.get_table(), column, element); code != 0) {
        return trace_code(__func__, 1233, code);
    }
    pool_block items;
    if (items.take(records.size(), sizeof(void *)) != 0) {
        return trace_code(__func__, 1243, QRY_LIB_NO_MEMORY);
    }
    const auto count = static_cast<std::uint32_t>(records.size() * sizeof(void *));
    return sort_tbdb_table_id_internal(items.as<void *>(), count, order, element, records, sorted);
}

int qry_lib_db_executer::sort_tbdb_table_id_internal(void **items, std::uint32_t count,
                                                     QRY_LIB_ODER_TYPE order,
                                                     const QRY_LIB_ELEMENT_INFO &element,
                                                     const record_numbers &records, record_numbers &sorted) {
    pool_block block;
    if (block.take(records.size(), element.size + record_number_size) != 0) {
        return trace_code(__func__, 1286, QRY_LIB_NO_MEMORY);
    }
    return sort_internal(items, count, order, block.as<char>(), element, records, sorted);
}

int qry_lib_db_executer::sort_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order,
                                       char *block, const QRY_LIB_ELEMENT_INFO &element,
                                       const record_numbers &records, record_numbers &sorted) {
    element_buffer buffer;
    void **next = items;
    char *item = block;
    for (const unsigned short record : records) {
        *next++ = item;
        buffer.clear(element);
        const std::uint32_t code =
            qry_lib_tb_get_stc_table(element.category_id, record, element.element_id, buffer.data());
        if (code != 0) {
            return trace_code(__func__, 1343, static_cast<int>(code));
        }
        std::memcpy(item, &record, record_number_size);
        copy_key(element, buffer.at(element.member_offset), item + record_number_size);
        item += record_number_size + element.size;
    }
    CMN_LIB_SORT_PARAM_T param;
    create_sort_param(element, order, count / static_cast<std::uint32_t>(sizeof(void *)), param);
    if (const std::uint32_t result = cmn_lib_sort(items, &param); result != 0) {
        trace_return(__func__, 1358, result);
        return QRY_LIB_NOT_ACCEPTED;
    }
    sorted.reserve(sorted.size() + records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        unsigned short record;
        std::memcpy(&record, items[i], record_number_size);
        sorted.push_back(record);
    }
    return 0;
}

void qry_lib_db_executer::create_sort_param(const QRY_LIB_ELEMENT_INFO &element, QRY_LIB_ODER_TYPE order,
                                            std::uint32_t count, CMN_LIB_SORT_PARAM_T &param) {
    param = CMN_LIB_SORT_PARAM_T{};
    param.key_offset = record_number_size;
    param.count = count;
    for (const compare_kind_row &row : compare_kinds) {
        if (row.elem_type == element.elem_type && row.order == order) {
            param.compare_kind = row.kind;
            return;
        }
    }
}

} // namespace norvane
