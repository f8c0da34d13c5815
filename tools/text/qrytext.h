/**
 * @file
 * The companion: statements as people write them, understood, run and explained. No terminal and no files.
 *
 * 1. Every answer is one JSON text in UTF-8 on one line; docs/companion.md describes its members and a JSON
 *    schema beside that page states them. Answers are never null, whatever the arguments.
 * 2. An answer lives until the session's next call; that of a function without a session until the calling
 *    thread's next call of one. It is not to be freed.
 * 3. A text that is not UTF-8 is {"hex":"8361"}, in answers and in parameters.
 * 4. Places are byte offsets in the statement, "from" its first byte, "to" behind its last.
 * 5. A session is used by one thread at a time; several threads may have one each. A call that runs or reads
 *    statements takes the process's trace sink while it lasts, one such call at a time; the sink that was set
 *    before goes on receiving the lines of statements that run.
 * 6. Statements run through the functions that libqrylib.so.1 exports.
 *
 * @since 1.3
 */
#ifndef QRYTEXT_QRYTEXT_H
#define QRYTEXT_QRYTEXT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks a function that libqrytext.so.1 exports. */
#define QRYTEXT_API __attribute__((visibility("default")))

/** One user of a database. */
typedef struct qrytext_session qrytext_session;

/** What a session allows and tells, or-ed together. */
enum {
    QRYTEXT_READONLY = 1, /**< only SELECT is run */
    QRYTEXT_STRICT = 2,   /**< a statement with a note is not run: its first note becomes the refusal */
    QRYTEXT_TRACES = 4,   /**< answers of qrytext_run() have the library's trace, with causes */
    QRYTEXT_COUNTS = 8    /**< answers of qrytext_run() have what the statement cost */
};

/**
 * Opens a session.
 *
 * @param database  the database of its statements, "adbk_db" for example
 * @param flags     #QRYTEXT_READONLY and the others, or 0
 * @return the session, to be closed with qrytext_close(); null for null, an unknown database or no memory
 */
QRYTEXT_API qrytext_session *qrytext_open(const char *database, uint32_t flags);

/**
 * Closes a session; its last answer ends.
 *
 * @param session  the session; null is allowed
 */
QRYTEXT_API void qrytext_close(qrytext_session *session);

/**
 * Runs a statement of any kind, INSERT and UPDATE texts included.
 *
 * @param session     the session
 * @param statement   the text, with or without a semicolon behind it
 * @param parameters  a JSON array with one number, string or {"hex"} for each "?" outside quotes; null for
 * none
 * @return the answer: docs/schemas/run.json
 */
QRYTEXT_API const char *qrytext_run(qrytext_session *session, const char *statement, const char *parameters);

/**
 * Tells what is to be said of a statement, without running it.
 *
 * @param session    the session
 * @param statement  the text
 * @return the answer: docs/schemas/run.json, without an answer's rows; "ok" is false for what would be
 * refused before it ran
 */
QRYTEXT_API const char *qrytext_check(qrytext_session *session, const char *statement);

/**
 * Explains how a statement is understood and what its search tests. Reads the default record and nothing
 * else.
 *
 * @param session    the session
 * @param statement  the text
 * @return the answer: docs/schemas/explain.json
 */
QRYTEXT_API const char *qrytext_explain(qrytext_session *session, const char *statement);

/**
 * Tells what may stand where the cursor is.
 *
 * @param session  the session
 * @param text     a statement as far as it is written
 * @param cursor   bytes before the cursor; beyond the end: at the end
 * @return the answer: docs/schemas/complete.json
 */
QRYTEXT_API const char *qrytext_complete(qrytext_session *session, const char *text, uint32_t cursor);

/**
 * Writes the rows of the session's last SELECT in another form.
 *
 * @param session  the session
 * @param format   "csv", "json", "jsonl" or "markdown"
 * @return the answer: docs/schemas/export.json
 */
QRYTEXT_API const char *qrytext_export(qrytext_session *session, const char *format);

/**
 * Lists databases, tables and columns, with capacities and records in use.
 *
 * @return the answer: docs/schemas/schema.json
 */
QRYTEXT_API const char *qrytext_schema(void);

/**
 * Tells what a trace line means.
 *
 * @param line  the line
 * @return the answer: docs/schemas/trace.json
 */
QRYTEXT_API const char *qrytext_trace(const char *line);

/**
 * Replaces the workstation's records, default records and settings by those of a fixture.
 *
 * @param snapshot  the fixture's text
 * @param flags     0
 * @return the answer: docs/schemas/load.json; where "ok" is false nothing has changed
 */
QRYTEXT_API const char *qrytext_load(const char *snapshot, uint32_t flags);

/**
 * Writes the workstation's records, default records and settings as a fixture.
 *
 * @param flags  0
 * @return the fixture, or docs/schemas/load.json with "ok" false
 */
QRYTEXT_API const char *qrytext_save(uint32_t flags);

/**
 * Compares two fixtures record by record; a record is known by its key.
 *
 * @param snapshot_a  a fixture's text
 * @param snapshot_b  another's
 * @return the answer: docs/schemas/diff.json
 */
QRYTEXT_API const char *qrytext_diff(const char *snapshot_a, const char *snapshot_b);

/**
 * Tells the version.
 *
 * @return the answer: docs/schemas/version.json
 */
QRYTEXT_API const char *qrytext_version(void);

#ifdef __cplusplus
}
#endif

#endif
