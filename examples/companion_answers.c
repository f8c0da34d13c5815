/* What else the companion answers: explanations, completions, the schema, trace lines, fixtures and their
 * differences. Prints how each answer begins. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <qrytext/qrytext.h>

static void print_beginning(const char *what, const char *answer) {
    printf("%s: %.20s\n", what, answer);
}

/* An answer lives until the next call, so one that is needed longer is copied. */
static char *copy(const char *answer) {
    char *text = malloc(strlen(answer) + 1);
    if (text != NULL) {
        strcpy(text, answer);
    }
    return text;
}

static void compare_fixtures(qrytext_session *session) {
    char *before = copy(qrytext_save(0));
    print_beginning("run",
                    qrytext_run(session, "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (7, 'Abe')", NULL));
    if (before != NULL) {
        char *after = copy(qrytext_save(0));
        if (after != NULL) {
            print_beginning("diff", qrytext_diff(before, after));
        }
        print_beginning("load", qrytext_load(before, 0));
        free(after);
    }
    free(before);
}

int main(void) {
    qrytext_session *session = qrytext_open("adbk_db", QRYTEXT_TRACES | QRYTEXT_COUNTS);
    if (session == NULL) {
        return 1;
    }
    print_beginning("explain", qrytext_explain(session, "SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3"));
    print_beginning("complete", qrytext_complete(session, "SELECT PSN_N", 12));
    print_beginning("schema", qrytext_schema());
    print_beginning("trace", qrytext_trace("divide_operate():[Return]:(1315) (0x0000DB00)"));
    print_beginning("version", strstr(qrytext_version(), "\"version\"") != NULL ? "known" : "not known");
    compare_fixtures(session);
    qrytext_close(session);
    return 0;
}
