// ORDER BY: compare kinds, the order of each type of value, and what fails on the way.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::departments;
using test::failure;
using test::injected;
using test::invalid_argument;
using test::put;
using test::put_text;
using test::query_of;
using test::record_list;
using test::traces;

constexpr auto ascending = QRY_LIB_ODER_TYPE_ASC;
constexpr auto descending = QRY_LIB_ODER_TYPE_DESC;

class sorting : public test::exec_test {
  protected:
    sorting() { EXPECT_EQ(executer.open_catalog("department_db"), 0); }

    static query_of by(const char *column, QRY_LIB_ODER_TYPE order) {
        return query_of(QRY_LIB_DB_QUERY_TYPE_SELECT, "department_db", "DEPT_TBL").order(column, order);
    }

    // The records 0 to `count` - 1 in the order of the column; the sort must succeed.
    record_list sorted_by(const char *column, QRY_LIB_ODER_TYPE order, unsigned short count) {
        record_list sorted;
        EXPECT_EQ(executer.sort_tbdb_table_id(by(column, order), up_to(count), sorted), 0);
        return sorted;
    }

    // The same for a column that the schema does not have.
    record_list sorted_by(const QRY_LIB_ELEMENT_INFO &element, QRY_LIB_ODER_TYPE order,
                          unsigned short count) {
        std::vector<void *> items(count);
        record_list sorted;
        EXPECT_EQ(executer.sort_tbdb_table_id_internal(items.data(), pointer_bytes(count), order, element,
                                                       up_to(count), sorted),
                  0);
        return sorted;
    }

    static std::uint32_t pointer_bytes(std::size_t count) {
        return static_cast<std::uint32_t>(count * sizeof(void *));
    }

    static record_list up_to(unsigned short count) {
        record_list records;
        for (unsigned short r = 0; r < count; ++r) {
            records.push_back(r);
        }
        return records;
    }

    static QRY_LIB_ELEMENT_INFO department_element(std::uint32_t id, std::uint32_t type, std::uint16_t size) {
        QRY_LIB_ELEMENT_INFO info{};
        info.category_id = departments;
        info.element_id = id;
        info.elem_type = type;
        info.size = size;
        return info;
    }

    static record_list reversed(record_list records) {
        records.reverse();
        return records;
    }
};

TEST_F(sorting, compare_kind_follows_type_and_direction) {
    struct {
        std::uint32_t elem_type;
        std::uint32_t order;
        std::uint32_t kind;
    } const rows[] = {
        {0, 1, 4}, {0, 2, 5}, {1, 1, 0}, {1, 2, 1}, {2, 1, 2}, {2, 2, 3},          {3, 1, 4},
        {3, 2, 5}, {4, 1, 4}, {4, 2, 5}, {5, 1, 6}, {5, 2, 7}, {6, 1, 8},          {6, 2, 9},
        {2, 0, 0}, {2, 3, 0}, {7, 1, 0}, {7, 2, 0}, {6, 0, 0}, {0xFFFFFFFF, 1, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << "type " << row.elem_type << ", order " << row.order);
        CMN_LIB_SORT_PARAM_T param;
        std::memset(&param, 0x5A, sizeof param);
        executer.create_sort_param(department_element(0, row.elem_type, 4),
                                   static_cast<QRY_LIB_ODER_TYPE>(row.order), 65535, param);
        EXPECT_EQ(param.key_offset, 2u);
        EXPECT_EQ(param.count, 65535u);
        EXPECT_EQ(param.compare_kind, row.kind);
    }
}

TEST_F(sorting, without_a_direction_the_order_of_the_search_is_kept) {
    qryhost_fail_clear();
    record_list sorted = {9};
    EXPECT_EQ(executer.sort_tbdb_table_id(by("NO_COL", QRY_LIB_ODER_TYPE_NOTHING), {2, 0, 1}, sorted), 0);
    EXPECT_EQ(sorted, (record_list{2, 0, 1}));
    for (const qryhost_call call : {QRYHOST_ALLOC, QRYHOST_GET_TABLE, QRYHOST_SORT}) {
        EXPECT_EQ(qryhost_call_count(call), 0u);
    }
}

TEST_F(sorting, no_records_are_sorted_too) {
    qryhost_fail_clear();
    EXPECT_EQ(sorted_by("NAME", ascending, 0), record_list{});
    EXPECT_EQ(qryhost_call_count(QRYHOST_SORT), 1u);
    qryhost_fail(QRYHOST_SORT, 0, 1, injected);
    record_list sorted;
    EXPECT_EQ(executer.sort_tbdb_table_id(by("NAME", ascending), {}, sorted), test::not_accepted);
    EXPECT_EQ(take_traces(), (traces{{"sort_internal", 1358, injected}}));
}

TEST_F(sorting, numbers_of_each_width_sort_by_value) {
    const std::uint32_t words[] = {0x00000100, 0x000000FF, 0xFFFFFFFF, 0x80000000};
    const std::uint16_t halves[] = {0x0100, 0x00FF, 0xFFFF, 0x8000};
    const std::uint8_t bytes[] = {0x10, 0x0F, 0xFF, 0x80};
    for (std::uint32_t r = 0; r < 4; ++r) {
        put(departments, r, test::department_total, words[r]);
        put(departments, r, test::department_id, halves[r]);
        put(departments, r, test::department_limit, bytes[r]);
    }
    for (const char *column : {"TOTAL_M", "ID", "TOTAL_L"}) {
        SCOPED_TRACE(column);
        EXPECT_EQ(sorted_by(column, ascending, 4), (record_list{1, 0, 3, 2}));
        EXPECT_EQ(sorted_by(column, descending, 4), (record_list{2, 3, 0, 1}));
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(sorting, negative_numbers_come_behind_all_others) {
    const std::int32_t values[] = {-1, 5, 0, -2147483647, 2147483647};
    for (std::uint32_t r = 0; r < 5; ++r) {
        put(departments, r, test::department_total, values[r]);
    }
    for (const std::uint32_t type : {0u, 3u, 4u}) {
        const QRY_LIB_ELEMENT_INFO element = department_element(test::department_total, type, 4);
        EXPECT_EQ(sorted_by(element, ascending, 5), (record_list{2, 1, 4, 3, 0}));
        EXPECT_EQ(sorted_by(element, descending, 5), (record_list{0, 3, 4, 1, 2}));
    }
}

TEST_F(sorting, strings_and_names_have_their_own_order) {
    const char *const values[] = {"b", "B", "a", "", "ab"};
    for (std::uint32_t r = 0; r < 5; ++r) {
        put_text(departments, r, test::department_code, values[r]);
        put_text(departments, r, test::department_name, values[r]);
    }
    EXPECT_EQ(sorted_by("DEPT_CODE", ascending, 5), (record_list{3, 1, 2, 4, 0}));
    EXPECT_EQ(sorted_by("DEPT_CODE", descending, 5), (record_list{0, 4, 2, 1, 3}));
    EXPECT_EQ(sorted_by("NAME", ascending, 5), (record_list{3, 2, 4, 1, 0}));
    EXPECT_EQ(sorted_by("NAME", descending, 5), (record_list{0, 1, 4, 2, 3}));
}

TEST_F(sorting, a_string_that_fills_its_element_ends_there) {
    put_text(departments, 0, test::department_code, "12345678z");
    put_text(departments, 1, test::department_code, "12345677z");
    put_text(departments, 2, test::department_code, "1");
    EXPECT_EQ(sorted_by("DEPT_CODE", ascending, 3), (record_list{2, 1, 0}));
    EXPECT_EQ(sorted_by("DEPT_CODE", descending, 3), (record_list{0, 1, 2}));
}

// The sort utility knows no other end than a terminator, which takes the last byte's place.
TEST_F(sorting, strings_that_fill_their_element_and_differ_in_its_last_byte_are_equal) {
    put_text(departments, 0, test::department_code, "12345678b");
    put_text(departments, 1, test::department_code, "12345678a");
    EXPECT_EQ(sorted_by("DEPT_CODE", ascending, 2), up_to(2));
    EXPECT_EQ(sorted_by("DEPT_CODE", descending, 2), up_to(2));
}

TEST_F(sorting, equal_strings_that_fill_their_element_are_equal) {
    for (std::uint32_t r = 0; r < 3; ++r) {
        put_text(departments, r, test::department_code, "123456789");
    }
    EXPECT_EQ(sorted_by("DEPT_CODE", ascending, 3), up_to(3));
    EXPECT_EQ(sorted_by("DEPT_CODE", descending, 3), up_to(3));
}

TEST_F(sorting, a_full_table_sorts_whole) {
    for (std::uint32_t r = 0; r < 101; ++r) {
        put(departments, r, test::department_total, 1000 - 7 * r);
    }
    EXPECT_EQ(sorted_by("TOTAL_M", ascending, 101), reversed(up_to(101)));
    EXPECT_EQ(sorted_by("TOTAL_M", descending, 101), up_to(101));
    EXPECT_EQ(sorted_by("ID", ascending, 101), up_to(101)); // equal keys keep their order
}

TEST_F(sorting, a_member_sorts_by_its_own_bytes) {
    put_text(departments, 0, test::department_name, "1111zz");
    put_text(departments, 1, test::department_name, "9999aa");
    put_text(departments, 2, test::department_name, "5555mm");
    QRY_LIB_ELEMENT_INFO member = department_element(test::department_name, norvane::element_string, 3);
    member.is_member = 1;
    member.member_offset = 4;
    EXPECT_EQ(sorted_by(member, ascending, 3), (record_list{1, 2, 0}));
    member.elem_type = norvane::element_uchar;
    member.size = 1;
    member.member_offset = 5;
    EXPECT_EQ(sorted_by(member, descending, 3), (record_list{0, 2, 1}));
}

TEST_F(sorting, appends_to_what_is_sorted) {
    put(departments, 0, test::department_id, std::uint16_t{2});
    put(departments, 1, test::department_id, std::uint16_t{1});
    record_list sorted = {77};
    EXPECT_EQ(executer.sort_tbdb_table_id(by("ID", ascending), {0, 1}, sorted), 0);
    EXPECT_EQ(sorted, (record_list{77, 1, 0}));
}

TEST_F(sorting, packs_items_back_to_back) {
    put(departments, 5, test::department_id, std::uint16_t{0x1234});
    put(departments, 6, test::department_id, std::uint16_t{0x0001});
    char block[8];
    void *items[2] = {};
    record_list sorted;
    EXPECT_EQ(executer.sort_internal(items, pointer_bytes(2), ascending, block,
                                     department_element(test::department_id, norvane::element_ushort, 2),
                                     {5, 6}, sorted),
              0);
    const std::uint16_t expected[] = {5, 0x1234, 6, 0x0001};
    EXPECT_EQ(std::memcmp(block, expected, sizeof block), 0);
    EXPECT_EQ(items[0], block + 4);
    EXPECT_EQ(items[1], block);
    EXPECT_EQ(sorted, (record_list{6, 5}));
}

TEST_F(sorting, an_unknown_column_sorts_nothing) {
    qryhost_fail_clear();
    for (const std::string &name :
         {std::string("NO_COL"), std::string(), std::string("id"), std::string(1 << 20, 'N')}) {
        record_list sorted = {77};
        EXPECT_EQ(executer.sort_tbdb_table_id(by(name.c_str(), ascending), {0, 1}, sorted), invalid_argument);
        EXPECT_EQ(take_traces(), (traces{{"sort_tbdb_table_id", 1233, 0xDB05}}));
        EXPECT_EQ(sorted, record_list{77});
    }
    EXPECT_EQ(qryhost_call_count(QRYHOST_ALLOC), 0u);
}

TEST_F(sorting, every_block_can_fail) {
    record_list sorted;
    for (const unsigned short count : {std::uint16_t{0}, std::uint16_t{3}}) {
        expect_failures(
            QRYHOST_ALLOC, [&] { sorted.clear(); },
            [&] { return executer.sort_tbdb_table_id(by("ID", ascending), up_to(count), sorted); },
            {failure{test::no_memory, {{"sort_tbdb_table_id", 1243, 1}}},
             failure{test::no_memory, {{"sort_tbdb_table_id_internal", 1286, 1}}}});
        EXPECT_TRUE(sorted.empty());
    }
}

TEST_F(sorting, a_failing_read_or_sort_sorts_nothing) {
    record_list sorted;
    const auto operation = [&] { return executer.sort_tbdb_table_id(by("ID", ascending), up_to(3), sorted); };
    const auto prepare = [&] { sorted.clear(); };
    expect_failures(QRYHOST_GET_TABLE, prepare, operation,
                    std::vector<failure>(3, {injected, {{"sort_internal", 1343, injected}}}));
    EXPECT_TRUE(sorted.empty());
    expect_failures(QRYHOST_SORT, prepare, operation,
                    {failure{test::not_accepted, {{"sort_internal", 1358, injected}}}});
    EXPECT_TRUE(sorted.empty());
}

} // namespace
