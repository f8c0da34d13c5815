// Trace lines with their causes.
#pragma once

#include <deque>
#include <string>
#include <string_view>

namespace qrytext {

// The cause of the trace point at this function and source line; empty for a point without a fixed line.
std::string_view trace_cause(std::string_view function, int line);

// The trace line without its line end, its cause behind it where there is one.
std::string explain_trace(std::string_view trace_line);

// Whether the line tells of a failure: the others only say that an operation began or ended.
bool tells_failure(std::string_view trace_line);

// The lines that tell of a failure, with their causes, innermost first.
std::string explain_failure(const std::deque<std::string> &lines);

// "function:line" of a trace line; the function alone where the line is not fixed, since any edit moves it.
std::string trace_point_name(std::string_view trace_line);

} // namespace qrytext
