/**
 * @file
 * The library's return codes for C++17 callers: an error category, and the exception that carries a code, its
 * name and its sentence.
 *
 * @since 1.0
 */
#ifndef QRYLIB_ERROR_HPP
#define QRYLIB_ERROR_HPP

#include <qrylib/types.h>
#include <qrylib/version.h>

#include <cstdint>
#include <string>
#include <system_error>
#include <type_traits>

namespace qrylib {

/** The library's own codes, to compare a std::error_code with. The platform's codes have no enumerator. */
enum class errc : std::uint32_t {
    no_memory = QRY_LIB_NO_MEMORY,                   /**< #QRY_LIB_NO_MEMORY */
    bad_parameter = QRY_LIB_BAD_PARAMETER,           /**< #QRY_LIB_BAD_PARAMETER */
    rowset_not_created = QRY_LIB_ROWSET_NOT_CREATED, /**< #QRY_LIB_ROWSET_NOT_CREATED */
    rowset_not_filled = QRY_LIB_ROWSET_NOT_FILLED,   /**< #QRY_LIB_ROWSET_NOT_FILLED */
    table_argument = QRY_LIB_TABLE_ARGUMENT,         /**< #QRY_LIB_TABLE_ARGUMENT */
    table_access = QRY_LIB_TABLE_ACCESS,             /**< #QRY_LIB_TABLE_ACCESS */
    not_accepted = QRY_LIB_NOT_ACCEPTED,             /**< #QRY_LIB_NOT_ACCEPTED */
    no_such_item = QRY_LIB_NO_SUCH_ITEM,             /**< #QRY_LIB_NO_SUCH_ITEM */
    no_free_entry = QRY_LIB_NO_FREE_ENTRY,           /**< #QRY_LIB_NO_FREE_ENTRY */
    invalid_argument = QRY_LIB_INVALID_ARGUMENT,     /**< #QRY_LIB_INVALID_ARGUMENT */
    failure = QRY_LIB_FAILURE                        /**< #QRY_LIB_FAILURE */
};

/**
 * Tells the name that types.h gives a code.
 *
 * @param code  the code
 * @return the name, "QRY_LIB_NOT_ACCEPTED" for example; "" for a code without one
 */
inline const char *code_name(std::uint32_t code) noexcept {
    constexpr struct {
        std::uint32_t code;
        const char *name;
    } names[] = {{QRY_LIB_OK, "QRY_LIB_OK"},
                 {QRY_LIB_NO_MEMORY, "QRY_LIB_NO_MEMORY"},
                 {QRY_LIB_BAD_PARAMETER, "QRY_LIB_BAD_PARAMETER"},
                 {QRY_LIB_ROWSET_NOT_CREATED, "QRY_LIB_ROWSET_NOT_CREATED"},
                 {QRY_LIB_ROWSET_NOT_FILLED, "QRY_LIB_ROWSET_NOT_FILLED"},
                 {QRY_LIB_TABLE_ARGUMENT, "QRY_LIB_TABLE_ARGUMENT"},
                 {QRY_LIB_TABLE_ACCESS, "QRY_LIB_TABLE_ACCESS"},
                 {QRY_LIB_NOT_ACCEPTED, "QRY_LIB_NOT_ACCEPTED"},
                 {QRY_LIB_NO_SUCH_ITEM, "QRY_LIB_NO_SUCH_ITEM"},
                 {QRY_LIB_NO_FREE_ENTRY, "QRY_LIB_NO_FREE_ENTRY"},
                 {QRY_LIB_INVALID_ARGUMENT, "QRY_LIB_INVALID_ARGUMENT"},
                 {QRY_LIB_FAILURE, "QRY_LIB_FAILURE"}};
    for (const auto &known : names) {
        if (known.code == code) {
            return known.name;
        }
    }
    return "";
}

/**
 * The category of the library's error codes; their message is the code's sentence.
 *
 * @return the one category
 */
inline const std::error_category &category() noexcept {
    struct code_category final : std::error_category {
        const char *name() const noexcept override { return "qrylib"; }
        std::string message(int code) const override {
            return qry_lib_code_text(static_cast<std::uint32_t>(code));
        }
    };
    static const code_category instance;
    return instance;
}

/**
 * Makes an error code of what a C function returned.
 *
 * @param code  the code, one of the platform's own included; 0 is no error
 * @return the error code
 */
inline std::error_code code_from(std::uint32_t code) noexcept {
    return {static_cast<int>(code), category()};
}

/**
 * Makes an error code of an enumerator, for comparisons.
 *
 * @param code  the enumerator
 * @return the error code
 */
inline std::error_code make_error_code(errc code) noexcept {
    return code_from(static_cast<std::uint32_t>(code));
}

/** What the throwing calls throw. what() holds the code's name, or its number, and its sentence. */
class error : public std::system_error {
  public:
    /**
     * @param code  as a C function returned it
     */
    explicit error(std::uint32_t code) : std::system_error(code_from(code), label(code)) {}

    /** @return the code as the C functions return it */
    std::uint32_t value() const noexcept { return static_cast<std::uint32_t>(code().value()); }
    /** @return the name that types.h gives the code; "" for a code without one */
    const char *name() const noexcept { return code_name(value()); }
    /** @return what the code means, in one sentence */
    const char *sentence() const noexcept { return qry_lib_code_text(value()); }

  private:
    static std::string label(std::uint32_t code) {
        const std::string name = code_name(code);
        return name.empty() ? "code " + std::to_string(code) : name;
    }
};

} // namespace qrylib

/** @cond */
template <>
struct std::is_error_code_enum<qrylib::errc> : std::true_type {};
/** @endcond */

#endif
