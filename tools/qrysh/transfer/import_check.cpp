// Every rule that a row must keep to before anything is written.
#include "tools/qrysh/transfer/import_check.h"

#include <qrylib/types.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

#include <fmt/format.h>

#include "tools/text/engine.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/near_match.h"
#include "tools/text/number_range.h"
#include "tools/text/printers.h"
#include "tools/text/schema.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

using column = qry_lib_catalog_column_;
using key = std::vector<cell>;

class planner {
  public:
    planner(const std::string &db_name, const std::string &table)
        : db_name_(db_name), table_(table), free_keys_(free_keys(db_name, table)) {
        for (const column &c : table_columns(db_name, table)) {
            if (c.is_key != 0) {
                key_names_.emplace_back(c.name);
            }
        }
    }

    import_plan plan(std::string_view text) {
        csv_reader file(text);
        try {
            read(file);
        } catch (const csv_error &error) {
            fault(error.place(), error.what());
        }
        return std::move(plan_);
    }

  private:
    void read(csv_reader &file) {
        const auto header = file.next();
        if (!header) {
            fault({1, 1}, "expected a line that names columns");
            return;
        }
        read_header(*header);
        if (plan_.fault_num != 0) {
            return;
        }
        read_existing_keys();
        file_place last = header->front().place;
        while (const auto row = file.next()) {
            read_row(*row);
            last = row->front().place;
        }
        check_room(last);
    }

    void fault(file_place place, std::string sentence) {
        if (plan_.fault_num++ < faults_kept) {
            plan_.faults.push_back({place, std::move(sentence)});
        }
    }

    void read_header(const std::vector<csv_field> &header) {
        if (free_keys_.empty()) {
            fault({1, 1}, table_ + " has no free records to insert into; its records are changed by UPDATE");
        }
        for (const csv_field &name : header) {
            const auto found = find_column(db_name_, table_, name.text);
            if (!found) {
                fault(name.place, fmt::format("{} has no column \"{}\"{}", table_, printable(name.text),
                                              did_you_mean(name.text, column_names(db_name_, table_))));
                continue;
            }
            if (position_of(name.text) != columns_.size()) {
                fault(name.place, fmt::format("the column {} is repeated", name.text));
            }
            columns_.push_back(*found);
        }
        for (const std::string &name : key_names_) {
            if (position_of(name) == columns_.size()) {
                fault({1, 1}, fmt::format("the key column {} is missing", name));
            }
        }
    }

    std::size_t position_of(const std::string &name) const {
        const auto place =
            std::find_if(columns_.begin(), columns_.end(), [&](const column &c) { return name == c.name; });
        return static_cast<std::size_t>(place - columns_.begin());
    }

    void read_existing_keys() {
        std::string names;
        for (const std::string &name : key_names_) {
            names += (names.empty() ? "" : ",") + name;
        }
        const reply answer = execute(db_name_, fmt::format("SELECT {} FROM {}", names, table_));
        if (!answer.rows) {
            throw std::runtime_error(fmt::format("{} cannot be read: code 0x{:04X}", table_, answer.code));
        }
        existing_.insert(answer.rows->rows.begin(), answer.rows->rows.end());
    }

    void read_row(const std::vector<csv_field> &row) {
        if (row.size() != columns_.size()) {
            fault(row.back().place, fmt::format("expected {} fields, not {}", columns_.size(), row.size()));
            return;
        }
        const std::size_t faults_before = plan_.fault_num;
        write_statement insert{true, table_, {}, ""};
        for (std::size_t i = 0; i < row.size(); ++i) {
            insert.values.push_back({columns_[i].name, read_value(columns_[i], row[i])});
        }
        if (plan_.fault_num == faults_before) {
            check_key(insert, row);
        }
        if (plan_.fault_num == 0) {
            plan_.inserts.push_back(std::move(insert));
        }
    }

    cell read_value(const column &c, const csv_field &field) {
        return c.type == QRY_LIB_COLUMN_TYPE_STR ? read_text(c, field) : read_number(c, field);
    }

    cell read_text(const column &c, const csv_field &field) {
        if (field.text.size() >= c.size) {
            fault(field.place, fmt::format("{} holds at most {} bytes, this text has {}", c.name, c.size - 1,
                                           field.text.size()));
        } else if (field.text.find('\0') != std::string::npos) {
            fault(field.place, "a text must not hold a zero byte");
        } else if (!is_utf8(field.text)) {
            fault(field.place, "the text is not UTF-8");
        }
        return field.text;
    }

    cell read_number(const column &c, const csv_field &field) {
        const number_range range = range_of(c.type);
        const char *const end = field.text.data() + field.text.size();
        std::int64_t number = 0;
        const auto [stop, error] = std::from_chars(field.text.data(), end, number);
        if (stop != end || error == std::errc::invalid_argument) {
            fault(field.place, fmt::format("{} is a number, not \"{}\"", c.name, printable(field.text)));
        } else if (error != std::errc() || number < range.smallest || number > range.largest) {
            fault(field.place,
                  fmt::format("{} lies between {} and {}", c.name, range.smallest, range.largest));
        }
        return number;
    }

    void check_key(const write_statement &insert, const std::vector<csv_field> &row) {
        for (const free_key &free : free_keys_) {
            const std::size_t at = position_of(free.column);
            if (insert.values[at].value == free.value) {
                fault(row[at].place, literal(free.value) + " marks a free record");
                return;
            }
        }
        key own;
        for (const std::string &name : key_names_) {
            own.push_back(insert.values[position_of(name)].value);
        }
        const auto [earlier, is_first] = seen_.emplace(own, row.front().place.line);
        if (!is_first) {
            fault(row[position_of(key_names_.front())].place,
                  fmt::format("the key stands in line {} already", earlier->second));
        }
        new_records_ += is_first && existing_.count(own) == 0 ? 1 : 0;
    }

    void check_room(file_place end) {
        const std::int64_t room =
            table_capacity(db_name_, table_) - static_cast<std::int64_t>(existing_.size());
        if (plan_.fault_num == 0 && new_records_ > room) {
            fault(end, fmt::format("{} has room for {} new records, the file holds {}", table_, room,
                                   new_records_));
        }
    }

    std::string db_name_;
    std::string table_;
    std::vector<free_key> free_keys_;
    std::vector<std::string> key_names_;
    std::vector<column> columns_; // in the order of the header
    std::set<key> existing_;
    std::map<key, std::size_t> seen_; // and the line of each
    std::int64_t new_records_ = 0;
    import_plan plan_;
};

} // namespace

import_plan plan_import(const std::string &db_name, const std::string &table, std::string_view text) {
    return planner(db_name, table).plan(text);
}

} // namespace qrysh
