// Several threads at once: blocks stay apart, and a value is read and written whole.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include "platform/element_table.h"
#include "platform/os.h"
#include "tools/platform_check/checks.h"
#include "tools/platform_check/elements.h"

namespace platform_check {

namespace {

constexpr int round_num = 2000;

const table &table_with_largest_element() {
    return *std::max_element(tables().begin(), tables().end(), [](const table &a, const table &b) {
        const auto smaller = [](const element &x, const element &y) { return x.size < y.size; };
        return std::max_element(a.elements.begin(), a.elements.end(), smaller)->size <
               std::max_element(b.elements.begin(), b.elements.end(), smaller)->size;
    });
}

const element &largest_element(const table &of) {
    return *std::max_element(of.elements.begin(), of.elements.end(),
                             [](const element &x, const element &y) { return x.size < y.size; });
}

// A block that two threads were given at once does not keep one thread's mark.
void use_blocks(std::uint8_t mark, std::atomic<bool> &is_wrong) {
    for (int i = 0; i < round_num; ++i) {
        void *block = nullptr;
        constexpr std::uint32_t size = 512;
        if (pfwOSWOrgAllocMemPart(0, &block, size) != 0) {
            is_wrong = true;
            return;
        }
        std::memset(block, mark, size);
        std::this_thread::yield();
        const auto *start = static_cast<const std::uint8_t *>(block);
        if (std::any_of(start, start + size, [mark](std::uint8_t byte) { return byte != mark; })) {
            is_wrong = true;
        }
        pfwOSWOrgFreeMemPart(0, block);
    }
}

void check_blocks(report &out) {
    std::atomic<bool> is_wrong{false};
    std::vector<std::thread> users;
    for (std::uint8_t mark = 1; mark <= 4; ++mark) {
        users.emplace_back([mark, &is_wrong] { use_blocks(mark, is_wrong); });
    }
    for (std::thread &user : users) {
        user.join();
    }
    out.expect(!is_wrong, "pfwOSWOrgAllocMemPart",
               "fails, or gives one block to two threads, when several threads call it at once.");
}

void check_whole_values(report &out) {
    const table &of = table_with_largest_element();
    const element &at = largest_element(of);
    const bytes values[] = {sample(of, at, 1, 1), sample(of, at, 1, 2)};
    tbctSTCSetTable(requester, of.category, 1, at.id, values[0].data());
    std::atomic<bool> is_over{false};
    std::atomic<bool> is_torn{false};
    std::thread reader([&] {
        guarded_buffer buffer(at.size);
        while (!is_over) {
            const std::uint32_t code = tbctSTCGetTable(of.category, 1, at.id, buffer.data());
            const bytes value = buffer.value();
            if (code != 0 || (value != values[0] && value != values[1])) {
                is_torn = true;
            }
        }
    });
    for (int i = 0; i < round_num; ++i) {
        tbctSTCSetTable(requester, of.category, 1, at.id, values[i % 2].data());
    }
    is_over = true;
    reader.join();
    out.expect(!is_torn, "tbctSTCGetTable",
               "fails, or gives half of one value and half of another, while a second thread writes " +
                   of.place(1, at) + ".");
}

} // namespace

void check_threads(report &out) {
    out.begin("several threads at once");
    check_blocks(out);
    const saved_table keep(out, table_with_largest_element());
    check_whole_values(out);
}

report check_platform(const options &where) {
    report out;
    check_memory_partition(out);
    check_mutexes(out);
    check_trace(out);
    check_element_tables(out);
    check_settings(out);
    check_list_tables(out);
    check_db_handles(out);
    check_files(out, where);
    check_sort(out);
    check_threads(out);
    return out;
}

} // namespace platform_check
