// The conformance check: silent about the workstation, and in the right words about every way to be wrong.
#include "tools/platform_check/checks.h"

#include <gtest/gtest.h>

#include "platform/element_table.h"
#include "platform/file_access.h"
#include "platform/host/qryhost.h"
#include "platform_check/wrong_platform.h"

namespace {

using platform_check::check_platform;
using platform_check::options;
using platform_check::report;
using test::fault;

class platform_check_test : public ::testing::Test {
  protected:
    platform_check_test() {
        qryhost_set_trace_sink(nullptr, nullptr);
        qryhost_fail_clear();
        qryhost_reset();
    }
    ~platform_check_test() override {
        test::inject(fault::none);
        qryhost_fail_clear();
        fsa_fio_remove(options().area,
                       options().directory); // a check that could not remove it leaves it there
    }
};

TEST_F(platform_check_test, the_workstation_is_as_the_library_needs_it) {
    const report found = check_platform(options());
    EXPECT_EQ(found.finding_num(), 0u) << found.text();
    EXPECT_EQ(found.chapters().size(), 10u);
}

TEST_F(platform_check_test, leaves_records_and_blocks_as_they_were) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    char name[3001] = "Sato";
    tbctSTCSetTable(0x2301, 0x05090400, 1, 0x4091F000, name);
    tbctSTCSetTable(0x2301, 0x05090400, 0, 0x4091F000,
                    "Nobody\0 and zeros to the end of the element, which "
                    "is 193 bytes long, so that this text has to be so long "
                    "too: the element is written whole, whatever it is that "
                    "follows the terminator of its text ............");
    EXPECT_EQ(check_platform(options()).finding_num(), 0u);
    char after[3001] = {};
    tbctSTCGetTable(0x05090400, 1, 0x4091F000, after);
    EXPECT_STREQ(after, "Sato");
    tbctSTCGetTable(0x05090400, 0, 0x4091F000, after);
    EXPECT_STREQ(after, "Nobody");
    EXPECT_EQ(qryhost_pool_blocks(), blocks);
}

TEST_F(platform_check_test, says_which_directory_it_may_not_use) {
    options where;
    where.directory = 77;
    ASSERT_EQ(check_platform(where).finding_num(), 0u);
    qryhost_fail(QRYHOST_FILE_EXIST, 0, 1, 0); // code 0: the directory is there
    qryhost_fail(QRYHOST_FILE_MKDIR, 0, 1, 36);
    const report found = check_platform(where);
    EXPECT_TRUE(found.mentions("fsa_fio_mkdir")) << found.text();
    EXPECT_NE(found.text().find("directory 77 of area 1"), std::string::npos) << found.text();
}

// Every call that the workstation can be told to refuse, refused from the start.
struct refused_call {
    qryhost_call call;
    const char *function;
};

// What a failure prints of the row that it happened in.
void PrintTo(const refused_call &row, std::ostream *out) {
    *out << row.function;
}

class refusal_test : public platform_check_test, public ::testing::WithParamInterface<refused_call> {};

TEST_P(refusal_test, names_the_function_and_its_code) {
    qryhost_fail(GetParam().call, 0, 1000000, 0x4321);
    const report found = check_platform(options());
    EXPECT_TRUE(found.mentions(GetParam().function)) << found.text();
    EXPECT_TRUE(GetParam().call == QRYHOST_FILE_EXIST || found.text().find("code 17185") != std::string::npos)
        << found.text();
}

INSTANTIATE_TEST_SUITE_P(
    every_call, refusal_test,
    ::testing::Values(
        refused_call{QRYHOST_ALLOC, "pfwOSWOrgAllocMemPart"},
        refused_call{QRYHOST_CREATE_MUTEX, "pfwOSWCreateMutexSem"},
        refused_call{QRYHOST_REQUEST_MUTEX, "pfwOSWRequestMutexSem"},
        refused_call{QRYHOST_LOCK_TASK, "pfwOSWLockTask"}, refused_call{QRYHOST_GET_TABLE, "tbctSTCGetTable"},
        refused_call{QRYHOST_SET_TABLE, "tbctSTCSetTable"},
        refused_call{QRYHOST_INIT_TABLE, "tbSTCInitTable"},
        refused_call{QRYHOST_INIT_TABLE, "tbctResetTable"},
        refused_call{QRYHOST_GET_STATUS, "tbctSTCGetStatus"},
        refused_call{QRYHOST_SET_TABLE, "tbctSTCSetStatus"},
        refused_call{QRYHOST_CREATE_LIST, "tbctSTCCreateListTable"},
        refused_call{QRYHOST_LIST_SET_POS, "tbctSTCListTableSetPos"},
        refused_call{QRYHOST_LIST_GET_VAL, "tbctSTCListTableGetVal"},
        refused_call{QRYHOST_SORT, "cmn_lib_sort"}, refused_call{QRYHOST_CREATE_HANDLE, "sdb_CreateDBHandle"},
        refused_call{QRYHOST_REGISTER_SERVICE, "sdb_RegisterDBHandleService"},
        refused_call{QRYHOST_FILE_EXIST, "fsa_fio_existfile"},
        refused_call{QRYHOST_FILE_MKDIR, "fsa_fio_mkdir"},
        refused_call{QRYHOST_FILE_REMOVE, "fsa_fio_remove"}, refused_call{QRYHOST_FILE_OPEN, "fsa_fio_fopen"},
        refused_call{QRYHOST_FILE_READ, "fsa_fio_fread"}, refused_call{QRYHOST_FILE_WRITE, "fsa_fio_fwrite"},
        refused_call{QRYHOST_FILE_CLOSE, "fsa_fio_fclose"}),
    [](const auto &tested) { return std::string(tested.param.function); });

// Every wrong behaviour, and a part of what the check says of it.
struct wrong_behaviour {
    fault wrong;
    const char *function;
    const char *words;
};

void PrintTo(const wrong_behaviour &row, std::ostream *out) {
    *out << row.function << ", " << row.words;
}

class behaviour_test : public platform_check_test, public ::testing::WithParamInterface<wrong_behaviour> {};

TEST_P(behaviour_test, is_said_in_plain_words) {
    test::inject(GetParam().wrong);
    const report found = check_platform(options());
    test::inject(fault::none);
    const std::string start = std::string("  ") + GetParam().function + " ";
    bool is_said = false;
    const std::string text = found.text();
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at + 1)) {
        const std::string line = text.substr(at, text.find('\n', at) - at);
        is_said = is_said || line.find(GetParam().words) != std::string::npos;
    }
    EXPECT_TRUE(is_said) << text;
}

INSTANTIATE_TEST_SUITE_P(
    every_fault, behaviour_test,
    ::testing::Values(
        wrong_behaviour{fault::block_misaligned, "pfwOSWOrgAllocMemPart", "not aligned"},
        wrong_behaviour{fault::block_shared, "pfwOSWOrgAllocMemPart", "overlap"},
        wrong_behaviour{fault::mutex_lets_all_in, "pfwOSWRequestMutexSem", "wait while the first holds"},
        wrong_behaviour{fault::task_lock_lets_all_in, "pfwOSWLockTask", "wait while the first holds"},
        wrong_behaviour{fault::mutex_without_identifier, "pfwOSWCreateMutexSem", "identifier 0"},
        wrong_behaviour{fault::read_overruns, "tbctSTCGetTable", "more than"},
        wrong_behaviour{fault::write_is_lost, "tbctSTCSetTable", "does not keep"},
        wrong_behaviour{fault::elements_share_memory, "tbctSTCSetTable", "another value is read back"},
        wrong_behaviour{fault::default_is_not_kept, "tbctSTCSetTable", "record 0"},
        wrong_behaviour{fault::init_clears, "tbSTCInitTable", "equal to the default"},
        wrong_behaviour{fault::init_reaches_further, "tbSTCInitTable", "other records"},
        wrong_behaviour{fault::reset_stops_early, "tbctResetTable", "equal to the default"},
        wrong_behaviour{fault::reset_clears_default, "tbctResetTable", "changes the default"},
        wrong_behaviour{fault::setting_is_lost, "tbctSTCSetStatus", "is read back"},
        wrong_behaviour{fault::list_is_live, "tbctSTCCreateListTable", "one moment"},
        wrong_behaviour{fault::list_counts_from_1, "tbctSTCListTableGetVal", "position 0 is record 1"},
        wrong_behaviour{fault::list_never_fails, "tbctSTCListTableSetPos", "must fail"},
        wrong_behaviour{fault::list_delete_closes_all, "tbctSTCListTableSetPos", "answers code"},
        wrong_behaviour{fault::handle_is_0, "sdb_CreateDBHandle", "handle 0"},
        wrong_behaviour{fault::handle_is_the_same, "sdb_CreateDBHandle", "same handle"},
        wrong_behaviour{fault::service_calls_back, "sdb_RegisterDBHandleService", "calls back"},
        wrong_behaviour{fault::short_read_succeeds, "fsa_fio_fread", "short read"},
        wrong_behaviour{fault::missing_file_exists, "fsa_fio_existfile", "answer 5 for a file"},
        wrong_behaviour{fault::missing_file_opens, "fsa_fio_fopen", "not there"},
        wrong_behaviour{fault::directory_keeps_files, "fsa_fio_remove", "leaves the directory"},
        wrong_behaviour{fault::write_appends, "fsa_fio_fwrite", "from its start"},
        wrong_behaviour{fault::sort_is_signed, "cmn_lib_sort", "unsigned"},
        wrong_behaviour{fault::sort_ignores_direction, "cmn_lib_sort", "downwards"},
        wrong_behaviour{fault::sort_refuses_nothing, "cmn_lib_sort", "no items at all"}));

} // namespace
