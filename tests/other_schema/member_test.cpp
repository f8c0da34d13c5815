// Columns that are members of a composite element, through whole statements. The shipped device keeps no
// records of the tables that have such columns; this one keeps four of each.
#include <cstring>

#include "unit/exec/exec_test.h"

namespace {

using test::any_line;
using test::failure;
using test::injected;
using test::query_of;
using test::traces;

using texts = std::vector<std::string>;

constexpr std::uint32_t received = 0x05120703;
constexpr std::uint32_t composite = 0x7321F000;
constexpr std::size_t composite_size = 214; // NAME's end: 21 + 193
constexpr const char *table = "P_JOB_LOG_REC_TBL";

class member : public test::exec_test {
  protected:
    static query_of statement(QRY_LIB_DB_QUERY_TYPE type, const char *of = table) {
        return query_of(type, "log_db", of);
    }

    static query_of insert_of(const char *job, const char *info, const char *of = table) {
        return statement(QRY_LIB_DB_QUERY_TYPE_INSERT, of).value("JOB_ID", job).value("RECV_INFO_ID", info);
    }

    texts select(const norvane::qry_lib_analyze_info &query) {
        qry_lib_db_rowset_term(&rowset);
        EXPECT_EQ(executer.exec(query, rowset), 0);
        return rows();
    }

    static query_of selection(const char *of = table) { return statement(QRY_LIB_DB_QUERY_TYPE_SELECT, of); }

    static std::string composite_at(std::uint32_t record) {
        test::value_buffer buffer = test::empty_buffer();
        EXPECT_EQ(tbctSTCGetTable(received, record + 1, composite, buffer.data()), 0u);
        return std::string(reinterpret_cast<const char *>(buffer.data()), composite_size);
    }
};

TEST_F(member, values_are_written_and_read_at_their_offset) {
    for (const char *of : {"P_JOB_LOG_REC_TBL", "S_JOB_LOG_REC_TBL", "ST_JOB_LOG_REC_TBL"}) {
        SCOPED_TRACE(of);
        EXPECT_EQ(executer.exec(insert_of("1", "2", of)
                                    .value("ADDRESS", "a@example.com")
                                    .value("NAME", "Sato")
                                    .value("PORT_NO", "300")
                                    .value("RET", "5")
                                    .number("RET_ERR", 4294967295u)
                                    .value("FAX_TIME", "7")),
                  0);
        // The first 21 characters of an address end before the name.
        EXPECT_EQ(select(selection(of)
                             .column("ADDRESS")
                             .column("NAME")
                             .column("PORT_NO")
                             .column("RET")
                             .column("RET_ERR")
                             .column("FAX_TIME")
                             .column("RECV_INFO_ID")),
                  (texts{"a@example.com,Sato,44,5,-1,7,2"}));
        EXPECT_EQ(rowset.records[0].cols[2].type, QRY_LIB_COLUMN_TYPE_UCHAR);
        EXPECT_EQ(rowset.records[0].cols[3].type, QRY_LIB_COLUMN_TYPE_ULONG);
        EXPECT_STREQ(rowset.records[0].cols[3].table_name, of);
    }
    EXPECT_TRUE(lines.empty());
}

TEST_F(member, values_of_the_send_records_are_written_and_read_too) {
    constexpr const char *sent = "S_JOB_LOG_SND_TBL";
    EXPECT_EQ(executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_INSERT, sent)
                                .value("JOB_ID", "1")
                                .value("SEND_INFO_ID", "2")
                                .value("ADDRESS", "fax:1")
                                .value("NAME", "Abe")
                                .value("PAGE", "65535")
                                .value("PORT_NO", "9")
                                .value("FAX_TIME", "70000")
                                .value("RET", "3")),
              0);
    EXPECT_EQ(select(selection(sent)
                         .column("ADDRESS")
                         .column("NAME")
                         .column("PAGE")
                         .column("PORT_NO")
                         .column("FAX_TIME")
                         .column("RET")),
              (texts{"fax:1,Abe,65535,9,70000,3"}));
}

TEST_F(member, an_update_leaves_the_other_members) {
    ASSERT_EQ(
        executer.exec(insert_of("1", "2").value("ADDRESS", "here").value("NAME", "Sato").value("RET", "5")),
        0);
    std::string expected = composite_at(0);
    EXPECT_EQ(executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_UPDATE).value("RET_ERR", "258")), 0);
    const std::uint32_t number = 258;
    std::memcpy(&expected[200], &number, sizeof number);
    EXPECT_EQ(composite_at(0), expected);
    EXPECT_EQ(executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_UPDATE).value("NAME", "A")), 0);
    // Text and terminator are written, and no more.
    expected.replace(21, 2, std::string("A\0", 2));
    EXPECT_EQ(composite_at(0), expected);
}

TEST_F(member, overlapping_members_write_over_each_other) {
    ASSERT_EQ(executer.exec(insert_of("1", "2").value("NAME", "Sato").value("ADDRESS", std::string(40, 'a'))),
              0);
    EXPECT_EQ(select(selection().column("NAME")), texts{std::string(19, 'a')});
    EXPECT_EQ(executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_UPDATE).value("NAME", std::string(192, 'n'))), 0);
    EXPECT_EQ(select(selection().column("PORT_NO").column("RET")),
              (texts{std::to_string('n') + "," + std::to_string(0x6E6E6E6E)}));
    // The address now runs to the end of its 129 bytes without a terminator.
    const std::string address = std::string(21, 'a') + std::string(108, 'n');
    EXPECT_EQ(select(selection().column("ADDRESS")), texts{address});
    EXPECT_EQ(select(selection().column("JOB_ID").where("ADDRESS", QRY_LIB_OPERATION_TYPE_EQUAL, address)),
              texts{"1"});
}

TEST_F(member, a_string_longer_than_its_member_is_refused) {
    ASSERT_EQ(executer.exec(insert_of("1", "2").value("ADDRESS", std::string(128, 'a'))), 0);
    const std::string before = composite_at(0);
    EXPECT_EQ(executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_UPDATE)
                                .value("RET", "1")
                                .value("ADDRESS", std::string(129, 'b'))),
              test::invalid_argument);
    expect_traces({{"set_tb_table", any_line, 0xDB05}, {"exec_update", 712, 0xDB05}});
    EXPECT_EQ(composite_at(0), before);
}

class member_rows : public member {
  protected:
    member_rows() {
        struct {
            const char *job;
            const char *name;
            const char *ret;
            const char *port;
        } const records[] = {
            {"1", "Sato", "256", "9"}, {"2", "abe", "255", "200"}, {"3", "Ito", "65536", "1"}};
        for (const auto &record : records) {
            EXPECT_EQ(executer.exec(insert_of(record.job, "1")
                                        .value("NAME", record.name)
                                        .value("RET", record.ret)
                                        .value("PORT_NO", record.port)),
                      0);
        }
    }
};

TEST_F(member_rows, are_found_by_their_conditions) {
    struct {
        const char *column;
        QRY_LIB_OPERATION_TYPE operation;
        const char *value;
        texts jobs;
    } const conditions[] = {
        {"RET", QRY_LIB_OPERATION_TYPE_EQUAL, "256", {"1"}},
        {"RET", QRY_LIB_OPERATION_TYPE_GREATER, "255", {"1", "3"}},
        {"RET", QRY_LIB_OPERATION_TYPE_LESS_EQUAL, "256", {"1", "2"}},
        {"PORT_NO", QRY_LIB_OPERATION_TYPE_GREATER_EQUAL, "9", {"1", "2"}},
        {"NAME", QRY_LIB_OPERATION_TYPE_EQUAL, "Ito", {"3"}},
        {"NAME", QRY_LIB_OPERATION_TYPE_LIKE, "a", {"2"}},
        {"NAME", QRY_LIB_OPERATION_TYPE_NOT_EQUAL, "abe", {"1", "3"}},
        {"ADDRESS", QRY_LIB_OPERATION_TYPE_EQUAL, "", {"1", "2", "3"}},
    };
    for (const auto &condition : conditions) {
        SCOPED_TRACE(testing::Message()
                     << condition.column << " " << condition.operation << " " << condition.value);
        EXPECT_EQ(select(selection().column("JOB_ID").where(condition.column, condition.operation,
                                                            condition.value)),
                  condition.jobs);
    }
}

TEST_F(member_rows, are_sorted_by_a_member) {
    struct {
        const char *column;
        QRY_LIB_ODER_TYPE order;
        texts jobs;
    } const orders[] = {
        {"RET", QRY_LIB_ODER_TYPE_ASC, {"2", "1", "3"}},     {"RET", QRY_LIB_ODER_TYPE_DESC, {"3", "1", "2"}},
        {"PORT_NO", QRY_LIB_ODER_TYPE_ASC, {"3", "1", "2"}}, {"NAME", QRY_LIB_ODER_TYPE_ASC, {"2", "3", "1"}},
        {"NAME", QRY_LIB_ODER_TYPE_DESC, {"1", "3", "2"}},
    };
    for (const auto &order : orders) {
        SCOPED_TRACE(testing::Message() << order.column << " " << order.order);
        EXPECT_EQ(select(selection().column("JOB_ID").order(order.column, order.order)), order.jobs);
    }
}

TEST_F(member_rows, an_unread_composite_is_not_written) {
    const std::string before = composite_at(0) + composite_at(1) + composite_at(2);
    const failure unread = {injected, {{"set_tb_table", 1167, injected}, {"exec_update", 712, injected}}};
    const auto update = [&] {
        return executer.exec(statement(QRY_LIB_DB_QUERY_TYPE_UPDATE).value("RET", "1").value("NAME", "x"));
    };
    for (const std::uint32_t skip : {2u, 3u}) { // behind the two default keys
        const std::string first = composite_at(0);
        qryhost_fail(QRYHOST_GET_TABLE, skip, 1, injected);
        EXPECT_EQ(update(), injected);
        EXPECT_EQ(take_traces(), unread.lines);
        EXPECT_EQ(composite_at(0) == first, skip == 2);
    }
    EXPECT_EQ(composite_at(1) + composite_at(2), before.substr(composite_size));
}

TEST_F(member_rows, an_insert_without_a_free_record_is_refused) {
    ASSERT_EQ(executer.exec(insert_of("4", "1")), 0);
    EXPECT_EQ(executer.exec(insert_of("5", "1")), test::no_free_entry);
    EXPECT_EQ(take_traces(), (traces{{"exec_new_insert", 603, 0xDB04}}));
    EXPECT_EQ(executer.exec(insert_of("4", "1").value("RET", "9")), 0);
    EXPECT_EQ(select(selection().column("RET").where("JOB_ID", QRY_LIB_OPERATION_TYPE_EQUAL, "4")),
              texts{"9"});
}

TEST_F(member_rows, a_count_reads_both_keys) {
    EXPECT_EQ(select(statement(QRY_LIB_DB_QUERY_TYPE_COUNT)), (texts{"1,1", "2,1", "3,1"}));
}

} // namespace
