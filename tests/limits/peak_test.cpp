// What texts take at their peak: a refused one what its items up to the refusal take, an accepted one no more
// than it always took.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include <qrylib/qrylib.h>

#include "limits/counted_memory.h"
#include "limits/texts.h"
#include "parser/qry_lib_sql_parser.h"

namespace {

using limits::list_text;
using limits::of_items;
using limits::with_other_item;
using norvane::qry_lib_analyze_info;
using norvane::qry_lib_sql_parser;

constexpr std::size_t beside = 24 * 1000 * 1000;
constexpr unsigned most = UINT16_MAX;

// A way to take a text; the library's code.
using taker = std::uint32_t (*)(const char *text);

std::uint32_t analyse(const char *text) {
    qry_lib_analyze_info info;
    const qry_lib_sql_parser parser;
    return std::strncmp(text, "SELECT", 6) == 0 ? parser.analyze_sql_select("department_db", text, info)
                                                : parser.analyze_sql("department_db", text, info);
}

std::uint32_t run(const char *text) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset{};
    qry_lib_db_rowset_init(&rowset);
    qry_lib_db_get_stmt("department_db", &stmt);
    const std::uint32_t code = qry_lib_db_exec_query(&stmt, text, &rowset);
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

// One department and its counter. The first query of all is done, too: the workstation makes what it needs
// only once.
class text_peak : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        for (const char *table : {"DEPT_TBL", "EDIT_CNT_TBL"}) {
            qry_lib_db_stmt_ stmt;
            qry_lib_db_get_stmt("department_db", &stmt);
            qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_INSERT);
            qry_lib_db_stmt_set_table_name(&stmt, table);
            qry_lib_db_stmt_set_col_num(&stmt, 1);
            qry_lib_db_stmt_set_col_name(&stmt, 0, "ID");
            qry_lib_db_stmt_set_elem_as_ulong(&stmt, 0, 1);
            EXPECT_EQ(qry_lib_db_stmt_exec(&stmt), QRY_LIB_OK);
            qry_lib_db_stmt_term(&stmt);
        }
        EXPECT_EQ(run("SELECT ID FROM DEPT_TBL"), QRY_LIB_OK);
    }
};

std::size_t peak_of(taker take, const std::string &text, std::uint32_t expected) {
    limits::start_peak();
    const std::uint32_t code = take(text.c_str());
    const std::size_t peak = limits::peak_bytes();
    EXPECT_EQ(code, expected);
    return peak;
}

constexpr list_text columns = {"columns", "SELECT ", "ID", ",", " FROM DEPT_TBL"};
constexpr list_text tables = {"tables", "SELECT ID FROM ", "DEPT_TBL", ",", ""};
constexpr list_text and_joined = {"AND", "SELECT ID FROM DEPT_TBL WHERE ", "ID=1", " AND ", ""};
constexpr list_text or_joined = {"OR", "SELECT ID FROM DEPT_TBL WHERE ", "ID=1", " OR ", ""};
constexpr list_text deleted = {"DELETE", "DELETE FROM DEPT_TBL WHERE ", "ID=1", " AND ", ""};
constexpr list_text values = {"IN", "SELECT ID FROM DEPT_TBL WHERE ID IN (", "1", ",", ")"};
constexpr list_text prefixes = {"INLIKE", "SELECT ID FROM DEPT_TBL WHERE NAME INLIKE (", "'a%'", ",", ")"};
constexpr list_text lists = {"lists", "SELECT ID FROM DEPT_TBL WHERE ",
                             "ID IN (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20)", " OR ", ""};

constexpr list_text join_conditions = {"join keys", "SELECT DEPT_TBL.ID FROM DEPT_TBL,EDIT_CNT_TBL WHERE ",
                                       "DEPT_TBL.ID=EDIT_CNT_TBL.ID", " AND ", ""};
constexpr list_text comparisons = {"compared tables",
                                   "SELECT DEPT_TBL.ID FROM DEPT_TBL,EDIT_CNT_TBL WHERE "
                                   "DEPT_TBL.ID=EDIT_CNT_TBL.ID AND ",
                                   "DEPT_TBL.ID=1 AND EDIT_CNT_TBL.ID=1", " AND ", ""};
constexpr list_text linked_columns = {"linked columns", "SELECT ", "DEPT_TBL.ID", ",",
                                      " FROM DEPT_TBL,EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID"};

// A list's items, as many as it may announce, and one that is refused.
struct refused_list {
    const list_text &list;
    unsigned num;
    const char *other;
};

const refused_list refused_lists[] = {
    {columns, most, ""},          {columns, most, "A_NAME_OF_THIRTY_TWO_CHARACTERS_"},
    {tables, most, " "},          {and_joined, most + 1, "ID"},
    {and_joined, most + 1, "=1"}, {or_joined, most + 1, "ID == 1"},
    {deleted, most + 1, "ID"},    {values, most, " "},
    {values, most, "'1"},         {prefixes, most, "'a'"},
};

TEST_F(text_peak, of_a_text_refused_at_its_nth_item_is_what_n_items_take) {
    for (const refused_list &refused : refused_lists) {
        for (const unsigned n : {1u, 2u, 300u, 5000u}) {
            SCOPED_TRACE(std::string(refused.list.name) + " with '" + refused.other + "' at " +
                         std::to_string(n));
            const std::size_t taken = peak_of(analyse, of_items(refused.list, n), 0);
            const std::size_t peak = peak_of(
                analyse, with_other_item(refused.list, refused.num, n, refused.other), QRY_LIB_NOT_ACCEPTED);
            EXPECT_LE(peak, taken + beside);
            EXPECT_TRUE(n > 1 || peak < beside) << peak;
        }
    }
}

TEST_F(text_peak, of_a_query_refused_at_its_nth_item_is_what_n_items_take) {
    for (const refused_list &refused : refused_lists) {
        if (&refused.list == &deleted || &refused.list == &tables) {
            continue; // no query, and a list of tables that is not joined
        }
        for (const unsigned n : {1u, 2u, 300u}) {
            SCOPED_TRACE(std::string(refused.list.name) + " at " + std::to_string(n));
            const std::size_t taken = peak_of(run, of_items(refused.list, n), 0);
            const std::size_t peak = peak_of(
                run, with_other_item(refused.list, refused.num, n, refused.other), QRY_LIB_NOT_ACCEPTED);
            EXPECT_LE(peak, taken + beside);
            EXPECT_TRUE(n > 1 || peak < beside) << peak;
        }
    }
}

// The items are more than a query may have, which shows before the first of them is kept.
TEST_F(text_peak, of_a_text_with_too_many_columns_or_tables_is_that_of_its_copies) {
    for (const list_text *list : {&columns, &tables}) {
        SCOPED_TRACE(list->name);
        EXPECT_LT(peak_of(analyse, of_items(*list, most + 1), QRY_LIB_NOT_ACCEPTED), beside);
    }
}

// The record announces its columns; those behind the nameless one are never looked at.
TEST_F(text_peak, of_a_record_refused_at_its_nth_column_is_what_n_columns_take) {
    const qry_lib_sql_parser parser;
    for (const unsigned n : {1u, 2u, 300u}) {
        SCOPED_TRACE(n);
        std::vector<QRY_LIB_COLUMN> cols(n);
        for (unsigned i = 0; i + 1 < n; ++i) {
            std::strcpy(cols[i].col_name, "ID");
        }
        const QRY_LIB_RECORD record{most, cols.data()};
        limits::start_peak();
        qry_lib_analyze_info info;
        EXPECT_EQ(parser.analyze_param_insert("department_db", &record, "DEPT_TBL", info),
                  QRY_LIB_NOT_ACCEPTED);
        EXPECT_LE(limits::peak_bytes(), n * sizeof(QRY_LIB_COLUMN) + beside);
        EXPECT_TRUE(n > 1 || limits::peak_bytes() < beside) << limits::peak_bytes();
    }
}

// A list that is accepted, and what a build without bounds for refused texts took at its peak.
struct accepted_list {
    const list_text &list;
    taker take;
    unsigned num;
    std::size_t bytes_64; // with pointers of 64 bits
    std::size_t bytes_32;
};

const accepted_list accepted_lists[] = {
    {columns, analyse, 1, 3199, 3191},
    {columns, analyse, 2, 6430, 6406},
    {columns, analyse, 10, 32244, 32108},
    {columns, analyse, 300, 967416, 963312},
    {columns, analyse, most, 209843134, 209318838},
    {and_joined, analyse, 1, 6279, 6251},
    {and_joined, analyse, 2, 9359, 9311},
    {and_joined, analyse, 10, 34085, 33877},
    {and_joined, analyse, 300, 943120, 933016},
    {and_joined, analyse, most, 204534803, 202699807},
    {or_joined, analyse, 1, 6279, 6251},
    {or_joined, analyse, 2, 9359, 9311},
    {or_joined, analyse, 10, 34076, 33868},
    {or_joined, analyse, 300, 942821, 932717},
    {or_joined, analyse, most, 204469269, 202634273},
    {deleted, analyse, 1, 3298, 3238},
    {deleted, analyse, 2, 6463, 6367},
    {deleted, analyse, 10, 31781, 31413},
    {deleted, analyse, 300, 948683, 938547},
    {deleted, analyse, most, 205714596, 203879568},
    {values, analyse, 1, 6279, 6251},
    {values, analyse, 2, 9359, 9311},
    {values, analyse, 10, 34027, 33819},
    {values, analyse, 300, 942237, 932133},
    {values, analyse, most, 204338215, 202503219},
    {prefixes, analyse, 1, 6298, 6270},
    {prefixes, analyse, 2, 9383, 9335},
    {prefixes, analyse, 10, 34063, 33855},
    {prefixes, analyse, 300, 944952, 934848},
    {prefixes, analyse, most, 204928045, 203093049},
    {lists, analyse, 1, 64858, 64450},
    {lists, analyse, 2, 186272, 184792},
    {lists, analyse, 10, 1481288, 1471296},
    {lists, analyse, 300, 44405850, 44113490},
    {tables, analyse, 1, 3199, 3191},
    {tables, analyse, 2, 3249, 3233},
    {tables, analyse, 300, 43669, 33429},
    {tables, analyse, most, 5832704, 4521984},
    {columns, run, 1, 9522, 9494},
    {columns, run, 2, 15928, 15864},
    {columns, run, 10, 67192, 67032},
    {columns, run, 300, 1925512, 1921872},
    {and_joined, run, 1, 18726, 18658},
    {and_joined, run, 2, 27930, 27822},
    {and_joined, run, 10, 101562, 101134},
    {and_joined, run, 300, 2770722, 2758694},
    {or_joined, run, 1, 18726, 18658},
    {or_joined, run, 2, 27930, 27822},
    {or_joined, run, 10, 101562, 101134},
    {or_joined, run, 300, 2770722, 2758694},
    {values, run, 1, 18726, 18658},
    {values, run, 2, 27930, 27822},
    {values, run, 10, 101562, 101134},
    {values, run, 300, 2770722, 2758694},
    {prefixes, run, 1, 18726, 18658},
    {prefixes, run, 2, 27930, 27822},
    {prefixes, run, 10, 101562, 101134},
    {prefixes, run, 300, 2770722, 2758694},
    {join_conditions, run, 1, 48248, 47968},
    {join_conditions, run, 2, 57728, 57408},
    {join_conditions, run, 10, 192948, 192548},
    {join_conditions, run, 300, 5794180, 5787980},
    {comparisons, run, 1, 60568, 60208},
    {comparisons, run, 2, 72888, 72448},
    {comparisons, run, 10, 281278, 279622},
    {comparisons, run, 300, 7792198, 7747502},
    {linked_columns, run, 1, 48248, 47968},
    {linked_columns, run, 2, 70556, 70276},
    {linked_columns, run, 10, 268964, 268684},
    {linked_columns, run, 300, 7423028, 7422748},
};

TEST_F(text_peak, of_an_accepted_text_is_no_higher_than_it_was) {
    for (const accepted_list &accepted : accepted_lists) {
        const bool is_run = accepted.take == run;
        SCOPED_TRACE(std::string(is_run ? "run: " : "") + accepted.list.name + " of " +
                     std::to_string(accepted.num));
        EXPECT_LE(peak_of(accepted.take, of_items(accepted.list, accepted.num), 0),
                  sizeof(void *) == 8 ? accepted.bytes_64 : accepted.bytes_32);
    }
}

} // namespace

// The sanitizer looks at all that is left of a text with each search in it: with 65,535 searches in one text
// that takes minutes.
extern "C" const char *__asan_default_options(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char *__asan_default_options() {
    return "intercept_strstr=0";
}
