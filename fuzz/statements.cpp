// Statements as people write them, looked at, run strictly and run. The first character chooses the database.
#include "fuzz/fuzz_support.h"
#include "platform/host/qryhost.h"
#include "tools/text/statement_report.h"

namespace {

// Takes the library's lines, as the companion does.
class trace_keeper : public qrytext::kept_traces {
  public:
    trace_keeper() { qryhost_set_trace_sink(receive, this); }
    ~trace_keeper() { qryhost_set_trace_sink(nullptr, nullptr); }
    trace_keeper(const trace_keeper &) = delete;
    trace_keeper &operator=(const trace_keeper &) = delete;

  private:
    static void receive(void *context, std::uint32_t, std::uint32_t, std::uint32_t, const char *text) {
        static_cast<trace_keeper *>(context)->keep(text);
    }
};

void check_places(const qrytext::statement_report &report, const std::string &sql) {
    for (const qrytext::finding &note : report.notes) {
        fuzz::check(note.place + note.length <= sql.size(), "a note stands in the text");
        fuzz::check(!note.sentence.empty(), "a note says something");
    }
    if (report.refusal) {
        fuzz::check(report.refusal->place <= sql.size() + 1, "a refusal stands in the text");
    }
}

void keep_text(void *context, const char *text) {
    *static_cast<std::string *>(context) = text;
}

std::string saved_store() {
    std::string text;
    fuzz::check(qryhost_save_text(keep_text, &text) == 0, "the store can be saved");
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const fuzz::balanced_memory balanced;
    const std::string sql(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::string db_name = qry_lib_catalog_db(data[0] % 4);
    fuzz::restore_store();
    trace_keeper traces;
    const qrytext::statement_report seen = qrytext::check_statement(db_name, sql, {}, traces);
    check_places(seen, sql);
    if (!seen.notes.empty()) {
        const std::string before = saved_store();
        const qrytext::statement_report strict = qrytext::run_statement(db_name, sql, {false, true}, traces);
        fuzz::check(!strict.ok, "a strict run refuses what is noted");
        fuzz::check(saved_store() == before, "a strict run changes nothing then");
    }
    const qrytext::statement_report ran = qrytext::run_statement(db_name, sql, {}, traces);
    check_places(ran, sql);
    fuzz::check(!ran.ok || !seen.notes.empty() || ran.notes.empty(),
                "running notes nothing that looking does not");
    return 0;
}
