// The database-handle service: hands out handles and keeps the one registration of the process.
#include "platform/db_handle.h"

#include <atomic>

#include "platform/host/faults.h"
#include "platform/host/guard.h"

namespace {

constexpr std::int32_t bad_registration = 1;

qryhost::guard_mutex registration_lock(qryhost::lock_rank::handles);
sdb_db_handle_callback registered_callback QRYLIB_GUARDED_BY(registration_lock) = nullptr;
void *registered_cell QRYLIB_GUARDED_BY(registration_lock) = nullptr;

std::atomic<std::uint32_t> last_handle{0};

} // namespace

extern "C" {

std::uint32_t sdb_CreateDBHandle(std::int32_t *code) {
    const std::uint32_t fault = qryhost::injected_fault(QRYHOST_CREATE_HANDLE);
    if (code != nullptr) {
        *code = static_cast<std::int32_t>(fault);
    }
    return fault != 0 ? 0 : ++last_handle;
}

std::int32_t sdb_RegisterDBHandleService(sdb_db_handle_callback callback, void *head_cell) {
    if (const std::uint32_t fault = qryhost::injected_fault(QRYHOST_REGISTER_SERVICE)) {
        return static_cast<std::int32_t>(fault);
    }
    const qryhost::guard hold(registration_lock);
    if (callback == nullptr || registered_callback != nullptr) {
        return bad_registration;
    }
    registered_callback = callback;
    registered_cell = head_cell;
    return 0;
}

std::int32_t sdb_DeregisterDBHandleService(void) {
    const qryhost::guard hold(registration_lock);
    if (registered_callback == nullptr) {
        return bad_registration;
    }
    registered_callback = nullptr;
    registered_cell = nullptr;
    return 0;
}

// The callback runs without the service's lock: it waits for the library's mutex, whose holder may be
// waiting for the service.
std::uint32_t qryhost_current_db_handle(void) {
    sdb_db_handle_callback callback = nullptr;
    void *head_cell = nullptr;
    {
        const qryhost::guard hold(registration_lock);
        callback = registered_callback;
        head_cell = registered_cell;
    }
    return callback == nullptr ? 0 : callback(head_cell);
}

} // extern "C"
