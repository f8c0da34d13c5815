// INSERT, UPDATE and DELETE: which records change, and what stays when a write fails half way.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::any_line;
using test::department_code;
using test::department_id;
using test::department_name;
using test::department_total;
using test::departments;
using test::failure;
using test::in_default;
using test::injected;
using test::invalid_argument;
using test::number_at;
using test::put_department;
using test::query_of;
using test::record_list;
using test::text_at;
using test::traces;

class writing : public test::exec_test {
  protected:
    writing() { EXPECT_EQ(executer.open_catalog("department_db"), 0); }

    static query_of insert_of(const char *id, const char *name) {
        return query_of(QRY_LIB_DB_QUERY_TYPE_INSERT, "department_db", "DEPT_TBL")
            .value("ID", id)
            .value("NAME", name);
    }

    static query_of update_of(const char *column, const std::string &value) {
        return query_of(QRY_LIB_DB_QUERY_TYPE_UPDATE, "department_db", "DEPT_TBL").value(column, value);
    }

    static std::uint16_t id_at(std::uint32_t record) {
        return number_at<std::uint16_t>(departments, record, department_id);
    }

    static std::string name_at(std::uint32_t record) { return text_at(departments, record, department_name); }
};

TEST_F(writing, a_new_key_fills_the_first_free_record) {
    put_department(0, 1);
    put_department(2, 3);
    EXPECT_EQ(executer.exec_insert(insert_of("7", "Sato"), departments, {}), 0);
    EXPECT_EQ(id_at(1), 7);
    EXPECT_EQ(name_at(1), "Sato");
    EXPECT_EQ(executer.exec_new_insert(insert_of("8", "Abe"), departments), 0);
    EXPECT_EQ(id_at(3), 8);
    EXPECT_EQ(id_at(4), 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(writing, a_record_is_free_when_its_key_is_the_defaults) {
    test::put(departments, in_default, department_id, std::uint16_t{5});
    put_department(3, 5);
    EXPECT_EQ(executer.exec_insert(insert_of("7", "Sato"), departments, {}), 0);
    EXPECT_EQ(id_at(3), 7);
    EXPECT_EQ(id_at(0), 0);
}

TEST_F(writing, without_a_free_record_nothing_changes) {
    for (std::uint32_t r = 0; r < 101; ++r) {
        put_department(r, static_cast<std::uint16_t>(r + 1));
    }
    const auto before = test::store_content();
    EXPECT_EQ(executer.exec_insert(insert_of("200", "Sato"), departments, {}), test::no_free_entry);
    EXPECT_EQ(take_traces(), (traces{{"exec_new_insert", 603, 0xDB04}}));
    EXPECT_EQ(test::store_content(), before);
}

TEST_F(writing, an_existing_key_is_overwritten) {
    put_department(4, 7, "Sato", 99);
    EXPECT_EQ(executer.exec_insert(insert_of("7", "Abe"), departments, {4}), 0);
    EXPECT_EQ(name_at(4), "Abe");
    EXPECT_EQ(number_at<std::uint32_t>(departments, 4, department_total), 99u);
    EXPECT_EQ(id_at(0), 0);
}

TEST_F(writing, an_update_writes_every_listed_record) {
    for (std::uint32_t r = 0; r < 3; ++r) {
        put_department(r, static_cast<std::uint16_t>(r + 1), "old");
    }
    EXPECT_EQ(executer.exec_update(update_of("NAME", "new").number("TOTAL_M", 4294967295u), {2, 0}), 0);
    EXPECT_EQ(name_at(0), "new");
    EXPECT_EQ(name_at(1), "old");
    EXPECT_EQ(name_at(2), "new");
    EXPECT_EQ(number_at<std::uint32_t>(departments, 2, department_total), 4294967295u);
    EXPECT_EQ(id_at(2), 3);
}

TEST_F(writing, the_last_value_of_a_column_wins) {
    EXPECT_EQ(executer.exec_update(update_of("NAME", "first").value("NAME", "last"), {0}), 0);
    EXPECT_EQ(name_at(0), "last");
}

TEST_F(writing, an_update_of_nothing_fails_and_a_delete_of_nothing_does_not) {
    const auto before = test::store_content();
    EXPECT_EQ(executer.exec_update(update_of("NO_COL", "x"), {}), test::no_such_item);
    EXPECT_EQ(take_traces(), (traces{{"exec_update", 705, 0xDB02}}));
    EXPECT_EQ(executer.exec_delete(update_of("NAME", "x"), departments, {}), 0);
    EXPECT_EQ(executer.set_tb_table(update_of("NAME", std::string(500, 'x')), {}), 0);
    EXPECT_TRUE(take_traces().empty());
    EXPECT_EQ(test::store_content(), before);
}

TEST_F(writing, no_byte_of_an_earlier_value_is_stored) {
    test::put_text(departments, 0, department_name, std::string(193, 'x'));
    EXPECT_EQ(executer.exec_update(update_of("FURIGANA", std::string(192, 'y')).value("NAME", "a"), {0}), 0);
    test::value_buffer stored = test::empty_buffer();
    ASSERT_EQ(tbctSTCGetTable(departments, 1, department_name, stored.data()), 0u);
    EXPECT_EQ(stored[0], 'a');
    EXPECT_EQ(std::count(stored.begin() + 1, stored.begin() + 193, 0), 192);
}

TEST_F(writing, a_delete_puts_records_back_to_the_default) {
    test::put_text(departments, in_default, department_name, "none");
    for (std::uint32_t r = 0; r < 3; ++r) {
        put_department(r, static_cast<std::uint16_t>(r + 1), "dept");
    }
    EXPECT_EQ(executer.exec_delete(update_of("NAME", "x"), departments, {0, 2}), 0);
    EXPECT_EQ(name_at(0), "none");
    EXPECT_EQ(id_at(0), 0);
    EXPECT_EQ(name_at(1), "dept");
    EXPECT_EQ(name_at(2), "none");
}

TEST_F(writing, a_failing_reset_ends_the_delete) {
    for (const std::uint32_t times : {1u, UINT32_MAX}) {
        for (std::uint32_t skip = 0; skip < 3; ++skip) {
            for (std::uint32_t r = 0; r < 3; ++r) {
                put_department(r, 9);
            }
            qryhost_fail(QRYHOST_INIT_TABLE, skip, times, injected);
            EXPECT_EQ(executer.exec_delete(update_of("NAME", "x"), departments, {2, 0, 1}),
                      static_cast<int>(QRY_LIB_FAILURE));
            qryhost_fail_clear();
            EXPECT_EQ(take_traces(), (traces{{"exec_delete", 680, 0xFFFF}}));
            // In the order of the list, and those before the failure stay reset.
            EXPECT_EQ(id_at(2), skip > 0 ? 0 : 9);
            EXPECT_EQ(id_at(0), skip > 1 ? 0 : 9);
            EXPECT_EQ(id_at(1), 9);
        }
    }
}

TEST_F(writing, unknown_columns_are_refused_before_the_first_write) {
    const auto before = test::store_content();
    for (const std::string &name : {std::string("NO_COL"), std::string(), std::string("*"),
                                    std::string("name"), std::string(1 << 20, 'N')}) {
        const query_of query = update_of("NAME", "new").value(name.c_str(), "1");
        const traces unknown = {{"set_tb_table", 1142, 0xDB05}};
        const auto with = [&](const char *function, int line) {
            traces expected = unknown;
            expected.push_back({function, line, 0xDB05});
            return expected;
        };
        EXPECT_EQ(executer.set_tb_table(query, {0}), invalid_argument);
        EXPECT_EQ(take_traces(), unknown);
        EXPECT_EQ(executer.set_tb_table(query, {}), invalid_argument);
        EXPECT_EQ(take_traces(), unknown);
        EXPECT_EQ(executer.exec_update(query, {0}), invalid_argument);
        EXPECT_EQ(take_traces(), with("exec_update", 712));
        EXPECT_EQ(executer.exec_insert(query, departments, {0}), invalid_argument);
        EXPECT_EQ(take_traces(), with("exec_update_insert", 642));
        EXPECT_EQ(executer.exec_insert(query, departments, {}), invalid_argument);
        EXPECT_EQ(take_traces(), with("exec_new_insert", 615));
    }
    EXPECT_EQ(test::store_content(), before);
}

TEST_F(writing, strings_longer_than_their_element_are_refused_before_the_first_write) {
    const auto before = test::store_content();
    for (const std::string &value : {std::string(9, 'x'), std::string(2999, 'x')}) {
        EXPECT_EQ(executer.exec_update(update_of("NAME", "new").value("DEPT_CODE", value), {0, 1}),
                  invalid_argument);
        expect_traces({{"set_tb_table", any_line, 0xDB05}, {"exec_update", 712, 0xDB05}});
    }
    // Ten digits and a sign.
    EXPECT_EQ(executer.exec_update(update_of("NAME", "new").number("DEPT_CODE", 0x80000000), {0}),
              invalid_argument);
    EXPECT_EQ(executer.exec_insert(insert_of("1", std::string(193, 'x').c_str()), departments, {}),
              invalid_argument);
    take_traces();
    EXPECT_EQ(test::store_content(), before);
    EXPECT_EQ(executer.exec_update(update_of("DEPT_CODE", "12345678"), {0}), 0);
    EXPECT_EQ(text_at(departments, 0, department_code), "12345678");
    EXPECT_EQ(executer.exec_update(update_of("DEPT_CODE", ""), {0}), 0);
    EXPECT_EQ(text_at(departments, 0, department_code), "");
    EXPECT_EQ(executer.exec_update(update_of("NAME", "a\tb\nc"), {0}), 0);
    EXPECT_EQ(name_at(0), "a\tb\nc");
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(writing, numbers_take_any_text_and_are_narrowed) {
    EXPECT_EQ(
        executer.exec_update(
            update_of("ID", "65537").value("TOTAL_L", "abc").value("TOTAL_M", std::string(2999, '9')), {0}),
        0);
    EXPECT_EQ(id_at(0), 1);
    EXPECT_EQ(number_at<std::uint32_t>(departments, 0, department_total), 0x7FFFFFFFu);
}

TEST_F(writing, what_was_written_before_a_failure_stays) {
    const query_of query = update_of("NAME", "new").number("TOTAL_M", 5);
    const failure refused = {injected, {{"set_tb_table", 1183, injected}, {"exec_update", 712, injected}}};
    expect_failures(
        QRYHOST_SET_TABLE, [] {},
        [&] {
            return executer.exec_update(query, {0, 1});
        },
        std::vector<failure>(4, refused));
    // Record by record, and within each in the statement's order.
    for (std::uint32_t skip = 0; skip < 4; ++skip) {
        qryhost_reset();
        qryhost_fail(QRYHOST_SET_TABLE, skip, 1, injected);
        EXPECT_EQ(executer.exec_update(query, {0, 1}), injected);
        EXPECT_EQ(name_at(0), skip > 0 ? "new" : "");
        EXPECT_EQ(number_at<std::uint32_t>(departments, 0, department_total), skip > 1 ? 5u : 0u);
        EXPECT_EQ(name_at(1), skip > 2 ? "new" : "");
        EXPECT_EQ(number_at<std::uint32_t>(departments, 1, department_total), 0u);
    }
}

TEST_F(writing, a_record_that_the_platform_does_not_have_cannot_be_written) {
    EXPECT_EQ(executer.exec_update(update_of("NAME", "new"), {100, 101}), test::table_argument);
    EXPECT_EQ(take_traces(), (traces{{"set_tb_table", 1183, 0x5241}, {"exec_update", 712, 0x5241}}));
    EXPECT_EQ(name_at(100), "new");
    EXPECT_EQ(executer.exec_delete(update_of("NAME", "x"), departments, {100, 101}),
              static_cast<int>(QRY_LIB_FAILURE));
    EXPECT_EQ(name_at(100), "");
}

TEST_F(writing, a_new_insert_fails_where_its_search_or_its_writes_fail) {
    const query_of query = insert_of("7", "Sato");
    const auto operation = [&] { return executer.exec_insert(query, departments, {}); };
    const auto prepare = [] { qryhost_reset(); };
    expect_failures(QRYHOST_GET_TABLE, prepare, operation,
                    {failure{injected, {{"create_primary_filter_key", 861, injected}}}});
    expect_failures(
        QRYHOST_ALLOC, prepare, operation,
        {failure{test::no_memory, {{"create_search_table_id", 1430, 1}, {"exec_new_insert", 595, 1}}},
         failure{test::table_access,
                 {{"qry_lib_tb_alloc_mem", 690, 0x5243},
                  {"qry_lib_tb_create_search_table_id", 429, 0x5243},
                  {"create_search_table_id", 1448, 0xDB05},
                  {"exec_new_insert", 595, 0x5243}}}});
    expect_failures(
        QRYHOST_SET_TABLE, prepare, operation,
        std::vector<failure>(
            2, {injected, {{"set_tb_table", 1183, injected}, {"exec_new_insert", 615, injected}}}));
    EXPECT_EQ(id_at(0), 7); // the second write failed: the first stays
}

TEST_F(writing, an_insert_into_an_unknown_table_fails_at_its_keys) {
    const query_of query(QRY_LIB_DB_QUERY_TYPE_INSERT, "department_db", "NO_TBL");
    EXPECT_EQ(executer.exec_new_insert(query, departments), invalid_argument);
    EXPECT_EQ(take_traces(), (traces{{"create_primary_filter_key", 849, 0xDB05}}));
}

TEST_F(writing, an_overwriting_insert_that_fails_has_its_own_trace) {
    expect_failures(
        QRYHOST_SET_TABLE, [] {},
        [&] { return executer.exec_insert(insert_of("7", "Sato"), departments, {3}); },
        std::vector<failure>(
            2, {injected, {{"set_tb_table", 1183, injected}, {"exec_update_insert", 642, injected}}}));
}

TEST_F(writing, writing_takes_no_blocks) {
    qryhost_fail(QRYHOST_ALLOC, 0, UINT32_MAX, injected);
    EXPECT_EQ(executer.exec_update(update_of("NAME", "new"), {0}), 0);
    EXPECT_EQ(executer.exec_insert(insert_of("7", "Sato"), departments, {0}), 0);
    EXPECT_EQ(executer.exec_delete(update_of("NAME", "x"), departments, {0}), 0);
}

} // namespace
