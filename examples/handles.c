/* A thread's database handle, and an id that nobody has. A thread needs a handle only where it uses the
 * platform's database service directly; the service then asks dsql_db_handle_callback() for it, which callers
 * never do. */
#include <inttypes.h>
#include <stdio.h>

#include <qrylib/qrylib.h>

/* The smallest free id of a person from 1 to 100. */
static uint32_t find_free_id(uint32_t *id) {
    qry_lib_db_unused_id_param_ wanted;
    wanted.db_name = "adbk_db";
    wanted.table_name = "PSN_TBL";
    wanted.col_name = "PSN_ID";
    wanted.min_id = 1;
    wanted.max_id = 100;
    wanted.max_count = 10;
    wanted.id_kind = 2;
    return qry_lib_db_get_unused_id(&wanted, id);
}

int main(void) {
    uint32_t id = 0;
    uint32_t code;
    if (dsql_db_handle_add() != 0) {
        return 1;
    }
    code = find_free_id(&id);
    printf("free: %" PRIu32 "\n", id);
    return dsql_db_handle_delete() == 0 && code == QRY_LIB_OK ? 0 : 1;
}
