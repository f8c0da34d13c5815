// The layout of the records that cross the boundary, pointers aside the same on every build.
#include <cstddef>
#include <cstring>

#include <qrylib/qrylib.h>

#include "exec/schema/schema.h"
#include "platform/element_table.h"
#include "unit/support.h"

namespace {

constexpr std::size_t pointer = sizeof(void *);

TEST(types, a_column_is_laid_out_to_the_byte) {
    EXPECT_EQ(sizeof(QRY_LIB_COLUMN), 3164u);
    EXPECT_EQ(offsetof(QRY_LIB_COLUMN, col_name), 0u);
    EXPECT_EQ(offsetof(QRY_LIB_COLUMN, value), 32u);
    EXPECT_EQ(offsetof(QRY_LIB_COLUMN, type), 3032u);
    EXPECT_EQ(offsetof(QRY_LIB_COLUMN, table_name), 3036u);
    EXPECT_EQ(sizeof(QRY_LIB_COLUMN_VALUE), 3000u);
    EXPECT_EQ(sizeof(QRY_LIB_COLUMN::col_name), 32u);
    EXPECT_EQ(sizeof(QRY_LIB_COLUMN::table_name), 128u);
}

TEST(types, a_filter_key_is_laid_out_to_the_byte) {
    EXPECT_EQ(sizeof(qry_lib_tb_list_filter_key_), 3020u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, element_id), 4u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, elem_type), 8u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, cmp_size), 9u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, member_offset), 10u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, value), 12u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, operation), 3012u);
    EXPECT_EQ(offsetof(qry_lib_tb_list_filter_key_, join), 3016u);
}

TEST(types, platform_and_schema_records_have_their_sizes) {
    EXPECT_EQ(sizeof(tbctListTable), 16u);
    EXPECT_EQ(sizeof(QRY_LIB_TB_MAX_ROW), 8u);
    EXPECT_EQ(sizeof(QRY_LIB_ELEMENT_INFO), 60u);
}

TEST(types, records_with_pointers_differ_only_by_their_width) {
    EXPECT_EQ(offsetof(QRY_LIB_RECORD, cols), pointer);
    EXPECT_EQ(sizeof(QRY_LIB_RECORD), 2 * pointer);
    EXPECT_EQ(offsetof(qry_lib_db_rowset_, records), pointer);
    EXPECT_EQ(offsetof(qry_lib_db_rowset_, current), 2 * pointer);
    EXPECT_EQ(offsetof(qry_lib_db_stmt_, table_name), pointer);
    EXPECT_EQ(offsetof(qry_lib_db_stmt_, record), 2 * pointer);
    EXPECT_EQ(offsetof(qry_lib_db_stmt_, orderby_phrase), 4 * pointer);
    EXPECT_EQ(offsetof(qry_lib_db_stmt_, where_phrase), 5 * pointer);
    EXPECT_EQ(offsetof(qry_lib_db_stmt_, db_name), 6 * pointer);
    EXPECT_EQ(sizeof(qry_lib_db_stmt_::db_name), 256u);
    EXPECT_EQ(sizeof(qry_lib_tb_search_id), pointer);
}

TEST(types, every_member_of_a_value_starts_at_its_first_byte) {
    QRY_LIB_COLUMN_VALUE value;
    const void *start = &value;
    EXPECT_EQ(start, static_cast<const void *>(&value.int_value));
    EXPECT_EQ(start, static_cast<const void *>(&value.uchar_value));
    EXPECT_EQ(start, static_cast<const void *>(&value.ushort_value));
    EXPECT_EQ(start, static_cast<const void *>(&value.uint_value));
    EXPECT_EQ(start, static_cast<const void *>(&value.ulong_value));
    EXPECT_EQ(start, static_cast<const void *>(value.str_value));
    EXPECT_EQ(sizeof value.int_value, 4u);
    EXPECT_EQ(sizeof value.ulong_value, 4u);
}

TEST(types, a_zero_filled_column_is_the_nameless_integer_0) {
    QRY_LIB_COLUMN column;
    std::memset(&column, 0, sizeof column);
    EXPECT_EQ(column.type, QRY_LIB_COLUMN_TYPE_INT);
    EXPECT_EQ(column.value.int_value, 0);
    EXPECT_STREQ(column.col_name, "");
    EXPECT_STREQ(column.table_name, "");
}

TEST(types, enumerations_have_their_values) {
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_COLUMN_TYPE_STR), 5u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_COLUMN_TYPE_ULONG), 4u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_DB_QUERY_TYPE_COUNT), 5u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_DB_QUERY_TYPE_CREATE), 6u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_NOT_EQUAL), 1u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_LESS), 2u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_GREATER), 3u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_LESS_EQUAL), 4u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_GREATER_EQUAL), 5u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_LIKE), 6u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_IN), 98u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_OPERATION_TYPE_INLIKE), 99u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_JOIN_TYPE_AND), 1u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_JOIN_TYPE_OR), 2u);
    EXPECT_EQ(static_cast<std::uint32_t>(QRY_LIB_ODER_TYPE_DESC), 2u);
    EXPECT_EQ(sizeof(QRY_LIB_JOIN_TYPE), 4u);
    EXPECT_EQ(sizeof(QRY_LIB_OPERATION_TYPE), 4u);
    EXPECT_EQ(sizeof(QRY_LIB_ODER_TYPE), 4u);
}

} // namespace
