// The double-count mode: thresholds, kinds, and every failure.
#include <qrylib/device_data.h>
#include <qrylib/types.h>

#include "platform/element_table.h"
#include "unit/support.h"

namespace {

using traces = std::vector<test::return_trace>;

constexpr std::uint32_t category = 0x04050300;
constexpr std::uint32_t elements[] = {0x85004860, 0x85004888, 0x85004838};
constexpr char get_name[] = "qry_lib_get_doublecount_mode";
constexpr char judge_name[] = "qry_lib_judge_doublecount";
constexpr char convert_name[] = "qryLIBConvertTbRetcode";

class double_count : public test::platform_test {
  protected:
    ~double_count() override {
        qryhost_fail_clear();
        for (std::uint32_t kind = 1; kind <= 3; ++kind) {
            set_mode(kind, 0);
        }
    }

    static void set_mode(std::uint32_t kind, std::uint32_t mode) {
        EXPECT_EQ(tbctSTCSetStatus(0x2301, category, elements[kind - 1], &mode), 0u);
    }

    static std::uint32_t judged(std::uint32_t value, std::uint32_t kind) {
        std::uint32_t result = 99;
        EXPECT_EQ(qry_lib_judge_doublecount(value, kind, &result), 0u);
        return result;
    }
};

TEST_F(double_count, each_kind_has_a_setting_of_its_own) {
    for (std::uint32_t kind = 1; kind <= 3; ++kind) {
        set_mode(kind, kind);
    }
    for (std::uint32_t kind = 1; kind <= 3; ++kind) {
        std::uint32_t mode = 99;
        EXPECT_EQ(qry_lib_get_doublecount_mode(kind, &mode), 0u);
        EXPECT_EQ(mode, kind);
    }
    EXPECT_TRUE(take_traces().empty());
}

TEST_F(double_count, thresholds) {
    constexpr struct {
        std::uint32_t mode;
        std::uint32_t largest_once;
    } rows[] = {{1, 4199}, {2, 3560}, {3, 3299}};
    for (std::uint32_t kind = 1; kind <= 3; ++kind) {
        for (const auto &row : rows) {
            set_mode(kind, row.mode);
            EXPECT_EQ(judged(1, kind), 1u);
            EXPECT_EQ(judged(row.largest_once, kind), 1u);
            EXPECT_EQ(judged(row.largest_once + 1, kind), 2u);
            EXPECT_EQ(judged(UINT32_MAX, kind), 2u);
        }
    }
}

TEST_F(double_count, mode_0_always_counts_once) {
    for (const std::uint32_t value : {1u, 4200u, 0x80000000u, UINT32_MAX}) {
        EXPECT_EQ(judged(value, 2), 1u);
    }
}

TEST_F(double_count, value_0_is_refused_before_the_setting_is_read) {
    std::uint32_t result = 99;
    EXPECT_EQ(qry_lib_judge_doublecount(0, 1, &result), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_STATUS), 0u);
    EXPECT_EQ(take_traces(), (traces{{judge_name, 73, QRY_LIB_BAD_PARAMETER}}));
    EXPECT_EQ(result, 99u);
}

TEST_F(double_count, other_kinds_are_refused) {
    for (const std::uint32_t kind : {0u, 4u, UINT32_MAX}) {
        std::uint32_t number = 99;
        EXPECT_EQ(qry_lib_get_doublecount_mode(kind, &number), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(take_traces(), (traces{{get_name, 162, QRY_LIB_BAD_PARAMETER}}));
        EXPECT_EQ(qry_lib_judge_doublecount(1, kind, &number), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(take_traces(),
                  (traces{{get_name, 162, QRY_LIB_BAD_PARAMETER}, {judge_name, 80, QRY_LIB_BAD_PARAMETER}}));
        EXPECT_EQ(number, 99u);
    }
}

TEST_F(double_count, other_modes_are_refused) {
    for (const std::uint32_t mode : {4u, 0x01000000u, UINT32_MAX}) {
        set_mode(1, mode);
        std::uint32_t result = 99;
        EXPECT_EQ(qry_lib_judge_doublecount(1, 1, &result), QRY_LIB_BAD_PARAMETER);
        EXPECT_EQ(take_traces(), (traces{{judge_name, 117, QRY_LIB_BAD_PARAMETER}}));
        EXPECT_EQ(result, 99u);
    }
}

TEST_F(double_count, a_refused_setting_is_code_1) {
    std::uint32_t number = 99;
    qryhost_fail(QRYHOST_GET_STATUS, 0, 2, QRY_LIB_TABLE_ARGUMENT);
    EXPECT_EQ(qry_lib_get_doublecount_mode(1, &number), 1u);
    EXPECT_EQ(take_traces(), (traces{{get_name, 168, 1}}));
    EXPECT_EQ(qry_lib_judge_doublecount(1, 1, &number), 1u);
    EXPECT_EQ(take_traces(), (traces{{get_name, 168, 1}, {judge_name, 80, 1}}));
    EXPECT_EQ(number, 99u);
}

TEST_F(double_count, any_other_failure_is_code_2) {
    for (const std::uint32_t code : {1u, 0x5243u, UINT32_MAX}) {
        std::uint32_t number = 99;
        qryhost_fail(QRYHOST_GET_STATUS, 0, 1, code);
        EXPECT_EQ(qry_lib_judge_doublecount(1, 3, &number), 2u);
        EXPECT_EQ(take_traces(),
                  (traces{{convert_name, 199, code}, {get_name, 168, 2}, {judge_name, 80, 2}}));
        EXPECT_EQ(number, 99u);
    }
}

TEST_F(double_count, null_outputs_are_refused) {
    EXPECT_EQ(qry_lib_get_doublecount_mode(1, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qry_lib_judge_doublecount(1, 1, nullptr), QRY_LIB_BAD_PARAMETER);
    EXPECT_EQ(qryhost_call_count(QRYHOST_GET_STATUS), 0u);
}

} // namespace
