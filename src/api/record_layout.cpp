// The layout of every record that crosses the boundary, held at compile time: callers on the device were
// compiled against it.
#include <cstddef>

#include <qrylib/qrylib.h>

#include "platform/element_table.h"
#include "platform/sort.h"

namespace {

// An offset or size where pointers are 4 bytes wide, and where they are 8.
constexpr std::size_t by_pointer(std::size_t narrow, std::size_t wide) {
    return sizeof(void *) == 4 ? narrow : wide;
}

static_assert(sizeof(void *) == 4 || sizeof(void *) == 8);

static_assert(sizeof(QRY_LIB_COLUMN_VALUE) == 3000);

static_assert(offsetof(QRY_LIB_COLUMN, col_name) == 0);
static_assert(offsetof(QRY_LIB_COLUMN, value) == 32);
static_assert(offsetof(QRY_LIB_COLUMN, type) == 3032);
static_assert(offsetof(QRY_LIB_COLUMN, table_name) == 3036);
static_assert(sizeof(QRY_LIB_COLUMN) == 3164);

static_assert(offsetof(QRY_LIB_RECORD, col_num) == 0);
static_assert(offsetof(QRY_LIB_RECORD, cols) == by_pointer(4, 8));
static_assert(sizeof(QRY_LIB_RECORD) == by_pointer(8, 16));

static_assert(offsetof(qry_lib_db_stmt_, exec_type) == 0);
static_assert(offsetof(qry_lib_db_stmt_, table_name) == by_pointer(4, 8));
static_assert(offsetof(qry_lib_db_stmt_, record) == by_pointer(8, 16));
static_assert(offsetof(qry_lib_db_stmt_, orderby_phrase) == by_pointer(16, 32));
static_assert(offsetof(qry_lib_db_stmt_, where_phrase) == by_pointer(20, 40));
static_assert(offsetof(qry_lib_db_stmt_, db_name) == by_pointer(24, 48));
static_assert(sizeof(qry_lib_db_stmt_) == by_pointer(280, 304));

static_assert(offsetof(qry_lib_db_rowset_, record_num) == 0);
static_assert(offsetof(qry_lib_db_rowset_, records) == by_pointer(4, 8));
static_assert(offsetof(qry_lib_db_rowset_, current) == by_pointer(8, 16));
static_assert(sizeof(qry_lib_db_rowset_) == by_pointer(12, 24));

static_assert(offsetof(qry_lib_db_unused_id_param_, db_name) == 0);
static_assert(offsetof(qry_lib_db_unused_id_param_, table_name) == by_pointer(4, 8));
static_assert(offsetof(qry_lib_db_unused_id_param_, col_name) == by_pointer(8, 16));
static_assert(offsetof(qry_lib_db_unused_id_param_, min_id) == by_pointer(12, 24));
static_assert(offsetof(qry_lib_db_unused_id_param_, max_id) == by_pointer(16, 28));
static_assert(offsetof(qry_lib_db_unused_id_param_, max_count) == by_pointer(20, 32));
static_assert(offsetof(qry_lib_db_unused_id_param_, id_kind) == by_pointer(24, 36));
static_assert(sizeof(qry_lib_db_unused_id_param_) == by_pointer(28, 40));

static_assert(offsetof(qry_lib_tb_list_filter_key_, category_id) == 0);
static_assert(offsetof(qry_lib_tb_list_filter_key_, element_id) == 4);
static_assert(offsetof(qry_lib_tb_list_filter_key_, elem_type) == 8);
static_assert(offsetof(qry_lib_tb_list_filter_key_, cmp_size) == 9);
static_assert(offsetof(qry_lib_tb_list_filter_key_, member_offset) == 10);
static_assert(offsetof(qry_lib_tb_list_filter_key_, value) == 12);
static_assert(offsetof(qry_lib_tb_list_filter_key_, operation) == 3012);
static_assert(offsetof(qry_lib_tb_list_filter_key_, join) == 3016);
static_assert(sizeof(qry_lib_tb_list_filter_key_) == 3020);

static_assert(sizeof(qry_lib_tb_search_id) == sizeof(void *));

static_assert(offsetof(qry_lib_vector_, data) == 0);
static_assert(offsetof(qry_lib_vector_, capacity) == by_pointer(4, 8));
static_assert(offsetof(qry_lib_vector_, count) == by_pointer(8, 12));
static_assert(offsetof(qry_lib_vector_, grow_step) == by_pointer(12, 16));
static_assert(offsetof(qry_lib_vector_, elem_size) == by_pointer(16, 20));
static_assert(sizeof(qry_lib_vector_) == by_pointer(20, 24));

static_assert(offsetof(qry_lib_catalog_column_, name) == 0);
static_assert(offsetof(qry_lib_catalog_column_, type) == 40);
static_assert(offsetof(qry_lib_catalog_column_, size) == 42);
static_assert(offsetof(qry_lib_catalog_column_, is_key) == 44);
static_assert(sizeof(qry_lib_catalog_column_) == 46);

// What the platform is handed.
static_assert(sizeof(tbctListTable) == 16);
static_assert(offsetof(CMN_LIB_SORT_PARAM_T, key_offset) == 0);
static_assert(offsetof(CMN_LIB_SORT_PARAM_T, count) == 4);
static_assert(offsetof(CMN_LIB_SORT_PARAM_T, compare_kind) == 8);
static_assert(sizeof(CMN_LIB_SORT_PARAM_T) == 12);

} // namespace
