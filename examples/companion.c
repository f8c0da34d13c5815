/* The companion in a caller of one's own: statements as people type them, answers as JSON. */
#include <qrytext/qrytext.h>

#include <stdio.h>

int main(void) {
    qrytext_session *session = qrytext_open("adbk_db", QRYTEXT_STRICT);
    if (session == NULL) {
        return 1;
    }
    /* An answer lives until the session's next call. */
    puts(qrytext_run(session, "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (?, ?)", "[1, \"Sato Kenji\"]"));
    puts(qrytext_run(session, "SELECT PSN_ID, PSN_NAME FROM PSN_TBL", NULL));
    puts(qrytext_export(session, "csv"));

    /* What is wrong with a statement, and where, without running it. */
    puts(qrytext_check(session, "SELECT PSN_NAM FROM PSN_TBL"));
    qrytext_close(session);
    return 0;
}
