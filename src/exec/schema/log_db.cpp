// The tables of "log_db": the job logs.
#include "exec/schema/rows.h"

namespace norvane {

namespace {

constexpr auto job_log_rec_rows(category table, std::uint32_t id) {
    return table.rows({
        member("ADDRESS", element_string, 129, id | 0x1F000, 0),
        column("CATEGORY", element_uchar, 1, id | 0x60000),
        member("FAX_TIME", element_ulong, 4, id | 0x1F000, 204),
        key("JOB_ID", element_ulong, 4, id | 0x82000),
        member("NAME", element_name, 193, id | 0x1F000, 21),
        member("PORT_NO", element_uchar, 1, id | 0x1F000, 192),
        key("RECV_INFO_ID", element_ulong, 4, id | 0x82001),
        member("RET", element_ulong, 4, id | 0x1F000, 196),
        member("RET_ERR", element_ulong, 4, id | 0x1F000, 200),
    });
}

constexpr auto job_log_rows(category table, std::uint32_t id) {
    return table.rows({
        column("AUTO_SEND_FLAG", element_uchar, 1, id | 0x60001),
        column("BOX_MODE_INPUT", element_uint, 4, id | 0x82006),
        column("COMPLETED_COPIES", element_ushort, 2, id | 0x71004),
        column("COPIES", element_ushort, 2, id | 0x71003),
        column("DEPT_CODE", element_name, 9, id | 0x1F001),
        column("END_TIME", element_ulong, 4, id | 0x82005),
        column("INPUT_ATTRIBUTE", element_uchar, 1, id | 0x60003),
        key("JOB_ID", element_ulong, 4, id | 0x82000),
        column("JOB_LOG_TYPE", element_uchar, 1, id | 0x60000),
        column("JOB_NAME", element_name, 257, id | 0x1F002),
        column("JOB_TYPE", element_uchar, 1, id | 0x60002),
        column("LOGIN_NAME", element_name, 193, id | 0x1F003),
        column("ORIGINAL_PAGE", element_ushort, 2, id | 0x71000),
        column("OUTPUT_ATTRIBUTE", element_uchar, 1, id | 0x60004),
        column("PRINT_PAGE", element_ushort, 2, id | 0x71001),
        column("RECEIVED_TIME", element_ulong, 4, id | 0x82003),
        column("RECEIVE_NUM", element_uint, 4, id | 0x82008),
        column("RET", element_ulong, 4, id | 0x82001),
        column("RET_ERR", element_ulong, 4, id | 0x82002),
        column("SCAN_TYPE", element_uchar, 1, id | 0x60005),
        column("SEND_NUM", element_uint, 4, id | 0x82009),
        column("START_TIME", element_ulong, 4, id | 0x82004),
        column("TOTAL_PAGE", element_ushort, 2, id | 0x71002),
        column("TOTAL_TIME", element_ulong, 4, id | 0x82007),
        column("USER_NAME", element_name, 257, id | 0x1F000),
    });
}

constexpr auto ssfc_log_rows(category table, std::uint32_t id) {
    return table.rows({
        column("AUTO_SEND_FLAG", element_uchar, 1, id | 0x60004),
        column("CCODE_SIZE", element_ushort, 2, id | 0x71001),
        column("C_CODE", element_string, 21, id | 0x1F001),
        column("C_COUNT", element_uchar, 1, id | 0x60005),
        column("END_TIME", element_uchar, 1, id | 0x60001),
        key("JOB_ID", element_ulong, 4, id | 0x82000),
        column("JOB_LOG_TYPE", element_uchar, 1, id | 0x60002),
        column("JOB_TYPE", element_uchar, 1, id | 0x60003),
        column("RET", element_uchar, 1, id | 0x60000),
        column("STAFF_NO", element_string, 29, id | 0x1F000),
        column("STAFF_SIZE", element_uchar, 1, id | 0x71000),
    });
}

constexpr auto edit_cnt_tbl = category{0x06070902}.rows({
    column("CNT", element_ulong, 4, 0x92782001),
    key("ID", element_ulong, 4, 0x92782000),
});

constexpr auto p_job_log_rec_tbl = job_log_rec_rows({0x05120703}, 0x73200000);
constexpr auto st_job_log_rec_tbl = job_log_rec_rows({0x05140705}, 0x75400000);
constexpr auto s_job_log_rec_tbl = job_log_rec_rows({0x05130704}, 0x74300000);
constexpr auto p_job_log_tbl = job_log_rows({0x050F0700}, 0x70F00000);
constexpr auto st_job_log_tbl = job_log_rows({0x05110702}, 0x72100000);
constexpr auto s_job_log_tbl = job_log_rows({0x05100701}, 0x71000000);
constexpr auto p_ssfc_log_tbl = ssfc_log_rows({0x05160709}, 0x79600000);
constexpr auto st_ssfc_log_tbl = ssfc_log_rows({0x0516070B}, 0x7B600000);
constexpr auto s_ssfc_log_tbl = ssfc_log_rows({0x0516070A}, 0x7A600000);
constexpr auto s_job_log_snd_tbl = category{0x05150706}.rows({
    member("ADDRESS", element_string, 129, 0x7651F001, 0),
    column("CATEGORY", element_uchar, 1, 0x76560000),
    member("FAX_TIME", element_ulong, 4, 0x7651F001, 68),
    key("JOB_ID", element_ulong, 4, 0x76582000),
    column("NAME", element_name, 258, 0x7651F000),
    member("PAGE", element_ushort, 2, 0x7651F001, 72),
    member("PORT_NO", element_uchar, 1, 0x7651F001, 65),
    column("RET", element_ulong, 4, 0x76582002),
    column("RET_ERR", element_ulong, 4, 0x76582003),
    key("SEND_INFO_ID", element_ulong, 4, 0x76582001),
});

constexpr QRY_LIB_TABLE_DEF tables[] = {
    table("EDIT_CNT_TBL", edit_cnt_tbl),
    table("P_JOB_LOG_REC_TBL", p_job_log_rec_tbl),
    table("P_JOB_LOG_TBL", p_job_log_tbl),
    table("P_SSFC_LOG_TBL", p_ssfc_log_tbl),
    table("ST_JOB_LOG_REC_TBL", st_job_log_rec_tbl),
    table("ST_JOB_LOG_TBL", st_job_log_tbl),
    table("ST_SSFC_LOG_TBL", st_ssfc_log_tbl),
    table("S_JOB_LOG_REC_TBL", s_job_log_rec_tbl),
    table("S_JOB_LOG_SND_TBL", s_job_log_snd_tbl),
    table("S_JOB_LOG_TBL", s_job_log_tbl),
    table("S_SSFC_LOG_TBL", s_ssfc_log_tbl),
};
static_assert(is_sorted(tables));

} // namespace

const database_schema log_schema = {"log_db", tables, static_cast<std::uint16_t>(std::size(tables))};

} // namespace norvane
