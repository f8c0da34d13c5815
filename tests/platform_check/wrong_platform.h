// A platform that does one thing wrong: the workstation's, with some functions replaced in the test program.
#pragma once

namespace test {

enum class fault {
    none,
    block_misaligned,
    block_shared,
    mutex_lets_all_in,
    task_lock_lets_all_in,
    mutex_without_identifier,
    read_overruns,
    write_is_lost,
    elements_share_memory,
    default_is_not_kept,
    init_clears,
    init_reaches_further,
    reset_stops_early,
    reset_clears_default,
    setting_is_lost,
    list_is_live,
    list_counts_from_1,
    list_never_fails,
    list_delete_closes_all,
    handle_is_0,
    handle_is_the_same,
    service_calls_back,
    short_read_succeeds,
    missing_file_exists,
    missing_file_opens,
    directory_keeps_files,
    write_appends,
    sort_is_signed,
    sort_ignores_direction,
    sort_refuses_nothing
};

// What the platform does wrong from now on.
void inject(fault wrong);

} // namespace test
