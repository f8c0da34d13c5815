// How many records the roomy device holds: as many as the device where that holds any, and room to try things
// where it holds none.
#include "exec/schema/schema.h"
#include "platform/host/roomy.h"

using qryhost::roomy_records;

const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    {0x05090400, 10, 0},
    {0x05090401, roomy_records, 0},
    {0x05090402, roomy_records, 0},
    {0x06070904, roomy_records, 0},
    {0x05180403, roomy_records, 0},
    {0x05080404, 101, 0},
    {0x05090405, roomy_records, 0},
    {0x05090406, roomy_records, 0},
    {0x06170500, 16, 0},
    {0x06170501, 8, 0},
    {0x06170502, 8, 0},
    {0x06170503, 5, 0},
    {0x06170504, 103, 0},
    {0x06170505, 40, 0},
    {0x06170506, 6, 0},
    {0x0619050B, roomy_records, 0},
    {0x0619050C, 20, 0},
    {0x050F0700, 1, 0},
    {0x05100701, 1, 0},
    {0x05110702, 1, 0},
    {0x05120703, roomy_records, 0},
    {0x05130704, roomy_records, 0},
    {0x05140705, roomy_records, 0},
    {0x05150706, roomy_records, 0},
    {0x06070900, roomy_records, 0},
    {0x06070901, roomy_records, 0},
    {0x06070902, roomy_records, 0},
    {0x06070903, 2, 0},
    {0x05090407, roomy_records, 0},
    {0x05090408, roomy_records, 0},
    {0x05090409, roomy_records, 0},
    {0x0509040A, roomy_records, 0},
    {0x0509040B, roomy_records, 0},
    {0x0519040C, roomy_records, 0},
    {0x0519040D, roomy_records, 0},
    {0x0519040E, 1, 0},
    {0x05160709, 1, 0},
    {0x0516070A, 1, 0},
    {0x0516070B, 1, 0},
};
