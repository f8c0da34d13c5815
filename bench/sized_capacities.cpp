// Capacities for measuring alone: as many departments as the program that links this says.
#include "exec/schema/schema.h"

// The rows behind these are of category 0, which no table has.
const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    {0x05080404, QRYLIB_BENCH_RECORDS, 0},
    {0x06070903, 2, 0},
};
