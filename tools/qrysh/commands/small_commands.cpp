// The short commands: listings, files of the whole store, the device, where answers go.
#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/commands/device.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/listings.h"
#include "tools/text/schema.h"

namespace qrysh {

outcome show_tables(session &shell, const std::string & /*unused*/) {
    const trace_log::pause quiet(shell.traces());
    shell.show(list_tables(shell.database()));
    return outcome::done;
}

// A table of another database is shown all the same: its name says which one is meant.
outcome show_schema(session &shell, const std::string &table) {
    std::string db_name = shell.database();
    if (!table.empty() && !table_exists(db_name, table)) {
        const std::vector<std::string> elsewhere = databases_with(table);
        if (elsewhere.empty()) {
            return shell.refuse_table(table);
        }
        db_name = elsewhere.front();
        say(fmt::format("{} is a table of {}; .db {} sends statements there\n", table, db_name, db_name));
    }
    shell.show(list_columns(db_name, table));
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

outcome open_other_device(session &shell, const std::string &order) {
    const std::vector<std::string> words = split_words(order);
    device_choice chosen;
    if (order == "--sample") {
        chosen.sample = true;
    } else if (words.size() == 2 && words[0] == "--new") {
        chosen.new_image = words[1];
    } else {
        chosen.image = one_name(order);
    }
    if (open_device(shell, chosen) == outcome::failed) {
        return outcome::failed;
    }
    if (is_for_people(shell.options().mode)) {
        say(fmt::format("{}\n", describe_device(shell)));
    }
    return outcome::done;
}

namespace {

outcome redirect(const session &shell, const std::string &path, bool once) {
    if (!shell.may_replace(path)) {
        return session::fail("not written");
    }
    redirect_answers(path, once);
    return outcome::done;
}

} // namespace

outcome redirect_once(session &shell, const std::string &path) {
    return redirect(shell, path, true);
}
outcome redirect_all(session &shell, const std::string &path) {
    if (!path.empty()) {
        return redirect(shell, path, false);
    }
    end_redirection();
    return outcome::done;
}

outcome load(session & /*shell*/, const std::string &path) {
    return session::load(path);
}
outcome save(session &shell, const std::string &path) {
    return shell.save(path);
}

} // namespace qrysh
