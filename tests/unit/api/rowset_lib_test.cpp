// Rowset storage and cursor: creating, filling, walking, releasing.
#include "api/qry_lib_db_rowset_lib.h"

#include <cstring>

#include "platform/os.h"
#include "unit/query_support.h"

namespace {

using norvane::empty_rowset;
using norvane::qry_lib_db_rowset_lib;
using norvane::rowset_guard;
using test::number_column;
using test::texts;

class rowset_lib : public test::trace_test {
  protected:
    ~rowset_lib() override { lib.delete_rowset(rowset); }

    const qry_lib_db_rowset_lib lib{};
    qry_lib_db_rowset_ rowset{0, nullptr, -1};
};

TEST_F(rowset_lib, init_without_columns_is_refused_and_changes_nothing) {
    QRY_LIB_RECORD record{};
    qry_lib_db_rowset_ held{7, &record, 3};
    for (const std::uint16_t row_num : test::indexes{0, 1, 65535}) {
        EXPECT_EQ(lib.init_rowset(0, row_num, held), QRY_LIB_INVALID_ARGUMENT);
    }
    EXPECT_EQ(held.record_num, 7);
    EXPECT_EQ(held.records, &record);
    EXPECT_EQ(held.current, 3);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_lib, init_without_rows_leaves_the_row_array_pointer) {
    QRY_LIB_RECORD record{};
    qry_lib_db_rowset_ held{7, &record, 3};
    const std::uint32_t blocks = qryhost_pool_blocks();
    EXPECT_EQ(lib.init_rowset(3, 0, held), 0u);
    EXPECT_EQ(held.record_num, 0);
    EXPECT_EQ(held.records, &record);
    EXPECT_EQ(held.current, -1);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(rowset_lib, init_gives_every_row_a_block_of_its_own) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    EXPECT_EQ(lib.init_rowset(3, 4, rowset), 0u);
    EXPECT_EQ(rowset.record_num, 4);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(qryhost_pool_blocks(), blocks + 5);
    for (std::int32_t row = 0; row < 4; ++row) {
        EXPECT_EQ(rowset.records[row].col_num, 3);
        std::memset(rowset.records[row].cols, row, 3 * sizeof(QRY_LIB_COLUMN));
    }
    lib.delete_rowset(rowset);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(rowset_lib, init_reaches_the_limits_of_16_bits) {
    ASSERT_EQ(lib.init_rowset(65535, 1, rowset), 0u);
    ASSERT_EQ(lib.next_record_index(rowset), 1u);
    QRY_LIB_COLUMN column = number_column("T", "LAST", QRY_LIB_COLUMN_TYPE_UINT, 9);
    EXPECT_EQ(lib.set_col(rowset, 65534, column), 0u);
    EXPECT_EQ(lib.set_col(rowset, 65535, column), QRY_LIB_INVALID_ARGUMENT);
    EXPECT_EQ(lib.get_col(rowset, 65534, column), 0u);
    EXPECT_STREQ(column.col_name, "LAST");
    lib.delete_rowset(rowset);

    ASSERT_EQ(lib.init_rowset(1, 65535, rowset), 0u);
    EXPECT_EQ(lib.get_record_num(rowset), 65535);
    rowset.current = 65533;
    EXPECT_EQ(lib.next_record_index(rowset), 1u);
    EXPECT_EQ(lib.next_record_index(rowset), 0u);
}

TEST_F(rowset_lib, init_without_memory_gives_everything_back) {
    std::uint32_t code = 0;
    const std::uint32_t blocks = qryhost_pool_blocks();
    test::with_each_block_refused(
        [&] {
            lib.delete_rowset(rowset);
            code = lib.init_rowset(2, 3, rowset);
        },
        [&](std::uint32_t) {
            EXPECT_EQ(code, 1u);
            EXPECT_EQ(take_chain(), texts{"init_rowset 0x1"});
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
            EXPECT_EQ(rowset.record_num, 0);
            EXPECT_EQ(rowset.current, -1);
        });
}

TEST_F(rowset_lib, a_failed_init_leaves_the_record_alone) {
    QRY_LIB_RECORD record{};
    qry_lib_db_rowset_ held{7, &record, 3};
    for (const std::uint32_t let_through : {0u, 1u, 2u}) {
        qryhost_fail(QRYHOST_ALLOC, let_through, 1, 5);
        EXPECT_EQ(lib.init_rowset(1, 2, held), 1u);
        EXPECT_EQ(held.record_num, 7);
        EXPECT_EQ(held.records, &record);
        EXPECT_EQ(held.current, 3);
    }
}

TEST_F(rowset_lib, delete_resets_an_empty_rowset) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    rowset.current = 4;
    lib.delete_rowset(rowset);
    lib.delete_rowset(rowset);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(rowset_lib, delete_of_a_negative_row_count_frees_the_row_array_alone) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    void *block = nullptr;
    ASSERT_EQ(pfwOSWOrgAllocMemPart(0, &block, sizeof(QRY_LIB_RECORD)), 0u);
    rowset = {-1, static_cast<QRY_LIB_RECORD *>(block), 0};
    *rowset.records = {1, nullptr};
    lib.delete_rowset(rowset);
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(rowset.current, -1);
}

TEST_F(rowset_lib, a_column_is_copied_whole) {
    ASSERT_EQ(lib.init_rowset(2, 2, rowset), 0u);
    QRY_LIB_COLUMN written;
    std::memset(&written, 0xA5, sizeof written);
    ASSERT_EQ(lib.next_record_index(rowset), 1u);
    EXPECT_EQ(lib.set_col(rowset, 1, written), 0u);
    QRY_LIB_COLUMN read{};
    EXPECT_EQ(lib.get_col(rowset, 1, read), 0u);
    EXPECT_EQ(std::memcmp(&written, &read, sizeof read), 0);
    EXPECT_EQ(std::memcmp(&rowset.records[0].cols[1], &read, sizeof read), 0);
}

TEST_F(rowset_lib, columns_are_reached_through_the_cursor_only) {
    ASSERT_EQ(lib.init_rowset(2, 2, rowset), 0u);
    for (const std::int32_t current : {-1, 2, INT32_MIN, INT32_MAX}) {
        SCOPED_TRACE(current);
        rowset.current = current;
        QRY_LIB_COLUMN column = number_column("T", "KEPT", 0, 1);
        EXPECT_EQ(lib.set_col(rowset, 0, column), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(lib.get_col(rowset, 0, column), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_STREQ(column.col_name, "KEPT");
    }
    rowset.current = 1;
    QRY_LIB_COLUMN column = number_column("T", "KEPT", 0, 1);
    for (const std::uint16_t index : test::indexes{2, 3, 65535}) {
        EXPECT_EQ(lib.set_col(rowset, index, column), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(lib.get_col(rowset, index, column), QRY_LIB_INVALID_ARGUMENT);
    }
    EXPECT_STREQ(column.col_name, "KEPT");
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_lib, a_column_is_found_by_table_and_name_in_the_first_row) {
    rowset = test::make_rowset({{number_column("A", "ID", 0, 1), number_column("B", "ID", 0, 2),
                                 number_column("B", "NAME", 0, 3), number_column("B", "ID", 0, 4)},
                                {number_column("C", "ID", 0, 1), number_column("C", "ID", 0, 2),
                                 number_column("C", "ID", 0, 3), number_column("C", "ID", 0, 4)}});
    rowset.current = 1;
    std::uint16_t index = 99;
    EXPECT_EQ(lib.get_col_index(rowset, "A", "ID", index), 0u);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(lib.get_col_index(rowset, "B", "ID", index), 0u);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(lib.get_col_index(rowset, "B", "NAME", index), 0u);
    EXPECT_EQ(index, 2);
    const std::pair<const char *, const char *> absent[] = {
        {"A", "NAME"}, {"C", "ID"}, {"a", "ID"}, {"B", "name"}, {"", ""}, {"B", "NAM"}, {"B", "NAMES"}};
    for (const auto &[table, name] : absent) {
        SCOPED_TRACE(std::string(table) + "." + name);
        EXPECT_EQ(lib.get_col_index(rowset, table, name, index), QRY_LIB_NO_SUCH_ITEM);
    }
    EXPECT_EQ(index, 2);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_lib, no_column_is_found_without_rows_or_columns) {
    std::uint16_t index = 99;
    EXPECT_EQ(lib.get_col_index(rowset, "", "", index), QRY_LIB_NO_SUCH_ITEM);
    QRY_LIB_RECORD record{0, nullptr};
    const qry_lib_db_rowset_ narrow{1, &record, -1};
    EXPECT_EQ(lib.get_col_index(narrow, "", "", index), QRY_LIB_NO_SUCH_ITEM);
    EXPECT_EQ(index, 99);
}

TEST_F(rowset_lib, the_cursor_stops_on_the_last_row) {
    EXPECT_EQ(lib.next_record_index(rowset), 0u);
    EXPECT_EQ(rowset.current, -1);
    ASSERT_EQ(lib.init_rowset(1, 3, rowset), 0u);
    for (const std::int32_t expected : {0, 1, 2}) {
        EXPECT_EQ(lib.next_record_index(rowset), 1u);
        EXPECT_EQ(rowset.current, expected);
    }
    EXPECT_EQ(lib.next_record_index(rowset), 0u);
    EXPECT_EQ(rowset.current, 2);
    lib.first_record_index(rowset);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(lib.next_record_index(rowset), 1u);
}

TEST_F(rowset_lib, the_row_count_is_16_bits_wide) {
    for (const auto &[stored, seen] :
         {std::pair{0, 0}, {65535, 65535}, {65536, 0}, {65539, 3}, {-1, 65535}}) {
        const qry_lib_db_rowset_ counted{stored, nullptr, -1};
        EXPECT_EQ(lib.get_record_num(counted), seen);
    }
}

TEST_F(rowset_lib, a_guard_gives_the_rows_back_unless_they_are_handed_on) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    qry_lib_db_rowset_ own = empty_rowset;
    {
        const rowset_guard guard(own);
        ASSERT_EQ(lib.init_rowset(1, 2, own), 0u);
    }
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_EQ(own.record_num, 0);
    {
        rowset_guard guard(rowset);
        ASSERT_EQ(lib.init_rowset(1, 2, rowset), 0u);
        guard.release();
    }
    EXPECT_EQ(rowset.record_num, 2);
    EXPECT_EQ(qryhost_pool_blocks(), blocks + 3);
}

} // namespace
