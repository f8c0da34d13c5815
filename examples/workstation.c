/* The workstation's controls: a device of one's own is opened, filled, made to fail, examined and saved.
 * Leaves device.img and records.json in the current folder. */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <platform/host/qryhost.h>
#include <qrylib/qrylib.h>

static const char fixture[] = "{\"format\":1,\"databases\":{\"adbk_db\":{\"PSN_TBL\":{\"records\":["
                              "{\"PSN_ID\":1,\"PSN_NAME\":\"Sato\"},{\"PSN_ID\":2,\"PSN_NAME\":\"Abe\"}]}}}}";

/* Answers 0, or 1 after the sentence that says why not. */
static int done(const char *what, int answer) {
    printf("%s: %s\n", what, answer == 0 ? "done" : qryhost_error());
    return answer != 0;
}

static uint32_t count_people(uint32_t *people) {
    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset = {0, NULL, -1};
    uint32_t code = qry_lib_db_get_stmt("adbk_db", &stmt);
    if (code == QRY_LIB_OK) {
        code = qry_lib_db_exec_query(&stmt, "SELECT COUNT(*) FROM PSN_TBL", &rowset);
    }
    *people = qry_lib_db_rowset_next(&rowset) == 1 ? qry_lib_db_rowset_get_uint(&rowset, 0, 0) : 0;
    qry_lib_db_rowset_term(&rowset);
    qry_lib_db_stmt_term(&stmt);
    return code;
}

static void count_line(void *context, uint32_t destination, uint32_t module, uint32_t level,
                       const char *text) {
    unsigned *lines = context;
    (void)destination;
    (void)module;
    (void)level;
    (void)text;
    ++*lines;
}

/* The second allocation of the query fails: it ends with a code, a trace, and every block given back. */
static int fail_an_allocation(void) {
    qryhost_trace_sink former = NULL;
    void *former_context = NULL;
    unsigned lines = 0;
    uint32_t people = 0;
    uint32_t code;
    qryhost_get_trace_sink(&former, &former_context);
    qryhost_set_trace_sink(count_line, &lines);
    qryhost_fail(QRYHOST_ALLOC, 1, 1, 1);
    code = count_people(&people);
    qryhost_fail_clear();
    qryhost_set_trace_sink(former, former_context);
    printf("failed: %s, traced: %s, blocks: %" PRIu32 "\n", code != QRY_LIB_OK ? "yes" : "no",
           lines > 0 ? "yes" : "no", qryhost_pool_blocks());
    return code == QRY_LIB_OK;
}

static int watch_a_query(void) {
    uint32_t people = 0;
    uint32_t lists;
    uint32_t code;
    qryhost_pool_reset_peak();
    lists = qryhost_thread_call_count(QRYHOST_CREATE_LIST);
    code = count_people(&people);
    printf("%" PRIu32 " people, %" PRIu32 " lists, %s at the peak\n", people,
           qryhost_thread_call_count(QRYHOST_CREATE_LIST) - lists,
           qryhost_pool_peak_bytes() > 3164 ? "more than a column" : "little");
    printf("counted for all threads: %s\n", qryhost_call_count(QRYHOST_CREATE_LIST) > 0 ? "yes" : "no");
    printf("handle: %" PRIu32 "\n", qryhost_current_db_handle());
    return code != QRY_LIB_OK;
}

/* Damage of any kind, and what is to be known of the address book. */
static void print_finding(void *context, int is_damage, const char *text) {
    (void)context;
    if (is_damage || strncmp(text, "adbk_db.", 8) == 0) {
        printf("%s: %s\n", is_damage ? "damage" : "known", text);
    }
}

static void print_length(void *context, const char *json) {
    (void)context;
    printf("saved as text: %s\n", strstr(json, "Sato") != NULL ? "with Sato" : "without Sato");
}

int main(void) {
    int wrong = 0;
    remove("device.img");
    wrong |= done("open", qryhost_open("device.img"));
    qryhost_set_patience(2000);
    wrong |= done("load", qryhost_load_text(fixture));
    wrong |= watch_a_query();
    wrong |= fail_an_allocation();
    wrong |= done("save", qryhost_save("records.json"));
    wrong |= done("reset", qryhost_reset());
    wrong |= done("load", qryhost_load("records.json"));
    wrong |= qryhost_save_text(print_length, NULL) != 0;
    wrong |= done("close", qryhost_close());
    wrong |= done("check", qryhost_check("device.img", print_finding, NULL));
    return wrong;
}
