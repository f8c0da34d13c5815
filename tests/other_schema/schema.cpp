// A device that is not the shipped one: its job log records have room, its departments have no tables at all,
// the edit counter included, and its users are a table with texts for keys. The job log tables are the
// shipped ones.
#include "exec/schema/rows.h"

namespace norvane {

namespace {

constexpr auto card_tbl = category{0x05180999}.rows({
    key("CARD", element_string, 8, 0x43810001),
    key("CODE", element_string, 4, 0x43810002),
    column("OWNER", element_string, 8, 0x43810003),
});

constexpr QRY_LIB_TABLE_DEF user_tables[] = {table("CARD_TBL", card_tbl)};
static_assert(is_sorted(user_tables));

} // namespace

const database_schema adbk_schema = {"adbk_db", nullptr, 0};
const database_schema department_schema = {"department_db", nullptr, 0};
const database_schema usrac_schema = {"usrac_db", user_tables, 1};

} // namespace norvane

// The rows behind these are of category 0, which no table has.
const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    {0x05120703, 4, 0}, {0x05130704, 4, 0}, {0x05140705, 4, 0}, {0x05150706, 4, 0}, {0x05180999, 3, 0}};
