// The platform's functions, as the library calls them: each is passed on, and what it was asked and answered
// is recorded. A call that does not come from inside the library is passed on alone.
#include <algorithm>
#include <cstdarg>
#include <cstring>

#include "platform/db_handle.h"
#include "platform/element_table.h"
#include "platform/file_access.h"
#include "platform/os.h"
#include "platform/sort.h"
#include "platform/trace.h"
#include "tools/field/record_values.h"
#include "tools/field/recorder.h"

using namespace field;

namespace {

constexpr std::uint16_t unknown_list = 0xFFFF;

// The next definition of the function; a constant until it is used.
#define NEXT(name) (next_##name.get())
#define DECLARE_NEXT(name) next_function<decltype(name)> next_##name(#name);
FIELD_SERVICES(DECLARE_NEXT)
#undef DECLARE_NEXT
using trace_function = void(std::uint32_t, std::uint32_t, std::uint32_t, const char *, ...);
next_function<trace_function> next_pfwGENTrcPrintf("pfwGENTrcPrintf");

void put_head(frame_writer &frame, service_number service, std::uint32_t code) {
    frame.put16(service);
    frame.put32(code);
}

// A call whose arguments are numbers.
template <typename... Numbers>
std::uint32_t note(service_number service, std::uint32_t code, Numbers... numbers) {
    if (recorder::is_on()) {
        small_frame<128> frame(frame_platform);
        put_head(frame, service, code);
        (frame.put32(static_cast<std::uint32_t>(numbers)), ...);
    }
    return code;
}

// A call that moves an element's value.
std::uint32_t note_value(service_number service, std::uint32_t code, std::uint32_t category,
                         std::uint32_t record, std::uint32_t element, const void *value) {
    if (recorder::is_on()) {
        small_frame<> frame(frame_platform);
        put_head(frame, service, code);
        frame.put32(category);
        frame.put32(record);
        frame.put32(element);
        put_value(frame, category, element, value);
    }
    return code;
}

open_list *find_list(const void *list) {
    for (std::uint32_t i = 0; i < thread_state::list_num; ++i) {
        if (thread.open[i].list == list) {
            return &thread.open[i];
        }
    }
    return nullptr;
}

std::uint16_t number_of(const void *list) {
    const open_list *const found = find_list(list);
    return found != nullptr ? found->number : unknown_list;
}

// The list's place in the thread's table. Lists of a call that ended otherwise are forgotten with it.
std::uint16_t open(const void *list, std::uint32_t category, std::uint32_t element) {
    open_list *place = find_list(list);
    if (place == nullptr) {
        place = find_list(nullptr);
    }
    if (place == nullptr) {
        return unknown_list;
    }
    const element_shape *const shape = find_shape(category, element);
    *place = {list,     thread.lists++, shape != nullptr ? shape->size : std::uint16_t{0},
              category, element,        shape != nullptr && shape->is_secret};
    return place->number;
}

void note_read(const void *list, std::uint32_t code, const void *value) {
    const open_list *const known = find_list(list);
    const bool has_value = known != nullptr && code == 0 && known->size != 0;
    constexpr std::uint16_t common_size = 256; // a larger value has a frame of its own, as a secret has
    if (has_value && thread.moved == list && !known->is_secret && known->size <= common_size) {
        thread.moved = nullptr;
        recorder::get().add_pair(known->number, thread.position, value, known->size);
        return;
    }
    if (has_value && thread.moved == list) {
        thread.moved = nullptr;
        small_frame<> frame(frame_pair);
        frame.put16(known->number);
        frame.put16(thread.position);
        put_list_value(frame, *known, value);
        return;
    }
    small_frame<> frame(frame_platform);
    put_head(frame, service_tbctSTCListTableGetVal, code);
    frame.put16(known != nullptr ? known->number : unknown_list);
    if (has_value) {
        put_list_value(frame, *known, value);
    } else {
        frame.put32(0);
        frame.mark(flag_no_value);
    }
}

void note_move(const void *list, std::uint16_t position, std::uint32_t code) {
    if (code == 0 && thread.moved == nullptr) {
        thread.moved = list;
        thread.moved_number = number_of(list);
        thread.position = position;
        return;
    }
    small_frame<64> frame(frame_platform);
    put_head(frame, service_tbctSTCListTableSetPos, code);
    frame.put16(number_of(list));
    frame.put16(position);
}

// Where each item stood before, by the pointers. Items lie back to back.
void put_order(frame_writer &frame, void *const *before, void *const *after, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t from = 0;
        while (from < count && before[from] != after[i]) {
            ++from;
        }
        frame.put16(from);
    }
}

} // namespace

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t part, void **block, std::uint32_t size) {
    const std::uint32_t code = NEXT(pfwOSWOrgAllocMemPart)(part, block, size);
    return note(service_pfwOSWOrgAllocMemPart, code, part, size);
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t part, void *block) {
    const std::uint32_t code = NEXT(pfwOSWOrgFreeMemPart)(part, block);
    return note(service_pfwOSWOrgFreeMemPart, code, part);
}

std::uint32_t pfwOSWCreateMutexSem(std::uint32_t *mutex, std::uint32_t option, std::uint32_t count) {
    const std::uint32_t code = NEXT(pfwOSWCreateMutexSem)(mutex, option, count);
    return note(service_pfwOSWCreateMutexSem, code, option, count, *mutex);
}

std::uint32_t pfwOSWRequestMutexSem(std::uint32_t mutex, std::int32_t timeout) {
    const std::uint32_t code = NEXT(pfwOSWRequestMutexSem)(mutex, timeout);
    return note(service_pfwOSWRequestMutexSem, code, mutex, timeout);
}

std::uint32_t pfwOSWReleaseMutexSem(std::uint32_t mutex) {
    const std::uint32_t code = NEXT(pfwOSWReleaseMutexSem)(mutex);
    return note(service_pfwOSWReleaseMutexSem, code, mutex);
}

std::uint32_t pfwOSWLockTask(void) {
    return note(service_pfwOSWLockTask, NEXT(pfwOSWLockTask)());
}

std::uint32_t pfwOSWUnlockTask(void) {
    return note(service_pfwOSWUnlockTask, NEXT(pfwOSWUnlockTask)());
}

// The three formats of the contract; a platform is handed what the library handed us.
void pfwGENTrcPrintf(std::uint32_t destination, std::uint32_t module, std::uint32_t level, const char *format,
                     ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const char *const function = va_arg(arguments, const char *);
    const int line = va_arg(arguments, int);
    const bool has_code = std::strstr(format, "lX") != nullptr;
    const unsigned long code = has_code ? va_arg(arguments, unsigned long) : 0;
    va_end(arguments);
    if (has_code) {
        NEXT(pfwGENTrcPrintf)
        (destination, module, level, "%s():[Return]:(%d) (0x%08lX)\n", function, line, code);
    } else if (std::strstr(format, "Enter") != nullptr) {
        NEXT(pfwGENTrcPrintf)(destination, module, level, "%s():[Enter]:(%d) \n", function, line);
    } else {
        NEXT(pfwGENTrcPrintf)(destination, module, level, "%s():[Return]:(%d) \n", function, line);
    }
    if (!recorder::is_on()) {
        return;
    }
    small_frame<256> frame(frame_trace);
    frame.put8(has_code ? 1 : 0);
    frame.put32(static_cast<std::uint32_t>(line));
    frame.put32(static_cast<std::uint32_t>(code));
    frame.put_bytes(function, static_cast<std::uint32_t>(::strnlen(function, 128)));
    if (has_code) {
        recorder::get().look_at(static_cast<std::uint32_t>(code), line);
    }
}

std::uint32_t tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                              void *buffer) {
    const std::uint32_t code = NEXT(tbctSTCGetTable)(category, record, element, buffer);
    return note_value(service_tbctSTCGetTable, code, category, record, element, code == 0 ? buffer : nullptr);
}

std::uint32_t tbctSTCSetTable(std::uint32_t requester, std::uint32_t category, std::uint32_t record,
                              std::uint32_t element, const void *buffer) {
    const std::uint32_t code = NEXT(tbctSTCSetTable)(requester, category, record, element, buffer);
    return note_value(service_tbctSTCSetTable, code, category, record, element, buffer);
}

std::uint32_t tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    return note(service_tbSTCInitTable, NEXT(tbSTCInitTable)(category, record), category, record);
}

std::uint32_t tbctResetTable(std::uint32_t category) {
    return note(service_tbctResetTable, NEXT(tbctResetTable)(category), category);
}

std::uint32_t tbctSTCGetStatus(std::uint32_t category, std::uint32_t element, void *buffer) {
    const std::uint32_t code = NEXT(tbctSTCGetStatus)(category, element, buffer);
    return note_value(service_tbctSTCGetStatus, code, category, 0, element, code == 0 ? buffer : nullptr);
}

std::uint32_t tbctSTCSetStatus(std::uint32_t requester, std::uint32_t category, std::uint32_t element,
                               const void *buffer) {
    const std::uint32_t code = NEXT(tbctSTCSetStatus)(requester, category, element, buffer);
    return note_value(service_tbctSTCSetStatus, code, category, 0, element, buffer);
}

std::uint32_t tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                                     tbctListTable *list) {
    const std::uint32_t code = NEXT(tbctSTCCreateListTable)(category, element, record_num, list);
    if (recorder::is_on()) {
        small_frame<64> frame(frame_platform);
        put_head(frame, service_tbctSTCCreateListTable, code);
        frame.put16(open(list, category, element));
        frame.put32(category);
        frame.put32(element);
        frame.put16(record_num);
    }
    return code;
}

std::uint32_t tbctSTCListTableSetPos(tbctListTable *list, std::uint16_t position) {
    const std::uint32_t code = NEXT(tbctSTCListTableSetPos)(list, position);
    if (recorder::is_on()) {
        if (recorder::has_values()) {
            note_move(list, position, code);
        } else {
            ++thread.moves;
        }
    }
    return code;
}

std::uint32_t tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    const std::uint32_t code = NEXT(tbctSTCListTableGetVal)(list, buffer);
    if (recorder::is_on()) {
        if (recorder::has_values()) {
            note_read(list, code, buffer);
        } else {
            ++thread.reads;
        }
    }
    return code;
}

std::uint32_t tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option) {
    const std::uint32_t code = NEXT(tbctSTCDeleteListTable)(list, option);
    if (recorder::is_on()) {
        small_frame<64> frame(frame_platform);
        put_head(frame, service_tbctSTCDeleteListTable, code);
        frame.put16(number_of(list));
        frame.put32(option);
        if (open_list *const known = find_list(list)) {
            *known = {};
        }
    }
    return code;
}

std::uint32_t sdb_CreateDBHandle(std::int32_t *code) {
    const std::uint32_t handle = NEXT(sdb_CreateDBHandle)(code);
    note(service_sdb_CreateDBHandle, static_cast<std::uint32_t>(*code), handle);
    return handle;
}

std::int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback callback, void *head_cell) {
    const std::int32_t code = NEXT(sdb_RegisterDBHandleService)(callback, head_cell);
    note(service_sdb_RegisterDBHandleService, static_cast<std::uint32_t>(code));
    return code;
}

std::int32_t sdb_DeregisterDBHandleService(void) {
    const std::int32_t code = NEXT(sdb_DeregisterDBHandleService)();
    note(service_sdb_DeregisterDBHandleService, static_cast<std::uint32_t>(code));
    return code;
}

std::uint32_t fsa_fio_existfile(std::uint32_t area, std::uint32_t directory, const char *name) {
    const std::uint32_t code = NEXT(fsa_fio_existfile)(area, directory, name);
    if (recorder::is_on()) {
        small_frame<400> frame(frame_platform);
        put_head(frame, service_fsa_fio_existfile, code);
        frame.put32(area);
        frame.put32(directory);
        put_name(frame, name);
    }
    return code;
}

std::uint32_t fsa_fio_mkdir(std::uint32_t area, std::uint32_t directory) {
    return note(service_fsa_fio_mkdir, NEXT(fsa_fio_mkdir)(area, directory), area, directory);
}

std::uint32_t fsa_fio_remove(std::uint32_t area, std::uint32_t directory) {
    return note(service_fsa_fio_remove, NEXT(fsa_fio_remove)(area, directory), area, directory);
}

std::uint32_t fsa_fio_fopen(std::uint32_t area, std::uint32_t directory, const char *name, std::uint32_t mode,
                            std::uint32_t *file) {
    const std::uint32_t code = NEXT(fsa_fio_fopen)(area, directory, name, mode, file);
    if (recorder::is_on()) {
        small_frame<400> frame(frame_platform);
        put_head(frame, service_fsa_fio_fopen, code);
        frame.put32(area);
        frame.put32(directory);
        put_name(frame, name);
        frame.put32(mode);
        frame.put32(code == 0 ? *file : 0);
    }
    return code;
}

std::uint32_t fsa_fio_fread(std::uint32_t file, void *buffer, std::uint32_t size) {
    const std::uint32_t code = NEXT(fsa_fio_fread)(file, buffer, size);
    if (recorder::is_on()) {
        small_frame<> frame(frame_platform);
        put_head(frame, service_fsa_fio_fread, code);
        frame.put32(file);
        frame.put32(size);
        frame.put_bytes(buffer, code == 0 ? size : 0);
    }
    return code;
}

std::uint32_t fsa_fio_fwrite(std::uint32_t file, const void *buffer, std::uint32_t size) {
    const std::uint32_t code = NEXT(fsa_fio_fwrite)(file, buffer, size);
    if (recorder::is_on()) {
        small_frame<> frame(frame_platform);
        put_head(frame, service_fsa_fio_fwrite, code);
        frame.put32(file);
        frame.put32(size);
        frame.put_bytes(buffer, size);
    }
    return code;
}

std::uint32_t fsa_fio_fclose(std::uint32_t file) {
    return note(service_fsa_fio_fclose, NEXT(fsa_fio_fclose)(file), file);
}

// The pointers as they were stand behind the frame, in the buffer that a thread has anyway.
std::uint32_t cmn_lib_sort(void **items, CMN_LIB_SORT_PARAM_T *param) {
    constexpr std::uint32_t item_num_max = 1024; // the largest table has 103 records
    constexpr std::uint32_t frame_room = frame_size_max - item_num_max * sizeof(void *);
    const bool is_on = recorder::is_on() && param->count <= item_num_max;
    std::uint8_t *const buffer = is_on ? recorder::large_buffer() : nullptr;
    if (buffer == nullptr) {
        return note(service_cmn_lib_sort, NEXT(cmn_lib_sort)(items, param), param->key_offset, param->count,
                    param->compare_kind, 0);
    }
    void *const behind = buffer + frame_room;
    void **const before = static_cast<void **>(behind);
    std::copy_n(items, param->count, before);
    const std::uint32_t code = NEXT(cmn_lib_sort)(items, param);
    const kept_errno kept;
    frame_writer frame(buffer, frame_room);
    put_head(frame, service_cmn_lib_sort, code);
    frame.put32(param->key_offset);
    frame.put32(param->count);
    frame.put32(param->compare_kind);
    frame.put32(param->count);
    put_order(frame, before, items, param->count);
    recorder::get().write(frame, frame_platform);
    return code;
}

} // extern "C"
