// Takes one text over several tables, for its instructions to be counted: analysis_cost WAY KIND NUM. Fails
// when the text does not end where it should.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include <qrylib/qrylib.h>

#include "limits/texts.h"
#include "link/qry_lib_analyze_link_info.h"
#include "parser/qry_lib_sql_parser.h"

namespace {

const std::map<std::string, std::string (*)(unsigned)> kinds = {
    {"tables", limits::joined_tables},
    {"conditions", limits::compared_tables},
    {"keys", limits::join_keys},
    {"listed", limits::one_table},
};

// Accepted by both steps.
bool analyse(const char *text) {
    norvane::qry_lib_analyze_info info;
    norvane::qry_lib_analyze_link_info link_info;
    const norvane::qry_lib_sql_parser parser;
    return parser.analyze_sql_select("adbk_db", text, info) == 0 &&
           parser.analyze_sql_select_link(info, link_info) == 0;
}

// Split, and then refused at the first table, which no database has.
bool run(const char *text) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset{};
    qry_lib_db_rowset_init(&rowset);
    qry_lib_db_get_stmt("adbk_db", &stmt);
    const bool refused = qry_lib_db_exec_query(&stmt, text, &rowset) == QRY_LIB_INVALID_ARGUMENT;
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return refused;
}

const std::map<std::string, bool (*)(const char *)> ways = {{"analyse", analyse}, {"run", run}};

} // namespace

int main(int argc, char **argv) {
    if (argc != 4 || ways.count(argv[1]) == 0 || kinds.count(argv[2]) == 0) {
        std::fputs("usage: analysis_cost analyse|run tables|conditions|keys|listed NUM\n", stderr);
        return 2;
    }
    const auto num = static_cast<unsigned>(std::strtoul(argv[3], nullptr, 10));
    const std::string text = kinds.at(argv[2])(num);
    std::printf("%lu\n", static_cast<unsigned long>(text.size()));
    return ways.at(argv[1])(text.c_str()) ? 0 : 1;
}
