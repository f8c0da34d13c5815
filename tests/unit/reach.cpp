// The reach check.
#include "unit/reach.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace test {

namespace {

struct point {
    std::string function;
    int line;
    std::string kind; // Enter or Return

    bool operator<(const point &other) const {
        return std::tie(line, function, kind) < std::tie(other.line, other.function, other.kind);
    }
};

std::ostream &operator<<(std::ostream &out, const point &p) {
    return out << p.function << "():[" << p.kind << "]:(" << p.line << ")";
}

// Nothing can fail at these places: they stay as a last line of defence behind code that has just made sure.
const std::map<std::string, std::set<int>> unreachable = {
    {"link_rowset", {111, 136, 175, 195, 242}},
    {"covert_rowset", {573, 587, 610}},
    {"analyze_sql_select_link", {350}},
    {"exec_select_proc", {400, 450}},
    {"create_filter_key", {779, 801}},
    {"create_primary_filter_key", {994}},
    {"set_tb_table", {1134, 1175}},
    {"set_link_select_cols", {1657}},
    {"set_link_filter_cols", {1763}},
    {"set_link_filter_val", {1934}},
    {"get_is_col_name", {2107}},
};

std::mutex reached_mutex;
std::set<point> reached;

bool is_unreachable(const point &p) {
    const auto lines = unreachable.find(p.function);
    return lines != unreachable.end() && lines->second.count(p.line) > 0;
}

// The table's points. Those whose printed name is not fixed are kept without one.
std::set<point> read_table(const std::string &path) {
    std::set<point> table;
    std::ifstream file(path);
    std::string row;
    std::getline(file, row); // the heading
    while (std::getline(file, row)) {
        std::istringstream fields(row);
        point p;
        std::string line;
        std::string code;
        std::string cause;
        std::getline(fields, p.function, '\t');
        std::getline(fields, line, '\t');
        std::getline(fields, code, '\t');
        std::getline(fields, p.kind, '\t');
        std::getline(fields, cause);
        p.line = std::stoi(line);
        if (cause.find("printed name is not fixed") != std::string::npos) {
            p.function.clear();
        }
        table.insert(p);
    }
    return table;
}

bool is_in(const std::set<point> &points, const point &p) {
    return points.count(p) > 0 || points.count({"", p.line, p.kind}) > 0;
}

struct sources {
    std::set<int> line_points;                      // numbers of the source lines that trace their own number
    std::vector<std::pair<std::string, int>> fixed; // literal numbers in calls that trace, with their place
};

sources read_sources(const std::string &path) {
    static const std::regex literal(
        R"((trace_return|trace_code|trace_enter|trace_leave|refuse\w*)\((\w+, )?(\d+)\b)");
    sources found;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") {
            continue;
        }
        std::ifstream file(entry.path());
        std::string text;
        for (int number = 1; std::getline(file, text); ++number) {
            if (text.find("__LINE__") != std::string::npos) {
                found.line_points.insert(number);
            }
            std::smatch match;
            if (std::regex_search(text, match, literal)) {
                found.fixed.emplace_back(entry.path().filename().string() + ":" + std::to_string(number),
                                         std::stoi(match[3]));
            }
        }
    }
    return found;
}

} // namespace

void record_reached(const char *line) {
    char function[128] = {};
    char kind[8] = {};
    point p;
    if (std::sscanf(line, "%127[^(]():[%7[A-Za-z]]:(%d)", function, kind, &p.line) == 3) {
        p.function = function;
        p.kind = kind;
        const std::lock_guard<std::mutex> lock(reached_mutex);
        reached.insert(p);
    }
}

bool write_reached(const std::string &path) {
    std::ofstream file(path);
    for (const point &p : reached) {
        file << p << "\n";
    }
    return static_cast<bool>(file.flush());
}

bool check_reach(const std::string &table_path, const std::string &source_path,
                 const std::vector<std::string> &reached_elsewhere) {
    for (const std::string &path : reached_elsewhere) {
        std::ifstream file(path);
        std::string line;
        while (std::getline(file, line)) {
            record_reached(line.c_str());
        }
    }
    const std::set<point> table = read_table(table_path);
    const sources code = read_sources(source_path);
    int missing = 0;
    int wrong = 0;
    for (const point &p : table) {
        const bool hit = std::any_of(reached.begin(), reached.end(), [&](const point &r) {
            return r.line == p.line && r.kind == p.kind && (p.function.empty() || p.function == r.function);
        });
        if (!hit && !is_unreachable(p)) {
            std::cout << "not reached: " << p << "\n";
            ++missing;
        }
        if (hit && is_unreachable(p)) {
            std::cout << "reached, but listed as unreachable: " << p << "\n";
            ++wrong;
        }
    }
    for (const point &p : reached) {
        if (!is_in(table, p) && code.line_points.count(p.line) == 0) {
            std::cout << "traced, but not in the table: " << p << "\n";
            ++wrong;
        }
    }
    for (const auto &[place, number] : code.fixed) {
        if (std::none_of(table.begin(), table.end(),
                         [&, n = number](const point &p) { return p.line == n; })) {
            std::cout << place << ": fixed number " << number << " is not in the table\n";
            ++wrong;
        }
    }
    std::cout << table.size() << " fixed trace points, " << missing << " missing, " << wrong << " wrong\n";
    return !table.empty() && missing == 0 && wrong == 0;
}

} // namespace test
