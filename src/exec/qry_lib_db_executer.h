// The executer: carries out one analyzed query on one table against the element tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include <qrylib/element_table.h>
#include <qrylib/types.h>

#include "exec/qry_lib_table_element.h"
#include "parser/qry_lib_analyze_info.h"
#include "platform/sort.h"

namespace norvane {

// Record numbers from 0. A list becomes them wherever they are handed in.
class record_numbers : public std::vector<unsigned short> {
  public:
    using std::vector<unsigned short>::vector;
    record_numbers(const std::list<unsigned short> &numbers) : vector(numbers.begin(), numbers.end()) {}
};

// A filter key before it goes into the search's array, without the 3000 bytes of its value there.
struct light_key {
    const QRY_LIB_ELEMENT_INFO *element; // the schema's
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::uint32_t number; // the value of a number
    std::string text;     // or of a string
};

// One object serves one call at a time. exec() is the whole route; the operations behind it are public so
// that each can be driven alone, after open_catalog(). All answer 0 or the first failing step's code, traced.
//
// A record is in use when its primary key differs from the category's default record: every search but
// INSERT's starts with one such key for each key column.
class qry_lib_db_executer {
  public:
    using light_keys = std::vector<light_key>;
    using filter_keys = std::list<qry_lib_tb_list_filter_key_>;
    using record_list = std::list<unsigned short>;

    qry_lib_db_executer() = default;
    qry_lib_db_executer(const qry_lib_db_executer &) = delete;
    qry_lib_db_executer &operator=(const qry_lib_db_executer &) = delete;
    ~qry_lib_db_executer() { close_catalog(); }

    // Without a rowset a SELECT only searches. With one, the cursor ends before the first row.
    int exec(const qry_lib_analyze_info &info);
    int exec(const qry_lib_analyze_info &info, qry_lib_db_rowset_ &rowset);
    int exec_internal(const qry_lib_analyze_info &info, qry_lib_db_rowset_ *rowset);

    // A one-line summary of the query, for diagnosis. Written nowhere.
    std::string log_out_put_analyze_info(const qry_lib_analyze_info &info) const;

    // Selects the database for the operations below: 0, or 0xDB05 for an unknown one.
    int open_catalog(const char *db_name);
    void close_catalog() { qry_lib_table_element_factory::delete_elemet(&catalog_); }

    // Filter keys and search (filter_keys.cpp). The forms with lists are those for callers outside.
    void set_filter_key(const QRY_LIB_ELEMENT_INFO &info, QRY_LIB_OPERATION_TYPE operation,
                        QRY_LIB_JOIN_TYPE join, const void *value, filter_keys &keys);
    int create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation, light_keys &keys);
    int create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation, filter_keys &keys);
    int create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                  const qry_lib_analyze_info &info, light_keys &keys);
    int create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                  const qry_lib_analyze_info &info, filter_keys &keys);

    // 0xDB05 when `value`, in the element's representation, marks a free record.
    int create_primary_filter_key_chk(QRY_LIB_ELEMENT_INFO info, char *value);
    int create_filter_key(const qry_lib_analyze_info &info, unsigned int &category, light_keys &keys);
    int create_filter_key(const qry_lib_analyze_info &info, unsigned int &category, filter_keys &keys);

    // Appends the numbers of the matching records, ascending.
    int create_search_table_id(unsigned int category, const light_keys &keys, record_numbers &records);
    int create_search_table_id(unsigned int category, filter_keys &keys, record_list &records);

    // SELECT and COUNT (select.cpp).
    int exec_select(const qry_lib_analyze_info &info, record_numbers records, qry_lib_db_rowset_ &rowset);
    int exec_select_proc(const qry_lib_analyze_info &info, record_numbers records,
                         qry_lib_db_rowset_ &rowset);
    int add_standard_cols(qry_lib_analyze_info &info);

    // ORDER BY (sort.cpp): appends the ordered numbers. `count` is the byte size of the pointer array.
    int sort_tbdb_table_id(const qry_lib_analyze_info &info, record_numbers records, record_numbers &sorted);
    int sort_tbdb_table_id(const qry_lib_analyze_info &info, record_list records, record_list &sorted);
    int sort_tbdb_table_id_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order,
                                    const QRY_LIB_ELEMENT_INFO &element, const record_numbers &records,
                                    record_numbers &sorted);
    int sort_tbdb_table_id_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order,
                                    QRY_LIB_ELEMENT_INFO element, record_list records, record_list &sorted);
    int sort_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order, char *block,
                      const QRY_LIB_ELEMENT_INFO &element, const record_numbers &records,
                      record_numbers &sorted);
    int sort_internal(void **items, std::uint32_t count, QRY_LIB_ODER_TYPE order, char *block,
                      QRY_LIB_ELEMENT_INFO element, record_list records, record_list &sorted);
    void create_sort_param(const QRY_LIB_ELEMENT_INFO &element, QRY_LIB_ODER_TYPE order, std::uint32_t count,
                           CMN_LIB_SORT_PARAM_T &param);

    // INSERT, UPDATE, DELETE (write.cpp). Writes made before a failure stay made.
    int exec_insert(const qry_lib_analyze_info &info, unsigned int category, const record_numbers &records);
    int exec_new_insert(const qry_lib_analyze_info &info, unsigned int category);
    int exec_update_insert(const qry_lib_analyze_info &info, const record_numbers &records);
    int exec_update(const qry_lib_analyze_info &info, const record_numbers &records);
    int exec_delete(const qry_lib_analyze_info &info, unsigned int category, const record_numbers &records);
    int set_tb_table(const qry_lib_analyze_info &info, const record_numbers &records);

  private:
    // A column of the statement, which owns it, and where it lies.
    struct target_column {
        const QRY_LIB_COLUMN *column;
        const QRY_LIB_ELEMENT_INFO *element;
        std::size_t name_length = 0; // the column's, for reading rows
    };
    using target_columns = std::vector<target_column>;

    int dispatch(const qry_lib_analyze_info &info, unsigned int category, record_numbers records,
                 qry_lib_db_rowset_ *rowset);
    int create_condition_key(const qry_lib_analyze_info &info, std::uint16_t index, light_keys &keys);

    // Runs the search with keys of any form that copy_key() puts into the array.
    template <typename Keys>
    int search(unsigned int category, const Keys &keys, record_numbers &records);
    int read_rows(const target_columns &columns, const char *table, const record_numbers &records,
                  qry_lib_db_rowset_ &rowset);

    // Finds every column of the statement. The function and its two points are those of a column that cannot
    // be fetched and of one that the table does not have.
    int resolve_columns(const qry_lib_analyze_info &info, const char *function, int fetch_line,
                        int unknown_line, target_columns &columns);
    int write_column(const target_column &target, unsigned short record);

    qry_lib_table_element *catalog_ = nullptr;
};

} // namespace norvane
