// Texts of any number of items: lists, and queries over several tables.
#pragma once

#include <string>

namespace limits {

// Items from the first on, parted by the separator; `item` makes the one at an index.
template <typename Item>
std::string listed(unsigned num, const char *separator, Item item) {
    std::string text;
    for (unsigned i = 0; i < num; ++i) {
        text += i == 0 ? "" : separator;
        text += item(i);
    }
    return text;
}

// A list within a text, all items alike.
struct list_text {
    const char *name;
    const char *before;
    const char *item;
    const char *separator;
    const char *behind;
};

std::string of_items(const list_text &list, unsigned num);

// The same with another item in the n-th place, counted from 1.
std::string with_other_item(const list_text &list, unsigned num, unsigned nth, const char *other);

// Linked texts over tables that no database has. Each table is joined to the one before it.
std::string joined_tables(unsigned num);

// Besides, each table has three comparisons of its own.
std::string compared_tables(unsigned num);

// Two tables, joined by as many columns.
std::string join_keys(unsigned num);

// One table, listed and joined to itself as often.
std::string one_table(unsigned num);

} // namespace limits
