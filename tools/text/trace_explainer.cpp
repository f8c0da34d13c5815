// The table of fixed trace points, compiled in, and the lookup in it.
#include "tools/text/trace_explainer.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>

#include <fmt/format.h>

namespace qrytext {

namespace {

struct trace_point {
    std::string_view function;
    int line;
    std::string_view cause;
};

constexpr trace_point trace_points[] = {
#include "trace_points.inc"
};

constexpr std::string_view after_function = "():[";
constexpr std::string_view before_line = "]:(";
constexpr std::string_view before_code = "(0x";

} // namespace

std::optional<trace_line> parse_trace(std::string_view text) {
    const std::size_t function_end = text.find(after_function);
    const std::size_t line_begin = text.find(before_line);
    if (function_end == std::string_view::npos || line_begin == std::string_view::npos) {
        return std::nullopt;
    }
    const char *const end = text.data() + text.size();
    trace_line parsed{std::string(text.substr(0, function_end)), 0, std::nullopt};
    std::from_chars(text.data() + line_begin + before_line.size(), end, parsed.line);
    if (const std::size_t code_begin = text.find(before_code); code_begin != std::string_view::npos) {
        parsed.code = 0;
        std::from_chars(text.data() + code_begin + before_code.size(), end, *parsed.code, 16);
    }
    return parsed;
}

std::string_view trace_cause(std::string_view function, int line) {
    const auto *point =
        std::find_if(std::begin(trace_points), std::end(trace_points),
                     [&](const trace_point &p) { return p.line == line && p.function == function; });
    return point == std::end(trace_points) ? std::string_view() : point->cause;
}

std::string explain_trace(std::string_view line) {
    const std::string_view text = line.substr(0, line.find('\n'));
    const std::optional<trace_line> point = parse_trace(text);
    const std::string_view cause = point ? trace_cause(point->function, point->line) : std::string_view();
    return cause.empty() ? std::string(text) : fmt::format("{}  -- {}", text, cause);
}

std::string trace_point_name(std::string_view text) {
    const std::optional<trace_line> point = parse_trace(text);
    if (!point) {
        return std::string(text);
    }
    return trace_cause(point->function, point->line).empty()
               ? std::string(point->function)
               : fmt::format("{}:{}", point->function, point->line);
}

bool tells_failure(std::string_view text) {
    return text.find(before_code) != std::string_view::npos;
}

std::string explain_failure(const std::deque<std::string> &lines) {
    std::string out;
    for (const std::string &line : lines) {
        if (tells_failure(line)) {
            out += fmt::format("  {}\n", explain_trace(line));
        }
    }
    return out;
}

} // namespace qrytext
