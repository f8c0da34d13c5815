// Frames to calls. Everything read is checked first: a file may hold anything.
#include "tools/field/recording.h"

#include <qrylib/types.h>

#include <algorithm>
#include <map>
#include <stdexcept>

#include "tools/field/element_shapes.h"
#include "util/element_type.h"
#include "util/settings.h"

namespace field {

namespace {

using type = field_type;

constexpr field_name alloc_fields[] = {{"part", type::number, true}, {"size", type::number, false}};
constexpr field_name free_fields[] = {{"part", type::number, true}};
constexpr field_name create_mutex_fields[] = {
    {"option", type::number, true}, {"count", type::number, true}, {"mutex", type::number, false}};
constexpr field_name request_fields[] = {{"mutex", type::number, false}, {"timeout", type::number, true}};
constexpr field_name release_fields[] = {{"mutex", type::number, false}};
constexpr field_name get_fields[] = {{"category", type::hexadecimal, true},
                                     {"record", type::number, true},
                                     {"element", type::hexadecimal, true},
                                     {"value", type::value, false}};
constexpr field_name set_fields[] = {{"category", type::hexadecimal, true},
                                     {"record", type::number, true},
                                     {"element", type::hexadecimal, true},
                                     {"value", type::value, true}};
constexpr field_name init_fields[] = {{"category", type::hexadecimal, true}, {"record", type::number, true}};
constexpr field_name reset_fields[] = {{"category", type::hexadecimal, true}};
constexpr field_name create_list_fields[] = {{"list", type::short_number, false},
                                             {"category", type::hexadecimal, true},
                                             {"element", type::hexadecimal, true},
                                             {"records", type::short_number, true}};
constexpr field_name move_fields[] = {{"list", type::short_number, true},
                                      {"position", type::short_number, true}};
constexpr field_name read_fields[] = {{"list", type::short_number, true}, {"value", type::value, false}};
constexpr field_name delete_fields[] = {{"list", type::short_number, true}, {"option", type::number, true}};
constexpr field_name handle_fields[] = {{"handle", type::number, false}};
constexpr field_name exist_fields[] = {
    {"area", type::number, true}, {"directory", type::number, true}, {"name", type::name, true}};
constexpr field_name folder_fields[] = {{"area", type::number, true}, {"directory", type::number, true}};
constexpr field_name open_fields[] = {{"area", type::number, true},
                                      {"directory", type::number, true},
                                      {"name", type::name, true},
                                      {"mode", type::number, true},
                                      {"file", type::number, false}};
constexpr field_name fread_fields[] = {
    {"file", type::number, true}, {"size", type::number, true}, {"bytes", type::name, false}};
constexpr field_name fwrite_fields[] = {
    {"file", type::number, true}, {"size", type::number, true}, {"bytes", type::name, true}};
constexpr field_name close_fields[] = {{"file", type::number, true}};
constexpr field_name sort_fields[] = {{"key_offset", type::number, true},
                                      {"count", type::number, true},
                                      {"kind", type::number, true},
                                      {"order", type::order, false}};

template <std::size_t Num>
constexpr field_names all(const field_name (&fields)[Num]) {
    return {fields, Num};
}

// By service.
constexpr field_names services[] = {all(alloc_fields),
                                    all(free_fields),
                                    all(create_mutex_fields),
                                    all(request_fields),
                                    all(release_fields),
                                    {nullptr, 0},
                                    {nullptr, 0},
                                    all(get_fields),
                                    all(set_fields),
                                    all(init_fields),
                                    all(reset_fields),
                                    all(get_fields),
                                    all(set_fields),
                                    all(create_list_fields),
                                    all(move_fields),
                                    all(read_fields),
                                    all(delete_fields),
                                    all(handle_fields),
                                    {nullptr, 0},
                                    {nullptr, 0},
                                    all(exist_fields),
                                    all(folder_fields),
                                    all(folder_fields),
                                    all(open_fields),
                                    all(fread_fields),
                                    all(fwrite_fields),
                                    all(close_fields),
                                    all(sort_fields)};
static_assert(sizeof services / sizeof *services == service_num);

bool is_little_endian() {
    const std::uint16_t one = 1;
    std::uint8_t first = 0;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

// Turns the numbers in an element's value from the recording machine's order into this one's.
void turn(std::uint32_t category, std::uint32_t element, std::string &value) {
    if (category == norvane::settings_category) {
        std::reverse(value.begin(), value.end());
        return;
    }
    for (std::size_t i = 0; const QRY_LIB_ELEMENT_INFO *column = column_of(category, element, i); ++i) {
        const std::size_t end = std::size_t{column->member_offset} + column->size;
        if (!norvane::is_string_element(column->elem_type) && end <= value.size()) {
            std::reverse(value.begin() + column->member_offset,
                         value.begin() + static_cast<std::ptrdiff_t>(end));
        }
    }
}

// A value of another size than its element's is none: it would be written where there is no room for it.
void check_size(std::uint32_t category, std::uint32_t element, field_value &value) {
    const element_shape *const shape = find_shape(category, element);
    if (shape == nullptr || value.bytes.size() != shape->size) {
        value.bytes.clear();
        value.has_bytes = false;
    }
}

// Collects frames into calls, thread by thread.
class collector {
  public:
    explicit collector(recording &found) : found_(found), turns_(found.is_big_endian == is_little_endian()) {}

    void take(const std::uint8_t *frame, std::uint32_t length);

  private:
    struct open_call {
        std::size_t index;                                                      // in found_.calls
        std::map<std::uint32_t, std::pair<std::uint32_t, std::uint32_t>> lists; // category and element
    };

    void begin(std::uint16_t thread, payload_reader &payload, std::string_view whole);
    void end(recorded_call &call, payload_reader &payload, std::string_view whole);
    void add_event(open_call &open, frame_kind kind, std::uint8_t flags, payload_reader &payload);
    event platform_event(open_call &open, payload_reader &payload, std::uint8_t flags);
    void take_value(const open_call &open, event &made);
    void add_pair(const open_call &open, std::uint8_t flags, payload_reader &payload,
                  std::vector<event> &events);
    static row_values row(payload_reader &payload);

    recording &found_;
    bool turns_;
    std::map<std::uint16_t, open_call> open_;
};

void collector::begin(std::uint16_t thread, payload_reader &payload, std::string_view whole) {
    recorded_call call;
    call.number = static_cast<std::uint32_t>(found_.calls.size() + 1);
    call.thread = thread;
    call.function = static_cast<call_number>(std::min<std::uint32_t>(payload.take16(), call_num));
    call.time = payload.take64();
    call.arguments = std::string(whole.substr(std::min<std::size_t>(whole.size(), 10)));
    open_[thread] = {found_.calls.size(), {}};
    found_.calls.push_back(std::move(call));
}

void collector::end(recorded_call &call, payload_reader &payload, std::string_view whole) {
    payload.take16();
    const std::uint64_t time = payload.take64();
    call.microseconds = time > call.time ? time - call.time : 0;
    call.result = payload.take32();
    call.handed_out = std::string(whole.substr(std::min<std::size_t>(whole.size(), 14)));
    call.has_result = true;
}

row_values collector::row(payload_reader &payload) {
    row_values values;
    const std::uint32_t num = payload.take32();
    for (std::uint32_t i = 0; i < num && !payload.is_short(); ++i) {
        column_value value;
        value.type = payload.take8();
        if (value.type == QRY_LIB_COLUMN_TYPE_STR) {
            value.text = payload.take_bytes();
        } else {
            value.number = payload.take32();
        }
        values.push_back(std::move(value));
    }
    return values;
}

void collector::take_value(const open_call &open, event &made) {
    platform_call &call = made.call;
    const field_names names = fields_of(call.service);
    std::uint32_t category = 0;
    std::uint32_t element = 0;
    for (std::size_t i = 0; i < call.fields.size(); ++i) {
        const std::string_view name = names.fields[i].name;
        if (name == "category") {
            category = static_cast<std::uint32_t>(call.fields[i].number);
        } else if (name == "element") {
            element = static_cast<std::uint32_t>(call.fields[i].number);
        } else if (name == "list") {
            const auto list = open.lists.find(static_cast<std::uint32_t>(call.fields[i].number));
            if (list != open.lists.end()) {
                category = list->second.first;
                element = list->second.second;
            }
        } else if (names.fields[i].type == type::value) {
            check_size(category, element, call.fields[i]);
            if (turns_) {
                turn(category, element, call.fields[i].bytes);
            }
        }
    }
}

event collector::platform_event(open_call &open, payload_reader &payload, std::uint8_t flags) {
    event made;
    made.is_masked = (flags & flag_masked) != 0;
    platform_call &call = made.call;
    call.service = static_cast<service_number>(std::min<std::uint32_t>(payload.take16(), service_num));
    call.code = payload.take32();
    const field_names names = fields_of(call.service);
    for (std::size_t i = 0; i < names.num; ++i) {
        field_value value;
        switch (names.fields[i].type) {
        case type::hexadecimal:
        case type::number:
            value.number = payload.take32();
            break;
        case type::short_number:
            value.number = payload.take16();
            break;
        case type::name: {
            const std::optional<std::string> text = payload.take_text();
            value.has_bytes = text.has_value();
            value.bytes = text.value_or("");
            break;
        }
        case type::value:
            value.bytes = payload.take_bytes();
            value.has_bytes = (flags & flag_no_value) == 0;
            break;
        case type::order:
            value.number = payload.take32();
            for (std::uint64_t item = 0; item < value.number && !payload.is_short(); ++item) {
                const std::uint32_t from = payload.take16();
                value.bytes += static_cast<char>(from & 0xFF);
                value.bytes += static_cast<char>(from >> 8);
            }
            break;
        }
        call.fields.push_back(std::move(value));
    }
    if (call.service == service_tbctSTCCreateListTable) {
        open.lists[static_cast<std::uint32_t>(call.fields[0].number)] = {
            static_cast<std::uint32_t>(call.fields[1].number),
            static_cast<std::uint32_t>(call.fields[2].number)};
    }
    take_value(open, made);
    return made;
}

void collector::add_event(open_call &open, frame_kind kind, std::uint8_t flags, payload_reader &payload) {
    std::vector<event> &events = found_.calls[open.index].events;
    if (kind == frame_platform) {
        events.push_back(platform_event(open, payload, flags));
        return;
    }
    if (kind == frame_trace) {
        event made;
        made.is_trace = true;
        const bool has_code = payload.take8() != 0;
        made.trace.line = static_cast<std::int32_t>(payload.take32());
        const std::uint32_t code = payload.take32();
        made.trace.code = has_code ? std::optional<std::uint32_t>(code) : std::nullopt;
        made.trace.function = payload.take_bytes();
        events.push_back(std::move(made));
        return;
    }
    // A frame is filled up with fewer bytes than a pair has.
    constexpr std::size_t pair_size_min = 8;
    while (payload.left() >= pair_size_min) {
        add_pair(open, flags, payload, events);
    }
}

// A pair stands for two calls that went well.
void collector::add_pair(const open_call &open, std::uint8_t flags, payload_reader &payload,
                         std::vector<event> &events) {
    const std::uint32_t list = payload.take16();
    const std::uint32_t position = payload.take16();
    event moved;
    moved.call = {service_tbctSTCListTableSetPos, 0, {{list, "", true}, {position, "", true}}};
    events.push_back(std::move(moved));
    event read;
    read.is_masked = (flags & flag_masked) != 0;
    read.call = {
        service_tbctSTCListTableGetVal, 0, {{list, "", true}, {0, std::string(payload.take_bytes()), true}}};
    take_value(open, read);
    events.push_back(std::move(read));
}

void collector::take(const std::uint8_t *frame, std::uint32_t length) {
    const std::uint16_t thread = load16(frame + frame_thread);
    const auto kind = static_cast<frame_kind>(frame[frame_kind_at]);
    const std::uint8_t flags = frame[frame_flags_at];
    const std::string_view whole(reinterpret_cast<const char *>(frame) + frame_size, length - frame_size);
    payload_reader payload(whole);
    if (kind == frame_call) {
        begin(thread, payload, whole);
        found_.calls.back().order = load32(frame + frame_number);
    }
    const auto open = open_.find(thread);
    if (open == open_.end()) {
        ++found_.beginnings_lost;
        return;
    }
    recorded_call &call = found_.calls[open->second.index];
    call.is_masked = call.is_masked || (flags & flag_masked) != 0;
    call.is_cut = call.is_cut || (flags & flag_cut) != 0;
    switch (kind) {
    case frame_call:
        break;
    case frame_result:
        call.is_thrown = (flags & flag_thrown) != 0;
        end(call, payload, whole);
        open_.erase(open);
        break;
    case frame_row:
        call.rows.push_back(row(payload));
        break;
    case frame_platform:
    case frame_trace:
    case frame_pair:
        add_event(open->second, kind, flags, payload);
        // Whoever was handed the mutex of the handles first found them first.
        if (!call.events.empty() && call.events.back().call.service == service_pfwOSWRequestMutexSem) {
            call.order = load32(frame + frame_number);
        }
        break;
    case frame_count:
        call.counted_moves = payload.take32();
        call.counted_reads = payload.take32();
        break;
    default:
        call.is_cut = true;
    }
}

[[noreturn]] void refuse(const std::string &sentence) {
    throw std::runtime_error(sentence);
}

void read_header(const std::uint8_t *file, std::size_t size, recording &found) {
    if (size < header_size || std::memcmp(file, recording_magic, 8) != 0) {
        refuse("this is no recording");
    }
    if (const std::uint32_t version = load32(file + place_version); version != format_version) {
        refuse("this is a recording of format " + std::to_string(version) + "; this program reads format " +
               std::to_string(format_version));
    }
    if (load32(file + place_checksum) != checksum(file, place_checksum, 0)) {
        refuse("the recording's header is damaged");
    }
    found.is_big_endian = file[place_byte_order] == byte_order_mark >> 24;
    found.word_size = load32(file + place_word_size);
    const std::uint32_t flags = load32(file + place_flags);
    found.is_masked = (flags & recording_masked) != 0;
    found.has_values = (flags & recording_values) != 0;
    found.process = load32(file + place_process);
    found.started = load32(file + place_started) | std::uint64_t{load32(file + place_started + 4)} << 32;
    const char *const library = reinterpret_cast<const char *>(file + place_library);
    found.library.assign(library, ::strnlen(library, library_size));
    found.dropped = load32(file + place_dropped);
    found.is_frozen = load32(file + place_frozen) != 0;
    if (load32(file + place_schema) != schema_number()) {
        refuse("this is a recording of a library with another schema or other capacities (version " +
               found.library + ")");
    }
}

// The frame's length, if it is whole.
std::uint32_t whole_frame(const std::uint8_t *frame, std::size_t room) {
    if (room < frame_size) {
        return 0;
    }
    const std::uint32_t length = load32(frame);
    const bool fits = length >= frame_size && length % 4 == 0 && length <= room;
    return fits && load32(frame + frame_checksum) == frame_sum(frame, length) ? length : 0;
}

// The ring from its oldest frame on. `size` is what the file really holds of it.
void read_frames(const std::uint8_t *ring, std::uint32_t ring_size, std::size_t size, std::uint32_t tail,
                 std::uint32_t head, recording &found) {
    collector calls(found);
    bool is_first = true;
    bool has_wrapped = false;
    std::uint32_t next_number = 0;
    std::uint32_t place = tail;
    while (place != head) {
        const bool is_gap = size - place >= 4 && place < size && load32(ring + place) == 0;
        if ((place == ring_size || is_gap) && !has_wrapped) {
            place = 0;
            has_wrapped = true;
            continue;
        }
        const std::uint32_t length = place < size ? whole_frame(ring + place, size - place) : 0;
        const std::uint32_t number = length != 0 ? load32(ring + place + frame_number) : 0;
        if (length == 0 || (!is_first && number != next_number)) {
            found.unreadable = head > place ? head - place : ring_size - place + head;
            return;
        }
        if (is_first) {
            found.overwritten = number;
            is_first = false;
        }
        next_number = number + 1;
        calls.take(ring + place, length);
        place += length;
        if (has_wrapped && place > head) {
            found.unreadable = place - head;
            return;
        }
    }
}

} // namespace

std::uint64_t payload_reader::take64() {
    const std::uint64_t low = take32();
    return low | std::uint64_t{take32()} << 32;
}

const char *payload_reader::take(std::size_t size) {
    static constexpr char zeros[8] = "";
    if (bytes_.size() < size) {
        is_short_ = true;
        bytes_ = {};
        return zeros;
    }
    const char *const taken = bytes_.data();
    bytes_.remove_prefix(size);
    return taken;
}

std::string_view payload_reader::take_bytes() {
    const std::uint32_t size = take32();
    if (size > bytes_.size()) {
        is_short_ = true;
        bytes_ = {};
        return {};
    }
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
}

std::optional<std::string> payload_reader::take_text() {
    if (bytes_.size() >= 4 && load32(bytes_.data()) == no_text) {
        bytes_.remove_prefix(4);
        return std::nullopt;
    }
    return std::string(take_bytes());
}

recording read_recording(std::string_view text) {
    const auto *const file = reinterpret_cast<const std::uint8_t *>(text.data());
    recording found;
    read_header(file, text.size(), found);
    const std::uint32_t ring_size = load32(file + place_ring_size);
    const std::uint32_t tail = load32(file + place_tail);
    const std::uint32_t head = load32(file + place_head);
    if (ring_size % 4 != 0 || tail % 4 != 0 || head % 4 != 0 || tail > ring_size || head > ring_size) {
        refuse("the recording does not tell where its frames lie");
    }
    read_frames(file + header_size, ring_size, std::min<std::size_t>(text.size() - header_size, ring_size),
                tail, head, found);
    return found;
}

field_names fields_of(service_number service) {
    return service < service_num ? services[service] : field_names{nullptr, 0};
}

bool is_statement(call_number function) {
    return function >= call_qry_lib_db_exec_query && function <= call_qry_lib_db_stmt_exec;
}

} // namespace field
