// The short commands: listings, settings, files of the whole store.
#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/text/listings.h"
#include "tools/text/near_match.h"
#include "tools/text/schema.h"
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

} // namespace

outcome show_tables(session &shell, const std::string & /*unused*/) {
    const trace_log::pause quiet(shell.traces());
    shell.show(list_tables(shell.database()));
    return outcome::done;
}

outcome show_schema(session &shell, const std::string &table) {
    if (!table.empty() && !table_exists(shell.database(), table)) {
        const std::string near = did_you_mean(table, table_names(shell.database()));
        return session::fail(fmt::format("there is no table \"{}\" in {}{}", printable(table),
                                         shell.database(), near.empty() ? "; .tables lists them" : near));
    }
    shell.show(list_columns(shell.database(), table));
    return outcome::done;
}

outcome show_databases(session &shell, const std::string & /*unused*/) {
    const trace_log::pause quiet(shell.traces());
    shell.show(list_databases());
    return outcome::done;
}

outcome use_database(session &shell, const std::string &name) {
    return shell.use_database(name);
}
outcome use_mode(session &shell, const std::string &name) {
    return shell.use_mode(name);
}
outcome quit(session & /*shell*/, const std::string & /*unused*/) {
    return outcome::quit;
}

outcome load(session & /*shell*/, const std::string &path) {
    return session::load(path);
}
outcome save(session & /*shell*/, const std::string &path) {
    return session::save(path);
}

outcome switch_trace(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.traces().set_printing(on); });
}
outcome switch_echo(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().echo = on; });
}
outcome switch_strict(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().strict = on; });
}
outcome switch_timer(session &shell, const std::string &word) {
    return switch_setting(word, [&](bool on) { shell.options().timer = on; });
}

} // namespace qrysh
