/* Device data beside the records: the version of stored data, the double-count setting, the device-access
 * file, and bytes as hexadecimal text. Leaves test_file_debug.dat in the current folder. */
#include <inttypes.h>
#include <stdio.h>

#include <qrylib/qrylib.h>

enum { area = 1, directory = 7 };

/* Data of version 3 is there; a program that expects version 4 finds it discarded. */
static uint32_t check_versions(void) {
    uint32_t code = qry_lib_write_data_version(area, directory, 3);
    printf("expects 3: %" PRIu32 "\n", qry_lib_check_data_version(area, directory, 3));
    printf("expects 4: %" PRIu32 "\n", qry_lib_check_data_version(area, directory, 4));
    printf("and again: %" PRIu32 "\n", qry_lib_check_data_version(area, directory, 4));
    return code;
}

static uint32_t judge_output(void) {
    uint32_t mode = 9;
    uint32_t counts = 0;
    uint32_t code = qry_lib_get_doublecount_mode(1, &mode);
    code |= qry_lib_judge_doublecount(4200, 1, &counts);
    printf("mode %" PRIu32 ": counts %s\n", mode, counts == 2 ? "twice" : "once");
    return code;
}

static uint32_t use_device_file(void) {
    uint8_t bytes[4];
    char text[2 * sizeof bytes + 1];
    uint32_t code;
    qry_lib_convert_to_Bin(bytes, "C0ffee07", (uint16_t)sizeof bytes);
    qry_lib_dev_access_init(64);
    code = qry_lib_dev_access_write(0, 16, bytes, (uint32_t)sizeof bytes);
    code |= qry_lib_dev_access_read(0, 17, bytes, (uint32_t)sizeof bytes);
    qry_lib_convert_to_Hex(text, bytes, (uint16_t)sizeof bytes);
    printf("%s\n", text);
    return code;
}

int main(void) {
    uint32_t code = check_versions();
    code |= judge_output();
    code |= use_device_file();
    return code == QRY_LIB_OK ? 0 : 1;
}
