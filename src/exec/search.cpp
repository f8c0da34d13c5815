// The filtered search: visits every record position of a category once, reading one value for each key
// through list tables rather than whole records.
#include <algorithm>
#include <cstring>
#include <vector>

#include <qrylib/element_table.h>

#include "exec/element_buffer.h"
#include "platform/element_table.h"
#include "util/bounded_text.h"
#include "util/pool_block.h"
#include "util/tb_string.h"
#include "util/trace.h"

using norvane::element_buffer;
using norvane::is_string_element;
using norvane::load_number;
using norvane::number_width;
using norvane::pool_block;
using norvane::trace_return;

namespace {

constexpr char search_name[] = "qry_lib_tb_create_search_table_id";

bool is_range(QRY_LIB_OPERATION_TYPE operation) {
    return operation >= QRY_LIB_OPERATION_TYPE_LESS && operation <= QRY_LIB_OPERATION_TYPE_GREATER_EQUAL;
}

bool is_allowed(const qry_lib_tb_list_filter_key_ &key) {
    return is_string_element(key.elem_type) ? !is_range(key.operation)
                                            : key.operation != QRY_LIB_OPERATION_TYPE_LIKE;
}

// The row value lies within the buffer, and a string to compare with has its end.
bool is_well_formed(const qry_lib_tb_list_filter_key_ &key) {
    if (is_string_element(key.elem_type)) {
        return key.member_offset < QRY_LIB_STRING_MAX &&
               norvane::fits(static_cast<const char *>(key.value), QRY_LIB_STRING_MAX);
    }
    return std::uint32_t{key.member_offset} + key.cmp_size <= sizeof key.value;
}

// Bytes of the number that the key compares whole; 0: it compares anything else.
std::uint8_t whole_number_width(const qry_lib_tb_list_filter_key_ &key) {
    return key.cmp_size == number_width(key.elem_type) ? key.cmp_size : std::uint8_t{0};
}

// Compares as the bytes compare where the most significant byte comes first: as unsigned numbers, of which a
// cmp_size below the number's width leaves the leading bytes, and bytes behind the number as they stand.
int compare_bytes_of(const qry_lib_tb_list_filter_key_ &key, const char *row) {
    const std::uint32_t width = number_width(key.elem_type);
    const std::uint32_t compared = std::min<std::uint32_t>(width, key.cmp_size);
    if (compared > 0) {
        const std::uint32_t dropped_bits = 8 * (width - compared);
        const std::uint32_t key_number = load_number(key.value, width) >> dropped_bits;
        const std::uint32_t row_number = load_number(row, width) >> dropped_bits;
        if (key_number != row_number) {
            return key_number < row_number ? -1 : 1;
        }
    }
    return std::memcmp(key.value + compared, row + compared, key.cmp_size - compared);
}

// How the values with which a key holds lie about the key's own: an unbroken range, or all others.
struct range_shape {
    bool begins_at_value; // else at the smallest
    bool ends_at_value;   // else at the largest
    bool holds_inside;
};

// By operation.
constexpr range_shape range_shapes[] = {
    {true, true, true},   // =
    {true, true, false},  // !=
    {true, false, false}, // <
    {false, true, false}, // >
    {false, true, true},  // <=
    {true, false, true},  // >=
    {true, true, true},   // LIKE, which has compared no further than the key reaches
};
constexpr range_shape no_value = {false, false, false}; // any other operation, the list forms too
static_assert(sizeof range_shapes / sizeof *range_shapes == QRY_LIB_OPERATION_TYPE_LIKE + 1);

// The values that stand to `value` as an operation says. The test takes no branch: which way values differ is
// the one thing in a search that no processor can foretell.
class value_range {
  public:
    value_range(QRY_LIB_OPERATION_TYPE operation, std::uint32_t value) {
        const range_shape &shape =
            operation <= QRY_LIB_OPERATION_TYPE_LIKE ? range_shapes[operation] : no_value;
        first_ = shape.begins_at_value ? value : 0;
        extent_ = (shape.ends_at_value ? value : UINT32_MAX) - first_;
        holds_inside_ = shape.holds_inside;
    }

    bool holds(std::uint32_t value) const { return (value - first_ <= extent_) == holds_inside_; }

  private:
    std::uint32_t first_;
    std::uint32_t extent_;
    bool holds_inside_;
};

// Where the value of a string key ends in the buffer at the latest; 0 where the schema has no such column.
std::uint32_t find_value_end(std::uint32_t category, const qry_lib_tb_list_filter_key_ &key) {
    const QRY_LIB_TABLE_DEF *table = norvane::find_table(category);
    if (table == nullptr) {
        return 0;
    }
    for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(*table)) {
        const QRY_LIB_ELEMENT_INFO &info = column.info;
        if (info.element_id == key.element_id && info.member_offset == key.member_offset) {
            return std::uint32_t{info.member_offset} + info.size;
        }
    }
    return 0;
}

// A key made ready to be compared with every record: its list table, and what would be the same each time.
class search_key {
  public:
    search_key(std::uint32_t category, const qry_lib_tb_list_filter_key_ &key)
        : key_(&key), is_or_(key.join == QRY_LIB_JOIN_TYPE_OR), width_(whole_number_width(key)),
          offset_(key.member_offset),
          range_(key.operation, width_ != 0 ? load_number(key.value, width_) : std::uint32_t{same}),
          cleared_(key.cmp_size) {
        if (is_string_element(key.elem_type)) {
            // What the schema does not know may be as large as any value.
            constexpr std::uint32_t largest = sizeof(QRY_LIB_COLUMN_VALUE);
            const std::uint32_t end = find_value_end(category, key);
            value_end_ = end != 0 ? end : largest;
            cleared_ = value_end_ - key.member_offset;
        }
        if (key.operation == QRY_LIB_OPERATION_TYPE_LIKE) {
            prefix_length_ = static_cast<std::uint32_t>(std::strlen(key.value));
        }
    }

    tbctListTable &list() { return list_; }
    bool is_or() const { return is_or_; }

    // Whether the record under the list's position satisfies the key. Its value is read into `buffer`.
    bool matches(element_buffer &buffer) {
        const char *row = buffer.at(offset_);
        buffer.clear(offset_, cleared_); // what the platform does not write counts as zeros
        tbctSTCListTableGetVal(&list_, buffer.data());
        return range_.holds(width_ != 0 ? load_number(row, width_) : compare(row, buffer));
    }

  private:
    // What a value that is compared otherwise counts as: below the key's, the same, or above.
    enum relation : std::uint32_t { below, same, above };

    relation compare(const char *row, element_buffer &buffer) const {
        if (!is_string_element(key_->elem_type)) {
            return relation_of(compare_bytes_of(*key_, row));
        }
        buffer.data()[value_end_] = '\0'; // a string may fill its element
        return relation_of(key_->operation == QRY_LIB_OPERATION_TYPE_LIKE
                               ? norvane::tb_strncmp(key_->value, row, prefix_length_)
                               : norvane::tb_strcmp(key_->value, row));
    }

    // From the order of the key's value to the row's.
    static relation relation_of(int order) { return order == 0 ? same : order < 0 ? above : below; }

    const qry_lib_tb_list_filter_key_ *key_;
    tbctListTable list_{};
    bool is_or_;
    std::uint8_t width_;   // bytes of a number that is compared whole; 0: anything else
    std::uint32_t offset_; // of the value in the element
    value_range range_;
    std::uint32_t cleared_; // bytes of the row's value that are cleared before it is read
    std::uint32_t value_end_ = 0;
    std::uint32_t prefix_length_ = 0;
};

// The keys of a search and their list tables, deleted when the search ends.
class search_keys {
  public:
    search_keys(std::uint32_t category, std::uint16_t key_num, const qry_lib_tb_list_filter_key_ *keys,
                std::uint16_t record_num) {
        keys_.reserve(key_num);
        for (std::uint16_t i = 0; i < key_num; ++i) {
            keys_.emplace_back(category, keys[i]);
        }
        for (std::uint16_t i = 0; i < key_num; ++i) {
            const std::uint32_t code =
                tbctSTCCreateListTable(category, keys[i].element_id, record_num, &keys_[i].list());
            if (code != 0) {
                // The search goes on without its lists and fails at the first record.
                delete_lists();
                trace_return("qry_lib_tb_create_list_table", 805, code);
            }
        }
    }
    search_keys(const search_keys &) = delete;
    search_keys &operator=(const search_keys &) = delete;
    ~search_keys() { close(); }

    // Deletes the lists; the keys are gone with them.
    void close() {
        delete_lists();
        keys_.clear();
    }

    std::vector<search_key>::iterator begin() { return keys_.begin(); }
    std::vector<search_key>::iterator end() { return keys_.end(); }

  private:
    // Harmless on lists that were not created or are deleted already.
    void delete_lists() {
        for (search_key &key : keys_) {
            tbctSTCDeleteListTable(&key.list(), 0);
        }
    }

    std::vector<search_key> keys_;
};

enum class row_result { match, no_match, failure };

// Tests one record, strictly left to right: an OR key that holds ends the test with a match, any other key
// that fails ends it without one. Without keys every record matches.
row_result test_row(std::uint16_t position, search_keys &keys, element_buffer &buffer) {
    bool matches = true;
    for (search_key &key : keys) {
        if (tbctSTCListTableSetPos(&key.list(), position) != 0) {
            trace_return(search_name, 519, QRY_LIB_TABLE_ACCESS);
            return row_result::failure;
        }
        matches = key.matches(buffer);
        if (matches == key.is_or()) {
            break;
        }
    }
    return matches ? row_result::match : row_result::no_match;
}

std::uint32_t check_arguments(std::uint16_t key_num, const qry_lib_tb_list_filter_key_ *keys,
                              const qry_lib_tb_search_id *search_id, const std::uint16_t *hit_num) {
    if (hit_num == nullptr) {
        return trace_return(search_name, 408, QRY_LIB_TABLE_ARGUMENT);
    }
    if (search_id == nullptr || (keys == nullptr && key_num > 0)) {
        return trace_return(search_name, __LINE__, QRY_LIB_TABLE_ARGUMENT);
    }
    if (!std::all_of(keys, keys + key_num, is_allowed)) {
        return trace_return(search_name, 415, QRY_LIB_TABLE_ARGUMENT);
    }
    if (!std::all_of(keys, keys + key_num, is_well_formed)) {
        return trace_return(search_name, __LINE__, QRY_LIB_TABLE_ARGUMENT);
    }
    return 0;
}

void free_records(qry_lib_tb_search_id search_id) {
    const pool_block records(reinterpret_cast<void *>(search_id));
}

} // namespace

extern "C" {

std::uint32_t qry_lib_tb_create_search_table_id(std::uint32_t category, std::uint16_t key_num,
                                                qry_lib_tb_list_filter_key_ *keys,
                                                qry_lib_tb_search_id *search_id, std::uint16_t *hit_num) {
    if (const std::uint32_t code = check_arguments(key_num, keys, search_id, hit_num); code != 0) {
        return code;
    }
    std::uint16_t record_num = 0;
    if (const std::uint32_t code = qry_lib_tb_get_max_stc_table_number(category, &record_num); code != 0) {
        return trace_return(search_name, 422, code);
    }
    pool_block block;
    if (block.take(record_num, sizeof(std::uint16_t)) != 0) {
        trace_return("qry_lib_tb_alloc_mem", 690, QRY_LIB_TABLE_ACCESS);
        return trace_return(search_name, 429, QRY_LIB_TABLE_ACCESS);
    }
    search_keys prepared(category, key_num, keys, record_num);
    element_buffer buffer;
    std::uint16_t *records = block.as<std::uint16_t>();
    std::uint16_t found = 0;
    for (std::uint16_t position = 0; position < record_num; ++position) {
        switch (test_row(position, prepared, buffer)) {
        case row_result::match:
            records[found++] = position;
            break;
        case row_result::no_match:
            break;
        case row_result::failure:
            // What goes back is the block that the caller's id names; the search's own stays lost.
            free_records(*search_id);
            prepared.close();
            *search_id = 0;
            block.release();
            return trace_return(search_name, 452, QRY_LIB_TABLE_ACCESS);
        }
    }
    *hit_num = found;
    *search_id = reinterpret_cast<qry_lib_tb_search_id>(block.release());
    return 0;
}

void qry_lib_tb_delete_search_table_id(qry_lib_tb_search_id *search_id) {
    if (search_id != nullptr) {
        free_records(*search_id);
        *search_id = 0;
    }
}

} // extern "C"
