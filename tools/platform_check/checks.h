// The checks, one for each header of the platform contract. Each begins a chapter of the report and leaves
// the platform as it found it.
#pragma once

#include <cstdint>

#include "tools/platform_check/report.h"

namespace platform_check {

// Where the file checks may work: a directory that does not exist and may be removed.
struct options {
    std::uint32_t area = 1;
    std::uint32_t directory = 32767;
};

void check_memory_partition(report &out);
void check_mutexes(report &out);
void check_trace(report &out);
void check_element_tables(report &out);
void check_list_tables(report &out);
void check_settings(report &out);
void check_db_handles(report &out);
void check_files(report &out, const options &where);
void check_sort(report &out);
void check_threads(report &out);

// All of them, in this order.
report check_platform(const options &where);

} // namespace platform_check
