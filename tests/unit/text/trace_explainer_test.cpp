// Trace lines explained from the table in docs/trace-points.tsv.
#include "tools/text/trace_explainer.h"

#include <gtest/gtest.h>

namespace {

using qrytext::explain_trace;
using qrytext::trace_cause;

TEST(trace_explainer, appends_the_cause_of_a_fixed_point) {
    EXPECT_EQ(explain_trace("divide_operate():[Return]:(1294) (0x0000DB00)\n"),
              "divide_operate():[Return]:(1294) (0x0000DB00)  -- empty column part");
}

TEST(trace_explainer, looks_at_function_and_line_together) {
    EXPECT_EQ(explain_trace("divide_keyword():[Return]:(1294) (0x0000DB00)\n"),
              "divide_keyword():[Return]:(1294) (0x0000DB00)");
    EXPECT_NE(trace_cause("conv_val_tbdb_to_db2e_internal", 220), "");
    EXPECT_NE(trace_cause("conv_val_tbdb_to_db2e_internal", 220),
              trace_cause("conv_val_tbdb_to_db2e_internal", 420));
}

TEST(trace_explainer, keeps_causes_with_semicolons_whole) {
    EXPECT_EQ(trace_cause("analyze_sql", 447),
              "ORDER BY in a statement that returns no rows; code 0 is traced, 0xDB00 is returned");
}

TEST(trace_explainer, keeps_causes_with_quotes_whole) {
    EXPECT_EQ(trace_cause("divide_operate", 1257), "the operator is \"==\"");
}

TEST(trace_explainer, holds_the_first_and_the_last_point) {
    EXPECT_EQ(trace_cause("trim_space_front_rear", 2331), "no scratch block, char* form (in place)");
    EXPECT_EQ(trace_cause("qry_lib_get_doublecount_mode", 168),
              "the setting could not be read; the converted code (1 or 2) is traced and returned");
}

TEST(trace_explainer, passes_other_text_through) {
    EXPECT_EQ(explain_trace("something else\n"), "something else");
    EXPECT_EQ(explain_trace(""), "");
}

} // namespace
