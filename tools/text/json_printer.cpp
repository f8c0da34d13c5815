// Results as JSON; apart from the other printers because the JSON library is slow to compile.
#include <nlohmann/json.hpp>

#include "tools/text/printers.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

std::string json_row(const std::vector<std::string> &titles, const std::vector<cell> &row) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < titles.size(); ++i) {
        std::visit([&](const auto &value) { object[titles[i]] = value; }, row[i]);
    }
    return escaped_json(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

} // namespace

std::string format_json(const result &answer) {
    if (answer.rows.empty()) {
        return "[]\n";
    }
    std::string out = "[";
    for (const std::vector<cell> &row : answer.rows) {
        out += out.size() == 1 ? "\n  " : ",\n  ";
        out += json_row(answer.titles, row);
    }
    return out + "\n]\n";
}

std::string format_jsonl(const result &answer) {
    std::string out;
    for (const std::vector<cell> &row : answer.rows) {
        out += json_row(answer.titles, row) + '\n';
    }
    return out;
}

} // namespace qrytext
