// The built-in schema and the capacities, pinned whole: a checksum for each table beside values that a reader
// can follow.
#include <cstdio>
#include <set>

#include "exec/qry_lib_table_element.h"
#include "exec/schema/rows.h"
#include "exec/schema/schema.h"
#include "unit/host/host_test.h"
#include "util/tb_string.h"

namespace {

std::uint32_t checksum(const std::string &text) {
    std::uint32_t hash = 0x811C9DC5;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x01000193;
    }
    return hash;
}

// Name, key, type, size, member, member offset and element id of each column, a line for each.
std::string table_text(const QRY_LIB_TABLE_DEF &table) {
    std::string text;
    for (std::int16_t i = 0; i < table.element_num; ++i) {
        const QRY_LIB_ELEMENT_DEF &row = table.elements[i];
        char line[128];
        std::snprintf(line, sizeof line, "%s %d %d %d %d %d %08X\n", row.info.name, row.is_primary,
                      static_cast<int>(row.info.elem_type), row.info.size, row.info.is_member,
                      row.info.member_offset, static_cast<unsigned>(row.info.element_id));
        text += line;
    }
    return text;
}

struct table_fact {
    const char *db_name;
    const char *table_name;
    std::uint32_t category;
    std::int16_t column_num;
    std::uint32_t checksum;
};

// In stored order: "T" sorts before "_".
constexpr table_fact facts[] = {
    {"adbk_db", "EDIT_CNT_TBL", 0x06070900, 2, 0x4E95A46B},
    {"adbk_db", "EMAIL_TBL", 0x0509040A, 2, 0x53BA9C25},
    {"adbk_db", "FAX_TBL", 0x05090409, 17, 0x5FB76E4E},
    {"adbk_db", "FTP_TBL", 0x05090408, 6, 0xB75C9CDF},
    {"adbk_db", "GRPM_TBL", 0x05090401, 3, 0xF0AA715F},
    {"adbk_db", "GRP_TBL", 0x05090402, 5, 0xBE97E080},
    {"adbk_db", "INTEG_TBL", 0x05090406, 3, 0x67BDD553},
    {"adbk_db", "ONE_TBL", 0x05090405, 4, 0x321DCA4C},
    {"adbk_db", "PSN_TBL", 0x05090400, 5, 0xCA5FADC6},
    {"adbk_db", "SMB_TBL", 0x05090407, 6, 0x5F7C32E3},
    {"adbk_db", "SSHEET_TBL", 0x0509040B, 5, 0x299505C7},
    {"adbk_db", "TMP_ID_TBL", 0x06070904, 1, 0xB3ED61ED},
    {"department_db", "DEPT_TBL", 0x05080404, 20, 0x72514942},
    {"department_db", "EDIT_CNT_TBL", 0x06070903, 2, 0xE767173F},
    {"usrac_db", "ACCOUNT_TBL", 0x05180403, 8, 0x8A751926},
    {"usrac_db", "EDIT_CARD_INFO_TBL", 0x0519040C, 8, 0x149094C7},
    {"usrac_db", "EDIT_CNT_TBL", 0x06070901, 2, 0x75365483},
    {"usrac_db", "GRP_PRMS_RCD_TBL", 0x0519040D, 13, 0xFE7A5F1C},
    {"usrac_db", "NORM_PRMS_RCD_TBL", 0x0519040E, 11, 0x3CEFE776},
    {"log_db", "EDIT_CNT_TBL", 0x06070902, 2, 0xEF9EE96F},
    {"log_db", "P_JOB_LOG_REC_TBL", 0x05120703, 9, 0x82C5971A},
    {"log_db", "P_JOB_LOG_TBL", 0x050F0700, 25, 0x69927F61},
    {"log_db", "P_SSFC_LOG_TBL", 0x05160709, 11, 0x798078F8},
    {"log_db", "ST_JOB_LOG_REC_TBL", 0x05140705, 9, 0x4FDDB3C2},
    {"log_db", "ST_JOB_LOG_TBL", 0x05110702, 25, 0x3DF5C5A4},
    {"log_db", "ST_SSFC_LOG_TBL", 0x0516070B, 11, 0xE0290E97},
    {"log_db", "S_JOB_LOG_REC_TBL", 0x05130704, 9, 0x49333A8E},
    {"log_db", "S_JOB_LOG_SND_TBL", 0x05150706, 10, 0xADFFB7CA},
    {"log_db", "S_JOB_LOG_TBL", 0x05100701, 25, 0xA15A4AB0},
    {"log_db", "S_SSFC_LOG_TBL", 0x0516070A, 11, 0xF2B7B210},
};

TEST(schema, every_table_is_as_the_device_has_it) {
    std::size_t next = 0;
    for (const norvane::database_schema *database : norvane::databases) {
        for (std::uint16_t t = 0; t < database->table_num; ++t) {
            const QRY_LIB_TABLE_DEF &table = database->tables[t];
            SCOPED_TRACE(table.table_name);
            ASSERT_LT(next, std::size(facts));
            const table_fact &fact = facts[next++];
            EXPECT_STREQ(database->name, fact.db_name);
            EXPECT_STREQ(table.table_name, fact.table_name);
            EXPECT_EQ(table.element_num, fact.column_num);
            for (std::int16_t c = 0; c < table.element_num; ++c) {
                EXPECT_EQ(table.elements[c].info.category_id, fact.category);
            }
            EXPECT_EQ(checksum(table_text(table)), fact.checksum) << table_text(table);
        }
    }
    EXPECT_EQ(next, std::size(facts));
}

TEST(schema, databases_are_looked_up_in_their_order) {
    ASSERT_EQ(norvane::database_num, 4u);
    EXPECT_EQ(norvane::databases[0], &norvane::adbk_schema);
    EXPECT_EQ(norvane::databases[1], &norvane::department_schema);
    EXPECT_EQ(norvane::databases[2], &norvane::usrac_schema);
    EXPECT_EQ(norvane::databases[3], &norvane::log_schema);
    EXPECT_EQ(norvane::adbk_schema.table_num, 12);
    EXPECT_EQ(norvane::department_schema.table_num, 2);
    EXPECT_EQ(norvane::usrac_schema.table_num, 5);
    EXPECT_EQ(norvane::log_schema.table_num, 11);
}

TEST(schema, names_ascend_and_sizes_follow_the_types) {
    constexpr std::uint16_t number_sizes[] = {4, 1, 2, 4, 4};
    for (const norvane::database_schema *database : norvane::databases) {
        for (std::uint16_t t = 0; t < database->table_num; ++t) {
            const QRY_LIB_TABLE_DEF &table = database->tables[t];
            SCOPED_TRACE(table.table_name);
            EXPECT_TRUE(t == 0 || norvane::tb_strcmp(table.table_name, (&table - 1)->table_name) > 0);
            for (std::int16_t c = 0; c < table.element_num; ++c) {
                const QRY_LIB_ELEMENT_INFO &info = table.elements[c].info;
                SCOPED_TRACE(info.name);
                EXPECT_TRUE(c == 0 || norvane::tb_strcmp(info.name, table.elements[c - 1].info.name) > 0);
                ASSERT_LE(info.elem_type, norvane::element_name);
                if (info.elem_type < std::size(number_sizes)) {
                    EXPECT_EQ(info.size, number_sizes[info.elem_type]);
                }
                EXPECT_TRUE(info.is_member == 1 || info.member_offset == 0);
            }
        }
    }
}

// What keeps a wrong row of the schema from compiling.
TEST(schema, rows_out_of_order_or_out_of_reach_are_noticed) {
    using norvane::element_int;
    const norvane::category category{7};
    const auto sorted =
        category.rows({norvane::key("A", element_int, 4, 1), norvane::column("B", element_int, 4, 2),
                       norvane::member("C", element_int, 4, 3, norvane::member_offset_max)});
    const auto turned =
        category.rows({norvane::column("B", element_int, 4, 1), norvane::column("A", element_int, 4, 2)});
    const auto doubled =
        category.rows({norvane::column("A", element_int, 4, 1), norvane::column("A", element_int, 4, 2)});
    const auto far = category.rows({norvane::member("A", element_int, 4, 1, norvane::member_offset_max + 1)});
    const QRY_LIB_TABLE_DEF right[] = {norvane::table("S", sorted), norvane::table("T", sorted)};
    EXPECT_TRUE(norvane::is_sorted(right));
    const QRY_LIB_TABLE_DEF wrong_order[] = {norvane::table("T", sorted), norvane::table("S", sorted)};
    EXPECT_FALSE(norvane::is_sorted(wrong_order));
    const QRY_LIB_TABLE_DEF same_name[] = {norvane::table("T", sorted), norvane::table("T", sorted)};
    EXPECT_FALSE(norvane::is_sorted(same_name));
    for (const QRY_LIB_TABLE_DEF &wrong :
         {norvane::table("T", turned), norvane::table("T", doubled), norvane::table("T", far)}) {
        const QRY_LIB_TABLE_DEF first[] = {wrong, norvane::table("U", sorted)};
        EXPECT_FALSE(norvane::is_sorted(first));
        const QRY_LIB_TABLE_DEF last[] = {norvane::table("S", sorted), wrong};
        EXPECT_FALSE(norvane::is_sorted(last));
    }
}

TEST(schema, only_members_share_an_element) {
    std::set<std::pair<std::uint32_t, std::uint32_t>> own;
    std::set<std::pair<std::uint32_t, std::uint32_t>> composite;
    for (const norvane::database_schema *database : norvane::databases) {
        for (std::uint16_t t = 0; t < database->table_num; ++t) {
            for (std::int16_t c = 0; c < database->tables[t].element_num; ++c) {
                const QRY_LIB_ELEMENT_INFO &info = database->tables[t].elements[c].info;
                auto &ids = info.is_member == 1 ? composite : own;
                const bool is_new = ids.insert({info.category_id, info.element_id}).second;
                EXPECT_TRUE(is_new || info.is_member == 1) << info.name;
            }
        }
    }
    EXPECT_EQ(composite.size(), 4u);
    for (const auto &id : composite) {
        EXPECT_EQ(own.count(id), 0u);
    }
}

TEST(schema, members_of_the_record_tables_overlap_as_on_the_device) {
    norvane::qry_lib_table_element_log log;
    QRY_LIB_ELEMENT_INFO info;
    struct {
        const char *table;
        const char *column;
        std::uint16_t offset;
        std::uint16_t size;
    } const members[] = {
        {"P_JOB_LOG_REC_TBL", "ADDRESS", 0, 129}, {"P_JOB_LOG_REC_TBL", "NAME", 21, 193},
        {"P_JOB_LOG_REC_TBL", "PORT_NO", 192, 1}, {"P_JOB_LOG_REC_TBL", "RET", 196, 4},
        {"P_JOB_LOG_REC_TBL", "RET_ERR", 200, 4}, {"P_JOB_LOG_REC_TBL", "FAX_TIME", 204, 4},
        {"S_JOB_LOG_SND_TBL", "ADDRESS", 0, 129}, {"S_JOB_LOG_SND_TBL", "PORT_NO", 65, 1},
        {"S_JOB_LOG_SND_TBL", "FAX_TIME", 68, 4}, {"S_JOB_LOG_SND_TBL", "PAGE", 72, 2},
    };
    for (const auto &member : members) {
        SCOPED_TRACE(std::string(member.table) + "." + member.column);
        ASSERT_EQ(log.get_info(member.table, member.column, info), 0);
        EXPECT_EQ(info.is_member, 1);
        EXPECT_EQ(info.member_offset, member.offset);
        EXPECT_EQ(info.size, member.size);
    }
}

TEST(schema, capacities_are_as_the_device_has_them) {
    std::string text;
    for (const QRY_LIB_TB_MAX_ROW &row : QRY_LIB_TB_MAX_TABLE) {
        char line[32];
        std::snprintf(line, sizeof line, "%08X %d\n", static_cast<unsigned>(row.category), row.max_number);
        text += line;
        EXPECT_EQ(row.reserved, 0);
    }
    EXPECT_EQ(std::size(QRY_LIB_TB_MAX_TABLE), 39u);
    EXPECT_EQ(checksum(text), 0xBDA21FF7u) << text;
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[0].category, 0x05090400u);
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[0].max_number, 10);
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[12].category, 0x06170504u);
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[12].max_number, 103);
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[38].category, 0x0516070Bu);
    EXPECT_EQ(QRY_LIB_TB_MAX_TABLE[38].max_number, 1);
}

TEST(schema, every_table_has_a_capacity) {
    for (const table_fact &fact : facts) {
        const auto *end = std::end(QRY_LIB_TB_MAX_TABLE);
        const auto *row =
            std::find_if(std::begin(QRY_LIB_TB_MAX_TABLE), end, [&](const QRY_LIB_TB_MAX_ROW &candidate) {
                return candidate.category == fact.category;
            });
        EXPECT_NE(row, end) << fact.db_name << "." << fact.table_name;
    }
}

} // namespace
