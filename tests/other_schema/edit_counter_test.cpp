// A database without an edit counter: what every shipped database has, and the executer must not take for
// granted.
#include "unit/exec/exec_test.h"

namespace {

using test::invalid_argument;
using test::query_of;
using test::traces;

class missing_edit_counter : public test::exec_test {
  protected:
    static query_of query(QRY_LIB_DB_QUERY_TYPE type) {
        return query_of(type, "department_db", "EDIT_CNT_TBL");
    }
};

TEST_F(missing_edit_counter, has_no_category) {
    for (const auto type :
         {QRY_LIB_DB_QUERY_TYPE_SELECT, QRY_LIB_DB_QUERY_TYPE_UPDATE, QRY_LIB_DB_QUERY_TYPE_DELETE}) {
        EXPECT_EQ(executer.exec(query(type), rowset), invalid_argument);
        EXPECT_EQ(take_traces(),
                  (traces{{"create_filter_key", 812, 0xDB05}, {"exec_internal", 231, 0xDB05}}));
    }
    EXPECT_EQ(executer.exec(query(QRY_LIB_DB_QUERY_TYPE_INSERT)), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 945, 0xDB05},
                                     {"create_filter_key", 768, 0xDB05},
                                     {"exec_internal", 231, 0xDB05}}));
}

TEST_F(missing_edit_counter, has_no_first_column_to_count) {
    ASSERT_EQ(executer.open_catalog("department_db"), 0);
    query_of count = query(QRY_LIB_DB_QUERY_TYPE_COUNT);
    EXPECT_EQ(executer.add_standard_cols(count.info()), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"add_standard_cols", 1495, 0xDB05}}));
    EXPECT_EQ(executer.exec_select(count, {0}, rowset), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"add_standard_cols", 1495, 0xDB05}, {"exec_select", 326, 0xDB05}}));
    EXPECT_EQ(count.info().get_cols_num(), 0);
}

} // namespace
