/* The growable array: squares are added, exchanged, replaced and removed. */
#include <inttypes.h>
#include <stdio.h>

#include <qrylib/qrylib.h>

static uint32_t print_all(qry_lib_vector_ *squares) {
    uint32_t count = 0;
    uint32_t code = qry_lib_vector_get_data_num(squares, &count);
    uint32_t i;
    for (i = 0; i < count; ++i) {
        uint32_t square = 0;
        code |= qry_lib_vector_get_data(squares, i, &square);
        printf("%" PRIu32 "%s", square, i + 1 < count ? " " : "\n");
    }
    return code;
}

int main(void) {
    qry_lib_vector_ *squares = NULL;
    const uint32_t hundred = 100;
    uint32_t i;
    uint32_t code = qry_lib_vector_init((uint32_t)sizeof hundred, 10, &squares);
    if (code != QRY_LIB_OK) {
        return 1;
    }
    for (i = 1; i <= 5; ++i) {
        const uint32_t square = i * i;
        code |= qry_lib_vector_add_data(squares, &square);
    }
    code |= qry_lib_vector_swap_data(squares, 0, 4);
    code |= qry_lib_vector_set_data(squares, 2, &hundred);
    code |= qry_lib_vector_pull_data(squares, 1);
    code |= print_all(squares);
    code |= qry_lib_vector_free(squares);
    return code == QRY_LIB_OK ? 0 : 1;
}
