// Texts for people; a recording's own texts may hold anything and are printed as JSON prints them.
#include "tools/field/replay_report.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <tuple>

#include "tools/field/device_records.h"
#include "tools/field/element_shapes.h"

namespace field {

namespace {

// On one line.
std::string printable(const std::string &text) {
    const std::string whole = quoted(text);
    return whole.substr(1, whole.size() - 2);
}

std::string time_text(std::uint64_t microseconds) {
    const auto seconds = static_cast<std::time_t>(microseconds / 1000000);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[48];
    const std::size_t used = std::strftime(text, sizeof text, "%H:%M:%S", &parts);
    static_cast<void>(std::snprintf(text + used, sizeof text - used, ".%06u",
                                    static_cast<unsigned>(microseconds % 1000000)));
    return text;
}

// Calls of the platform, blocks taken among them.
std::pair<std::size_t, std::size_t> counts(const recorded_call &call) {
    std::size_t calls = std::size_t{call.counted_moves} + call.counted_reads;
    std::size_t blocks = 0;
    for (const event &each : call.events) {
        calls += each.is_trace ? 0 : 1;
        blocks += !each.is_trace && each.call.service == service_pfwOSWOrgAllocMemPart ? 1 : 0;
    }
    return {calls, blocks};
}

bool is_setter(call_number function) {
    return function <= call_qry_lib_db_stmt_term || function == call_qry_lib_db_rowset_init ||
           function == call_qry_lib_db_rowset_term;
}

std::string row_of(const recorded_call &call) {
    char line[160];
    char code[16] = "(lost)";
    if (call.has_result) {
        static_cast<void>(std::snprintf(code, sizeof code, "0x%04X", call.result));
    }
    const auto [calls, blocks] = counts(call);
    payload_reader handed_out(call.handed_out);
    const std::size_t rows = is_statement(call.function) ? handed_out.take32() : 0;
    static_cast<void>(std::snprintf(line, sizeof line, "%6u  %s  %6u  %6s  %5zu  %6zu  %6zu  %8llu  ",
                                    call.number, time_text(call.time).c_str(), call.thread, code, rows, calls,
                                    blocks, static_cast<unsigned long long>(call.microseconds)));
    return line + printable(statement_text(call)) + "\n";
}

// Which table an element belongs to.
std::string table_of(std::uint32_t category) {
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            if (norvane::category_of(table) == category) {
                return full_name(*database, table);
            }
        }
    }
    return "category " + std::to_string(category);
}

using value_place = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>; // category, record, element

// The values that one call read or wrote.
void collect_values(const recorded_call &call, std::map<value_place, std::string> &values) {
    std::map<std::uint64_t, std::pair<std::uint32_t, std::uint32_t>> lists;
    std::map<std::uint64_t, std::uint64_t> positions;
    for (const event &each : call.events) {
        const std::vector<field_value> &fields = each.call.fields;
        if (each.is_trace || each.call.code != 0) {
            continue;
        }
        switch (each.call.service) {
        case service_tbctSTCCreateListTable:
            lists[fields[0].number] = {static_cast<std::uint32_t>(fields[1].number),
                                       static_cast<std::uint32_t>(fields[2].number)};
            break;
        case service_tbctSTCListTableSetPos:
            positions[fields[0].number] = fields[1].number;
            break;
        case service_tbctSTCListTableGetVal: {
            const auto [category, element] = lists[fields[0].number];
            values[{category, static_cast<std::uint32_t>(positions[fields[0].number]) + 1, element}] =
                fields[1].bytes;
            break;
        }
        case service_tbctSTCGetTable:
        case service_tbctSTCSetTable:
            values[{static_cast<std::uint32_t>(fields[0].number),
                    static_cast<std::uint32_t>(fields[1].number),
                    static_cast<std::uint32_t>(fields[2].number)}] = fields[3].bytes;
            break;
        default:
            break;
        }
    }
}

} // namespace

std::string about(const recording &recorded) {
    std::string text = "recorded by process " + std::to_string(recorded.process) + ", library " +
                       printable(recorded.library) + ", " + std::to_string(8 * recorded.word_size) +
                       " bits, " + (recorded.is_big_endian ? "big-endian" : "little-endian") +
                       (recorded.is_masked ? ", secrets masked" : ", with secrets") +
                       (recorded.has_values ? "" : ", without values") + "\n";
    const auto tell = [&](std::uint32_t number, const char *what) {
        text += number != 0 ? std::to_string(number) + " " + what + "\n" : "";
    };
    tell(recorded.overwritten, "frames were overwritten");
    tell(recorded.dropped, "frames were dropped");
    tell(recorded.beginnings_lost, "frames belong to calls whose beginning is lost");
    tell(recorded.unreadable, "bytes from the first damaged frame on cannot be read");
    return text + (recorded.is_frozen ? "stopped behind the last call\n" : "");
}

std::string call_table(const recording &recorded, listing order) {
    std::vector<const recorded_call *> calls;
    for (const recorded_call &call : recorded.calls) {
        const bool is_listed = !is_setter(call.function) && (order != listing::failed || call.result != 0);
        if (is_listed) {
            calls.push_back(&call);
        }
    }
    if (order == listing::slowest) {
        std::stable_sort(calls.begin(), calls.end(), [](const recorded_call *a, const recorded_call *b) {
            return a->microseconds > b->microseconds;
        });
    }
    std::string table =
        "     #  time             thread    code   rows   calls  blocks  microsec  statement\n";
    for (const recorded_call *call : calls) {
        table += row_of(*call);
    }
    return table;
}

std::string values_before(const recording &recorded, std::uint32_t number) {
    std::map<value_place, std::string> values;
    for (const recorded_call &call : recorded.calls) {
        if (call.number < number) {
            collect_values(call, values);
        }
    }
    std::string text;
    for (const auto &[place, bytes] : values) {
        const auto [category, record, element] = place;
        const std::string name = record == 0 ? " default" : " record " + std::to_string(record - 1);
        text += table_of(category) + name + ": " + value_text(category, element, bytes) + "\n";
    }
    return text;
}

std::string difference_text(const recorded_call &call, const played_call &played) {
    std::string text = "call " + std::to_string(call.number) + ", thread " + std::to_string(call.thread) +
                       ", " + time_text(call.time) + ": " + printable(statement_text(call)) + "\n";
    text += played.judged == verdict::masked ? "  masked: what was masked may be why it differs\n" : "";
    text += "  expected: " + (played.found.expected.empty() ? "nothing more" : played.found.expected) + "\n";
    text += "  made:     " + (played.found.made.empty() ? "nothing more" : played.found.made) + "\n";
    text += played.found.reason.empty() ? "" : "  " + played.found.reason + "\n";
    text += "  after " + std::to_string(played.position) + " of " + std::to_string(call.events.size()) +
            " calls and traces that agree; the trace so far:\n";
    std::size_t traces = 0;
    for (std::size_t i = 0; i < played.position && i < call.events.size(); ++i) {
        if (call.events[i].is_trace) {
            text += "    " + trace_text(call.events[i].trace) + "\n";
            ++traces;
        }
    }
    return traces != 0 ? text : text + "    (none)\n";
}

std::string sums_text(const replay_sums &sums) {
    return std::to_string(sums.same) + " calls as recorded, " + std::to_string(sums.different) +
           " different, " + std::to_string(sums.masked) + " masked, " + std::to_string(sums.incomplete) +
           " incomplete\n";
}

} // namespace field
