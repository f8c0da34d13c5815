// The commands that change a setting, and .show.
#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/text.h"

namespace qrysh {

namespace {

template <typename Setter>
outcome switch_setting(const std::string &word, Setter set) {
    if (word != "on" && word != "off") {
        return session::fail(fmt::format("expected on or off, not \"{}\"", printable(word)));
    }
    set(word == "on");
    return outcome::done;
}

std::string on_or_off(bool is_on) {
    return is_on ? "on" : "off";
}

} // namespace

outcome switch_changes(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().changes = on; });
}
outcome switch_echo(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().echo = on; });
}
outcome switch_headers(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().headers = on; });
}
outcome switch_strict(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().strict = on; });
}
outcome switch_timer(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().timer = on; });
}
outcome switch_trace(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.traces().set_printing(on); });
}

outcome set_prompt(session &shell, const std::string &order) {
    const std::vector<std::string> words = split_words(order);
    if (words.size() > 2) {
        return session::fail("expected two prompts at most: put quotes around blanks");
    }
    const settings usual;
    shell.options().prompt = words.empty() ? usual.prompt : words[0];
    shell.options().next_prompt = words.size() < 2 ? usual.next_prompt : words[1];
    return outcome::done;
}

outcome show_settings(session &shell, const std::string & /*unused*/) {
    const settings &set = shell.options();
    const bool changes = set.changes.value_or(is_for_people(set.mode));
    const std::string output = answer_file();
    shell.show({{"SETTING", "VALUE"},
                {{"device", shell.device()},
                 {"database", shell.database()},
                 {"mode", mode_name(set.mode)},
                 {"headers", on_or_off(set.headers)},
                 {"changes", on_or_off(changes)},
                 {"output", output.empty() ? "standard output" : output},
                 {"prompt", set.prompt},
                 {"echo", on_or_off(set.echo)},
                 {"timer", on_or_off(set.timer)},
                 {"trace", on_or_off(shell.traces().is_printing())},
                 {"strict", on_or_off(set.strict)},
                 {"readonly", on_or_off(set.readonly)},
                 {"safe", on_or_off(set.safe)},
                 {"safe-updates", on_or_off(set.safe_updates)}}});
    return outcome::done;
}

} // namespace qrysh
