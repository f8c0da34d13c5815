// Functions of the platform contract that stand before the workstation's own, and hand on to them unless they
// are told to go wrong.
#include "platform_check/wrong_platform.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/db_handle.h"
#include "platform/element_table.h"
#include "platform/file_access.h"
#include "platform/os.h"
#include "platform/sort.h"

namespace {

test::fault injected = test::fault::none;

bool is_wrong(test::fault kind) {
    return injected == kind;
}

// The workstation's function of that name, in the shape of this one.
template <typename Function>
Function *real(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

#define REAL(function) real(&(function), #function)

alignas(16) std::uint8_t shared_block[2 * 1024 * 1024];

tbctListTable *last_opened = nullptr;
std::uint32_t list_category = 0;
std::uint32_t list_element = 0;
std::uint16_t list_position = 0;

} // namespace

namespace test {

void inject(fault wrong) {
    injected = wrong;
}

} // namespace test

using test::fault;

extern "C" {

std::uint32_t pfwOSWOrgAllocMemPart(std::uint32_t part, void **block, std::uint32_t size) {
    if (is_wrong(fault::block_shared)) {
        *block = static_cast<std::uint8_t *>(shared_block);
        return 0;
    }
    if (!is_wrong(fault::block_misaligned)) {
        return REAL(pfwOSWOrgAllocMemPart)(part, block, size);
    }
    const std::uint32_t code = REAL(pfwOSWOrgAllocMemPart)(part, block, size + 1);
    *block = static_cast<std::uint8_t *>(*block) + 1;
    return code;
}

std::uint32_t pfwOSWOrgFreeMemPart(std::uint32_t part, void *block) {
    if (is_wrong(fault::block_shared)) {
        return 0;
    }
    return REAL(pfwOSWOrgFreeMemPart)(part,
                                      static_cast<std::uint8_t *>(block) - is_wrong(fault::block_misaligned));
}

std::uint32_t pfwOSWCreateMutexSem(std::uint32_t *mutex, std::uint32_t option, std::uint32_t count) {
    const std::uint32_t code = REAL(pfwOSWCreateMutexSem)(mutex, option, count);
    *mutex = is_wrong(fault::mutex_without_identifier) ? 0 : *mutex;
    return code;
}

std::uint32_t pfwOSWRequestMutexSem(std::uint32_t mutex, std::int32_t timeout) {
    return is_wrong(fault::mutex_lets_all_in) ? 0 : REAL(pfwOSWRequestMutexSem)(mutex, timeout);
}

std::uint32_t pfwOSWReleaseMutexSem(std::uint32_t mutex) {
    return is_wrong(fault::mutex_lets_all_in) ? 0 : REAL(pfwOSWReleaseMutexSem)(mutex);
}

std::uint32_t pfwOSWLockTask(void) {
    return is_wrong(fault::task_lock_lets_all_in) ? 0 : REAL(pfwOSWLockTask)();
}

std::uint32_t pfwOSWUnlockTask(void) {
    return is_wrong(fault::task_lock_lets_all_in) ? 0 : REAL(pfwOSWUnlockTask)();
}

// PSN_NAME and PSN_KANA of the address book are alike in size.
constexpr std::uint32_t person_name = 0x4091F000;
constexpr std::uint32_t person_kana = 0x4091F001;

std::uint32_t tbctSTCGetTable(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                              void *buffer) {
    const std::uint32_t code = REAL(tbctSTCGetTable)(category, record, element, buffer);
    if (is_wrong(fault::read_overruns)) {
        static_cast<std::uint8_t *>(buffer)[3000] = 0;
    }
    return code;
}

std::uint32_t tbctSTCSetTable(std::uint32_t who, std::uint32_t category, std::uint32_t record,
                              std::uint32_t element, const void *buffer) {
    if (is_wrong(fault::write_is_lost) || (is_wrong(fault::default_is_not_kept) && record == 0)) {
        return 0;
    }
    if (is_wrong(fault::elements_share_memory) && element == person_name) {
        REAL(tbctSTCSetTable)(who, category, record, person_kana, buffer);
    }
    return REAL(tbctSTCSetTable)(who, category, record, element, buffer);
}

std::uint32_t tbSTCInitTable(std::uint32_t category, std::uint32_t record) {
    if (is_wrong(fault::init_reaches_further)) {
        return REAL(tbctResetTable)(category);
    }
    return is_wrong(fault::init_clears) ? 0 : REAL(tbSTCInitTable)(category, record);
}

std::uint32_t tbctResetTable(std::uint32_t category) {
    if (is_wrong(fault::reset_stops_early)) {
        return REAL(tbSTCInitTable)(category, 1);
    }
    if (is_wrong(fault::reset_clears_default)) {
        const std::uint8_t zeros[3001] = {};
        REAL(tbctSTCSetTable)(0x2301, category, 0, person_name, zeros);
    }
    return REAL(tbctResetTable)(category);
}

std::uint32_t tbctSTCSetStatus(std::uint32_t who, std::uint32_t category, std::uint32_t element,
                               const void *buffer) {
    return is_wrong(fault::setting_is_lost) ? 0 : REAL(tbctSTCSetStatus)(who, category, element, buffer);
}

std::uint32_t tbctSTCCreateListTable(std::uint32_t category, std::uint32_t element, std::uint16_t record_num,
                                     tbctListTable *list) {
    last_opened = list;
    list_category = category;
    list_element = element;
    return REAL(tbctSTCCreateListTable)(category, element, record_num, list);
}

std::uint32_t tbctSTCListTableSetPos(tbctListTable *list, std::uint16_t position) {
    list_position = position;
    if (is_wrong(fault::list_counts_from_1)) {
        return REAL(tbctSTCListTableSetPos)(list,
                                            position == 0 ? 0 : static_cast<std::uint16_t>(position - 1));
    }
    const std::uint32_t code = REAL(tbctSTCListTableSetPos)(list, position);
    return is_wrong(fault::list_never_fails) ? 0 : code;
}

std::uint32_t tbctSTCListTableGetVal(tbctListTable *list, void *buffer) {
    if (is_wrong(fault::list_is_live)) {
        return REAL(tbctSTCGetTable)(list_category, list_position + 1u, list_element, buffer);
    }
    return REAL(tbctSTCListTableGetVal)(list, buffer);
}

std::uint32_t tbctSTCDeleteListTable(tbctListTable *list, std::uint32_t option) {
    if (is_wrong(fault::list_delete_closes_all) && last_opened != nullptr && last_opened != list) {
        REAL(tbctSTCDeleteListTable)(last_opened, option);
    }
    last_opened = nullptr;
    return REAL(tbctSTCDeleteListTable)(list, option);
}

std::uint32_t sdb_CreateDBHandle(std::int32_t *code) {
    const std::uint32_t handle = REAL(sdb_CreateDBHandle)(code);
    if (is_wrong(fault::handle_is_the_same)) {
        return 7;
    }
    return is_wrong(fault::handle_is_0) ? 0 : handle;
}

std::int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback callback, void *head_cell) {
    if (is_wrong(fault::service_calls_back)) {
        callback(head_cell);
    }
    return REAL(sdb_RegisterDBHandleService)(callback, head_cell);
}

std::uint32_t fsa_fio_existfile(std::uint32_t area, std::uint32_t directory, const char *name) {
    if (is_wrong(fault::missing_file_exists) && name != nullptr) {
        return 0;
    }
    return REAL(fsa_fio_existfile)(area, directory, name);
}

std::uint32_t fsa_fio_remove(std::uint32_t area, std::uint32_t directory) {
    if (!is_wrong(fault::directory_keeps_files)) {
        return REAL(fsa_fio_remove)(area, directory);
    }
    REAL(fsa_fio_remove)(area, directory);
    REAL(fsa_fio_mkdir)(area, directory);
    return 0;
}

std::uint32_t fsa_fio_fopen(std::uint32_t area, std::uint32_t directory, const char *name, std::uint32_t mode,
                            std::uint32_t *file) {
    const std::uint32_t code = REAL(fsa_fio_fopen)(area, directory, name, mode, file);
    return is_wrong(fault::missing_file_opens) ? 0 : code;
}

std::uint32_t fsa_fio_fread(std::uint32_t file, void *buffer, std::uint32_t size) {
    const std::uint32_t code = REAL(fsa_fio_fread)(file, buffer, size);
    return is_wrong(fault::short_read_succeeds) ? 0 : code;
}

std::uint32_t fsa_fio_fwrite(std::uint32_t file, const void *buffer, std::uint32_t size) {
    if (is_wrong(fault::write_appends)) {
        REAL(fsa_fio_fwrite)(file, "1234", 4); // as if what the file held before were still there
    }
    return REAL(fsa_fio_fwrite)(file, buffer, size);
}

std::uint32_t cmn_lib_sort(void **items, CMN_LIB_SORT_PARAM_T *param) {
    if (is_wrong(fault::sort_refuses_nothing) && param->count == 0) {
        return 1;
    }
    if (is_wrong(fault::sort_is_signed) && param->compare_kind == 0) {
        std::stable_sort(items, items + param->count, [&](const void *a, const void *b) {
            return static_cast<const signed char *>(a)[param->key_offset] <
                   static_cast<const signed char *>(b)[param->key_offset];
        });
        return 0;
    }
    CMN_LIB_SORT_PARAM_T changed = *param;
    changed.compare_kind &= is_wrong(fault::sort_ignores_direction) ? ~1u : ~0u;
    return REAL(cmn_lib_sort)(items, &changed);
}

} // extern "C"
