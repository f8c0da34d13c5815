// A device that is not the shipped one: its job log records have room, and its departments have no tables at
// all, the edit counter included. The job log tables are the shipped ones.
#include "exec/schema/schema.h"

namespace norvane {

const database_schema adbk_schema = {"adbk_db", nullptr, 0};
const database_schema department_schema = {"department_db", nullptr, 0};
const database_schema usrac_schema = {"usrac_db", nullptr, 0};

const database_schema *const databases[database_num] = {&adbk_schema, &department_schema, &usrac_schema,
                                                        &log_schema};

} // namespace norvane

// The rows behind these are of category 0, which no table has.
const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    {0x05120703, 4, 0}, {0x05130704, 4, 0}, {0x05140705, 4, 0}, {0x05150706, 4, 0}};
