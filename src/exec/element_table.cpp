// Access to single elements and records of the element tables. The library counts records from 0, the
// platform from 1; its record 0 is the category's default record.
#include <qrylib/element_table.h>

#include "exec/schema/schema.h"
#include "platform/element_table.h"
#include "util/tb_string.h"

namespace {

constexpr std::uint32_t default_record = 0;
constexpr std::uint32_t no_record = 0xFFFFFFFF; // its platform number would be the default record's

void terminate(std::uint32_t code, char *buffer, std::uint32_t size) {
    if (code == 0 && size > 0) {
        buffer[size - 1] = '\0';
    }
}

} // namespace

extern "C" {

int qry_lib_tb_strcmp(const char *a, const char *b) {
    return norvane::tb_strcmp(a, b);
}

int qry_lib_tb_strncmp(const char *a, const char *b, std::uint32_t n) {
    return norvane::tb_strncmp(a, b, n);
}

std::uint32_t qry_lib_tb_get_max_stc_table_number(std::uint32_t category, std::uint16_t *max) {
    const QRY_LIB_TB_MAX_ROW *row = norvane::find_capacity(category);
    if (max == nullptr || row == nullptr) {
        return QRY_LIB_TABLE_ARGUMENT;
    }
    *max = row->max_number;
    return 0;
}

std::uint32_t qry_lib_tb_get_stc_table(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                                       void *buffer) {
    if (record == no_record) {
        return QRY_LIB_TABLE_ARGUMENT;
    }
    return tbctSTCGetTable(category, record + 1, element, buffer);
}

std::uint32_t qry_lib_tb_get_stc_table_str(std::uint32_t category, std::uint32_t record,
                                           std::uint32_t element, char *buffer, std::uint32_t size) {
    const std::uint32_t code = qry_lib_tb_get_stc_table(category, record, element, buffer);
    terminate(code, buffer, size);
    return code;
}

std::uint32_t qry_lib_tb_get_stc_default_table(std::uint32_t category, std::uint32_t element, void *buffer) {
    return tbctSTCGetTable(category, default_record, element, buffer);
}

std::uint32_t qry_lib_tb_get_stc_default_table_str(std::uint32_t category, std::uint32_t element,
                                                   char *buffer, std::uint32_t size) {
    const std::uint32_t code = qry_lib_tb_get_stc_default_table(category, element, buffer);
    terminate(code, buffer, size);
    return code;
}

std::uint32_t qry_lib_tb_set_stc_table(std::uint32_t requester, std::uint32_t category, std::uint32_t record,
                                       std::uint32_t element, const void *buffer) {
    if (record == no_record) {
        return QRY_LIB_TABLE_ARGUMENT;
    }
    return tbctSTCSetTable(requester, category, record + 1, element, buffer);
}

std::uint32_t qry_lib_tb_set_stc_default_table(std::uint32_t requester, std::uint32_t category,
                                               std::uint32_t element, const void *buffer) {
    return tbctSTCSetTable(requester, category, default_record, element, buffer);
}

std::uint32_t qry_lib_tb_reset_one_stc_table(std::uint32_t category, std::uint32_t record) {
    if (record == no_record) {
        return QRY_LIB_TABLE_ARGUMENT;
    }
    return tbSTCInitTable(category, record + 1);
}

std::uint32_t qry_lib_tb_reset_all_stc_table(std::uint32_t category) {
    return tbctResetTable(category);
}

std::uint32_t qry_lib_tb_get_stc_status(std::uint32_t category, std::uint32_t element, void *buffer) {
    return tbctSTCGetStatus(category, element, buffer);
}

std::uint32_t qry_lib_tb_get_stc_status_str(std::uint32_t category, std::uint32_t element, char *buffer,
                                            std::uint32_t size) {
    const std::uint32_t code = qry_lib_tb_get_stc_status(category, element, buffer);
    terminate(code, buffer, size);
    return code;
}

std::uint32_t qry_lib_tb_set_stc_status(std::uint32_t requester, std::uint32_t category,
                                        std::uint32_t element, const void *buffer) {
    return tbctSTCSetStatus(requester, category, element, buffer);
}

} // extern "C"
