// Random statements: mostly valid and mostly meeting some rows, now and then one that must be refused.
#include <algorithm>

#include "oracle/statement.h"

namespace oracle {

namespace {

// What a condition on a number may be compared with: text that reads as a small number, as one out of range,
// as a number with something behind it, as none.
std::string number_text(random_source &random) {
    static constexpr const char *odd_texts[] = {
        "", "-1", "+3", " 7", "12ab", "ab", "-0", "65537", "2147483647", "99999999999", "257", "0012", "- 1"};
    if (random.one_in(5)) {
        return random.pick(odd_texts);
    }
    const std::uint32_t number = random_number(random);
    return random.one_in(4) ? std::to_string(static_cast<std::int32_t>(number)) : std::to_string(number);
}

std::string column_name(random_source &random, const table_def &table) {
    return random.one_in(150) ? "NO_COLUMN" : random.pick(table.columns).name;
}

comparison random_comparison(random_source &random, bool is_text) {
    static constexpr comparison for_text[] = {comparison::equal, comparison::not_equal, comparison::like,
                                              comparison::in, comparison::in_like};
    static constexpr comparison for_numbers[] = {
        comparison::equal,      comparison::not_equal,     comparison::less, comparison::greater,
        comparison::less_equal, comparison::greater_equal, comparison::in};
    return is_text ? random.pick(for_text) : random.pick(for_numbers);
}

condition random_condition(random_source &random, const statement &made) {
    const std::size_t t = random.below(static_cast<std::uint32_t>(made.from.size()));
    const table_def &table = *made.from[t];
    condition tested{
        {t, made.is_linked() ? random.pick(table.columns).name : column_name(random, table)}, {}, {}};
    const column_def *column = table.find(tested.column.name);
    const bool is_text = column != nullptr && column->is_text;
    // Now and then an operator that the column's type refuses.
    const bool is_odd = !made.is_linked() && random.one_in(100);
    tested.operation = random_comparison(random, is_text != is_odd);
    const std::uint32_t value_num = is_list(tested.operation) ? 1 + random.below(4) : 1;
    for (std::uint32_t i = 0; i < value_num; ++i) {
        std::string value = is_text ? random_text(random, random.one_in(20) ? 300 : 4) : number_text(random);
        if (is_list(tested.operation)) { // a comma would split the list
            value.erase(std::remove(value.begin(), value.end(), ','), value.end());
        }
        tested.values.push_back(value);
    }
    return tested;
}

void add_conditions(random_source &random, statement &made, std::uint32_t at_most) {
    for (std::uint32_t more = random.below(at_most + 1); more > 0; --more) {
        made.conditions.push_back(random_condition(random, made));
    }
    made.is_any = !made.is_linked() && made.conditions.size() > 1 && random.one_in(3);
}

given_value random_value(random_source &random, const column_def &column) {
    const auto type = static_cast<QRY_LIB_COLUMN_TYPE>(
        column.is_text != random.one_in(5) ? std::uint32_t{QRY_LIB_COLUMN_TYPE_STR} : random.below(5));
    given_value value{type, random_number(random), ""};
    if (column.is_text) {
        const bool is_too_long = random.one_in(60);
        value.text = is_too_long ? std::string(column.info.size + random.below(100), 'x')
                                 : random_text(random, column.longest);
        if (type != QRY_LIB_COLUMN_TYPE_STR && column.longest < 11) {
            value.number %= 100; // a number's text must fit too
        }
    } else {
        value.text = number_text(random);
    }
    return value;
}

void add_values(random_source &random, statement &made) {
    const table_def &table = *made.from[0];
    for (const column_def &column : table.columns) {
        // A key that is left out of an INSERT is refused; an UPDATE changes keys seldom.
        const bool is_insert = made.what == kind::insert;
        const bool is_given =
            column.is_key ? (is_insert ? !random.one_in(80) : random.one_in(8)) : random.one_in(3);
        if (is_given) {
            made.columns.push_back({0, column.name});
            made.values.push_back(random_value(random, column));
        }
    }
    if (made.columns.empty() || random.one_in(200)) {
        made.columns.push_back({0, column_name(random, table)});
        made.values.push_back(random_value(random, table.columns.back()));
    }
}

// Names of table and column hold 31 characters together; most statements keep to them.
std::string short_enough(random_source &random, const table_def &table) {
    for (int attempt = 0; attempt < 20; ++attempt) {
        const std::string &name = random.pick(table.columns).name;
        if (table.name.size() + name.size() < QRY_LIB_COLUMN_NAME_MAX) {
            return name;
        }
    }
    return table.columns.front().name;
}

void add_joins(random_source &random, statement &made) {
    const auto side = [&](std::size_t t) { return column_ref{t, short_enough(random, *made.from[t])}; };
    const auto key_side = [&](std::size_t t) {
        const table_def &table = *made.from[t];
        const auto key = std::find_if(table.columns.begin(), table.columns.end(),
                                      [](const column_def &column) { return column.is_key; });
        return column_ref{t, random.one_in(3) ? short_enough(random, table) : key->name};
    };
    for (std::size_t t = 1; t < made.from.size(); ++t) {
        made.joins.push_back({key_side(random.below(static_cast<std::uint32_t>(t))), key_side(t)});
    }
    if (random.one_in(8)) {
        made.joins.push_back({side(0), side(1)});
    }
    for (std::uint32_t more = made.what == kind::select ? 1 + random.below(3) : 0; more > 0; --more) {
        made.columns.push_back(side(random.below(static_cast<std::uint32_t>(made.from.size()))));
    }
}

void add_tables(random_source &random, statement &made) {
    const std::size_t wanted = random.one_in(5) ? 3 : 2;
    while (made.from.size() < wanted) {
        const table_def &table = random.pick(tables());
        const auto same = [&](const table_def *other) { return other == &table; };
        if (table.database == made.from[0]->database &&
            std::none_of(made.from.begin(), made.from.end(), same)) {
            made.from.push_back(&table);
        }
        // A database of two tables has no third.
        if (made.from.size() == 2 && made.from[0]->database == "department_db") {
            return;
        }
    }
}

} // namespace

std::uint32_t random_number(random_source &random) {
    static constexpr std::uint32_t edges[] = {
        0, 127, 128, 254, 255, 256, 257, 65535, 65536, 65537, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    return random.one_in(6) ? random.pick(edges) : random.below(12);
}

// Few letters, so that texts meet; both cases, blanks, bytes of other scripts, what the grammar uses.
std::string random_text(random_source &random, std::size_t longest) {
    static constexpr char letters[] = {'a',  'a', 'A', 'b', 'B', ' ',    '_',   '%',
                                       '\'', ',', '=', '>', '1', '\x80', '\xE6'};
    const auto most = static_cast<std::uint32_t>(longest);
    const std::uint32_t length = random.one_in(40) ? most : random.below(std::min(most, 3u) + 1);
    std::string text;
    for (std::uint32_t i = 0; i < length; ++i) {
        text += random.pick(letters);
    }
    return text;
}

statement random_statement(random_source &random) {
    static constexpr kind kinds[] = {kind::select, kind::select, kind::select, kind::select,
                                     kind::count,  kind::remove, kind::update, kind::update,
                                     kind::insert, kind::insert, kind::insert};
    statement made{random.pick(kinds), false, {&random.pick(tables())}, {}, {}, {}, {}, false, "", false};
    if (made.what == kind::remove && random.one_in(60)) {
        made.what = kind::drop;
        return made;
    }
    if (!made.is_write() && random.one_in(5)) {
        add_tables(random, made);
        add_joins(random, made);
        add_conditions(random, made, 2);
        return made;
    }
    made.by_record = made.what == kind::insert || made.what == kind::update || random.one_in(2);
    if (made.what == kind::insert || made.what == kind::update) {
        add_values(random, made);
    }
    if (made.what != kind::insert) {
        add_conditions(random, made, 3);
    }
    if (made.what == kind::remove && made.conditions.empty()) {
        made.conditions.push_back(random_condition(random, made)); // a table is not emptied too often
    }
    for (std::uint32_t more = made.what == kind::select ? 1 + random.below(4) : 0; more > 0; --more) {
        made.columns.push_back({0, column_name(random, *made.from[0])});
    }
    if (made.what == kind::select && random.one_in(2)) {
        made.order = column_name(random, *made.from[0]);
        made.descends = random.one_in(2);
    }
    return made;
}

} // namespace oracle
