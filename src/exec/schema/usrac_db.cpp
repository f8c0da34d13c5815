// The tables of "usrac_db": the user accounts.
#include "exec/schema/rows.h"

namespace norvane {

namespace {

constexpr auto account_tbl = category{0x05180403}.rows({
    column("DEPT_ID", element_ushort, 2, 0x43871002),
    column("EMAIL", element_string, 129, 0x4381F003),
    column("FULL_NAME", element_name, 193, 0x4381F004),
    column("GROUP_ID", element_ushort, 2, 0x43871001),
    key("ID", element_ushort, 2, 0x43871000),
    column("KANA", element_name, 193, 0x4381F005),
    column("NAME", element_string, 129, 0x4381F000),
    column("PASSWD", element_string, 129, 0x4381F001),
});

constexpr auto edit_card_info_tbl = category{0x0519040C}.rows({
    key("ACC_ID", element_ushort, 2, 0x4C971000),
    column("CARD_ID", element_string, 11, 0x4C916000),
    column("CARD_ID_SIZE", element_ushort, 2, 0x4C971001),
    column("CARD_TYPE", element_uchar, 1, 0x4C960000),
    column("COMPANY_CODE", element_string, 11, 0x4C91F002),
    column("COMPANY_CODE_SIZE", element_ushort, 2, 0x4C971003),
    column("STAFF_NO", element_string, 15, 0x4C91F001),
    column("STAFF_NO_SIZE", element_ushort, 2, 0x4C971002),
});

constexpr auto edit_cnt_tbl = category{0x06070901}.rows({
    column("CNT", element_ulong, 4, 0x91782001),
    key("ID", element_ulong, 4, 0x91782000),
});

constexpr auto grp_prms_rcd_tbl = category{0x0519040D}.rows({
    column("BW_COPY", element_uchar, 1, 0x4D960002),
    column("BW_PRINTER", element_uchar, 1, 0x4D960000),
    column("CLR_PRINTER", element_uchar, 1, 0x4D960001),
    column("DOC_BOX", element_uchar, 1, 0x4D960007),
    column("FCLR_COPY", element_uchar, 1, 0x4D960004),
    column("GROUP_ID", element_ushort, 2, 0x4D971000),
    column("GROUP_NAME", element_string, 192, 0x4D91F000),
    key("ID", element_ulong, 4, 0x4D982000),
    column("MCLR_COPY", element_uchar, 1, 0x4D960003),
    column("PRI_GRP_ID", element_ulong, 4, 0x4D982001),
    column("SEND", element_uchar, 1, 0x4D960005),
    column("SEND_FAX", element_uchar, 1, 0x4D960006),
    column("SIMPLE_BOX", element_uchar, 1, 0x4D960008),
});

constexpr auto norm_prms_rcd_tbl = category{0x0519040E}.rows({
    column("BW_COPY", element_uchar, 1, 0x4E960002),
    column("BW_PRINTER", element_uchar, 1, 0x4E960000),
    column("CLR_PRINTER", element_uchar, 1, 0x4E960001),
    column("DOC_BOX", element_uchar, 1, 0x4E960007),
    column("FCLR_COPY", element_uchar, 1, 0x4E960004),
    column("GROUP_ID", element_ushort, 2, 0x4E971000),
    key("ID", element_ulong, 4, 0x4E982000),
    column("MCLR_COPY", element_uchar, 1, 0x4E960003),
    column("SEND", element_uchar, 1, 0x4E960005),
    column("SEND_FAX", element_uchar, 1, 0x4E960006),
    column("SIMPLE_BOX", element_uchar, 1, 0x4E960008),
});

constexpr QRY_LIB_TABLE_DEF tables[] = {
    table("ACCOUNT_TBL", account_tbl),
    table("EDIT_CARD_INFO_TBL", edit_card_info_tbl),
    table("EDIT_CNT_TBL", edit_cnt_tbl),
    table("GRP_PRMS_RCD_TBL", grp_prms_rcd_tbl),
    table("NORM_PRMS_RCD_TBL", norm_prms_rcd_tbl),
};
static_assert(is_sorted(tables));

} // namespace

const database_schema usrac_schema = {"usrac_db", tables, static_cast<std::uint16_t>(std::size(tables))};

} // namespace norvane
