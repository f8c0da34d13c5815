// Each clause of the text beside what the analysis kept of it.
#include "tools/text/notes.h"

#include <qrylib/types.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "parser/qry_lib_sql_parser.h"
#include "tools/text/clauses.h"
#include "tools/text/engine.h"
#include "tools/text/query_reader.h"
#include "tools/text/schema.h"
#include "tools/text/statement_text.h"
#include "tools/text/text.h"
#include "tools/text/value_notes.h"

namespace qrytext {

namespace {

constexpr std::string_view operation_texts[] = {"=", "!=", "<", ">", "<=", ">=", " LIKE "};

// One comparison of the text, and the conditions that the analysis made of it.
struct comparison {
    text_span span;
    std::vector<query_condition> kept;
    bool is_list;
};

class note_finder {
  public:
    note_finder(const std::string &db_name, const std::string &sql, const query &asked)
        : db_name_(db_name), sql_(sql), asked_(asked), parts_(clauses_of(sql)) {}

    std::vector<finding> find() {
        look_at_columns();
        look_at_values();
        look_at_conditions();
        look_at_sorting();
        return std::move(notes_);
    }

  private:
    std::string_view text_of(text_span span) const {
        return std::string_view(sql_).substr(span.place, span.length);
    }

    void add(text_span span, std::string text, std::string hint) {
        notes_.push_back({span.place, span.length, std::move(text), std::move(hint)});
    }

    std::string table_of(const std::string &column) const {
        const std::size_t point = column.find('.');
        return asked_.tables.size() > 1 && point != std::string::npos ? column.substr(0, point)
                                                                      : asked_.tables.front();
    }

    std::optional<qry_lib_catalog_column_> find(const std::string &column) const {
        const std::size_t point = asked_.tables.size() > 1 ? column.find('.') : std::string::npos;
        return find_column(db_name_, table_of(column),
                           point == std::string::npos ? column : column.substr(point + 1));
    }

    // COUNT(*) is found anywhere, and all else is forgotten.
    void look_at_columns() {
        if (asked_.type != QRY_LIB_DB_QUERY_TYPE_COUNT) {
            return;
        }
        std::string list(text_of(parts_.columns));
        list.erase(std::remove(list.begin(), list.end(), ' '), list.end());
        if (list != "COUNT(*)") {
            notes_.push_back(
                left_over(sql_, parts_.columns, "was read as COUNT(*)", "COUNT(*) stands alone"));
        }
    }

    void look_at_values() {
        if (kind_of(sql_) != statement_kind::write_record) {
            return;
        }
        const std::vector<assignment> values = parse_write_statement(sql_).values;
        for (auto given = values.begin(); given != values.end(); ++given) {
            if (const auto column = find(given->column)) {
                note_written_value(sql_, *given, *column, notes_);
            }
            if (std::any_of(given + 1, values.end(),
                            [&](const assignment &a) { return a.column == given->column; })) {
                add({given->place, given->length},
                    fmt::format("{} is given twice; the last value stays", given->column), "");
            }
        }
    }

    void look_at_conditions() {
        const std::vector<comparison> all = read_comparisons();
        const bool are_joined_by_and = text_of(parts_.condition).find(" OR ") == std::string_view::npos;
        for (auto one = all.begin(); one != all.end(); ++one) {
            look_at_comparison(*one);
            const bool goes_on = std::any_of(
                one + 1, all.end(), [&](const comparison &other) { return tests_with(*one, other); });
            if (one->is_list && are_joined_by_and && goes_on) {
                add(one->span,
                    "a list makes this OR: its records are taken whatever the conditions behind it say",
                    "write the list as the last condition");
            }
        }
    }

    std::vector<comparison> read_comparisons() const {
        std::vector<comparison> all;
        for (const text_span &span : comparisons_of(sql_, parts_.condition)) {
            norvane::qry_lib_analyze_info info;
            const std::string text(text_of(span));
            if (norvane::qry_lib_sql_parser().divide_operate(text.c_str(), QRY_LIB_JOIN_TYPE_AND, info) !=
                0) {
                return {}; // not so in the statement: no memory was left just now
            }
            std::vector<query_condition> kept = describe(info).conditions;
            const bool is_list =
                kept.front().join == QRY_LIB_JOIN_TYPE_OR; // what a list alone can make of AND
            all.push_back({span, std::move(kept), is_list});
        }
        return all;
    }

    bool is_link(const query_condition &kept) const {
        return asked_.tables.size() > 1 && !kept.quoted && kept.value.find('.') != std::string::npos;
    }

    // Conditions of one table's search; those of a join go to their tables.
    bool tests_with(const comparison &one, const comparison &other) const {
        return !is_link(other.kept.front()) &&
               table_of(one.kept.front().column) == table_of(other.kept.front().column);
    }

    void look_at_comparison(const comparison &one) {
        if (is_link(one.kept.front())) {
            return;
        }
        const std::vector<text_span> values = one.is_list ? list_items(one) : std::vector{value_span(one)};
        for (std::size_t i = 0; i < std::min(values.size(), one.kept.size()); ++i) {
            const query_condition &kept = one.kept[i];
            const auto column = find(kept.column);
            if (column && !kept.quoted && find(kept.value)) {
                add(values[i],
                    fmt::format("{} was read as a value, not as the column of that name", kept.value),
                    "a column is compared with values alone");
            } else if (column) {
                note_compared_value(sql_, values[i], kept, *column, notes_);
            }
        }
    }

    text_span trimmed(std::size_t begin, std::size_t end) const {
        const std::string_view text = std::string_view(sql_).substr(begin, end - begin);
        const std::string_view inner = trim(text);
        return inner.empty()
                   ? text_span{begin, 0}
                   : text_span{begin + static_cast<std::size_t>(inner.data() - text.data()), inner.size()};
    }

    // Behind the operator, which is the first behind the column.
    text_span value_span(const comparison &one) const {
        const query_condition &kept = one.kept.front();
        std::string_view sign = operation_texts[kept.operation];
        if (one.is_list) {
            sign = kept.operation == QRY_LIB_OPERATION_TYPE_LIKE ? " INLIKE" : " IN";
        }
        const std::size_t place = sql_.find(sign, one.span.place + kept.column.size());
        return trimmed(place + sign.size(), one.span.place + one.span.length);
    }

    // Brackets are peeled from both ends, then every comma divides.
    std::vector<text_span> list_items(const comparison &one) const {
        const text_span list = value_span(one);
        std::size_t begin = list.place;
        std::size_t end = list.place + list.length;
        while (begin < end && sql_[begin] == '(') {
            ++begin;
        }
        while (end > begin && sql_[end - 1] == ')') {
            --end;
        }
        return items_of(sql_, {begin, end - begin});
    }

    void look_at_sorting() {
        if (!parts_.is_sorted) {
            return;
        }
        if (asked_.order_column.empty()) {
            add(parts_.sort, "ORDER BY without a column sorts nothing", "");
        } else if (asked_.tables.size() > 1) {
            add(parts_.sort, "the rows of several tables are not sorted: ORDER BY was dropped", "");
        }
        look_behind_direction();
    }

    void look_behind_direction() {
        const std::string_view phrase = text_of(parts_.sort);
        for (const std::string_view direction : {" DESC", " ASC"}) {
            const std::size_t place = phrase.find(direction);
            if (place == std::string_view::npos) {
                continue;
            }
            const std::size_t behind = place + direction.size();
            if (behind < phrase.size()) {
                notes_.push_back(left_over(sql_, {parts_.sort.place + behind, phrase.size() - behind},
                                           "behind the direction was dropped",
                                           "ORDER BY ends with ASC or DESC"));
            }
            return;
        }
    }

    const std::string &db_name_;
    const std::string &sql_;
    const query &asked_;
    clauses parts_;
    std::vector<finding> notes_;
};

} // namespace

std::vector<finding> find_notes(const std::string &db_name, const std::string &sql) {
    const std::optional<query> asked = read_query(db_name, sql);
    if (!asked) {
        return {};
    }
    if (asked->type == QRY_LIB_DB_QUERY_TYPE_CREATE) {
        return {{0, sql.size(), "CREATE is accepted and does nothing", "the tables are the device's own"}};
    }
    return asked->tables.empty() ? std::vector<finding>() : note_finder(db_name, sql, *asked).find();
}

} // namespace qrytext
