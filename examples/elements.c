/* Element tables without the query engine: records of the address book and a setting, read, written, searched
 * and put back. The ids are those of PSN_TBL. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <qrylib/qrylib.h>

enum { requester = 0, name_size = 193 };

static const uint32_t persons = 0x05090400u;
static const uint32_t person_id = 0x40971002u;
static const uint32_t person_name = 0x4091F000u;
static const uint32_t settings = 0x04050300u;
static const uint32_t double_count = 0x85004860u;

/* A string element is written whole, the bytes behind the string zero. */
static uint32_t write_person(uint32_t record, uint16_t id, const char *name) {
    char element[name_size];
    uint32_t code = qry_lib_tb_set_stc_table(requester, persons, record, person_id, &id);
    memset(element, 0, sizeof element);
    strncpy(element, name, sizeof element - 1);
    return code | qry_lib_tb_set_stc_table(requester, persons, record, person_name, element);
}

static uint32_t print_person(uint32_t record) {
    uint16_t id = 0;
    char name[name_size];
    uint32_t code = qry_lib_tb_get_stc_table(persons, record, person_id, &id);
    code |= qry_lib_tb_get_stc_table_str(persons, record, person_name, name, (uint32_t)sizeof name);
    printf("record %" PRIu32 ": %u %s\n", record, (unsigned)id, name);
    return code;
}

/* The records whose id is at least 2 and whose name begins with "S". */
static uint32_t search(void) {
    static qry_lib_tb_list_filter_key_ keys[2];
    const uint16_t least = 2;
    qry_lib_tb_search_id found = 0;
    uint16_t hits = 0;
    uint32_t code;
    keys[0].category_id = keys[1].category_id = persons;
    keys[0].element_id = person_id;
    keys[0].elem_type = 2;
    keys[0].cmp_size = (uint8_t)sizeof least;
    memcpy(keys[0].value, &least, sizeof least);
    keys[0].operation = QRY_LIB_OPERATION_TYPE_GREATER_EQUAL;
    keys[1].element_id = person_name;
    keys[1].elem_type = 6;
    strcpy(keys[1].value, "S");
    keys[1].operation = QRY_LIB_OPERATION_TYPE_LIKE;
    keys[0].join = keys[1].join = QRY_LIB_JOIN_TYPE_AND;
    code = qry_lib_tb_create_search_table_id(persons, 2, keys, &found, &hits);
    printf("%u found, the first is record %u\n", (unsigned)hits,
           hits > 0 ? (unsigned)*(const uint16_t *)found : 0u);
    qry_lib_tb_delete_search_table_id(&found);
    return code;
}

/* The default record is what free records hold. */
static uint32_t change_default(void) {
    char name[name_size] = "nobody";
    uint16_t id = 1;
    uint32_t code = qry_lib_tb_set_stc_default_table(requester, persons, person_name, name);
    code |= qry_lib_tb_get_stc_default_table(persons, person_id, &id);
    code |= qry_lib_tb_get_stc_default_table_str(persons, person_name, name, (uint32_t)sizeof name);
    code |= qry_lib_tb_reset_one_stc_table(persons, 0);
    printf("default: %u %s\n", (unsigned)id, name);
    return code | print_person(0) | qry_lib_tb_reset_all_stc_table(persons);
}

/* A setting is an element without a record; the strings' read is for settings that are strings. */
static uint32_t change_setting(void) {
    uint32_t mode = 2;
    char text[sizeof mode];
    uint32_t code = qry_lib_tb_set_stc_status(requester, settings, double_count, &mode);
    mode = 0;
    code |= qry_lib_tb_get_stc_status(settings, double_count, &mode);
    code |= qry_lib_tb_get_stc_status_str(settings, double_count, text, (uint32_t)sizeof text);
    printf("setting: %" PRIu32 "\n", mode);
    return code;
}

int main(void) {
    uint16_t records = 0;
    uint32_t code = qry_lib_tb_get_max_stc_table_number(persons, &records);
    printf("%u records, order of a and b: %d, of their beginnings: %d\n", (unsigned)records,
           qry_lib_tb_strcmp("a", "b"), qry_lib_tb_strncmp("anna", "anton", 2));
    code |= write_person(0, 1, "Sato");
    code |= write_person(1, 2, "Becker");
    code |= write_person(2, 3, "Suzuki");
    code |= print_person(2);
    code |= search();
    code |= change_default();
    code |= change_setting();
    return code == QRY_LIB_OK ? 0 : 1;
}
