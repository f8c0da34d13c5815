// Capacities for tests alone: every category of the schema has room, where the shipped device keeps no
// records of most. The program that links this says for how many.
#include "exec/schema/schema.h"

#define ROOM(category)                                                                                       \
    { category, QRYLIB_ROOMY_RECORDS, 0 }

// The rows behind these are of category 0, which no table has.
const QRY_LIB_TB_MAX_ROW QRY_LIB_TB_MAX_TABLE[QRY_LIB_TB_MAX_NUM] = {
    ROOM(0x05090400), ROOM(0x05090401), ROOM(0x05090402), ROOM(0x06070904), ROOM(0x05180403),
    ROOM(0x05080404), ROOM(0x05090405), ROOM(0x05090406), ROOM(0x050F0700), ROOM(0x05100701),
    ROOM(0x05110702), ROOM(0x05120703), ROOM(0x05130704), ROOM(0x05140705), ROOM(0x05150706),
    ROOM(0x06070900), ROOM(0x06070901), ROOM(0x06070902), ROOM(0x06070903), ROOM(0x05090407),
    ROOM(0x05090408), ROOM(0x05090409), ROOM(0x0509040A), ROOM(0x0509040B), ROOM(0x0519040C),
    ROOM(0x0519040D), ROOM(0x0519040E), ROOM(0x05160709), ROOM(0x0516070A), ROOM(0x0516070B),
};
