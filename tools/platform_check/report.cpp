// Collects and prints what the check found.
#include "tools/platform_check/report.h"

#include <algorithm>
#include <cstdio>

namespace platform_check {

namespace {

constexpr std::ptrdiff_t findings_per_function = 4;

std::string counted(std::uint32_t number, const char *singular, const char *plural) {
    return std::to_string(number) + " " + (number == 1 ? singular : plural);
}

std::string chapter_text(const chapter &part) {
    const char *verdict = !part.findings.empty() ? ""
                          : part.notes.empty()   ? " as the library needs it"
                                                 : " called";
    std::string text = part.subject + ":" + verdict + "\n";
    for (const finding &found : part.findings) {
        text += "  " + found.function + " " + found.sentence + "\n";
    }
    if (part.left_out != 0) {
        text += "  and " + counted(part.left_out, "finding", "findings") + " more of these functions\n";
    }
    for (const std::string &note : part.notes) {
        text += "  look yourself: " + note + "\n";
    }
    return text;
}

} // namespace

void report::wrong(const std::string &function, const std::string &sentence) {
    chapter &part = chapters_.back();
    const auto known = std::count_if(part.findings.begin(), part.findings.end(),
                                     [&](const finding &found) { return found.function == function; });
    if (known < findings_per_function) {
        part.findings.push_back({function, sentence});
    } else {
        ++part.left_out;
    }
}

bool report::expect(bool holds, const std::string &function, const std::string &sentence) {
    if (!holds) {
        wrong(function, sentence);
    }
    return holds;
}

bool report::succeeds(std::uint32_t code, const std::string &function, const std::string &doing) {
    return expect(code == 0, function,
                  "answers code " + std::to_string(code) + " to " + doing + "; 0 is success.");
}

std::uint32_t report::finding_num() const {
    std::uint32_t number = 0;
    for (const chapter &part : chapters_) {
        number += static_cast<std::uint32_t>(part.findings.size()) + part.left_out;
    }
    return number;
}

bool report::mentions(const std::string &function) const {
    for (const chapter &part : chapters_) {
        for (const finding &found : part.findings) {
            if (found.function == function) {
                return true;
            }
        }
    }
    return false;
}

std::string report::text() const {
    std::string text;
    for (const chapter &part : chapters_) {
        text += chapter_text(part);
    }
    const std::uint32_t number = finding_num();
    return text + (number == 0 ? "Nothing is missing or different.\n"
                               : counted(number, "thing is", "things are") + " missing or different.\n");
}

std::string hex(std::uint32_t number) {
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number)));
    return text;
}

} // namespace platform_check
