// The executer's operations in the forms that take and give lists. Inside they are vectors: a node for each
// record costs more than all else that is done with its number.
#include "exec/qry_lib_db_executer.h"

namespace norvane {

namespace {

// Runs an operation that appends to record numbers, or replaces them, on those of a list.
template <typename Operation>
int on_list(qry_lib_db_executer::record_list &list, Operation operation) {
    record_numbers numbers(list);
    const int code = operation(numbers);
    list.assign(numbers.begin(), numbers.end());
    return code;
}

} // namespace

int qry_lib_db_executer::sort_tbdb_table_id(const qry_lib_analyze_info &info, record_list records,
                                            record_list &sorted) {
    return on_list(sorted,
                   [&](record_numbers &numbers) { return sort_tbdb_table_id(info, records, numbers); });
}

int qry_lib_db_executer::sort_tbdb_table_id_internal(void **items, std::uint32_t count,
                                                     QRY_LIB_ODER_TYPE order, QRY_LIB_ELEMENT_INFO element,
                                                     record_list records, record_list &sorted) {
    return on_list(sorted, [&](record_numbers &numbers) {
        return sort_tbdb_table_id_internal(items, count, order, element, records, numbers);
    });
}

int qry_lib_db_executer::sort_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order,
                                       char *block, QRY_LIB_ELEMENT_INFO element, record_list records,
                                       record_list &sorted) {
    return on_list(sorted, [&](record_numbers &numbers) {
        return sort_internal(items, count, order, block, element, records, numbers);
    });
}

} // namespace norvane
