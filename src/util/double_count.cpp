// The double-count mode: a setting of the device, and the thresholds that it chooses.
#include <cstdint>

#include <qrylib/device_data.h>
#include <qrylib/element_table.h>

#include "util/settings.h"
#include "util/trace.h"

using norvane::settings_category;
using norvane::settings_elements;
using norvane::trace_return;

namespace {

constexpr std::uint32_t kind_num = sizeof settings_elements / sizeof *settings_elements;

constexpr std::uint32_t count_once = 1;
constexpr std::uint32_t count_twice = 2;

// The largest value that counts once, by mode. Mode 0 never counts twice.
constexpr std::uint32_t thresholds[] = {UINT32_MAX, 4199, 3560, 3299};
constexpr std::uint32_t mode_num = sizeof thresholds / sizeof *thresholds;

constexpr std::uint32_t setting_refused = 1;
constexpr std::uint32_t setting_unavailable = 2;

// Narrows a failure of the element tables to the two that callers of the setting know.
std::uint32_t convert_table_code(std::uint32_t code) {
    if (code == QRY_LIB_TABLE_ARGUMENT) {
        return setting_refused;
    }
    trace_return("qryLIBConvertTbRetcode", 199, code);
    return setting_unavailable;
}

} // namespace

extern "C" {

std::uint32_t qry_lib_get_doublecount_mode(std::uint32_t kind, std::uint32_t *mode) {
    if (kind < 1 || kind > kind_num) {
        return trace_return(__func__, 162, QRY_LIB_BAD_PARAMETER);
    }
    if (mode == nullptr) {
        return QRY_LIB_BAD_PARAMETER;
    }
    const std::uint32_t code =
        qry_lib_tb_get_stc_status(settings_category, settings_elements[kind - 1], mode);
    return code == 0 ? 0 : trace_return(__func__, 168, convert_table_code(code));
}

std::uint32_t qry_lib_judge_doublecount(std::uint32_t value, std::uint32_t kind, std::uint32_t *result) {
    if (value == 0) {
        return trace_return(__func__, 73, QRY_LIB_BAD_PARAMETER);
    }
    if (result == nullptr) {
        return QRY_LIB_BAD_PARAMETER;
    }
    std::uint32_t mode = 0;
    if (const std::uint32_t code = qry_lib_get_doublecount_mode(kind, &mode); code != 0) {
        return trace_return(__func__, 80, code);
    }
    if (mode >= mode_num) {
        return trace_return(__func__, 117, QRY_LIB_BAD_PARAMETER);
    }
    *result = value > thresholds[mode] ? count_twice : count_once;
    return 0;
}

} // extern "C"
