// The tables of "adbk_db": the address book.
#include "exec/schema/rows.h"

namespace norvane {

namespace {

constexpr auto edit_cnt_tbl = category{0x06070900}.rows({
    column("CNT", element_ulong, 4, 0x90782001),
    key("ID", element_ulong, 4, 0x90782000),
});

constexpr auto email_tbl = category{0x0509040A}.rows({
    column("EMAIL_ADDR", element_string, 129, 0x4A91F000),
    key("PSN_ID", element_ushort, 2, 0x4A971000),
});

constexpr auto fax_tbl = category{0x05090409}.rows({
    column("FAXO_ENCAB", element_uchar, 1, 0x49960009),
    column("FAXO_MAXRECL", element_uchar, 1, 0x49960005),
    column("FAXO_MINTRTM", element_uchar, 1, 0x4996000A),
    column("FAXO_PROT", element_uchar, 1, 0x4996000B),
    column("FAXO_RECW", element_uchar, 1, 0x49960006),
    column("FAXO_RES", element_uchar, 1, 0x49960007),
    column("FAXO_SPEED", element_uchar, 1, 0x49960008),
    column("FAX_BSPEED", element_uchar, 1, 0x49960003),
    column("FAX_CBOXN", element_ushort, 2, 0x49971001),
    column("FAX_CBOXS", element_uchar, 1, 0x49960000),
    column("FAX_CKEYID", element_uchar, 1, 0x49960001),
    column("FAX_CMODE", element_uchar, 1, 0x49960002),
    column("FAX_ECM", element_uchar, 1, 0x49960004),
    column("FAX_FCODE", element_string, 21, 0x4991F000),
    column("FAX_FPSWD", element_string, 21, 0x4991F001),
    column("FAX_PHONE", element_string, 33, 0x4991F002),
    key("PSN_ID", element_ushort, 2, 0x49971000),
});

constexpr auto ftp_tbl = category{0x05090408}.rows({
    column("FTP_HOST", element_string, 65, 0x4891F000),
    column("FTP_PATH", element_string, 769, 0x4891F003),
    column("FTP_PORT", element_ushort, 2, 0x48971001),
    column("FTP_PSWD", element_string, 65, 0x4891F002),
    column("FTP_USER", element_string, 65, 0x4891F001),
    key("PSN_ID", element_ushort, 2, 0x48971000),
});

constexpr auto grpm_tbl = category{0x05090401}.rows({
    key("GRP_ID", element_ushort, 2, 0x41971001),
    key("PSN_ID", element_ushort, 2, 0x41971000),
    key("SEND_CTGRY", element_uchar, 1, 0x41960000),
});

constexpr auto grp_tbl = category{0x05090402}.rows({
    column("GRP_ADDR_ID", element_ushort, 2, 0x42971001),
    key("GRP_ID", element_ushort, 2, 0x42971002),
    column("GRP_KANA", element_name, 193, 0x4291F001),
    column("GRP_NAME", element_name, 193, 0x4291F000),
    column("INTEG_ID", element_ushort, 2, 0x42971000),
});

constexpr auto integ_tbl = category{0x05090406}.rows({
    column("ADDR_TYPE", element_uchar, 1, 0x46960000),
    column("INTEG_ID", element_ushort, 2, 0x46971001),
    key("ROW_ID", element_ushort, 2, 0x46971000),
});

constexpr auto one_tbl = category{0x05090405}.rows({
    column("ADDR_TYPE", element_uchar, 1, 0x45960000),
    column("ONE_ADDR_ID", element_ushort, 2, 0x45971001),
    key("ONE_ID", element_ushort, 2, 0x45971000),
    column("SEND_CTGRY", element_uchar, 1, 0x45960001),
});

constexpr auto psn_tbl = category{0x05090400}.rows({
    column("INTEG_ID", element_ushort, 2, 0x40971000),
    column("PSN_ADDR_ID", element_ushort, 2, 0x40971001),
    key("PSN_ID", element_ushort, 2, 0x40971002),
    column("PSN_KANA", element_name, 193, 0x4091F001),
    column("PSN_NAME", element_name, 193, 0x4091F000),
});

constexpr auto smb_tbl = category{0x05090407}.rows({
    key("PSN_ID", element_ushort, 2, 0x47971000),
    column("SMB_HOST", element_string, 65, 0x4791F000),
    column("SMB_PATH", element_string, 769, 0x4791F003),
    column("SMB_PORT", element_ushort, 2, 0x47971001),
    column("SMB_PSWD", element_string, 129, 0x4791F002),
    column("SMB_USER", element_string, 129, 0x4791F001),
});

constexpr auto ssheet_tbl = category{0x0509040B}.rows({
    key("PSN_ID", element_ushort, 2, 0x4B971000),
    column("SSHEET_CMP", element_name, 193, 0x4B91F000),
    column("SSHEET_DIV", element_name, 193, 0x4B91F002),
    column("SSHEET_NAME", element_name, 193, 0x4B91F001),
    column("SSHEET_TITLE", element_uchar, 1, 0x4B960000),
});

constexpr auto tmp_id_tbl = category{0x06070904}.rows({
    key("TMP_ID", element_ushort, 2, 0x94771000),
});

constexpr QRY_LIB_TABLE_DEF tables[] = {
    table("EDIT_CNT_TBL", edit_cnt_tbl), table("EMAIL_TBL", email_tbl),   table("FAX_TBL", fax_tbl),
    table("FTP_TBL", ftp_tbl),           table("GRPM_TBL", grpm_tbl),     table("GRP_TBL", grp_tbl),
    table("INTEG_TBL", integ_tbl),       table("ONE_TBL", one_tbl),       table("PSN_TBL", psn_tbl),
    table("SMB_TBL", smb_tbl),           table("SSHEET_TBL", ssheet_tbl), table("TMP_ID_TBL", tmp_id_tbl),
};
static_assert(is_sorted(tables));

} // namespace

const database_schema adbk_schema = {"adbk_db", tables, static_cast<std::uint16_t>(std::size(tables))};

} // namespace norvane
