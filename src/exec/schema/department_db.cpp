// The tables of "department_db": the departments and their meters.
#include "exec/schema/rows.h"

namespace norvane {

namespace {

constexpr auto dept_tbl = category{0x05080404}.rows({
    column("COLOR_PL", element_uchar, 1, 0x44860005),   column("COLOR_PM", element_ulong, 4, 0x44882005),
    column("DEPT_CODE", element_string, 9, 0x4481F002), column("FCOLOR_CL", element_uchar, 1, 0x44860003),
    column("FCOLOR_CM", element_ulong, 4, 0x44882003),  column("FURIGANA", element_name, 193, 0x4481F001),
    key("ID", element_ushort, 2, 0x44871000),           column("NAME", element_name, 193, 0x4481F000),
    column("OTHER_SL", element_uchar, 1, 0x44860006),   column("OTHER_SM", element_ulong, 4, 0x44882006),
    column("SEND_FL", element_uchar, 1, 0x44860007),    column("SEND_FM", element_ulong, 4, 0x44882007),
    column("TOTAL_CL", element_uchar, 1, 0x44860002),   column("TOTAL_CM", element_ulong, 4, 0x44882002),
    column("TOTAL_FL", element_uchar, 1, 0x44860001),   column("TOTAL_FM", element_ulong, 4, 0x44882001),
    column("TOTAL_L", element_uchar, 1, 0x44860000),    column("TOTAL_M", element_ulong, 4, 0x44882000),
    column("TOTAL_PL", element_uchar, 1, 0x44860004),   column("TOTAL_PM", element_ulong, 4, 0x44882004),
});

constexpr auto edit_cnt_tbl = category{0x06070903}.rows({
    column("CNT", element_ulong, 4, 0x93782001),
    key("ID", element_ulong, 4, 0x93782000),
});

constexpr QRY_LIB_TABLE_DEF tables[] = {
    table("DEPT_TBL", dept_tbl),
    table("EDIT_CNT_TBL", edit_cnt_tbl),
};
static_assert(is_sorted(tables));

} // namespace

const database_schema department_schema = {"department_db", tables,
                                           static_cast<std::uint16_t>(std::size(tables))};

} // namespace norvane
