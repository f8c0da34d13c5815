// From the statement's key columns and conditions to the numbers of the records that it concerns.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "exec/element_buffer.h"
#include "exec/qry_lib_db_executer.h"
#include "util/bounded_text.h"
#include "util/pool_block.h"
#include "util/trace.h"

namespace norvane {

namespace {

// All of a key but its value.
void set_key(const QRY_LIB_ELEMENT_INFO &info, QRY_LIB_OPERATION_TYPE operation, QRY_LIB_JOIN_TYPE join,
             qry_lib_tb_list_filter_key_ &key) {
    key.category_id = info.category_id;
    key.element_id = info.element_id;
    key.elem_type = static_cast<std::uint8_t>(info.elem_type);
    key.cmp_size = static_cast<std::uint8_t>(info.size);
    key.member_offset = info.member_offset;
    key.operation = operation;
    key.join = join;
}

// Copies a key, but of its value's 3000 bytes only those that a search may look at.
void copy_key(const qry_lib_tb_list_filter_key_ &key, qry_lib_tb_list_filter_key_ *out) {
    const std::size_t value_size = is_string_element(key.elem_type)
                                       ? bounded_length(key.value, QRY_LIB_STRING_MAX) + 1
                                       : std::max<std::size_t>(key.cmp_size, sizeof(std::uint32_t));
    std::memcpy(out, &key, offsetof(qry_lib_tb_list_filter_key_, value) + value_size);
    out->operation = key.operation;
    out->join = key.join;
}

void copy_key(const light_key &key, qry_lib_tb_list_filter_key_ *out) {
    set_key(*key.element, key.operation, key.join, *out);
    if (const std::uint32_t width = number_width(key.element->elem_type); width != 0) {
        store_number(out->value, width, key.number);
    } else {
        std::memcpy(out->value, key.text.c_str(), key.text.size() + 1);
    }
}

// A key whose value is in its element's representation.
light_key make_key(const QRY_LIB_ELEMENT_INFO &info, QRY_LIB_OPERATION_TYPE operation, QRY_LIB_JOIN_TYPE join,
                   const char *value) {
    if (const std::uint32_t width = number_width(info.elem_type); width != 0) {
        return {&info, operation, join, load_number(value, width), {}};
    }
    return {&info, operation, join, 0, {value, bounded_length(value, QRY_LIB_STRING_MAX)}};
}

// Runs an operation that adds keys on those of a list: what was made before a failure is added too.
template <typename Operation>
int on_list(qry_lib_db_executer::filter_keys &list, Operation operation) {
    qry_lib_db_executer::light_keys keys;
    const int code = operation(keys);
    for (const light_key &key : keys) {
        copy_key(key, &list.emplace_back());
    }
    return code;
}

// The record numbers that a search found, given back when they have been read.
class search_records {
  public:
    explicit search_records(qry_lib_tb_search_id id) : id_(id) {}
    search_records(const search_records &) = delete;
    search_records &operator=(const search_records &) = delete;
    ~search_records() { qry_lib_tb_delete_search_table_id(&id_); }

    const std::uint16_t *begin() const { return reinterpret_cast<const std::uint16_t *>(id_); }

  private:
    qry_lib_tb_search_id id_;
};

// The statement's first column of exactly that name, or null.
const QRY_LIB_COLUMN *find_column(const qry_lib_analyze_info &info, const char *name) {
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        const QRY_LIB_COLUMN *column = info.col_at(i);
        if (column != nullptr && std::strcmp(column->col_name, name) == 0) {
            return column;
        }
    }
    return nullptr;
}

bool is_key(const QRY_LIB_ELEMENT_DEF &column) {
    return column.is_primary == 1;
}

// Where a conversion puts a value, or a read finds it, in the element's buffer.
char *value_in(element_buffer &buffer, const QRY_LIB_ELEMENT_INFO &info) {
    return buffer.data() + info.member_offset;
}

} // namespace

int qry_lib_db_executer::create_filter_key(const qry_lib_analyze_info &info, unsigned int &category,
                                           light_keys &keys) {
    const char *table = info.get_table();
    keys.reserve(keys.size() + info.get_filter_cols_num() + 1); // most tables have one key column
    const int key_code = info.get_exec_type() == QRY_LIB_DB_QUERY_TYPE_INSERT
                             ? create_primary_filter_key(table, QRY_LIB_OPERATION_TYPE_EQUAL, info, keys)
                             : create_primary_filter_key(table, QRY_LIB_OPERATION_TYPE_NOT_EQUAL, keys);
    if (key_code != 0) {
        return trace_code(__func__, 768, key_code);
    }
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        if (const int code = create_condition_key(info, i, keys); code != 0) {
            return code;
        }
    }
    if (const int code = catalog_->get_tbdb_category_id(table, category); code != 0) {
        return trace_code(__func__, 812, code);
    }
    return 0;
}

int qry_lib_db_executer::create_condition_key(const qry_lib_analyze_info &info, std::uint16_t index,
                                              light_keys &keys) {
    static constexpr char name[] = "create_filter_key";
    const QRY_LIB_CONDITION *condition = info.filter_at(index);
    if (condition == nullptr) {
        return trace_code(name, 779, QRY_LIB_NO_SUCH_ITEM);
    }
    const QRY_LIB_ELEMENT_INFO *element = catalog_->find_info(info.get_table(), condition->col_name.c_str());
    if (element == nullptr) {
        return trace_code(name, 786, QRY_LIB_INVALID_ARGUMENT);
    }
    element_buffer buffer;
    if (const int code = catalog_->conv_text_to_tbdb(*element, condition->value.str_value, buffer.data());
        code != 0) {
        return trace_code(name, 801, code);
    }
    keys.push_back(make_key(*element, condition->operation, condition->join, value_in(buffer, *element)));
    return 0;
}

int qry_lib_db_executer::create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                                   light_keys &keys) {
    if (!catalog_->is_primary_filter_key(table)) {
        return 0;
    }
    const std::size_t before = keys.size();
    element_buffer buffer;
    for (const QRY_LIB_ELEMENT_DEF &column : catalog_->columns_of(table)) {
        if (!is_key(column)) {
            continue;
        }
        buffer.clear(column.info);
        const std::uint32_t code =
            qry_lib_tb_get_stc_default_table(column.info.category_id, column.info.element_id, buffer.data());
        if (code != 0) {
            return trace_code(__func__, 861, static_cast<int>(code));
        }
        keys.push_back(
            make_key(column.info, operation, QRY_LIB_JOIN_TYPE_AND, value_in(buffer, column.info)));
    }
    return keys.size() != before ? 0 : trace_code(__func__, 849, QRY_LIB_INVALID_ARGUMENT);
}

int qry_lib_db_executer::create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                                   const qry_lib_analyze_info &info, light_keys &keys) {
    const auto columns = catalog_->columns_of(table);
    if (std::none_of(columns.begin(), columns.end(), is_key)) {
        return trace_code(__func__, 945, QRY_LIB_INVALID_ARGUMENT);
    }
    if (!catalog_->is_primary_filter_key(table)) {
        return 0;
    }
    // Every key column must be there before the first value is looked at.
    target_columns supplied;
    for (const QRY_LIB_ELEMENT_DEF &column : columns) {
        const QRY_LIB_COLUMN *value = is_key(column) ? find_column(info, column.info.name) : nullptr;
        if (value != nullptr) {
            supplied.push_back({value, &column.info, 0});
        } else if (is_key(column)) {
            return trace_code(__func__, 982, QRY_LIB_INVALID_ARGUMENT);
        }
    }
    for (const target_column &target : supplied) {
        element_buffer buffer;
        if (const int code = catalog_->conv_val_db2e_to_tbdb(*target.element, *target.column, buffer.data());
            code != 0) {
            return trace_code(__func__, 994, code);
        }
        char *value = value_in(buffer, *target.element);
        if (const int code = create_primary_filter_key_chk(*target.element, value); code != 0) {
            return trace_code(__func__, 1001, code);
        }
        keys.push_back(make_key(*target.element, operation, QRY_LIB_JOIN_TYPE_AND, value));
    }
    return 0;
}

int qry_lib_db_executer::create_primary_filter_key_chk(QRY_LIB_ELEMENT_INFO info, char *value) {
    element_buffer buffer;
    buffer.clear(info);
    const std::uint32_t code =
        qry_lib_tb_get_stc_default_table(info.category_id, info.element_id, buffer.data());
    if (code != 0) {
        return trace_code(__func__, 893, static_cast<int>(code));
    }
    const char *free_value = value_in(buffer, info);
    const int order = is_string_element(info.elem_type) ? std::strncmp(value, free_value, info.size)
                                                        : std::memcmp(value, free_value, info.size);
    return order == 0 ? QRY_LIB_INVALID_ARGUMENT : 0;
}

template <typename Keys>
int qry_lib_db_executer::search(unsigned int category, const Keys &keys, record_numbers &records) {
    static constexpr char name[] = "create_search_table_id";
    if (keys.size() > UINT16_MAX) {
        return trace_code(name, __LINE__, QRY_LIB_NOT_ACCEPTED);
    }
    pool_block block;
    if (block.take(keys.size(), sizeof(qry_lib_tb_list_filter_key_)) != 0) {
        return trace_code(name, 1430, QRY_LIB_NO_MEMORY);
    }
    auto *array = block.as<qry_lib_tb_list_filter_key_>();
    auto *next = array;
    for (const auto &key : keys) {
        copy_key(key, next++);
    }
    qry_lib_tb_search_id id = 0;
    std::uint16_t record_num = 0;
    const std::uint32_t code = qry_lib_tb_create_search_table_id(
        category, static_cast<std::uint16_t>(keys.size()), array, &id, &record_num);
    if (code != 0) {
        block.give_back();
        trace_return(name, 1448, QRY_LIB_INVALID_ARGUMENT);
        return static_cast<int>(code);
    }
    const search_records found(id);
    records.insert(records.end(), found.begin(), found.begin() + record_num);
    return 0;
}

int qry_lib_db_executer::create_search_table_id(unsigned int category, const light_keys &keys,
                                                record_numbers &records) {
    return search(category, keys, records);
}

// The forms with lists.

void qry_lib_db_executer::set_filter_key(const QRY_LIB_ELEMENT_INFO &info, QRY_LIB_OPERATION_TYPE operation,
                                         QRY_LIB_JOIN_TYPE join, const void *value, filter_keys &keys) {
    qry_lib_tb_list_filter_key_ &key = keys.emplace_back();
    set_key(info, operation, join, key);
    if (is_string_element(info.elem_type)) {
        copy_bounded<QRY_LIB_STRING_MAX>(key.value, static_cast<const char *>(value));
    } else if (const std::uint32_t width = number_width(info.elem_type); width != 0) {
        copy_number(key.value, value, width);
    }
}

int qry_lib_db_executer::create_filter_key(const qry_lib_analyze_info &info, unsigned int &category,
                                           filter_keys &keys) {
    return on_list(keys, [&](light_keys &made) { return create_filter_key(info, category, made); });
}

int qry_lib_db_executer::create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                                   filter_keys &keys) {
    return on_list(keys, [&](light_keys &made) { return create_primary_filter_key(table, operation, made); });
}

int qry_lib_db_executer::create_primary_filter_key(const char *table, QRY_LIB_OPERATION_TYPE operation,
                                                   const qry_lib_analyze_info &info, filter_keys &keys) {
    return on_list(keys,
                   [&](light_keys &made) { return create_primary_filter_key(table, operation, info, made); });
}

int qry_lib_db_executer::create_search_table_id(unsigned int category, filter_keys &keys,
                                                record_list &records) {
    record_numbers found;
    const int code = search(category, keys, found);
    records.insert(records.end(), found.begin(), found.end());
    return code;
}

} // namespace norvane
