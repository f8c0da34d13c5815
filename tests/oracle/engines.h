// The two engines that run each statement: the library, and SQLite with the library's rules translated.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <vector>

#include "oracle/statement.h"

namespace oracle {

using row = std::vector<std::string>;

// A code, and for queries the rows: each value with its table, its column and its type.
struct answer {
    std::uint32_t code;
    std::vector<row> rows;

    bool operator==(const answer &other) const { return code == other.code && rows == other.rows; }
};

std::string cell_text(const std::string &table, const std::string &column, std::uint32_t type,
                      const std::string &value);

constexpr int record_num = QRYLIB_ROOMY_RECORDS;
constexpr int default_record = -1;

// Records are numbered from 0; the default record is -1. A record is filled with a value for each column.
class library {
  public:
    library();
    void put(const table_def &table, int record, const std::vector<given_value> &values);
    answer run(const statement &made);

    // Every record, used or not, the default record first.
    std::vector<row> content(const table_def &table);

    std::vector<std::uint8_t> save();
    void restore(const std::vector<std::uint8_t> &saved);
};

class mirror {
  public:
    mirror();
    mirror(const mirror &) = delete;
    mirror &operator=(const mirror &) = delete;
    ~mirror();

    void put(const table_def &table, int record, const std::vector<given_value> &values);
    answer run(const statement &made);
    std::vector<row> content(const table_def &table);

    // Brackets around what may have to be undone; they nest nowhere.
    void begin();
    void undo();
    void keep();

  private:
    std::vector<row> query(const std::string &sql);
    std::vector<row> select(const statement &made);
    answer change(const statement &made, const std::string &which);
    answer insert(const statement &made);
    answer run_linked(const statement &made);

    sqlite3 *database_ = nullptr;
};

} // namespace oracle
