// Trace lines: their exact text, and where the platform is told to put them.
#include "util/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/host/qryhost.h"

namespace {

// A sink of its own: these lines are no points of the library's.
class trace : public ::testing::Test {
  protected:
    trace() { qryhost_set_trace_sink(keep, &lines); }
    ~trace() override { qryhost_set_trace_sink(nullptr, nullptr); }

    std::vector<std::string> lines;

  private:
    static void keep(void *context, std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                     const char *text) {
        static_cast<std::vector<std::string> *>(context)->push_back(std::to_string(destination) + "/" +
                                                                    std::to_string(module) + "/" +
                                                                    std::to_string(level) + " " + text);
    }
};

TEST_F(trace, of_a_return_hands_the_code_back) {
    EXPECT_EQ(norvane::trace_return("analyze_sql", 447, 0xDB00), 0xDB00u);
    EXPECT_EQ(norvane::trace_return("f", 1, 0), 0u);
    EXPECT_EQ(norvane::trace_return("f", 2, 0xFFFFFFFF), 0xFFFFFFFFu);
    EXPECT_EQ(norvane::trace_code("g", 3, -1), -1);
    EXPECT_EQ(lines, (std::vector<std::string>{"0/258/2 analyze_sql():[Return]:(447) (0x0000DB00)\n",
                                               "0/258/2 f():[Return]:(1) (0x00000000)\n",
                                               "0/258/2 f():[Return]:(2) (0xFFFFFFFF)\n",
                                               "0/258/2 g():[Return]:(3) (0xFFFFFFFF)\n"}));
}

TEST_F(trace, of_entry_and_exit_has_no_code) {
    norvane::trace_enter("f", 402);
    norvane::trace_leave("f", 403);
    EXPECT_EQ(lines,
              (std::vector<std::string>{"0/258/2 f():[Enter]:(402) \n", "0/258/2 f():[Return]:(403) \n"}));
}

} // namespace
