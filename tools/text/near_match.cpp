// Edit distance between names.
#include "tools/text/near_match.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace qrytext {

namespace {

// Insertions, deletions and replacements that turn one text into the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

} // namespace

std::string in_capitals(std::string_view text) {
    std::string capitals(text);
    for (char &c : capitals) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return capitals;
}

std::string nearest(std::string_view name, const std::vector<std::string> &candidates) {
    // No candidate is long, so an over-long name is near none and its distance need not be computed.
    constexpr std::size_t longest = 64;
    if (name.empty() || name.size() > longest) {
        return "";
    }
    const std::string wanted = in_capitals(name);
    std::size_t best_distance = std::max<std::size_t>(1, name.size() / 3) + 1;
    std::string best;
    for (const std::string &candidate : candidates) {
        const std::size_t d = distance(wanted, in_capitals(candidate));
        if (d < best_distance) {
            best_distance = d;
            best = candidate;
        }
    }
    return best;
}

std::string near_hint(std::string_view name, const std::vector<std::string> &candidates) {
    const std::string near = nearest(name, candidates);
    return near.empty() ? "" : "did you mean " + near + "?";
}

std::string did_you_mean(std::string_view name, const std::vector<std::string> &candidates) {
    const std::string hint = near_hint(name, candidates);
    return hint.empty() ? "" : "; " + hint;
}

} // namespace qrytext
