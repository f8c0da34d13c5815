// The contract's functions, as the replayed library calls them.
#include "tools/field/replay_platform.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/db_handle.h"
#include "platform/element_table.h"
#include "platform/file_access.h"
#include "platform/os.h"
#include "platform/sort.h"
#include "platform/trace.h"
#include "tools/field/element_shapes.h"

namespace field {

thread_local feeder *feeder::current = nullptr;

namespace {

bool agree(const platform_call &recorded, const platform_call &made) {
    if (recorded.service != made.service) {
        return false;
    }
    const field_names names = fields_of(recorded.service);
    for (std::size_t i = 0; i < names.num; ++i) {
        const field_value &a = recorded.fields[i];
        const field_value &b = made.fields[i];
        const bool is_unknown = names.fields[i].type == field_type::value && !a.has_bytes;
        if (names.fields[i].is_compared && !is_unknown &&
            (a.number != b.number || a.bytes != b.bytes || a.has_bytes != b.has_bytes)) {
            return false;
        }
    }
    return true;
}

} // namespace

void feeder::report(difference found) {
    if (!differs_ && !is_beyond_end_) {
        differs_ = true;
        found_ = std::move(found);
    }
}

// At the end of what was recorded of this call: a difference, unless the recording itself ends there.
bool feeder::is_at_end() {
    if (next_ < call_.events.size()) {
        return false;
    }
    is_beyond_end_ = is_beyond_end_ || (!call_.has_result && !differs_);
    return true;
}

// The library makes its one mutex once in the life of a process, and an earlier replay may have seen to that.
void feeder::skip_known_mutex(const platform_call &made) {
    constexpr service_number making[] = {service_pfwOSWLockTask, service_pfwOSWCreateMutexSem,
                                         service_pfwOSWUnlockTask};
    const auto is_next = [this](service_number service) {
        return next_ < call_.events.size() && !call_.events[next_].is_trace &&
               call_.events[next_].call.service == service;
    };
    if (made.service != service_pfwOSWRequestMutexSem || !is_next(service_pfwOSWLockTask)) {
        return;
    }
    for (const service_number service : making) {
        next_ += is_next(service) ? 1 : 0;
    }
}

const platform_call *feeder::answer(const platform_call &made) {
    skip_known_mutex(made);
    if (differs_ || is_at_end()) {
        report({"", call_text(made, false), "called more often than recorded"});
        return nullptr;
    }
    const event &expected = call_.events[next_];
    if (expected.is_trace) {
        report({trace_text(expected.trace), call_text(made, false), ""});
        return nullptr;
    }
    if (!agree(expected.call, made)) {
        report({call_text(expected.call, true), call_text(made, false), ""});
        return nullptr;
    }
    ++next_;
    return &expected.call;
}

// A line that is no fixed point is the line of a source, which only the same build has.
void feeder::trace(const trace_line &made) {
    if (differs_ || is_at_end()) {
        report({"", trace_text(made), "traced more often than recorded"});
        return;
    }
    const event &expected = call_.events[next_];
    if (!expected.is_trace) {
        report({call_text(expected.call, true), trace_text(made), ""});
        return;
    }
    const trace_line &line = expected.trace;
    const bool same_line = line.line == made.line || (!is_fixed_point(line) && !is_fixed_point(made));
    if (line.function != made.function || line.code != made.code || !same_line) {
        report({trace_text(line), trace_text(made), ""});
        return;
    }
    ++next_;
}

void feeder::end() {
    if (!differs_ && !is_beyond_end_ && next_ < call_.events.size()) {
        const event &expected = call_.events[next_];
        report({expected.is_trace ? trace_text(expected.trace) : call_text(expected.call, true), "",
                "the library came to its end before"});
    }
}

namespace {

constexpr std::uint32_t refused = 0xFFFF;

// The made call's fields: numbers where they are compared, zeros where the recording answers.
platform_call made_of(service_number service, std::initializer_list<std::uint64_t> numbers) {
    platform_call made;
    made.service = service;
    for (const std::uint64_t number : numbers) {
        made.fields.push_back({number, "", true});
    }
    return made;
}

// The code of a call that hands nothing out.
std::uint32_t plain(service_number service, std::initializer_list<std::uint64_t> numbers) {
    feeder *const source = feeder::current;
    if (source == nullptr) {
        return refused;
    }
    const platform_call *const answer = source->answer(made_of(service, numbers));
    return answer != nullptr ? answer->code : refused;
}

// The code, and in `out` the field that is an answer.
std::uint32_t with_number(const platform_call &made, std::size_t field, std::uint32_t &out) {
    feeder *const source = feeder::current;
    const platform_call *const answer = source != nullptr ? source->answer(made) : nullptr;
    if (answer == nullptr) {
        return refused;
    }
    if (answer->code == 0) {
        out = static_cast<std::uint32_t>(answer->fields[field].number);
    }
    return answer->code;
}

std::uint32_t with_value(const platform_call &made, std::size_t field, void *buffer) {
    feeder *const source = feeder::current;
    const platform_call *const answer = source != nullptr ? source->answer(made) : nullptr;
    if (answer == nullptr) {
        return refused;
    }
    if (answer->code == 0) {
        const std::string &bytes = answer->fields[field].bytes;
        std::memcpy(buffer, bytes.data(), bytes.size());
    }
    return answer->code;
}

platform_call value_call(service_number service, std::uint32_t category, std::uint32_t record,
                         std::uint32_t element, const void *written) {
    platform_call made = made_of(service, {category, record, element, 0});
    const element_shape *const shape = find_shape(category, element);
    if (written != nullptr && shape != nullptr) {
        made.fields.back().bytes.assign(static_cast<const char *>(written), shape->size);
    }
    return made;
}

field_value text_field(const char *text) {
    return {0, text != nullptr ? text : "", text != nullptr};
}

// A list table of a replay holds its number, from 1; zeros: it was never opened.
std::uint64_t number_of(const tbctListTable *list) {
    constexpr std::uint64_t unknown_list = 0xFFFF;
    return list->word[0] != 0 ? list->word[0] - 1 : unknown_list;
}

} // namespace

} // namespace field

using namespace field;

extern "C" {

// Blocks are the process's own; their sizes are the machine's business.
std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t part, void **block, std::uint32_t size) {
    feeder *const source = feeder::current;
    const platform_call *const answer =
        source != nullptr ? source->answer(made_of(service_pfwOSWOrgAllocMemPart, {part, size})) : nullptr;
    if (answer != nullptr && answer->code != 0) {
        return answer->code;
    }
    constexpr std::uint32_t size_max = 256 * 1024 * 1024; // a recording that announces more is not in order
    *block = size <= size_max ? std::malloc(size) : nullptr;
    return *block != nullptr ? 0 : 1;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t part, void *block) {
    const std::uint32_t code = plain(service_pfwOSWOrgFreeMemPart, {part});
    std::free(block);
    return code;
}

std::uint32_t pfwOSWCreateMutexSem(std::uint32_t *mutex, std::uint32_t option, std::uint32_t count) {
    return with_number(made_of(service_pfwOSWCreateMutexSem, {option, count, 0}), 2, *mutex);
}

std::uint32_t pfwOSWRequestMutexSem(std::uint32_t mutex, std::int32_t timeout) {
    return plain(service_pfwOSWRequestMutexSem, {mutex, static_cast<std::uint32_t>(timeout)});
}

std::uint32_t pfwOSWReleaseMutexSem(std::uint32_t mutex) {
    return plain(service_pfwOSWReleaseMutexSem, {mutex});
}

std::uint32_t pfwOSWLockTask(void) {
    return plain(service_pfwOSWLockTask, {});
}

std::uint32_t pfwOSWUnlockTask(void) {
    return plain(service_pfwOSWUnlockTask, {});
}

void pfwGENTrcPrintf(std::uint32_t, std::uint32_t, std::uint32_t, const char *format, ...) {
    if (feeder::current == nullptr) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    trace_line made;
    made.function = va_arg(arguments, const char *);
    made.line = va_arg(arguments, int);
    if (std::strstr(format, "lX") != nullptr) {
        made.code = static_cast<std::uint32_t>(va_arg(arguments, unsigned long));
    }
    va_end(arguments);
    feeder::current->trace(made);
}

std::uint32_t tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                              void *buffer) {
    return with_value(value_call(service_tbctSTCGetTable, category, record, element, nullptr), 3, buffer);
}

std::uint32_t tbctSTCSetTable(std::uint32_t, std::uint32_t category, std::uint32_t record,
                              std::uint32_t element, const void *buffer) {
    std::uint32_t ignored = 0;
    return with_number(value_call(service_tbctSTCSetTable, category, record, element, buffer), 0, ignored);
}

std::uint32_t tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    return plain(service_tbSTCInitTable, {category, record});
}

std::uint32_t tbctResetTable(std::uint32_t category) {
    return plain(service_tbctResetTable, {category});
}

std::uint32_t tbctSTCGetStatus(std::uint32_t category, std::uint32_t element, void *buffer) {
    return with_value(value_call(service_tbctSTCGetStatus, category, 0, element, nullptr), 3, buffer);
}

std::uint32_t tbctSTCSetStatus(std::uint32_t, std::uint32_t category, std::uint32_t element,
                               const void *buffer) {
    std::uint32_t ignored = 0;
    return with_number(value_call(service_tbctSTCSetStatus, category, 0, element, buffer), 0, ignored);
}

std::uint32_t tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                                     tbctListTable *list) {
    feeder *const source = feeder::current;
    const platform_call *const answer =
        source != nullptr
            ? source->answer(made_of(service_tbctSTCCreateListTable, {0, category, element, record_num}))
            : nullptr;
    if (answer == nullptr) {
        return refused;
    }
    list->word[0] = static_cast<std::uint32_t>(answer->fields[0].number) + 1;
    return answer->code;
}

std::uint32_t tbctSTCListTableSetPos(tbctListTable *list, std::uint16_t position) {
    return plain(service_tbctSTCListTableSetPos, {number_of(list), position});
}

std::uint32_t tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    return with_value(made_of(service_tbctSTCListTableGetVal, {number_of(list), 0}), 1, buffer);
}

std::uint32_t tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option) {
    const std::uint32_t code = plain(service_tbctSTCDeleteListTable, {number_of(list), option});
    list->word[0] = 0;
    return code;
}

std::uint32_t sdb_CreateDBHandle(std::int32_t *code) {
    feeder *const source = feeder::current;
    const platform_call *const answer =
        source != nullptr ? source->answer(made_of(service_sdb_CreateDBHandle, {0})) : nullptr;
    *code = static_cast<std::int32_t>(answer != nullptr ? answer->code : refused);
    return answer != nullptr ? static_cast<std::uint32_t>(answer->fields[0].number) : 0;
}

std::int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback, void *) {
    return static_cast<std::int32_t>(plain(service_sdb_RegisterDBHandleService, {}));
}

std::int32_t sdb_DeregisterDBHandleService(void) {
    return static_cast<std::int32_t>(plain(service_sdb_DeregisterDBHandleService, {}));
}

std::uint32_t fsa_fio_existfile(std::uint32_t area, std::uint32_t directory, const char *name) {
    platform_call made = made_of(service_fsa_fio_existfile, {area, directory});
    made.fields.push_back(text_field(name));
    std::uint32_t ignored = 0;
    return with_number(made, 0, ignored);
}

std::uint32_t fsa_fio_mkdir(std::uint32_t area, std::uint32_t directory) {
    return plain(service_fsa_fio_mkdir, {area, directory});
}

std::uint32_t fsa_fio_remove(std::uint32_t area, std::uint32_t directory) {
    return plain(service_fsa_fio_remove, {area, directory});
}

std::uint32_t fsa_fio_fopen(std::uint32_t area, std::uint32_t directory, const char *name, std::uint32_t mode,
                            std::uint32_t *file) {
    platform_call made = made_of(service_fsa_fio_fopen, {area, directory});
    made.fields.push_back(text_field(name));
    made.fields.push_back({mode, "", true});
    made.fields.push_back({});
    return with_number(made, 4, *file);
}

std::uint32_t fsa_fio_fread(std::uint32_t file, void *buffer, std::uint32_t size) {
    feeder *const source = feeder::current;
    const platform_call *const answer =
        source != nullptr ? source->answer(made_of(service_fsa_fio_fread, {file, size, 0})) : nullptr;
    if (answer == nullptr) {
        return refused;
    }
    const std::string &bytes = answer->fields[2].bytes;
    std::memcpy(buffer, bytes.data(), std::min<std::size_t>(bytes.size(), size));
    return answer->code;
}

std::uint32_t fsa_fio_fwrite(std::uint32_t file, const void *buffer, std::uint32_t size) {
    platform_call made = made_of(service_fsa_fio_fwrite, {file, size});
    made.fields.push_back({0, std::string(static_cast<const char *>(buffer), size), true});
    std::uint32_t ignored = 0;
    return with_number(made, 0, ignored);
}

std::uint32_t fsa_fio_fclose(std::uint32_t file) {
    return plain(service_fsa_fio_fclose, {file});
}

std::uint32_t cmn_lib_sort(void **items, CMN_LIB_SORT_PARAM_T *param) {
    feeder *const source = feeder::current;
    const platform_call *const answer =
        source != nullptr ? source->answer(made_of(service_cmn_lib_sort,
                                                   {param->key_offset, param->count, param->compare_kind, 0}))
                          : nullptr;
    if (answer == nullptr) {
        return refused;
    }
    const std::string &order = answer->fields[3].bytes;
    const std::vector<void *> before(items, items + param->count);
    for (std::size_t i = 0; i < before.size() && 2 * i + 1 < order.size(); ++i) {
        const std::size_t from = load16(order.data() + 2 * i);
        items[i] = from < before.size() ? before[from] : before[i];
    }
    return answer->code;
}

} // extern "C"
