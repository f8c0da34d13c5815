// Random statements on random records, run by the library and by SQLite: codes, rows, and what is in the
// table after a change must be the same. A difference is shown as the shortest statement that still shows it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "oracle/engines.h"

namespace {

using oracle::answer;
using oracle::row;
using oracle::statement;

constexpr std::uint32_t statements_on_one_fill = 400;

struct arguments {
    std::uint32_t seed = 20011;
    std::uint32_t count = 20000;
};

struct difference {
    answer given;
    answer expected;
    std::string place; // in the table's content after a change; empty when the answers differ
};

struct tally {
    std::uint32_t accepted = 0;
    std::uint32_t refused = 0;
    std::uint64_t rows = 0;
    std::uint32_t linked_with_rows = 0;
};

class comparer {
  public:
    explicit comparer(std::uint32_t seed) : random_(seed) {}

    void fill();
    std::optional<difference> run_next(statement &made);
    statement shrink(statement made, difference &shown);

    tally total;

  private:
    std::vector<oracle::given_value> random_values(const oracle::table_def &table);
    std::optional<difference> run(const statement &made);
    void count(const statement &made, const answer &given);

    oracle::random_source random_;
    oracle::library library_;
    oracle::mirror mirror_;
    std::vector<std::uint8_t> before_;
};

std::vector<oracle::given_value> comparer::random_values(const oracle::table_def &table) {
    std::vector<oracle::given_value> values;
    for (const oracle::column_def &column : table.columns) {
        const std::uint32_t mask = column.info.size == 1 ? 0xFF : column.info.size == 2 ? 0xFFFF : 0xFFFFFFFF;
        oracle::given_value &value = values.emplace_back();
        value.number = (column.is_key ? random_.below(30) : oracle::random_number(random_)) & mask;
        value.text = column.is_text ? oracle::random_text(random_, column.longest) : "";
    }
    return values;
}

// The default record too; a record in three is like it, and so free.
void comparer::fill() {
    mirror_.begin();
    for (const oracle::table_def &table : oracle::tables()) {
        const std::vector<oracle::given_value> free_values = random_values(table);
        for (int record = oracle::default_record; record < oracle::record_num; ++record) {
            const bool is_free = record == oracle::default_record || random_.one_in(3);
            const std::vector<oracle::given_value> values = is_free ? free_values : random_values(table);
            library_.put(table, record, values);
            mirror_.put(table, record, values);
        }
    }
    mirror_.keep();
}

std::optional<difference> comparer::run(const statement &made) {
    difference seen{library_.run(made), mirror_.run(made), ""};
    count(made, seen.given);
    if (!(seen.given == seen.expected)) {
        return seen;
    }
    if (!made.is_write()) {
        return std::nullopt;
    }
    const oracle::table_def &table = *made.from[0];
    const std::vector<row> ours = library_.content(table);
    const std::vector<row> theirs = mirror_.content(table);
    for (std::size_t r = 0; r < ours.size(); ++r) {
        for (std::size_t c = 0; c < ours[r].size(); ++c) {
            if (ours[r][c] != theirs[r][c]) {
                seen.place = "record " + std::to_string(static_cast<int>(r) - 1) + ", " +
                             table.columns[c].name + ": [" + ours[r][c] + "] instead of [" + theirs[r][c] +
                             "]";
                return seen;
            }
        }
    }
    return std::nullopt;
}

std::optional<difference> comparer::run_next(statement &made) {
    made = oracle::random_statement(random_);
    if (made.is_write()) {
        before_ = library_.save();
    }
    mirror_.begin();
    std::optional<difference> seen = run(made);
    if (seen) {
        return seen;
    }
    mirror_.keep();
    return std::nullopt;
}

void comparer::count(const statement &made, const answer &given) {
    ++(given.code == 0 ? total.accepted : total.refused);
    if (!made.is_write()) {
        total.rows += given.rows.size();
        total.linked_with_rows += made.is_linked() && !given.rows.empty() ? 1 : 0;
    }
}

// Drops one part after the other for as long as the engines still differ.
statement comparer::shrink(statement made, difference &shown) {
    bool is_shorter = true;
    while (is_shorter) {
        is_shorter = false;
        for (const statement &candidate : oracle::shorter(made)) {
            if (made.is_write()) {
                library_.restore(before_);
            }
            mirror_.undo();
            if (const auto seen = run(candidate)) {
                made = candidate;
                shown = *seen;
                is_shorter = true;
                break;
            }
        }
    }
    return made;
}

void print_answer(const char *engine, const answer &given) {
    std::printf("  %s: 0x%X, %zu rows\n", engine, static_cast<unsigned int>(given.code), given.rows.size());
    for (std::size_t r = 0; r < given.rows.size() && r < 12; ++r) {
        std::printf("    ");
        for (const std::string &cell : given.rows[r]) {
            std::printf("%s  ", cell.c_str());
        }
        std::printf("\n");
    }
}

void report(const arguments &asked, std::uint32_t number, const statement &made, const difference &seen) {
    std::printf("statement %u differs, shortened to\n  %s%s in %s\n", static_cast<unsigned int>(number),
                oracle::text_of(made).c_str(), made.by_record ? " (as a record)" : "",
                made.from[0]->database.c_str());
    print_answer("library", seen.given);
    print_answer("SQLite", seen.expected);
    if (!seen.place.empty()) {
        std::printf("  in the table: %s\n", seen.place.c_str());
    }
    std::printf("run again with --seed %u --count %u\n", static_cast<unsigned int>(asked.seed),
                static_cast<unsigned int>(number + 1));
}

// Statements that are mostly refused, or joins without rows, would show little.
int summarize(const arguments &asked, const tally &total) {
    std::printf("%u accepted with %llu rows, %u refused, %u joins with rows; no difference\n",
                static_cast<unsigned int>(total.accepted), static_cast<unsigned long long>(total.rows),
                static_cast<unsigned int>(total.refused), static_cast<unsigned int>(total.linked_with_rows));
    const bool shows_little = asked.count >= 1000 &&
                              (total.accepted < asked.count / 2 || total.linked_with_rows < asked.count / 50);
    if (shows_little) {
        std::printf("too few of them meet any rows\n");
    }
    return shows_little ? 1 : 0;
}

std::uint32_t number_after(int argc, char **argv, const char *option, std::uint32_t otherwise) {
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], option) == 0) {
            return static_cast<std::uint32_t>(std::strtoul(argv[i + 1], nullptr, 10));
        }
    }
    return otherwise;
}

} // namespace

int main(int argc, char **argv) {
    arguments asked;
    asked.seed = number_after(argc, argv, "--seed", asked.seed);
    asked.count = number_after(argc, argv, "--count", asked.count);
    std::printf("oracle: --seed %u --count %u\n", static_cast<unsigned int>(asked.seed),
                static_cast<unsigned int>(asked.count));
    comparer both(asked.seed);
    for (std::uint32_t number = 0; number < asked.count; ++number) {
        if (number % statements_on_one_fill == 0) {
            both.fill();
        }
        statement made{};
        if (std::optional<difference> seen = both.run_next(made)) {
            made = both.shrink(made, *seen);
            report(asked, number, made, *seen);
            return 1;
        }
    }
    return summarize(asked, both.total);
}
