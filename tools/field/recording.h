// A recording that was read: its calls, each with what it made of the platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/field/functions.h"
#include "tools/field/recording_format.h"

namespace field {

// Reads numbers and bytes one behind the other; behind the end there are zeros, and `is_short` says so.
class payload_reader {
  public:
    explicit payload_reader(std::string_view bytes) : bytes_(bytes) {}

    std::uint32_t take8() { return static_cast<std::uint8_t>(take(1)[0]); }
    std::uint32_t take16() { return load16(take(2)); }
    std::uint32_t take32() { return load32(take(4)); }
    std::uint64_t take64();
    std::string_view take_bytes();
    // Nothing where there was no text.
    std::optional<std::string> take_text();

    bool is_short() const { return is_short_; }
    std::size_t left() const { return bytes_.size(); }

  private:
    const char *take(std::size_t size);

    std::string_view bytes_;
    bool is_short_ = false;
};

// One field of a platform call.
struct field_value {
    std::uint64_t number = 0;
    std::string bytes; // of a value, a name or an order
    bool has_bytes = true;
};

// A platform call as it was recorded, or as a replay makes it: then without what is answered.
struct platform_call {
    service_number service = service_num;
    std::uint32_t code = 0;
    std::vector<field_value> fields; // as service_fields() lists them
};

struct trace_line {
    std::string function;
    std::int32_t line = 0;
    std::optional<std::uint32_t> code;
};

// What a call did, one after the other.
struct event {
    bool is_trace = false;
    platform_call call;
    trace_line trace;
    bool is_masked = false;
};

struct column_value {
    std::uint32_t type = 0;
    std::uint32_t number = 0;
    std::string text;

    bool operator==(const column_value &other) const {
        return type == other.type && number == other.number && text == other.text;
    }
};
using row_values = std::vector<column_value>;

struct recorded_call {
    std::uint32_t number = 0; // from 1
    std::uint32_t order = 0;  // among the calls of all threads, where they meet
    std::uint16_t thread = 0;
    call_number function = call_num;
    std::uint64_t time = 0;         // microseconds since 1970
    std::uint64_t microseconds = 0; // that it took
    std::string arguments;
    std::vector<event> events;
    std::vector<row_values> rows;
    std::uint32_t result = 0;
    std::string handed_out; // behind the result
    std::uint32_t counted_moves = 0;
    std::uint32_t counted_reads = 0;
    bool has_result = false; // false: the recording ends inside it
    bool is_thrown = false;
    bool is_masked = false;
    bool is_cut = false; // a part of it did not fit its frame
};

struct recording {
    std::string library;
    std::uint32_t process = 0;
    std::uint32_t word_size = 0;
    bool is_big_endian = false;
    bool is_masked = false;
    bool has_values = false;
    bool is_frozen = false;
    std::uint64_t started = 0;
    std::uint32_t overwritten = 0; // frames
    std::uint32_t dropped = 0;
    std::uint32_t unreadable = 0;      // bytes from the first damaged frame on
    std::uint32_t beginnings_lost = 0; // frames of calls whose beginning was overwritten
    std::vector<recorded_call> calls;  // in the order in which they began
};

// Throws std::runtime_error with a sentence where nothing can be read: no recording, another version, another
// schema. What is damaged or cut further on ends the reading there.
recording read_recording(std::string_view file);

// What a field of a platform call is.
enum class field_type : std::uint8_t { hexadecimal, number, short_number, name, value, order };

struct field_name {
    const char *name;
    field_type type;
    bool is_compared; // otherwise it is an answer, or a size, which is the machine's own business
};

struct field_names {
    const field_name *fields;
    std::size_t num;
};
field_names fields_of(service_number service);

// The library's functions that take an SQL text or a statement record and run it.
bool is_statement(call_number function);

} // namespace field
