// Calls, values and traces in words.
#include <algorithm>
#include <cstdio>

#include "platform/host/fixture_values.h"
#include "tools/field/element_shapes.h"
#include "tools/field/replay_platform.h"

namespace field {

namespace {

struct fixed_point {
    std::string_view function;
    int line;
    std::string_view cause;
};
constexpr fixed_point fixed_points[] = {
#include "trace_points.inc"
};

const fixed_point *find_point(const trace_line &trace) {
    for (const fixed_point &point : fixed_points) {
        if (point.line == trace.line && point.function == trace.function) {
            return &point;
        }
    }
    return nullptr;
}

template <typename... Values>
std::string formatted(const char *format, Values... values) {
    char text[64];
    static_cast<void>(std::snprintf(text, sizeof text, format, values...));
    return text;
}

std::string order_text(const std::string &order) {
    std::string text;
    for (std::size_t i = 0; i + 1 < order.size(); i += 2) {
        text += (text.empty() ? "" : " ") + std::to_string(load16(order.data() + i));
    }
    return "[" + text + "]";
}

std::string field_text(const platform_call &call, std::size_t index, std::uint32_t category,
                       std::uint32_t element) {
    const field_name &name = fields_of(call.service).fields[index];
    const field_value &field = call.fields[index];
    switch (name.type) {
    case field_type::hexadecimal:
        return formatted("0x%08X", static_cast<unsigned>(field.number));
    case field_type::number:
    case field_type::short_number:
        return std::to_string(field.number);
    case field_type::name:
        return field.has_bytes ? quoted(field.bytes) : "null";
    case field_type::value:
        return field.has_bytes ? value_text(category, element, field.bytes) : "(not recorded)";
    case field_type::order:
        return order_text(field.bytes);
    }
    return "";
}

} // namespace

std::string quoted(const std::string &text) {
    return qryhost::json(text).dump(-1, ' ', false, qryhost::json::error_handler_t::replace);
}

bool is_fixed_point(const trace_line &trace) {
    return find_point(trace) != nullptr;
}

std::string trace_text(const trace_line &trace) {
    std::string text = trace.function;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    text += formatted("():[Return]:(%d)", trace.line);
    if (trace.code) {
        text += formatted(" (0x%08X)", static_cast<unsigned>(*trace.code));
    }
    const fixed_point *const point = find_point(trace);
    return point != nullptr ? text + "  -- " + std::string(point->cause) : text;
}

std::string value_text(std::uint32_t category, std::uint32_t element, const std::string &bytes) {
    std::string text;
    const element_shape *const shape = find_shape(category, element);
    const bool is_whole = shape != nullptr && bytes.size() == shape->size;
    for (std::size_t i = 0; is_whole; ++i) {
        const QRY_LIB_ELEMENT_INFO *const column = column_of(category, element, i);
        if (column == nullptr) {
            break;
        }
        const auto *const value = reinterpret_cast<const std::uint8_t *>(bytes.data());
        text += (text.empty() ? "" : " ") + std::string(column->name) + "=" +
                qryhost::value_to_json(*column, value).dump();
    }
    return text.empty() ? "\"" + qryhost::to_hex({bytes.begin(), bytes.end()}) + "\"" : text;
}

std::string call_text(const platform_call &call, bool with_answer) {
    const field_names names = fields_of(call.service);
    std::string text = call.service < service_num ? service_names[call.service] : "(unknown)";
    text += "(";
    std::string answer;
    std::uint32_t category = 0;
    std::uint32_t element = 0;
    const char *separator = "";
    for (std::size_t i = 0; i < names.num && i < call.fields.size(); ++i) {
        const std::string_view name = names.fields[i].name;
        category = name == "category" ? static_cast<std::uint32_t>(call.fields[i].number) : category;
        element = name == "element" ? static_cast<std::uint32_t>(call.fields[i].number) : element;
        const std::string value = std::string(name) + " " + field_text(call, i, category, element);
        if (names.fields[i].is_compared) {
            text += separator + value;
            separator = ", ";
        } else if (name != "size") {
            answer += ", " + value;
        }
    }
    text += ")";
    return with_answer ? text + formatted(" -> 0x%X", static_cast<unsigned>(call.code)) + answer : text;
}

} // namespace field
