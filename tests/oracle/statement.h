// A statement as the oracle makes it: both engines run it from here, each in its own words.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "exec/schema/schema.h"
#include "qrylib/types.h"

namespace oracle {

struct column_def {
    std::string name;
    QRY_LIB_ELEMENT_INFO info;
    bool is_key;
    bool is_text;
    std::size_t longest; // characters that fit without touching the next member of the same element
};

struct table_def {
    std::string database;
    std::string name;
    std::vector<column_def> columns;
    bool has_keys; // false for the edit counter, whose records are all in use
    std::uint32_t category;

    const column_def *find(const std::string &column) const;
};

// Every table of the schema, database by database.
const std::vector<table_def> &tables();

enum class kind { select, count, remove, drop, update, insert };

enum class comparison { equal, not_equal, less, greater, less_equal, greater_equal, like, in, in_like };

// A column of one of the statement's tables. The name need not exist.
struct column_ref {
    std::size_t table;
    std::string name;
};

struct condition {
    column_ref column;
    comparison operation;
    std::vector<std::string> values; // one, but for the list forms
};

// A column of one table equals a column of another.
struct join {
    column_ref left;
    column_ref right;
};

// What a column is given, with the type that carries it.
struct given_value {
    QRY_LIB_COLUMN_TYPE type;
    std::uint32_t number;
    std::string text;
};

struct statement {
    kind what;
    bool by_record; // as a statement record instead of text
    std::vector<const table_def *> from;
    std::vector<column_ref> columns;
    std::vector<given_value> values; // one for each column of an INSERT or UPDATE
    std::vector<join> joins;
    std::vector<condition> conditions;
    bool is_any = false; // joined by OR
    std::string order;   // empty: none
    bool descends = false;

    bool is_linked() const { return from.size() > 1; }
    bool is_write() const { return what != kind::select && what != kind::count; }
};

bool is_list(comparison operation);
bool is_prefix(comparison operation);
bool is_range(comparison operation);

// The condition without WHERE; empty without conditions.
std::string where_text(const statement &made);

// The statement as SQL text, or as readable text when it is a record.
std::string text_of(const statement &made);

// The same numbers on every machine from one seed.
class random_source {
  public:
    explicit random_source(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(engine_()) % bound; }
    bool one_in(std::uint32_t odds) { return below(odds) == 0; }

    template <typename List>
    auto &pick(List &list) {
        return list[below(static_cast<std::uint32_t>(std::size(list)))];
    }

  private:
    std::mt19937 engine_;
};

std::uint32_t random_number(random_source &random);
std::string random_text(random_source &random, std::size_t longest);
statement random_statement(random_source &random);

// What is left when one part is dropped; every statement that is one part shorter.
std::vector<statement> shorter(const statement &made);

} // namespace oracle
