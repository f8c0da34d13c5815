// The filled store and the checks after each input.
#include "fuzz/fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "exec/qry_lib_table_element.h"
#include "platform/element_table.h"
#include "platform/host/element_store.h"
#include "platform/host/qryhost.h"

namespace fuzz {

namespace {

QRY_LIB_COLUMN distinct_value(const QRY_LIB_ELEMENT_INFO &element, std::uint32_t record) {
    QRY_LIB_COLUMN column{};
    const std::uint32_t number = record + 1;
    if (norvane::is_string_element(element.elem_type)) {
        std::snprintf(column.value.str_value, sizeof column.value.str_value, "v%u", number);
        column.type = QRY_LIB_COLUMN_TYPE_STR;
    } else {
        column.value.ulong_value = number;
        column.type = QRY_LIB_COLUMN_TYPE_ULONG;
    }
    return column;
}

// Writes one value beside what its composite element holds already.
void write_value(norvane::qry_lib_table_element &catalog, const QRY_LIB_ELEMENT_INFO &element,
                 std::uint32_t record) {
    alignas(8) char buffer[norvane::member_offset_max + sizeof(QRY_LIB_COLUMN_VALUE) + 1] = {};
    check(tbctSTCGetTable(element.category_id, record + 1, element.element_id, buffer) == 0,
          "no such record");
    catalog.conv_val_db2e_to_tbdb(element, distinct_value(element, record), buffer);
    tbctSTCSetTable(0x2301, element.category_id, record + 1, element.element_id, buffer);
}

void fill_table(norvane::qry_lib_table_element &catalog, const QRY_LIB_TABLE_DEF &table) {
    for (std::uint32_t record = 0; record < QRYLIB_ROOMY_RECORDS / 2; ++record) {
        for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
            write_value(catalog, column.info, record);
        }
    }
}

std::vector<std::uint8_t> filled_store() {
    qryhost_set_trace_sink(nullptr, nullptr);
    for (const norvane::database_schema *database : norvane::databases) {
        norvane::qry_lib_table_element *catalog = nullptr;
        norvane::qry_lib_table_element_factory::create_elemet(database->name, &catalog);
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            fill_table(*catalog, table);
        }
    }
    return qryhost::current_store()->snapshot();
}

bool was_written() {
    return qryhost_call_count(QRYHOST_SET_TABLE) + qryhost_call_count(QRYHOST_INIT_TABLE) != 0;
}

} // namespace

void check(bool holds, const std::string &what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what.c_str());
        std::abort();
    }
}

void restore_store() {
    static const std::vector<std::uint8_t> filled = filled_store();
    if (was_written()) {
        qryhost::current_store()->replace(filled);
    }
    qryhost_fail_clear();
}

const std::vector<table_name> &tables() {
    static const std::vector<table_name> names = [] {
        std::vector<table_name> found;
        for (const norvane::database_schema *database : norvane::databases) {
            for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
                found.push_back({database->name, table.table_name, {}});
                for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                    found.back().columns.emplace_back(column.info.name);
                }
            }
        }
        return found;
    }();
    return names;
}

const table_name &pick_table(input &in) {
    return tables()[in.ConsumeIntegralInRange<std::size_t>(0, tables().size() - 1)];
}

std::string pick_column(input &in, const table_name &table) {
    const std::size_t choice = in.ConsumeIntegralInRange<std::size_t>(0, table.columns.size());
    return choice < table.columns.size() ? table.columns[choice] : in.ConsumeRandomLengthString(40);
}

// Long texts are made of one character, so that a capacity can be met by a small input.
std::string pick_text(input &in) {
    switch (in.ConsumeIntegralInRange<int>(0, 7)) {
    case 0:
        return std::string(in.ConsumeIntegralInRange<std::size_t>(0, 3100), 'x');
    case 1:
        return "v" + std::to_string(in.ConsumeIntegralInRange<int>(0, 9));
    case 2:
        return std::to_string(in.ConsumeIntegral<std::int32_t>());
    default:
        return in.ConsumeRandomLengthString(300);
    }
}

void read_and_release(std::uint32_t code, qry_lib_db_rowset_ &rowset) {
    check(code == 0 || (rowset.records == nullptr && rowset.record_num == 0),
          "a failed query leaves rows behind");
    check(code != 0 || rowset.current == -1, "the cursor is not before the first row");
    while (qry_lib_db_rowset_next(&rowset) == 1) {
        const auto column_num = static_cast<std::uint16_t>(rowset.records[rowset.current].col_num);
        for (std::uint16_t i = 0; i <= column_num; ++i) {
            char text[QRY_LIB_STRING_MAX + 1];
            qry_lib_db_rowset_get_str(text, sizeof text, &rowset, i, "-");
            check(std::memchr(text, '\0', sizeof text) != nullptr, "a text has no end");
            qry_lib_db_rowset_get_str(text, 3, &rowset, i, "long default");
            qry_lib_db_rowset_get_ulong(&rowset, i, 7);
            qry_lib_db_rowset_get_uint(&rowset, i, 7);
            qry_lib_db_rowset_get_int(&rowset, i, -7);
        }
    }
    qry_lib_db_rowset_term(&rowset);
    check(rowset.records == nullptr, "a released rowset has rows");
}

temporary_folder::temporary_folder() : path_(std::filesystem::temp_directory_path() / "qrylib-fuzz-XXXXXX") {
    check(mkdtemp(path_.data()) != nullptr, "no folder for files");
}

temporary_folder::~temporary_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string content_of(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

balanced_memory::balanced_memory() : blocks_(qryhost_pool_blocks()) {}

balanced_memory::~balanced_memory() {
    check(qryhost_pool_blocks() == blocks_, "blocks of the memory partition are lost or given back twice");
}

} // namespace fuzz
