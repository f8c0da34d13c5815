// The element tables as the library's schema describes them, and values to write into them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/platform_check/report.h"

namespace platform_check {

constexpr std::uint32_t requester = 0x2301; // who writes, as the element tables know the library
constexpr std::size_t buffer_size = 3001;   // what the library hands to every read, at the least

using bytes = std::vector<std::uint8_t>;

struct element {
    std::uint32_t id;
    std::uint16_t size;
};

// One category: the elements of its records, and how many records it has.
struct table {
    std::string name; // "adbk_db PSN_TBL"
    std::uint32_t category;
    std::uint16_t record_num;
    std::vector<element> elements;

    // "record 1, element 0x40971000 of adbk_db PSN_TBL (category 0x05090400)"
    std::string place(std::uint32_t record, const element &at) const;
};

// The tables that have records, in the order of the schema.
const std::vector<table> &tables();

// A value of the element's size that differs from record to record, element to element and round to round: a
// text without terminator but for its last byte.
bytes sample(const table &of, const element &at, std::uint32_t record, std::uint32_t round);

// Reads an element into a guarded buffer. Empty, and reported, when the platform fails or writes too much.
bytes read(report &out, const table &of, const element &at, std::uint32_t record);

// Reports a failure. True for success.
bool write(report &out, const table &of, const element &at, std::uint32_t record, const bytes &value);

// A read's buffer: the library's 3001 bytes, aligned for the widest element, with a pattern in and behind it.
class guarded_buffer {
  public:
    explicit guarded_buffer(std::uint16_t size);
    void *data() { return words_.data(); }
    bytes value() const;
    bool is_overrun() const; // something was written behind the element's size

  private:
    std::uint16_t size_;
    std::vector<std::uint64_t> words_;
};

// The values of a table's default record and records; put back at the end.
class saved_table {
  public:
    saved_table(report &out, const table &of);
    saved_table(const saved_table &) = delete;
    saved_table &operator=(const saved_table &) = delete;
    ~saved_table();

  private:
    report &out_;
    const table &table_;
    std::vector<bytes> values_; // record by record; empty where it could not be read
};

} // namespace platform_check
