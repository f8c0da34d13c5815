// The nested-loop join and the projection of its rows.
#include <algorithm>
#include <cstring>

#include "api/qry_lib_db_rowset_lib.h"
#include "link/qry_lib_db_rowset_link_lib.h"
#include "util/element_type.h"
#include "util/trace.h"

namespace norvane {

namespace {

int fail(const char *function, int line) {
    return trace_code(function, line, QRY_LIB_INVALID_ARGUMENT);
}

const QRY_LIB_COLUMN *find_column(const QRY_LIB_RECORD_LINK &record, const char *table_name,
                                  const char *col_name) {
    const auto found =
        std::find_if(record.cols.begin(), record.cols.end(), [&](const QRY_LIB_COLUMN &column) {
            return std::strcmp(column.col_name, col_name) == 0 &&
                   std::strcmp(column.table_name, table_name) == 0;
        });
    return found == record.cols.end() ? nullptr : &*found;
}

} // namespace

int qry_lib_db_rowset_link_lib::link_rowset(const qry_lib_analyze_link_info &link_info,
                                            qry_lib_db_rowset_ &rowset) {
    const std::uint16_t table_num = link_info.get_rowset_num();
    if (table_num <= 1) {
        return fail(__func__, 95);
    }
    if (static_cast<int>(link_info.get_link_num()) < table_num - 1) {
        return fail(__func__, 101);
    }
    const qry_lib_db_rowset_lib rows;
    QRY_LIB_ROWSET_LINK joined;
    for (std::uint16_t i = 0; i < table_num; ++i) {
        qry_lib_db_rowset_ table;
        if (const std::uint32_t code = link_info.get_rowset(i, table); code != 0) {
            return trace_code(__func__, 111, static_cast<int>(code));
        }
        if (rows.get_record_num(table) == 0) {
            free_rowset(joined);
            break;
        }
        rows.first_record_index(table);
        const int code = i == 0 ? take_first(table, joined) : join_table(link_info, table, joined);
        if (code != 0) {
            return code;
        }
        if (joined.records.empty()) {
            break;
        }
    }
    return covert_rowset(joined, link_info, rowset) == 0 ? 0 : fail(__func__, 312);
}

int qry_lib_db_rowset_link_lib::take_first(qry_lib_db_rowset_ &table, QRY_LIB_ROWSET_LINK &joined) {
    const qry_lib_db_rowset_lib rows;
    const std::uint16_t row_num = rows.get_record_num(table);
    joined.records.reserve(row_num);
    for (std::uint16_t row = 0; row < row_num; ++row) {
        if (rows.next_record_index(table) == 0) {
            return fail("link_rowset", 136);
        }
        QRY_LIB_RECORD_LINK &record = joined.records.emplace_back();
        append_row(table, "add_col", record);
    }
    return 0;
}

// Appends every column of the row under the cursor.
void qry_lib_db_rowset_link_lib::append_row(const qry_lib_db_rowset_ &table, const char *label,
                                            QRY_LIB_RECORD_LINK &record) {
    const qry_lib_db_rowset_lib rows;
    const std::int32_t col_num = std::max(table.records[table.current].col_num, 0);
    record.cols.reserve(record.cols.size() + static_cast<std::size_t>(col_num));
    std::uint16_t index = 0;
    for (const QRY_LIB_COLUMN *column = rows.col_at(table, index); column != nullptr;
         column = rows.col_at(table, ++index)) {
        output_print_add_col(label, *column);
        record.cols.push_back(*column);
    }
}

int qry_lib_db_rowset_link_lib::join_table(const qry_lib_analyze_link_info &link_info,
                                           qry_lib_db_rowset_ &table, QRY_LIB_ROWSET_LINK &joined) {
    const qry_lib_db_rowset_lib rows;
    QRY_LIB_ROWSET_LINK previous;
    previous.records.swap(joined.records);
    std::vector<join_key> keys;
    if (const int code = select_keys(link_info, table, previous.records.front(), keys); code != 0) {
        return code;
    }
    const std::uint16_t row_num = rows.get_record_num(table);
    QRY_LIB_RECORD_LINK candidate;
    for (std::uint16_t row = 0; row < row_num; ++row) {
        if (rows.next_record_index(table) == 0) {
            return fail("link_rowset", 242);
        }
        if (const int code = join_row(table, keys, previous, candidate, joined); code != 0) {
            return code;
        }
    }
    return 0;
}

// A link is a key where the second of its two tables is joined: one side is a column of this table, the
// other a column of the rows joined so far.
int qry_lib_db_rowset_link_lib::select_keys(const qry_lib_analyze_link_info &link_info,
                                            const qry_lib_db_rowset_ &table, const QRY_LIB_RECORD_LINK &first,
                                            std::vector<join_key> &keys) {
    static constexpr char name[] = "link_rowset";
    const qry_lib_db_rowset_lib rows;
    qry_lib_db_rowset_ first_row = table;
    if (rows.next_record_index(first_row) == 0) {
        return fail(name, 175);
    }
    const QRY_LIB_COLUMN *column = rows.col_at(first_row, 0);
    if (column == nullptr) {
        return fail(name, 181);
    }
    for (std::uint16_t l = 0; l < link_info.get_link_num(); ++l) {
        QRY_LIB_LINK link;
        if (link_info.get_link(l, link) != 0) {
            return fail(name, 195);
        }
        join_key key{};
        bool in_table = false;
        bool in_previous = false;
        for (const QRY_LIB_COLUMN *side : {&link.left, &link.right}) {
            if (std::strcmp(side->table_name, column->table_name) == 0) {
                if (rows.get_col_index(table, side->table_name, side->col_name, key.index) != 0) {
                    return fail(name, 206);
                }
                in_table = true;
            } else if (find_column(first, side->table_name, side->col_name) != nullptr) {
                key.table_name = side->table_name;
                key.col_name = side->col_name;
                in_previous = true;
            }
        }
        if (in_table && in_previous) {
            keys.push_back(std::move(key));
        }
    }
    return keys.empty() ? fail(name, 233) : 0;
}

// Joins the row under the cursor with every row before it whose keys all equal its own. Each copy goes into
// the same candidate, whose memory serves all of them: most are dropped.
int qry_lib_db_rowset_link_lib::join_row(const qry_lib_db_rowset_ &table, const std::vector<join_key> &keys,
                                         const QRY_LIB_ROWSET_LINK &previous, QRY_LIB_RECORD_LINK &candidate,
                                         QRY_LIB_ROWSET_LINK &joined) {
    const qry_lib_db_rowset_lib rows;
    for (const QRY_LIB_RECORD_LINK &before : previous.records) {
        candidate.cols.assign(before.cols.begin(), before.cols.end());
        bool hit = true;
        for (auto key = keys.begin(); hit && key != keys.end(); ++key) {
            const QRY_LIB_COLUMN *column = rows.col_at(table, key->index);
            if (column == nullptr) {
                return fail("link_rowset", 256);
            }
            const QRY_LIB_COLUMN *other =
                find_column(candidate, key->table_name.c_str(), key->col_name.c_str());
            hit = other != nullptr && check_column_hit(*column, *other) == 1;
        }
        if (!hit) {
            continue;
        }
        for (const QRY_LIB_COLUMN &column : candidate.cols) {
            output_print_add_col("add col(rs2)", column);
        }
        append_row(table, "add col(rs1)", candidate);
        joined.records.push_back({std::move(candidate.cols)});
        candidate.cols.clear();
    }
    return 0;
}

int qry_lib_db_rowset_link_lib::check_column_hit(const QRY_LIB_COLUMN &a, const QRY_LIB_COLUMN &b) {
    if (is_string_element(a.type) && is_string_element(b.type)) {
        return std::strncmp(a.value.str_value, b.value.str_value, sizeof a.value.str_value) == 0 ? 1 : 0;
    }
    const std::uint32_t a_width = number_width(a.type);
    const std::uint32_t b_width = number_width(b.type);
    return a_width != 0 && b_width != 0 && load_number(&a.value, a_width) == load_number(&b.value, b_width)
               ? 1
               : 0;
}

void qry_lib_db_rowset_link_lib::free_record(QRY_LIB_RECORD_LINK &record) {
    std::vector<QRY_LIB_COLUMN>().swap(record.cols);
}

void qry_lib_db_rowset_link_lib::free_rowset(QRY_LIB_ROWSET_LINK &rowset) {
    std::for_each(rowset.records.begin(), rowset.records.end(),
                  [this](QRY_LIB_RECORD_LINK &record) { free_record(record); });
    std::vector<QRY_LIB_RECORD_LINK>().swap(rowset.records);
}

int qry_lib_db_rowset_link_lib::covert_rowset(QRY_LIB_ROWSET_LINK &rows,
                                              const qry_lib_analyze_link_info &link_info,
                                              qry_lib_db_rowset_ &rowset) {
    const qry_lib_db_rowset_lib lib;
    const auto row_num = static_cast<std::uint16_t>(rows.records.size());
    std::uint16_t col_num = link_info.get_cols_num();
    if (col_num == 0) {
        col_num = rows.records.empty() ? 1 : static_cast<std::uint16_t>(rows.records.front().cols.size());
    }
    if (lib.init_rowset(col_num, row_num, rowset) != 0) {
        return fail(__func__, 565);
    }
    rowset_guard unfinished(rowset);
    for (std::uint16_t row = 0; row < row_num; ++row) {
        if (const int line = fill_next_row(rows.records[row], link_info, col_num, rowset); line != 0) {
            return fail(__func__, line);
        }
    }
    unfinished.release();
    lib.first_record_index(rowset);
    return 0;
}

// Fills the row behind the cursor. 0, or the trace point of the step that failed.
int qry_lib_db_rowset_link_lib::fill_next_row(const QRY_LIB_RECORD_LINK &record,
                                              const qry_lib_analyze_link_info &link_info,
                                              std::uint16_t col_num, qry_lib_db_rowset_ &rowset) {
    const qry_lib_db_rowset_lib lib;
    if (lib.next_record_index(rowset) == 0) {
        return 573;
    }
    const bool every_column = link_info.get_cols_num() == 0;
    for (std::uint16_t j = 0; j < col_num; ++j) {
        const QRY_LIB_COLUMN *column = nullptr;
        if (every_column) {
            column = j < record.cols.size() ? &record.cols[j] : nullptr;
        } else {
            char table[QRY_LIB_TABLE_NAME_MAX + 1];
            char col[QRY_LIB_COLUMN_NAME_MAX + 1];
            if (link_info.get_cols(j, table, col) != 0) {
                return 587;
            }
            column = find_column(record, table, col);
        }
        if (column == nullptr) {
            return 599;
        }
        if (lib.set_col(rowset, j, *column) != 0) {
            return 610;
        }
    }
    return 0;
}

} // namespace norvane
