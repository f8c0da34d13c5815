// Trace lines with their causes.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace qrytext {

// A line of the library's trace taken apart.
struct trace_line {
    std::string function;
    int line;
    std::optional<std::uint32_t> code; // nothing where the line only says that an operation began or ended
};

// Nothing for a text that is no line of the library's.
std::optional<trace_line> parse_trace(std::string_view text);

// The cause of the trace point at this function and source line; empty for a point without a fixed line.
std::string_view trace_cause(std::string_view function, int line);

// The trace line without its line end, its cause behind it where there is one.
std::string explain_trace(std::string_view text);

// Whether the line tells of a failure: the others only say that an operation began or ended.
bool tells_failure(std::string_view text);

// The lines that tell of a failure, with their causes, innermost first.
std::string explain_failure(const std::deque<std::string> &lines);

// "function:line" of a trace line; the function alone where the line is not fixed, since any edit moves it.
std::string trace_point_name(std::string_view text);

} // namespace qrytext
