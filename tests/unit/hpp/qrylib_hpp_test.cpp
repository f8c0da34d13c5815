// The C++ face: statements and texts in, rows and errors out, and nothing left behind.
#include <qrylib/qrylib.hpp>

#include <algorithm>
#include <type_traits>

#include "unit/support.h"

namespace {

using qrylib::database;
using qrylib::errc;
using qrylib::row;
using qrylib::rowset;

static_assert(!std::is_copy_constructible_v<rowset> && !std::is_copy_assignable_v<rowset>);
static_assert(std::is_nothrow_move_constructible_v<rowset> && std::is_nothrow_move_assignable_v<rowset>);
static_assert(!std::is_convertible_v<char, qrylib::value> && !std::is_convertible_v<bool, qrylib::value>);

class qrylib_hpp_test : public test::platform_test {
  protected:
    qrylib_hpp_test() {
        qryhost_reset();
        insert(2, "Sato");
        insert(1, "Abe");
        insert(3, "O'Hara");
    }

    ~qrylib_hpp_test() override { qryhost_reset(); }

    void insert(int id, const char *name) {
        book.insert_into("PSN_TBL").set("PSN_ID", id).set("PSN_NAME", name).execute();
    }

    std::vector<std::string> names(const rowset &rows) {
        std::vector<std::string> found;
        for (const row person : rows) {
            found.push_back(person.get<std::string>("PSN_NAME").value_or("?"));
        }
        return found;
    }

    std::vector<std::string> all_names() {
        return names(book.query("SELECT PSN_NAME, PSN_ID FROM PSN_TBL WHERE PSN_ID > 0 ORDER BY PSN_ID"));
    }

    const database book{"adbk_db"};
};

using name_list = std::vector<std::string>;

// A record as a query would fill it, with one column of every type.
class row_test : public ::testing::Test {
  protected:
    row_test() {
        columns[0].value.int_value = -1;
        columns[1].value.uchar_value = 200;
        columns[2].value.ushort_value = 65535;
        columns[3].value.uint_value = 4294967295u;
        columns[4].value.ulong_value = 5;
        std::strcpy(columns[5].value.str_value, "text");
        const char *names[] = {"INT", "UCHAR", "USHORT", "UINT", "ULONG", "STR", "STR"};
        for (std::uint32_t i = 0; i < 7; ++i) {
            columns[i].type = static_cast<QRY_LIB_COLUMN_TYPE>(i);
            std::strcpy(columns[i].col_name, names[i]);
            std::strcpy(columns[i].table_name, i == 5 ? "LEFT" : "RIGHT");
        }
    }

    QRY_LIB_COLUMN columns[7] = {};
    const QRY_LIB_RECORD record{7, columns};
    const row read{record};
};

TEST_F(row_test, NumbersReadAsEveryTypeThatHoldsThem) {
    EXPECT_EQ(read.get<std::int32_t>(0), -1);
    EXPECT_EQ(read.get<std::int8_t>(0), -1);
    EXPECT_EQ(read.get<std::uint32_t>(0), std::nullopt);
    EXPECT_EQ(read.get<std::uint8_t>(1), 200);
    EXPECT_EQ(read.get<std::int8_t>(1), std::nullopt);
    EXPECT_EQ(read.get<std::uint16_t>(2), 65535);
    EXPECT_EQ(read.get<std::int16_t>(2), std::nullopt);
    EXPECT_EQ(read.get<std::uint32_t>(3), 4294967295u);
    EXPECT_EQ(read.get<std::int32_t>(3), std::nullopt);
    EXPECT_EQ(read.get<std::int64_t>(3), 4294967295);
    EXPECT_EQ(read.get<std::uint32_t>(4), 5u);
    EXPECT_EQ(read.get<std::uint64_t>(0), std::nullopt);
}

TEST_F(row_test, TextsAndNumbersDoNotReadAsEachOther) {
    EXPECT_EQ(read.get<std::string>(5), "text");
    EXPECT_EQ(read.get<std::string_view>("STR"), "text");
    EXPECT_EQ(read.get<int>(5), std::nullopt);
    EXPECT_EQ(read.get<std::string>(1), std::nullopt);
    EXPECT_EQ(read.get<std::string>(6), std::nullopt) << "a type that does not exist";
    EXPECT_EQ(read.get<int>(6), std::nullopt);
}

TEST_F(row_test, ColumnsAreFoundByNameAndTable) {
    EXPECT_EQ(read.column("STR"), &columns[5]);
    EXPECT_EQ(read.column("STR", "RIGHT"), &columns[6]);
    EXPECT_EQ(read.column("STR", "NOWHERE"), nullptr);
    EXPECT_EQ(read.column(7), nullptr);
    EXPECT_EQ(read.get<int>("MISSING"), std::nullopt);
}

TEST_F(row_test, ATextWithoutTerminatorEndsAtItsCapacity) {
    std::memset(columns[5].value.str_value, 'x', sizeof columns[5].value.str_value);
    EXPECT_EQ(read.get<std::string>(5), std::string(QRY_LIB_STRING_MAX, 'x'));
}

TEST_F(qrylib_hpp_test, WalksTheRowsInOrder) {
    const rowset rows = book.query("SELECT PSN_NAME, PSN_ID FROM PSN_TBL WHERE PSN_ID > 0 ORDER BY PSN_ID");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(names(rows), (name_list{"Abe", "Sato", "O'Hara"}));
    EXPECT_EQ(rows[1].get<int>(1), 2);
    EXPECT_EQ(rows[1].size(), 2u);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [](row person) { return *person.get<int>(1) > 1; }), 2);
    EXPECT_TRUE(lines.empty()) << lines.front();
}

TEST_F(qrylib_hpp_test, ReadsThatDoNotFitAreNotTraced) {
    const rowset rows = book.query("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1");
    EXPECT_EQ(rows[0].get<int>(0), std::nullopt);
    EXPECT_EQ(rows[0].get<int>(9), std::nullopt);
    EXPECT_TRUE(lines.empty());
}

TEST_F(qrylib_hpp_test, AnEmptyResultHasNoRows) {
    const rowset rows = book.query("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99");
    EXPECT_TRUE(rows.empty());
    EXPECT_EQ(rows.begin(), rows.end());
    EXPECT_EQ(rowset().begin(), rowset().end());
}

TEST_F(qrylib_hpp_test, ARowsetMovesItsRows) {
    rowset first = book.query("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 1");
    rowset second = std::move(first);
    EXPECT_TRUE(first.empty()); // NOLINT: what is left behind is the point
    EXPECT_EQ(names(second), name_list{"Abe"});
    second = book.query("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 2");
    EXPECT_EQ(names(second), name_list{"Sato"});
    EXPECT_EQ(qry_lib_db_rowset_get_row_num(second.get()), 1);
}

TEST_F(qrylib_hpp_test, CountsThroughTextAndStatement) {
    EXPECT_EQ(book.query("SELECT COUNT(*) FROM PSN_TBL WHERE PSN_ID > 1")[0].get<int>(0), 2);
    EXPECT_EQ(book.select_from("PSN_TBL").column("COUNT(*)").where("PSN_ID > 0").query()[0].get<int>(0), 3);
}

TEST_F(qrylib_hpp_test, SelectsByStatement) {
    const rowset rows = book.select_from("PSN_TBL")
                            .column("PSN_ID")
                            .column("PSN_NAME")
                            .where("PSN_ID > 0")
                            .order_by("PSN_ID DESC")
                            .query();
    EXPECT_EQ(names(rows), (name_list{"O'Hara", "Sato", "Abe"}));
}

TEST_F(qrylib_hpp_test, UpdatesWhereOneColumnIsEqual) {
    book.update("PSN_TBL").set("PSN_NAME", "Ito").where_equal("PSN_ID", 2).execute();
    book.update("PSN_TBL").set("PSN_NAME", std::string("Ono")).where_equal("PSN_NAME", "O'Hara").execute();
    EXPECT_EQ(all_names(), (name_list{"Abe", "Ito", "Ono"}));
}

TEST_F(qrylib_hpp_test, AStatementMayBeChangedAndExecutedAgain) {
    auto person = book.insert_into("PSN_TBL");
    person.set("PSN_ID", 4).set("PSN_NAME", "Kim").execute();
    person.set("PSN_ID", 5).execute();
    EXPECT_EQ(all_names(), (name_list{"Abe", "Sato", "O'Hara", "Kim", "Kim"}));
}

TEST_F(qrylib_hpp_test, DeletesByStatementAndByText) {
    book.delete_from("PSN_TBL").where("PSN_ID = 1").execute();
    EXPECT_EQ(all_names(), (name_list{"Sato", "O'Hara"}));
    book.execute("DELETE FROM PSN_TBL WHERE PSN_ID = 2");
    EXPECT_EQ(all_names(), name_list{"O'Hara"});
    book.delete_from("PSN_TBL").execute();
    EXPECT_EQ(all_names(), name_list{});
}

TEST_F(qrylib_hpp_test, NumbersOfEveryWidthAreWritten) {
    const database departments("department_db");
    departments.insert_into("DEPT_TBL").set("ID", std::uint8_t{7}).set("TOTAL_M", 4294967295u).execute();
    const auto total = departments.select_from("DEPT_TBL").column("TOTAL_M");
    EXPECT_EQ(qrylib::statement(total).where_equal("ID", 7ull).query()[0].get<std::uint32_t>(0), 4294967295u);
    EXPECT_EQ(qrylib::statement(total).where_equal("TOTAL_M", 4294967295u).query().size(), 1u);
}

TEST_F(qrylib_hpp_test, AnErrorCarriesCodeNameAndSentence) {
    try {
        book.query("SELECT NICKNAME FROM PSN_TBL");
        FAIL() << "an unknown column is refused";
    } catch (const qrylib::error &refusal) {
        EXPECT_EQ(refusal.value(), QRY_LIB_INVALID_ARGUMENT);
        EXPECT_EQ(refusal.code(), errc::invalid_argument);
        EXPECT_STREQ(refusal.name(), "QRY_LIB_INVALID_ARGUMENT");
        EXPECT_STREQ(refusal.sentence(), qry_lib_code_text(QRY_LIB_INVALID_ARGUMENT));
        EXPECT_EQ(refusal.what(), std::string(refusal.name()) + ": " + refusal.sentence());
    }
}

TEST_F(qrylib_hpp_test, AnErrorCodeTakesThePlaceOfTheException) {
    std::error_code failure = errc::failure;
    EXPECT_EQ(book.query("SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID > 0", failure).size(), 3u);
    EXPECT_FALSE(failure);
    EXPECT_TRUE(book.query("SELECT", failure).empty());
    EXPECT_EQ(failure, errc::not_accepted);
    EXPECT_EQ(failure.category(), qrylib::category());
    EXPECT_EQ(failure.message(), qry_lib_code_text(QRY_LIB_NOT_ACCEPTED));
    book.execute("DELETE FROM NOBODY", failure);
    EXPECT_EQ(failure, errc::invalid_argument);
    book.update("PSN_TBL").set("PSN_NAME", "x").where("PSN_ID = 99").execute(failure);
    EXPECT_EQ(failure, errc::no_such_item);
    EXPECT_TRUE(database("nobody_db").select_from("PSN_TBL").column("PSN_ID").query(failure).empty());
    EXPECT_EQ(failure, errc::invalid_argument);
}

TEST_F(qrylib_hpp_test, APlatformCodeComesThroughUnchanged) {
    qryhost_fail(QRYHOST_SET_TABLE, 0, 1, 0x80001234u);
    try {
        insert(4, "Kim");
        FAIL() << "the platform refuses the write";
    } catch (const qrylib::error &refusal) {
        EXPECT_EQ(refusal.value(), 0x80001234u);
        EXPECT_STREQ(refusal.name(), "");
        EXPECT_EQ(std::string(refusal.what()).rfind("code 2147488308: ", 0), 0u) << refusal.what();
    }
}

TEST_F(qrylib_hpp_test, WhatIsBeyondItsCapacityIsRefusedBeforeAnythingIsDone) {
    const std::string cut("PSN_ID > 5\0 AND PSN_ID < 1", 26);
    std::error_code failures[11];
    book.delete_from("PSN_TBL").where(cut).execute(failures[0]);
    book.delete_from("PSN_TBL").where_equal("PSN_NAME", "x OR PSN_ID = 1").execute(failures[1]);
    book.delete_from("PSN_TBL").where_equal("PSN_ID", 4294967296).execute(failures[2]);
    book.delete_from(std::string(128, 'T')).execute(failures[3]);
    book.update("PSN_TBL").set("PSN_NAME", std::string(3000, 'x')).execute(failures[4]);
    book.update("PSN_TBL").set("PSN_ID", -2147483649).execute(failures[5]);
    book.update("PSN_TBL").set("PSN_ID", UINT64_MAX).execute(failures[6]);
    book.update("PSN_TBL").set(std::string(32, 'C'), 1).execute(failures[7]);
    book.execute(std::string("DELETE FROM PSN_TBL\0 WHERE PSN_ID = 9", 37), failures[8]);
    database(std::string(256, 'd')).execute("DELETE FROM PSN_TBL", failures[9]);
    book.delete_from("PSN_TBL").where_equal("PSN_NAME", "x AND PSN_ID = 1").execute(failures[10]);
    for (const std::error_code &failure : failures) {
        EXPECT_EQ(failure, errc::invalid_argument) << &failure - failures;
    }
    EXPECT_EQ(all_names(), (name_list{"Abe", "Sato", "O'Hara"}));
}

// Every block of building the statement, then every block of its execution, fails once.
TEST_F(qrylib_hpp_test, ADeleteWithoutMemoryNeverLosesItsCondition) {
    std::uint32_t failed = 0;
    for (std::error_code failure = errc::no_memory; failure; ++failed) {
        ASSERT_LT(failed, 1000u);
        qryhost_fail(QRYHOST_ALLOC, failed, 1, 1);
        book.delete_from("PSN_TBL").where_equal("PSN_ID", 1).execute(failure);
        qryhost_fail_clear();
        const name_list left = failure ? name_list{"Abe", "Sato", "O'Hara"} : name_list{"Sato", "O'Hara"};
        EXPECT_EQ(all_names(), left) << failed;
    }
    EXPECT_GT(failed, 2u);
}

TEST_F(qrylib_hpp_test, RowsOfSeveralTablesAreToldApartByTable) {
    const database departments("department_db");
    departments.insert_into("DEPT_TBL").set("ID", 2).set("NAME", "Audit").execute();
    departments.insert_into("EDIT_CNT_TBL").set("ID", 2).set("CNT", 9).execute();
    const rowset rows = departments.query("SELECT DEPT_TBL.ID,EDIT_CNT_TBL.ID,EDIT_CNT_TBL.CNT FROM "
                                          "DEPT_TBL,EDIT_CNT_TBL WHERE DEPT_TBL.ID=EDIT_CNT_TBL.ID AND "
                                          "DEPT_TBL.ID=2");
    ASSERT_EQ(rows.size(), 2u); // edit counters are found without a key, so the insert wrote both of them
    EXPECT_EQ(rows[0].column("ID", "EDIT_CNT_TBL"), rows[0].column(1));
    EXPECT_EQ(rows[0].column("ID", "DEPT_TBL"), rows[0].column(0));
    EXPECT_EQ(rows[0].get<int>("CNT"), 9);
}

} // namespace
