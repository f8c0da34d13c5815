// The join and its projection, driven directly with rowsets made by hand.
#include "link/qry_lib_db_rowset_link_lib.h"

#include "unit/query_support.h"

namespace {

using norvane::qry_lib_analyze_link_info;
using norvane::qry_lib_db_rowset_link_lib;
using norvane::QRY_LIB_LINK;
using norvane::QRY_LIB_ROWSET_LINK;
using test::hand_made_rows;
using test::number_column;
using test::text_column;
using test::texts;

constexpr std::uint32_t uint_type = QRY_LIB_COLUMN_TYPE_UINT;
constexpr std::uint32_t ushort_type = QRY_LIB_COLUMN_TYPE_USHORT;

class rowset_link : public test::trace_test {
  protected:
    ~rowset_link() override { qry_lib_db_rowset_term(&rowset); }

    // Adds a table whose rows are pairs of a key K and a text X.
    void add_table(const char *table, const std::vector<std::pair<std::uint32_t, const char *>> &rows) {
        hand_made_rows made;
        for (const auto &[key, text] : rows) {
            made.push_back({number_column(table, "K", uint_type, key), text_column(table, "X", text)});
        }
        info.add_rowset(test::make_rowset(made));
    }

    void add_link(const char *left_table, const char *left_col, const char *right_table,
                  const char *right_col) {
        info.add_link(
            {number_column(left_table, left_col, 0, 0), number_column(right_table, right_col, 0, 0)});
    }

    texts join() {
        qry_lib_db_rowset_term(&rowset);
        code = lib.link_rowset(info, rowset);
        EXPECT_EQ(rowset.current, -1);
        return test::row_texts(rowset);
    }

    void expect_failure(const texts &chain) {
        EXPECT_EQ(join(), texts{});
        EXPECT_EQ(code, static_cast<int>(QRY_LIB_INVALID_ARGUMENT));
        EXPECT_EQ(take_chain(), chain);
        EXPECT_EQ(rowset.record_num, 0);
    }

    qry_lib_db_rowset_link_lib lib;
    qry_lib_analyze_link_info info;
    qry_lib_db_rowset_ rowset{0, nullptr, -1};
    int code = 0;
};

// 65,536 joined rows are not none: the third table is looked at, and nothing links it.
TEST_F(rowset_link, rows_in_progress_are_counted_in_full) {
    hand_made_rows rows(256, {number_column("A", "K", uint_type, 1)});
    info.add_rowset(test::make_rowset(rows));
    for (std::vector<QRY_LIB_COLUMN> &row : rows) {
        row = {number_column("B", "K", uint_type, 1)};
    }
    info.add_rowset(test::make_rowset(rows));
    add_table("C", {{1, "c"}});
    add_link("A", "K", "B", "K");
    add_link("A", "K", "B", "K");
    expect_failure({"link_rowset:233 0xDB05"});
}

// Both columns are A.B.C when they are written out.
TEST_F(rowset_link, a_key_is_found_by_its_table_and_its_column) {
    info.add_rowset(test::make_rowset(
        {{number_column("A.B", "C", uint_type, 1), number_column("A", "B.C", uint_type, 2)}}));
    add_table("T", {{1, "one"}, {2, "two"}});
    add_link("A", "B.C", "T", "K");
    EXPECT_EQ(join(), (texts{"1,2,2,two"}));
}

TEST_F(rowset_link, fewer_than_two_tables_are_refused) {
    expect_failure({"link_rowset:95 0xDB05"});
    add_table("A", {{1, "a"}});
    add_link("A", "K", "A", "K");
    expect_failure({"link_rowset:95 0xDB05"});
}

TEST_F(rowset_link, fewer_links_than_tables_less_one_are_refused) {
    add_table("A", {{1, "a"}});
    add_table("B", {});
    expect_failure({"link_rowset:101 0xDB05"});
    add_table("C", {{1, "c"}});
    add_link("A", "K", "B", "K");
    expect_failure({"link_rowset:101 0xDB05"});
}

TEST_F(rowset_link, one_row_meets_each_row_that_matches_it_in_the_later_tables_order) {
    add_table("A", {{1, "a1"}, {2, "a2"}, {3, "a3"}});
    add_table("B", {{2, "b1"}, {1, "b2"}, {2, "b3"}, {9, "b4"}});
    add_link("A", "K", "B", "K");
    EXPECT_EQ(join(), (texts{"2,a2,2,b1", "1,a1,1,b2", "2,a2,2,b3"}));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_link, the_sides_of_a_link_are_symmetric) {
    add_table("A", {{1, "a1"}, {2, "a2"}});
    add_table("B", {{2, "b2"}, {1, "b1"}});
    add_link("B", "K", "A", "K");
    EXPECT_EQ(join(), (texts{"2,a2,2,b2", "1,a1,1,b1"}));
}

TEST_F(rowset_link, the_last_table_orders_first) {
    add_table("A", {{1, "a1"}, {1, "a2"}});
    add_table("B", {{1, "b1"}, {1, "b2"}});
    add_table("C", {{1, "c1"}, {1, "c2"}});
    add_link("A", "K", "B", "K");
    add_link("C", "K", "A", "K");
    for (const char *table : {"A", "B", "C"}) {
        info.add_cols(table, "X");
    }
    EXPECT_EQ(join(), (texts{"a1,b1,c1", "a2,b1,c1", "a1,b2,c1", "a2,b2,c1", "a1,b1,c2", "a2,b1,c2",
                             "a1,b2,c2", "a2,b2,c2"}));
}

TEST_F(rowset_link, every_key_must_hit) {
    add_table("A", {{1, "x"}, {1, "y"}, {2, "x"}});
    add_table("B", {{1, "x"}, {2, "x"}, {2, "y"}});
    add_link("A", "K", "B", "K");
    add_link("A", "X", "B", "X");
    EXPECT_EQ(join(), (texts{"1,x,1,x", "2,x,2,x"}));
}

TEST_F(rowset_link, a_link_is_used_where_its_second_table_is_joined) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_table("C", {{1, "c"}, {2, "d"}});
    add_link("A", "K", "C", "K"); // not yet usable where B is joined
    add_link("A", "K", "B", "K");
    add_link("C", "K", "C", "K"); // both sides on one table: no key
    EXPECT_EQ(join(), (texts{"1,a,1,b,1,c"}));
}

TEST_F(rowset_link, a_table_linked_only_to_later_ones_is_refused_when_it_is_joined) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_table("C", {{1, "c"}});
    add_link("A", "K", "C", "K");
    add_link("B", "K", "C", "K");
    expect_failure({"link_rowset:233 0xDB05"});
}

TEST_F(rowset_link, links_between_other_tables_or_within_one_are_no_keys) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("B", "K", "B", "X");
    add_link("A", "K", "A", "X");
    add_link("A", "NONE", "B", "K"); // its other side is no column joined so far
    expect_failure({"link_rowset:233 0xDB05"});
}

TEST_F(rowset_link, a_link_column_that_the_joined_table_lacks_is_refused) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    add_link("NONE", "K", "B", "NONE"); // looked up before it is known to be usable
    expect_failure({"link_rowset:206 0xDB05"});
}

TEST_F(rowset_link, a_joined_table_without_columns_is_refused) {
    add_table("A", {{1, "a"}});
    qry_lib_db_rowset_ narrow = test::make_rowset({{number_column("B", "K", uint_type, 1)}});
    narrow.records[0].col_num = 0;
    info.add_rowset(narrow);
    add_link("A", "K", "B", "K");
    expect_failure({"link_rowset:181 0xDB05"});
}

TEST_F(rowset_link, a_negative_number_of_columns_is_none) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    qry_lib_db_rowset_ first;
    ASSERT_EQ(info.get_rowset(0, first), 0u);
    first.records[0].col_num = -1;
    expect_failure({"link_rowset:233 0xDB05"});
}

TEST_F(rowset_link, a_row_without_the_key_column_is_refused) {
    add_table("A", {{1, "a"}});
    qry_lib_db_rowset_ uneven =
        test::make_rowset({{number_column("B", "K", uint_type, 1)}, {number_column("B", "K", uint_type, 1)}});
    uneven.records[1].col_num = 0;
    info.add_rowset(uneven);
    add_link("A", "K", "B", "K");
    expect_failure({"link_rowset:256 0xDB05"});
}

TEST_F(rowset_link, an_earlier_row_without_the_key_column_equals_no_row) {
    info.add_rowset(test::make_rowset({{number_column("A", "K", uint_type, 1)},
                                       {number_column("A", "OTHER", uint_type, 1)},
                                       {number_column("A", "K", uint_type, 1)}}));
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    EXPECT_EQ(join(), (texts{"1,1,b", "1,1,b"}));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_link, a_selected_column_that_no_table_returned_is_refused) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    info.add_cols("A", "X");
    info.add_cols("B", "NONE");
    expect_failure({"covert_rowset:599 0xDB05", "link_rowset:312 0xDB05"});
}

TEST_F(rowset_link, a_table_without_rows_gives_an_empty_result) {
    for (const int empty : {0, 1, 2}) {
        for (const bool listed : {false, true}) {
            SCOPED_TRACE(empty);
            info.all_clear();
            for (const int table : {0, 1, 2}) {
                const char name[] = {static_cast<char>('A' + table), '\0'};
                if (table == empty) {
                    add_table(name, {});
                } else {
                    add_table(name, {{1, "x"}});
                }
            }
            add_link("A", "K", "B", "K");
            add_link("B", "K", "C", "K");
            if (listed) {
                info.add_cols("A", "X");
                info.add_cols("NONE", "X");
            }
            EXPECT_EQ(join(), texts{});
            EXPECT_EQ(code, 0);
            EXPECT_EQ(rowset.record_num, 0);
            EXPECT_EQ(take_chain(), texts{});
        }
    }
}

TEST_F(rowset_link, an_empty_table_ends_the_join_before_later_tables_are_looked_at) {
    add_table("A", {{1, "a"}});
    add_table("B", {});
    add_table("C", {{1, "c"}});
    add_link("A", "K", "B", "K");
    add_link("A", "K", "C", "NONE");
    EXPECT_EQ(join(), texts{});
    EXPECT_EQ(code, 0);
}

TEST_F(rowset_link, a_join_that_finds_nothing_ends_before_later_tables_are_looked_at) {
    add_table("A", {{1, "a"}});
    add_table("B", {{2, "b"}});
    add_table("C", {{1, "c"}});
    add_link("A", "K", "B", "K");
    add_link("A", "K", "C", "NONE");
    EXPECT_EQ(join(), texts{});
    EXPECT_EQ(code, 0);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_link, the_select_list_is_projected_in_its_order_with_table_names) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    for (const char *table : {"B", "A", "B"}) {
        info.add_cols(table, "X");
    }
    EXPECT_EQ(join(), (texts{"b,a,b"}));
    EXPECT_STREQ(rowset.records[0].cols[0].table_name, "B");
    EXPECT_STREQ(rowset.records[0].cols[1].table_name, "A");
    EXPECT_STREQ(rowset.records[0].cols[1].col_name, "X");
    const norvane::qry_lib_db_rowset_lib rows;
    std::uint16_t index = 99;
    EXPECT_EQ(rows.get_col_index(rowset, "A", "X", index), 0u);
    EXPECT_EQ(index, 1);
}

TEST_F(rowset_link, the_per_table_rowsets_stay_as_they_were) {
    add_table("A", {{1, "a"}});
    add_table("B", {{1, "b"}});
    add_link("A", "K", "B", "K");
    const texts first = join();
    qry_lib_db_rowset_ view{};
    ASSERT_EQ(info.get_rowset(1, view), 0u);
    EXPECT_EQ(view.current, -1);
    EXPECT_EQ(join(), first);
}

TEST_F(rowset_link, memory_failures_return_every_block) {
    add_table("A", {{1, "a1"}, {2, "a2"}});
    add_table("B", {{1, "b1"}, {2, "b2"}});
    add_link("A", "K", "B", "K");
    const std::uint32_t blocks = qryhost_pool_blocks();
    test::with_each_block_refused(
        [&] { join(); },
        [&](std::uint32_t) {
            EXPECT_EQ(code, static_cast<int>(QRY_LIB_INVALID_ARGUMENT));
            EXPECT_EQ(take_chain(),
                      (texts{"init_rowset 0x1", "covert_rowset:565 0xDB05", "link_rowset:312 0xDB05"}));
            EXPECT_EQ(rowset.record_num, 0);
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
        });
}

TEST_F(rowset_link, more_rows_than_16_bits_count_are_written_by_their_low_16_bits) {
    hand_made_rows rows(257, {number_column("A", "K", uint_type, 1)});
    info.add_rowset(test::make_rowset(rows));
    for (std::vector<QRY_LIB_COLUMN> &row : rows) {
        row = {number_column("B", "K", ushort_type, 1)};
    }
    info.add_rowset(test::make_rowset(rows)); // 66049 pairs
    add_link("A", "K", "B", "K");
    EXPECT_EQ(join().size(), 257u * 257u - 65536u);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_link, projecting_no_rows_makes_an_empty_rowset) {
    QRY_LIB_ROWSET_LINK rows;
    EXPECT_EQ(lib.covert_rowset(rows, info, rowset), 0);
    EXPECT_EQ(rowset.record_num, 0);
    EXPECT_EQ(rowset.current, -1);
}

TEST_F(rowset_link, projecting_rows_without_columns_is_refused) {
    QRY_LIB_ROWSET_LINK rows;
    rows.records.emplace_back();
    EXPECT_EQ(lib.covert_rowset(rows, info, rowset), static_cast<int>(QRY_LIB_INVALID_ARGUMENT));
    EXPECT_EQ(take_chain(), texts{"covert_rowset:565 0xDB05"});
}

TEST_F(rowset_link, a_narrow_row_among_wide_ones_releases_the_result) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    QRY_LIB_ROWSET_LINK rows;
    rows.records.resize(2);
    rows.records[0].cols = {number_column("A", "K", 0, 1), number_column("A", "X", 0, 1)};
    rows.records[1].cols = {number_column("A", "K", 0, 1)};
    EXPECT_EQ(lib.covert_rowset(rows, info, rowset), static_cast<int>(QRY_LIB_INVALID_ARGUMENT));
    EXPECT_EQ(take_chain(), texts{"covert_rowset:599 0xDB05"});
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
    EXPECT_EQ(rowset.record_num, 0);
}

TEST_F(rowset_link, released_rows_are_gone) {
    QRY_LIB_ROWSET_LINK rows;
    rows.records.resize(2);
    rows.records[0].cols = {number_column("A", "K", 0, 1)};
    lib.free_record(rows.records[0]);
    EXPECT_TRUE(rows.records[0].cols.empty());
    lib.free_rowset(rows);
    EXPECT_TRUE(rows.records.empty());
    lib.free_rowset(rows);
}

// Two values and whether the join takes them for equal.
struct hit_row {
    QRY_LIB_COLUMN a;
    QRY_LIB_COLUMN b;
    int hit;
};

hit_row numbers(std::uint32_t a_type, std::uint32_t a, std::uint32_t b_type, std::uint32_t b, int hit) {
    return {number_column("A", "K", a_type, a), number_column("B", "L", b_type, b), hit};
}

TEST_F(rowset_link, numbers_are_equal_by_their_zero_extended_bits) {
    const std::uint32_t wide[] = {0, 3, 4};
    std::vector<hit_row> table;
    for (const std::uint32_t a : wide) {
        for (const std::uint32_t b : wide) {
            table.push_back(numbers(a, 0x12345678, b, 0x12345678, 1));
            table.push_back(numbers(a, 0x12345678, b, 0x12345679, 0));
            table.push_back(numbers(a, 0xFFFFFFFF, b, 0xFFFFFFFF, 1)); // -1 where it is signed
        }
        for (const std::uint32_t narrow : {1u, 2u}) {
            table.push_back(numbers(a, 200, narrow, 200, 1));
            table.push_back(numbers(narrow, 200, a, 200, 1));
            table.push_back(numbers(a, 201, narrow, 200, 0));
            table.push_back(numbers(narrow, 200, a, 201, 0));
        }
        table.push_back(numbers(a, 0xFFFFFFFF, 1, 0xFF, 0));
        table.push_back(numbers(1, 0xFF, a, 0xFFFFFFFF, 0));
        table.push_back(numbers(a, 0xFFFFFFFF, 2, 0xFFFF, 0));
        table.push_back(numbers(2, 0xFFFF, a, 0xFFFFFFFF, 0));
        table.push_back(numbers(a, 0x100, 1, 0, 0));
        table.push_back(numbers(a, 0x10001, 2, 1, 0));
        table.push_back(numbers(a, 60000, 2, 60000, 1));
    }
    table.push_back(numbers(1, 7, 2, 7, 1));
    table.push_back(numbers(2, 7, 1, 7, 1));
    table.push_back(numbers(2, 0x107, 1, 7, 0));
    table.push_back(numbers(1, 255, 1, 255, 1));
    table.push_back(numbers(1, 255, 1, 254, 0));
    table.push_back(numbers(2, 65535, 2, 65535, 1));
    table.push_back(numbers(2, 7, 3, 7, 1));
    for (const hit_row &row : table) {
        SCOPED_TRACE(std::to_string(row.a.type) + ":" + test::value_text(row.a) + " " +
                     std::to_string(row.b.type) + ":" + test::value_text(row.b));
        EXPECT_EQ(lib.check_column_hit(row.a, row.b), row.hit);
    }
}

TEST_F(rowset_link, strings_are_equal_as_strings_and_never_equal_numbers) {
    for (const std::uint32_t a : {5u, 6u}) {
        for (const std::uint32_t b : {5u, 6u}) {
            EXPECT_EQ(
                lib.check_column_hit(text_column("A", "K", "Sato", a), text_column("B", "L", "Sato", b)), 1);
            EXPECT_EQ(lib.check_column_hit(text_column("A", "K", "", a), text_column("B", "L", "", b)), 1);
            EXPECT_EQ(
                lib.check_column_hit(text_column("A", "K", "Sato", a), text_column("B", "L", "sato", b)), 0);
            EXPECT_EQ(lib.check_column_hit(text_column("A", "K", "Sa", a), text_column("B", "L", "Sato", b)),
                      0);
        }
        for (std::uint32_t number = 0; number < 5; ++number) {
            const QRY_LIB_COLUMN text = text_column("A", "K", "7", a);
            for (const std::uint32_t value : {7u, 0x37000000u, 0x37u, 0u}) {
                EXPECT_EQ(lib.check_column_hit(text, number_column("B", "L", number, value)), 0);
                EXPECT_EQ(lib.check_column_hit(number_column("B", "L", number, value), text), 0);
            }
        }
    }
}

TEST_F(rowset_link, values_of_unknown_types_equal_nothing) {
    for (const std::uint32_t unknown : {7u, 98u, 0xFFFFFFFFu}) {
        const QRY_LIB_COLUMN a = number_column("A", "K", unknown, 7);
        EXPECT_EQ(lib.check_column_hit(a, a), 0);
        for (std::uint32_t type = 0; type < 7; ++type) {
            EXPECT_EQ(lib.check_column_hit(a, number_column("B", "L", type, 7)), 0);
            EXPECT_EQ(lib.check_column_hit(number_column("B", "L", type, 7), a), 0);
        }
    }
}

TEST_F(rowset_link, a_string_without_its_end_is_not_compared_beyond_its_value) {
    QRY_LIB_COLUMN a = text_column("A", "K", "");
    std::memset(a.value.str_value, 'x', sizeof a.value.str_value);
    QRY_LIB_COLUMN b = a;
    b.col_name[0] = '\0';
    b.type = QRY_LIB_COLUMN_TYPE_STR;
    std::memset(b.table_name, 0, sizeof b.table_name);
    EXPECT_EQ(lib.check_column_hit(a, b), 1);
}

} // namespace
