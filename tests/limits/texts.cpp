// The texts.
#include "limits/texts.h"

namespace limits {

namespace {

std::string table(unsigned index) {
    return "T" + std::to_string(index);
}

std::string all_tables(unsigned num) {
    return "SELECT T0.A FROM " + listed(num, ", ", table) + " WHERE ";
}

std::string chain(unsigned num) {
    return listed(num - 1, " AND ", [](unsigned i) { return table(i) + ".A = " + table(i + 1) + ".A"; });
}

} // namespace

std::string of_items(const list_text &list, unsigned num) {
    return list.before + listed(num, list.separator, [&](unsigned) { return list.item; }) + list.behind;
}

std::string with_other_item(const list_text &list, unsigned num, unsigned nth, const char *other) {
    return list.before +
           listed(num, list.separator, [&](unsigned i) { return i + 1 == nth ? other : list.item; }) +
           list.behind;
}

std::string joined_tables(unsigned num) {
    return all_tables(num) + chain(num);
}

std::string compared_tables(unsigned num) {
    return all_tables(num) + chain(num) + " AND " + listed(num, " AND ", [](unsigned i) {
               return table(i) + ".B > 1 AND " + table(i) + ".C = 'x' AND " + table(i) + ".D < 5";
           });
}

std::string join_keys(unsigned num) {
    return "SELECT T0.A FROM T0, T1 WHERE " + listed(num, " AND ", [](unsigned i) {
               return "T0.K" + std::to_string(i) + " = T1.K" + std::to_string(i);
           });
}

std::string one_table(unsigned num) {
    return "SELECT T.A FROM " + listed(num, ",", [](unsigned) { return "T"; }) + " WHERE " +
           listed(num, " AND ", [](unsigned) { return "T.A = T.A"; });
}

} // namespace limits
