// The wrapped platform calls.
#include "platform_calls/recorder.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>

#include <qrylib/types.h>

#include "platform/element_table.h"

namespace {

struct {
    bool on = false;
    std::vector<std::string> calls;
    std::map<const void *, int> blocks;
    int block_num = 0;
    std::uint32_t short_element = 0;
    std::map<const tbctListTable *, std::uint32_t> lists;
} state;

void keep(const std::string &call) {
    if (state.on) {
        state.calls.push_back(call);
    }
}

// Copies a string's characters and nothing behind them.
void copy_characters(const char *from, void *to) {
    std::memcpy(to, from, strnlen(from, QRY_LIB_STRING_MAX));
}

using long_buffer = std::array<char, 4096>;

} // namespace

namespace test {

void start_recording() {
    state.calls.clear();
    state.blocks.clear();
    state.block_num = 0;
    state.on = true;
}

std::vector<std::string> stop_recording() {
    state.on = false;
    return state.calls;
}

void read_without_end(std::uint32_t element) {
    state.short_element = element;
}

} // namespace test

extern "C" {

std::uint32_t __real_pfwOSWOrgAllocMemPart(std::uint32_t part, void **block, std::uint32_t size);
std::uint32_t __wrap_pfwOSWOrgAllocMemPart(std::uint32_t part, void **block, std::uint32_t size) {
    const std::uint32_t code = __real_pfwOSWOrgAllocMemPart(part, block, size);
    if (code == 0 && state.on) {
        state.blocks[*block] = ++state.block_num;
        keep("take " + std::to_string(state.block_num));
    }
    return code;
}

std::uint32_t __real_pfwOSWOrgFreeMemPart(std::uint32_t part, void *block);
std::uint32_t __wrap_pfwOSWOrgFreeMemPart(std::uint32_t part, void *block) {
    const auto taken = state.blocks.find(block);
    keep(taken == state.blocks.end() ? "give" : "give " + std::to_string(taken->second));
    if (taken != state.blocks.end()) {
        state.blocks.erase(taken);
    }
    return __real_pfwOSWOrgFreeMemPart(part, block);
}

void __real_pfwGENTrcPrintf(std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                            const char *format, ...);
void __wrap_pfwGENTrcPrintf(std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                            const char *format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    char function[64] = "";
    int line = 0;
    unsigned int code = 0;
    if (std::sscanf(text, "%63[^(]():[Return]:(%d) (0x%X)", function, &line, &code) == 3) {
        const bool is_fixed =
            std::strstr(function, "_wrapper_") == nullptr && std::strcmp(function, "init_rowset") != 0;
        char shown[16];
        std::snprintf(shown, sizeof shown, " 0x%X", code);
        keep(std::string("trace ") + function + (is_fixed ? ":" + std::to_string(line) : "") + shown);
    }
    __real_pfwGENTrcPrintf(destination, module, level, "%s", text);
}

std::int32_t __real_sdb_DeregisterDBHandleService(void);
std::int32_t __wrap_sdb_DeregisterDBHandleService(void) {
    keep("deregister");
    return __real_sdb_DeregisterDBHandleService();
}

std::uint32_t __real_tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                                     void *buffer);
std::uint32_t __wrap_tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                                     void *buffer) {
    if (element != state.short_element) {
        return __real_tbctSTCGetTable(category, record, element, buffer);
    }
    alignas(8) long_buffer value{};
    const std::uint32_t code = __real_tbctSTCGetTable(category, record, element, value.data());
    copy_characters(value.data(), buffer);
    return code;
}

std::uint32_t __real_tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element,
                                            std::uint16_t record_num, tbctListTable *list);
std::uint32_t __wrap_tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element,
                                            std::uint16_t record_num, tbctListTable *list) {
    state.lists[list] = element;
    return __real_tbctSTCCreateListTable(category, element, record_num, list);
}

std::uint32_t __real_tbctSTCListTableGetVal(tbctListTable *list, void *buffer);
std::uint32_t __wrap_tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    if (state.short_element == 0 || state.lists[list] != state.short_element) {
        return __real_tbctSTCListTableGetVal(list, buffer);
    }
    alignas(8) long_buffer value{};
    const std::uint32_t code = __real_tbctSTCListTableGetVal(list, value.data());
    copy_characters(value.data(), buffer);
    return code;
}

std::uint32_t __real_tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option);
std::uint32_t __wrap_tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option) {
    keep("delete list");
    return __real_tbctSTCDeleteListTable(list, option);
}

} // extern "C"
