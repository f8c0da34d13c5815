// How many records the device holds of each category, zeros included: a category without records yields an
// empty search. Some categories belong to element tables outside the four databases.
#include "exec/schema/schema.h"

namespace norvane {

const database_schema *const databases[database_num] = {&adbk_schema, &department_schema, &usrac_schema,
                                                        &log_schema};

} // namespace norvane

const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    {0x05090400, 10, 0},  {0x05090401, 0, 0},  {0x05090402, 0, 0},   {0x06070904, 0, 0},  {0x05180403, 0, 0},
    {0x05080404, 101, 0}, {0x05090405, 0, 0},  {0x05090406, 0, 0},   {0x06170500, 16, 0}, {0x06170501, 8, 0},
    {0x06170502, 8, 0},   {0x06170503, 5, 0},  {0x06170504, 103, 0}, {0x06170505, 40, 0}, {0x06170506, 6, 0},
    {0x0619050B, 0, 0},   {0x0619050C, 20, 0}, {0x050F0700, 1, 0},   {0x05100701, 1, 0},  {0x05110702, 1, 0},
    {0x05120703, 0, 0},   {0x05130704, 0, 0},  {0x05140705, 0, 0},   {0x05150706, 0, 0},  {0x06070900, 0, 0},
    {0x06070901, 0, 0},   {0x06070902, 0, 0},  {0x06070903, 2, 0},   {0x05090407, 0, 0},  {0x05090408, 0, 0},
    {0x05090409, 0, 0},   {0x0509040A, 0, 0},  {0x0509040B, 0, 0},   {0x0519040C, 0, 0},  {0x0519040D, 0, 0},
    {0x0519040E, 1, 0},   {0x05160709, 1, 0},  {0x0516070A, 1, 0},   {0x0516070B, 1, 0},
};
