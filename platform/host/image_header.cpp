// The header's values, the hash of everything that decides where a value lies, and the refusals.
#include "platform/host/image_header.h"

#include <algorithm>
#include <cstring>

#include "exec/schema/schema.h"
#include "platform/host/roomy.h"

namespace qryhost {

namespace {

constexpr char image_magic[8] = {'Q', 'R', 'Y', 'I', 'M', 'A', 'G', 'E'};
constexpr std::uint32_t image_version = 2;
constexpr std::uint32_t earlier_version = 1; // its guards name no holder, its header no C library
constexpr std::uint32_t own_byte_order = 0x01020304;
constexpr std::uint32_t other_byte_order = 0x04030201;
#ifdef __GLIBC__
constexpr char own_c_library[] = "glibc";
#else
constexpr char own_c_library[] = "not glibc";
#endif
static_assert(sizeof own_c_library <= sizeof image_header::c_library);

// FNV-1a. Numbers count as four bytes from the lowest up, so that the machine does not matter.
class content_hash {
  public:
    void add(std::uint32_t number) {
        for (int shift = 0; shift < 32; shift += 8) {
            add_byte(static_cast<std::uint8_t>(number >> shift));
        }
    }
    void add(const char *text) {
        for (; *text != '\0'; ++text) {
            add_byte(static_cast<std::uint8_t>(*text));
        }
        add_byte(0);
    }
    std::uint64_t value() const { return value_; }

  private:
    void add_byte(std::uint8_t byte) { value_ = (value_ ^ byte) * 0x100000001B3u; }

    std::uint64_t value_ = 0xCBF29CE484222325u;
};

void add_column(content_hash &hash, const QRY_LIB_ELEMENT_DEF &column) {
    hash.add(column.info.name);
    for (const std::uint32_t number :
         {std::uint32_t{column.is_primary}, column.info.category_id, column.info.element_id,
          column.info.elem_type, std::uint32_t{column.info.size}, std::uint32_t{column.info.is_member},
          std::uint32_t{column.info.member_offset}}) {
        hash.add(number);
    }
}

void add_schema(content_hash &hash) {
    for (const norvane::database_schema *database : norvane::databases) {
        hash.add(database->name);
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            hash.add(table.table_name);
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                add_column(hash, column);
            }
        }
    }
}

std::uint64_t layout_hash(const memory_shape &shape, const store_layout &layout) {
    content_hash hash;
    add_schema(hash);
    for (const element_place &place : layout.elements()) {
        for (const std::uint32_t number : {place.category, place.element, place.offset,
                                           std::uint32_t{place.size}, std::uint32_t{place.record_num}}) {
            hash.add(number);
        }
    }
    hash.add(static_cast<std::uint32_t>(sizeof(pthread_mutex_t)));
    hash.add(shape.guard_stride);
    hash.add(shape.region_offset);
    return hash.value();
}

// The devices whose images a shell of this build may be handed.
struct known_device {
    std::uint16_t (*capacity)(std::uint16_t records);
    const char *whose;
};
constexpr known_device known_devices[] = {
    {capacity_on_device, "the device's own, qrysh opens it"},
    {capacity_on_roomy_device, "the roomy device's, qrysh --roomy opens it"},
};

// Whose the capacities are in an image of another layout.
std::string other_capacities(const image_header &header) {
    for (const known_device &device : known_devices) {
        if (layout_hash(memory_shape::get(), store_layout(device.capacity)) == header.layout_hash) {
            return std::string("its capacities are ") + device.whose;
        }
    }
    return "its schema or capacities differ";
}

// What the file says there, as far as it can be shown.
std::string c_library_of(const image_header &header) {
    std::string name(header.c_library, sizeof header.c_library);
    name.resize(std::min(name.find('\0'), name.size()));
    const bool is_shown = std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return name.empty() || !is_shown ? "unknown" : name;
}

// Whether the file says that its locks are made as here: processes of different C libraries cannot share
// them.
bool has_mutexes_of(const image_header &header, const image_header &expected) {
    return std::memcmp(header.c_library, expected.c_library, sizeof header.c_library) == 0 &&
           header.mutex_size == expected.mutex_size && header.mutex_kind == expected.mutex_kind;
}

// Why `header` is not the one that is expected; empty when it is.
std::string difference(const image_header &header, const image_header &expected) {
    if (std::memcmp(header.magic, expected.magic, sizeof header.magic) != 0) {
        return "is no device image";
    }
    if (header.byte_order == other_byte_order) {
        return "is a device image of a machine with the other byte order";
    }
    if (header.byte_order != expected.byte_order) {
        return "is a damaged device image: its byte order is none";
    }
    if (header.version != expected.version) {
        return "is a device image of another format version";
    }
    if (header.word_size != expected.word_size) {
        return "is a device image of a machine with another word size";
    }
    if (header.layout_hash != expected.layout_hash) {
        return "is a device image of another layout: " + other_capacities(header);
    }
    if (!has_mutexes_of(header, expected)) {
        return "is a device image with the locks of another C library: " + c_library_of(header) + ", here " +
               own_c_library;
    }
    if (std::memcmp(&header, &expected, sizeof header) != 0) {
        return "is a damaged device image: its header is wrong";
    }
    return "";
}

image_header make_header(std::uint32_t version, const memory_shape &shape) {
    image_header header{};
    std::memcpy(header.magic, image_magic, sizeof header.magic);
    header.byte_order = own_byte_order;
    header.version = version;
    header.word_size = sizeof(void *);
    header.file_size = shape.bytes;
    header.layout_hash = layout_hash(shape, store_layout::get());
    return header;
}

image_header make_own_header() {
    image_header header = make_header(image_version, memory_shape::get());
    std::strncpy(header.c_library, own_c_library, sizeof header.c_library - 1);
    header.mutex_size = sizeof(pthread_mutex_t);
    header.mutex_kind = fresh_mutex_kind(true);
    return header;
}

std::string how_to_carry_over(const std::string &path) {
    return path +
           ": is a device image of the earlier format version, which is only read; carry its records over "
           "with "
           "qrysh --image " +
           path + " -c '.save records.json' and qrysh --new NEW -c '.load records.json'";
}

std::string of_bytes(std::uint64_t found, std::uint64_t expected) {
    return std::to_string(found) + " of " + std::to_string(expected) + " bytes";
}

} // namespace

const image_header &expected_header() {
    static const image_header header = make_own_header();
    return header;
}

const image_header &earlier_header() {
    static const image_header header = make_header(earlier_version, memory_shape::earlier());
    return header;
}

image_use check_header(const std::string &path, const image_header &header, std::uint64_t file_size) {
    const bool is_earlier = header.version == earlier_version;
    const memory_shape &shape = is_earlier ? memory_shape::earlier() : memory_shape::get();
    const image_header &expected = is_earlier ? earlier_header() : expected_header();
    if (file_size < sizeof(image_header)) {
        throw refusal(path + ": is too short for a device image: " + of_bytes(file_size, expected.file_size));
    }
    if (const std::string reason = difference(header, expected); !reason.empty()) {
        throw refusal(path + ": " + reason);
    }
    if (file_size != expected.file_size) {
        throw refusal(path + ": is a damaged device image: it has " +
                      of_bytes(file_size, expected.file_size));
    }
    return {&shape, is_earlier ? how_to_carry_over(path) : ""};
}

} // namespace qryhost
