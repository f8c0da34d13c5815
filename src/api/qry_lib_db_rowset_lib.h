// Rowsets: creating, filling, walking and releasing them.
#pragma once

#include <cstdint>

#include <qrylib/types.h>

namespace norvane {

// Operations on a rowset; no state of its own. A rowset's row array and each row's column array are blocks of
// the memory partition. A fresh column array is not cleared: whoever fills a rowset writes every column.
class qry_lib_db_rowset_lib {
  public:
    // Creates the rows, cursor before the first. 0; 0xDB05 without columns; 1 when there is no memory.
    std::uint32_t init_rowset(std::uint16_t col_num, std::uint16_t row_num, qry_lib_db_rowset_ &rowset) const;

    // Releases the rows and leaves the rowset empty.
    void delete_rowset(qry_lib_db_rowset_ &rowset) const;

    // Copy a whole column into or out of the row under the cursor. 0; 0xDB05 when the cursor is not on a row
    // or there is no such column.
    std::uint32_t set_col(qry_lib_db_rowset_ &rowset, std::uint16_t col_index,
                          const QRY_LIB_COLUMN &column) const;
    std::uint32_t get_col(const qry_lib_db_rowset_ &rowset, std::uint16_t col_index,
                          QRY_LIB_COLUMN &column) const;

    // The column itself, for reading or writing in place; null where set_col and get_col fail.
    QRY_LIB_COLUMN *col_at(const qry_lib_db_rowset_ &rowset, std::uint16_t col_index) const {
        if (rowset.current < 0 || rowset.current >= rowset.record_num) {
            return nullptr;
        }
        const QRY_LIB_RECORD &record = rowset.records[rowset.current];
        return col_index < record.col_num ? &record.cols[col_index] : nullptr;
    }

    // The first column of that name and table. 0, or 0xDB02 when there is none.
    std::uint32_t get_col_index(const qry_lib_db_rowset_ &rowset, const char *table_name,
                                const char *col_name, std::uint16_t &index) const;

    void first_record_index(qry_lib_db_rowset_ &rowset) const { rowset.current = -1; }

    // 1 when the cursor moved onto a further row, 0 at the end.
    std::uint32_t next_record_index(qry_lib_db_rowset_ &rowset) const;

    // The low 16 bits of the row count.
    std::uint16_t get_record_num(const qry_lib_db_rowset_ &rowset) const {
        return static_cast<std::uint16_t>(rowset.record_num);
    }
};

// Releases a rowset, unless it is handed to another owner first.
class rowset_guard {
  public:
    explicit rowset_guard(qry_lib_db_rowset_ &rowset) : rowset_(&rowset) {}
    rowset_guard(const rowset_guard &) = delete;
    rowset_guard &operator=(const rowset_guard &) = delete;
    ~rowset_guard() {
        if (rowset_ != nullptr) {
            qry_lib_db_rowset_lib().delete_rowset(*rowset_);
        }
    }
    void release() { rowset_ = nullptr; }

  private:
    qry_lib_db_rowset_ *rowset_;
};

// What a call's own rowset begins as.
constexpr qry_lib_db_rowset_ empty_rowset = {0, nullptr, -1};

} // namespace norvane
