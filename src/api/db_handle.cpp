// The registry of the threads' database handles: one list of nodes behind one cell, guarded by one platform
// mutex. The service is registered exactly while the cell exists.
#include <qrylib/db_handle.h>

#include <pthread.h>

#include <atomic>

#include "platform/db_handle.h"
#include "platform/os.h"
#include "util/pool_block.h"
#include "util/thread_safety.h"
#include "util/trace.h"

using norvane::pool_block;
using norvane::trace_return;

namespace {

struct handle_node {
    pthread_t thread_id;
    std::uint32_t db_handle;
    handle_node *next;
};
static_assert(sizeof(void *) != 4 || sizeof(handle_node) == 12, "a node is 12 bytes on the device");

constexpr std::int32_t no_memory = -1;
constexpr std::int32_t removed = 0;
constexpr std::int32_t no_entry = 1;
constexpr std::int32_t wait_forever = -1;

// The mutex is made by the first thread that adds a handle and stays for the life of the process; it is read
// without a lock, hence atomic. Everything else is read and written under the mutex.
struct QRYLIB_CAPABILITY registry_mutex {
    std::atomic<std::uint32_t> id{0};
};

struct {
    registry_mutex mutex;
    handle_node **head_cell QRYLIB_GUARDED_BY(mutex) = nullptr;
} registry;

// Holds the registry's mutex, unless it could not be had: `code` is then not 0, and nothing may be touched.
class QRYLIB_SCOPED_CAPABILITY registry_lock {
  public:
    explicit registry_lock(std::uint32_t mutex) QRYLIB_ACQUIRE(registry.mutex)
        : code(pfwOSWRequestMutexSem(mutex, wait_forever)), mutex_(mutex) {}
    registry_lock(const registry_lock &) = delete;
    registry_lock &operator=(const registry_lock &) = delete;
    ~registry_lock() QRYLIB_RELEASE() {
        if (code == 0) {
            pfwOSWReleaseMutexSem(mutex_);
        }
    }

    const std::uint32_t code;

  private:
    const std::uint32_t mutex_;
};

// Creates the mutex on first use. The second look, under the task lock, lets only one of several first
// threads create it.
std::uint32_t create_mutex_once() {
    if (registry.mutex.id.load(std::memory_order_acquire) != 0) {
        return 0;
    }
    if (const std::uint32_t code = pfwOSWLockTask(); code != 0) {
        return code;
    }
    std::uint32_t code = 0;
    if (registry.mutex.id.load(std::memory_order_relaxed) == 0) {
        std::uint32_t fresh = 0;
        code = pfwOSWCreateMutexSem(&fresh, 0, 1);
        if (code == 0) {
            registry.mutex.id.store(fresh, std::memory_order_release);
        }
    }
    pfwOSWUnlockTask();
    return code;
}

// Ends the registration and gives every node and the cell back. The handles stay: the service owns them.
void dismantle() QRYLIB_REQUIRES(registry.mutex) {
    sdb_DeregisterDBHandleService();
    const pool_block cell(registry.head_cell);
    for (handle_node *node = *registry.head_cell; node != nullptr;) {
        const pool_block gone(node);
        node = node->next;
    }
    registry.head_cell = nullptr;
}

// Makes the cell and registers the service, where neither was done.
std::int32_t register_service() QRYLIB_REQUIRES(registry.mutex) {
    if (registry.head_cell != nullptr) {
        return 0;
    }
    pool_block cell;
    // The cell is one pointer, which is meant.  NOLINTNEXTLINE(bugprone-sizeof-expression)
    if (cell.take_zeroed(1, sizeof(handle_node *)) != 0) {
        return no_memory;
    }
    const std::int32_t code = sdb_RegisterDBHandleService(dsql_db_handle_callback, cell.as<void>());
    if (code == 0) {
        registry.head_cell = static_cast<handle_node **>(cell.release());
    }
    return code;
}

// Puts a node for the calling thread in front of the list.
std::int32_t add_node() QRYLIB_REQUIRES(registry.mutex) {
    pool_block block;
    if (block.take(1, sizeof(handle_node)) != 0) {
        if (*registry.head_cell == nullptr) {
            dismantle();
        }
        return no_memory;
    }
    std::int32_t code = 0;
    const std::uint32_t db_handle = sdb_CreateDBHandle(&code);
    if (code != 0) {
        dismantle();
        return code;
    }
    auto *node = static_cast<handle_node *>(block.release());
    *node = {pthread_self(), db_handle, *registry.head_cell};
    *registry.head_cell = node;
    return 0;
}

// The link that leads to the calling thread's newest node; the list's last link, a null one, without such.
handle_node **find_own_link() QRYLIB_REQUIRES(registry.mutex) {
    handle_node **link = registry.head_cell;
    while (*link != nullptr && pthread_equal((*link)->thread_id, pthread_self()) == 0) {
        link = &(*link)->next;
    }
    return link;
}

} // namespace

extern "C" {

std::int32_t dsql_db_handle_add(void) {
    if (const std::uint32_t code = create_mutex_once(); code != 0) {
        return static_cast<std::int32_t>(trace_return(__func__, __LINE__, code));
    }
    const registry_lock lock(registry.mutex.id.load(std::memory_order_acquire));
    if (lock.code != 0) {
        return static_cast<std::int32_t>(trace_return(__func__, __LINE__, lock.code));
    }
    std::int32_t code = register_service();
    if (code == 0) {
        code = add_node();
    }
    if (code != 0) {
        trace_return(__func__, __LINE__, static_cast<std::uint32_t>(code));
    }
    return code;
}

std::int32_t dsql_db_handle_delete(void) {
    const std::uint32_t mutex = registry.mutex.id.load(std::memory_order_acquire);
    if (mutex == 0) {
        return no_entry;
    }
    const registry_lock lock(mutex);
    if (lock.code != 0 || registry.head_cell == nullptr) {
        return no_entry;
    }
    handle_node **link = find_own_link();
    if (*link == nullptr) {
        return no_entry;
    }
    {
        const pool_block gone(*link);
        *link = (*link)->next;
    }
    if (*registry.head_cell == nullptr) {
        dismantle();
    }
    return removed;
}

std::uint32_t dsql_db_handle_callback(void *head_cell) {
    const std::uint32_t mutex = registry.mutex.id.load(std::memory_order_acquire);
    if (mutex == 0) {
        return 0;
    }
    const registry_lock lock(mutex);
    // A cell that was given back while the service was on its way here holds no list any more.
    if (lock.code != 0 || head_cell == nullptr || head_cell != registry.head_cell) {
        return 0;
    }
    const handle_node *own = *find_own_link();
    return own == nullptr ? 0 : own->db_handle;
}

} // extern "C"
