// The link model: what is put in comes out, what lies beyond the end is refused, the rows go back once.
#include "link/qry_lib_analyze_link_info.h"

#include <cstring>

#include "unit/query_support.h"

namespace {

using norvane::qry_lib_analyze_info;
using norvane::qry_lib_analyze_link_info;
using norvane::QRY_LIB_LINK;
using test::number_column;
using test::texts;

class link_info : public test::trace_test {
  protected:
    void fill() {
        qry_lib_analyze_info query;
        query.add_table("A");
        query.set_exec_type(QRY_LIB_DB_QUERY_TYPE_SELECT);
        info.add_analyze_info(query);
        info.add_link({number_column("A", "K", 0, 0), number_column("B", "K", 0, 0)});
        info.add_cols("A", "X");
        info.set_order("A", "X", QRY_LIB_ODER_TYPE_DESC);
        info.add_rowset(
            test::make_rowset({{number_column("A", "K", 0, 1)}, {number_column("A", "K", 0, 2)}}));
    }

    // Every getter at `index` answers 0xDB02 and leaves its output alone.
    void expect_nothing_at(std::uint16_t index) {
        qry_lib_analyze_info query;
        query.add_table("KEPT");
        QRY_LIB_LINK link{number_column("KEPT", "L", 0, 0), number_column("KEPT", "R", 0, 0)};
        char table[128] = "KEPT";
        char col[32] = "KEPT";
        qry_lib_db_rowset_ rowset{5, nullptr, 4};
        EXPECT_EQ(info.get_analyze_info(index, query), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_link(index, link), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_cols(index, table, col), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_EQ(info.get_rowset(index, rowset), QRY_LIB_NO_SUCH_ITEM);
        EXPECT_STREQ(query.get_table(), "KEPT");
        EXPECT_STREQ(link.left.table_name, "KEPT");
        EXPECT_STREQ(table, "KEPT");
        EXPECT_STREQ(col, "KEPT");
        EXPECT_EQ(rowset.record_num, 5);
        EXPECT_EQ(rowset.current, 4);
    }

    void expect_empty() {
        EXPECT_EQ(info.get_analyze_info_num(), 0);
        EXPECT_EQ(info.get_link_num(), 0);
        EXPECT_EQ(info.get_cols_num(), 0);
        EXPECT_EQ(info.get_rowset_num(), 0);
        char table[128] = "#";
        char col[32] = "#";
        QRY_LIB_ODER_TYPE order = QRY_LIB_ODER_TYPE_DESC;
        info.get_order(table, col, order);
        EXPECT_STREQ(table, "");
        EXPECT_STREQ(col, "");
        EXPECT_EQ(order, QRY_LIB_ODER_TYPE_NOTHING);
        expect_nothing_at(0);
        expect_nothing_at(65535);
    }

    qry_lib_analyze_link_info info;
};

TEST_F(link_info, a_fresh_object_is_empty) {
    expect_empty();
}

TEST_F(link_info, queries_are_taken_over_in_their_order) {
    const auto list_of = [](std::initializer_list<const char *> tables) {
        std::vector<qry_lib_analyze_info> queries(tables.size());
        std::size_t i = 0;
        for (const char *table : tables) {
            queries[i++].add_table(table);
        }
        return queries;
    };
    info.add_analyze_infos(list_of({"A", "B"}));
    info.add_analyze_infos(list_of({"C"}));
    ASSERT_EQ(info.get_analyze_info_num(), 3);
    for (const std::uint16_t i : test::indexes{0, 1, 2}) {
        qry_lib_analyze_info out;
        EXPECT_EQ(info.get_analyze_info(i, out), 0u);
        EXPECT_EQ(out.get_table(), std::string(1, static_cast<char>('A' + i)));
    }
}

TEST_F(link_info, an_index_at_the_count_is_refused_without_a_trace) {
    fill();
    expect_nothing_at(1);
    expect_nothing_at(65535);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(link_info, queries_are_copied_in_and_out) {
    qry_lib_analyze_info query;
    query.add_table("A");
    info.add_analyze_info(query);
    query.set_table("CHANGED");
    info.add_analyze_info(query);
    EXPECT_EQ(info.get_analyze_info_num(), 2);
    qry_lib_analyze_info out;
    out.add_table("OLD");
    out.add_table("OLDER");
    EXPECT_EQ(info.get_analyze_info(0, out), 0u);
    EXPECT_STREQ(out.get_table(), "A");
    EXPECT_EQ(out.get_table_num(), 1);
    out.set_table("MINE");
    EXPECT_EQ(info.get_analyze_info(0, out), 0u);
    EXPECT_STREQ(out.get_table(), "A");
    EXPECT_EQ(info.get_analyze_info(1, out), 0u);
    EXPECT_STREQ(out.get_table(), "CHANGED");
}

TEST_F(link_info, links_are_copied_whole_in_order) {
    QRY_LIB_LINK links[2];
    std::memset(links, 0x41, sizeof links[0]);
    std::memset(&links[1], 0x42, sizeof links[1]);
    info.add_link(links[0]);
    info.add_link(links[1]);
    EXPECT_EQ(info.get_link_num(), 2);
    for (const std::uint16_t i : test::indexes{0, 1}) {
        QRY_LIB_LINK out{};
        EXPECT_EQ(info.get_link(i, out), 0u);
        EXPECT_EQ(std::memcmp(&out, &links[i], sizeof out), 0);
    }
}

TEST_F(link_info, the_select_list_keeps_its_order_and_its_duplicates) {
    const std::pair<const char *, const char *> cols[] = {{"B", "Y"}, {"A", "X"}, {"B", "Y"}, {"", ""}};
    for (const auto &[table, col] : cols) {
        info.add_cols(table, col);
    }
    ASSERT_EQ(info.get_cols_num(), 4);
    for (std::uint16_t i = 0; i < 4; ++i) {
        char table[128] = "#";
        char col[32] = "#";
        EXPECT_EQ(info.get_cols(i, table, col), 0u);
        EXPECT_STREQ(table, cols[i].first);
        EXPECT_STREQ(col, cols[i].second);
    }
}

TEST_F(link_info, names_are_kept_to_their_capacities_and_terminated) {
    char table[128];
    char col[32];
    for (const std::size_t beyond : {0u, 1u, 5000u}) {
        info.add_cols(std::string(127 + beyond, 't').c_str(), std::string(31 + beyond, 'c').c_str());
        EXPECT_EQ(info.get_cols(static_cast<std::uint16_t>(info.get_cols_num() - 1), table, col), 0u);
        EXPECT_EQ(std::string(table), std::string(127, 't'));
        EXPECT_EQ(std::string(col), std::string(31, 'c'));
    }
}

TEST_F(link_info, the_sort_key_is_table_then_column) {
    info.set_order("TABLE", "COLUMN", QRY_LIB_ODER_TYPE_DESC);
    char table[128] = "";
    char col[32] = "";
    QRY_LIB_ODER_TYPE order = QRY_LIB_ODER_TYPE_NOTHING;
    info.get_order(table, col, order);
    EXPECT_STREQ(table, "TABLE");
    EXPECT_STREQ(col, "COLUMN");
    EXPECT_EQ(order, QRY_LIB_ODER_TYPE_DESC);
}

TEST_F(link_info, a_rowset_handed_out_shares_the_rows) {
    fill();
    qry_lib_db_rowset_ view{};
    qry_lib_db_rowset_ second{};
    EXPECT_EQ(info.get_rowset_num(), 1);
    EXPECT_EQ(info.get_rowset(0, view), 0u);
    EXPECT_EQ(view.record_num, 2);
    EXPECT_EQ(qry_lib_db_rowset_next(&view), 1u);
    EXPECT_EQ(info.get_rowset(0, second), 0u);
    EXPECT_EQ(second.records, view.records);
    EXPECT_EQ(second.current, -1);
}

TEST_F(link_info, all_clear_releases_the_rows_once_and_the_object_can_be_filled_again) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    for (int round = 0; round < 2; ++round) {
        fill();
        fill();
        EXPECT_EQ(info.get_rowset_num(), 2);
        EXPECT_EQ(qryhost_pool_blocks(), blocks + 6);
        info.all_clear();
        EXPECT_EQ(qryhost_pool_blocks(), blocks);
        expect_empty();
    }
    info.all_clear();
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(link_info, the_end_of_the_object_releases_the_rows) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    {
        qry_lib_analyze_link_info local;
        local.add_rowset(test::make_rowset({{number_column("A", "K", 0, 1)}}));
        EXPECT_EQ(qryhost_pool_blocks(), blocks + 2);
    }
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

} // namespace
