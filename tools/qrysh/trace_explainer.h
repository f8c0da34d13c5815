// Trace lines with their causes.
#pragma once

#include <string>
#include <string_view>

namespace qrysh {

// The cause of the trace point at this function and source line; empty for a point without a fixed line.
std::string_view trace_cause(std::string_view function, int line);

// The trace line without its line end, its cause behind it where there is one.
std::string explain_trace(std::string_view trace_line);

// "function:line" of a trace line; the function alone where the line is not fixed, since any edit moves it.
std::string trace_point_name(std::string_view trace_line);

} // namespace qrysh
