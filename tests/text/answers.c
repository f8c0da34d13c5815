/* Every function of the companion on a sample device: prints the answers, each behind the name of its schema.
 */
#include <qrytext/qrytext.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void answer(const char *schema, const char *text) {
    printf("%s\t%s\n", schema, text);
}

static char *kept(const char *text) {
    char *copy = malloc(strlen(text) + 1);
    if (copy == NULL) {
        exit(2);
    }
    return strcpy(copy, text);
}

static const char *const statements[] = {
    "SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3;",
    "SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 99",
    "SELECT COUNT(*) FROM PSN_TBL",
    "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (5, 'Replaced')",
    "DELETE FROM PSN_TBL WHERE PSN_ID > 8",
    "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (42, '\x83\x61')",
    "SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 42",
    "UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID < 4",
    "UPDATE PSN_TBL SET INTEG_ID = 7 WHERE PSN_ID = 77",
    "CREATE TABLE ANYTHING (AT ALL)",
    "INSERT INTO PSN_TBL (PSN_ID) VALUES ('x'",
    "SELECT NAME FROM PSN_TBL",
    "SELEKT \x83\x61 FROM",
    "",
};

static void all_of(qrytext_session *session) {
    size_t i;
    for (i = 0; i < sizeof statements / sizeof *statements; ++i) {
        answer("run", qrytext_check(session, statements[i]));
        answer("explain", qrytext_explain(session, statements[i]));
        answer("run", qrytext_run(session, statements[i], NULL));
    }
    answer("run", qrytext_run(session, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID IN (?, ?)", "[1, 42]"));
    answer("run",
           qrytext_run(session, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", "[{\"hex\":\"8361\"}]"));
    answer("run", qrytext_run(session, "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = ?", "[]"));
    answer("run", qrytext_run(session, NULL, NULL));
}

int main(int argc, char **argv) {
    static const char *const formats[] = {"csv", "json", "jsonl", "markdown", "none", NULL};
    qrytext_session *session = qrytext_open("adbk_db", QRYTEXT_TRACES | QRYTEXT_COUNTS);
    char *before;
    size_t i;
    if (session == NULL || argc != 1 || argv == NULL || qrytext_open("no_db", 0) != NULL) {
        return 1;
    }
    answer("load",
           qrytext_load("{\"format\":1,\"databases\":{\"adbk_db\":{\"PSN_TBL\":{\"records\":["
                        "{\"PSN_ID\":1,\"PSN_NAME\":\"Sato Kenji\"},{\"PSN_ID\":5},{\"PSN_ID\":9}]}}}}",
                        0));
    before = kept(qrytext_save(0));
    answer("save", before);
    answer("export", qrytext_export(session, "csv"));
    all_of(session);
    for (i = 0; i < sizeof formats / sizeof *formats; ++i) {
        answer("export", qrytext_export(session, formats[i]));
    }
    answer("complete", qrytext_complete(session, "SELECT PSN_ FROM PSN_TBL", 11));
    answer("complete", qrytext_complete(NULL, NULL, 7));
    answer("schema", qrytext_schema());
    answer("trace", qrytext_trace("analyze_sql():[Return]:(447) (0x00000000)"));
    answer("trace", qrytext_trace("analyze_sql():[Enter]:(1) "));
    answer("trace", qrytext_trace("nothing of ours"));
    answer("trace", qrytext_trace(NULL));
    answer("diff", qrytext_diff(before, before));
    answer("diff", qrytext_diff(before, qrytext_save(0)));
    answer("diff", qrytext_diff("{", NULL));
    answer("load", qrytext_load("{\"format\":1,\"databases\":{\"no_db\":{}}}", 0));
    answer("load", qrytext_load(NULL, 0));
    answer("run", qrytext_run(NULL, "SELECT", NULL));
    answer("explain", qrytext_explain(NULL, NULL));
    answer("version", qrytext_version());
    free(before);
    qrytext_close(session);
    qrytext_close(NULL);
    return 0;
}
