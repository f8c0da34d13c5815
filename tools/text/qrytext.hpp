/**
 * @file
 * The companion for C++17 callers: what to change in a statement that the library refused.
 *
 * @since 1.3
 */
#ifndef QRYTEXT_QRYTEXT_HPP
#define QRYTEXT_QRYTEXT_HPP

#include <qrylib/error.hpp>
#include <qrytext/qrytext.h>

#include <memory>
#include <string>

namespace qrytext {

/** Closes a session at its owner's end. */
struct session_closer {
    /** @param session  the session; null is allowed */
    void operator()(qrytext_session *session) const noexcept { qrytext_close(session); }
};

/** Owns a session. */
using session = std::unique_ptr<qrytext_session, session_closer>;

/** @cond */
namespace detail {

// A member of the refusal in an answer. Sentences hold no control characters, so that only quotes and
// backslashes are escaped.
inline std::string refusal_member(const std::string &answer, const std::string &name) {
    const std::size_t refusal = answer.find("\"refusal\":{");
    const std::string begin = '"' + name + "\":\"";
    const std::size_t place = refusal == std::string::npos ? refusal : answer.find(begin, refusal);
    std::string text;
    for (std::size_t i = place + begin.size(); place != std::string::npos && i < answer.size(); ++i) {
        if (answer[i] == '"') {
            break;
        }
        i += answer[i] == '\\' ? 1 : 0;
        text += answer[i];
    }
    return text;
}

} // namespace detail
/** @endcond */

/**
 * Tells what is wrong with a statement that the library refused. The statement is looked at again and not
 * run.
 *
 * @param error     what a call threw
 * @param sql       the statement of that call
 * @param database  the database that it was bound to
 * @return a sentence, with what to write instead where that is known; "" for an error that is not about the
 *         statement, such as a lack of memory, and where nothing more is known
 */
inline std::string hint(const qrylib::error &error, const std::string &sql,
                        const std::string &database = "adbk_db") {
    const bool is_about_text = error.value() == QRY_LIB_NOT_ACCEPTED ||
                               error.value() == QRY_LIB_INVALID_ARGUMENT ||
                               error.value() == QRY_LIB_TABLE_ARGUMENT;
    const session asked(is_about_text ? qrytext_open(database.c_str(), 0) : nullptr);
    if (!asked) {
        return "";
    }
    const std::string answer = qrytext_check(asked.get(), sql.c_str());
    const std::string sentence = detail::refusal_member(answer, "text");
    const std::string advice = detail::refusal_member(answer, "hint");
    return advice.empty() ? sentence : sentence + ": " + advice;
}

} // namespace qrytext

#endif
