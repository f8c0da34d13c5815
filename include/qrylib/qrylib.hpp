/**
 * @file
 * The library for C++17 callers: header-only, over the C functions of qrylib.h.
 *
 *     qrylib::database book("adbk_db");
 *     book.insert_into("PSN_TBL").set("PSN_ID", 1).set("PSN_NAME", "Abe").execute();
 *     for (const auto row : book.query("SELECT PSN_ID, PSN_NAME FROM PSN_TBL ORDER BY PSN_ID")) {
 *         std::cout << row.get<int>("PSN_ID").value_or(0) << '\n';
 *     }
 *
 * Conventions, beside those of qrylib.h:
 *
 *  1. Failures. Every call that can fail exists twice: without a std::error_code it throws qrylib::error;
 *     with one it sets it and returns an empty rowset. std::bad_alloc passes through both. In code compiled
 *     without exceptions the first form ends the program.
 *  2. Ownership. A rowset owns its rows and is move-only. Rows, and the texts read as std::string_view, live
 *     as long as their rowset. A database is a name, a statement a description: both are values.
 *  3. Refusals. What the C setters only trace and ignore (a name or value beyond its capacity, no memory) is
 *     an error here before anything is executed. So are texts with a zero character inside.
 *  4. Threads. Objects may be used from several threads at once as long as none of them changes.
 *
 * @since 1.0
 */
#ifndef QRYLIB_QRYLIB_HPP
#define QRYLIB_QRYLIB_HPP

#include <qrylib/error.hpp>
#include <qrylib/query.h>
#include <qrylib/rowset.hpp>
#include <qrylib/statement.h>
#include <qrylib/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

namespace qrylib {

namespace detail {

inline void raise_if_failed(std::error_code code) {
    if (!code) {
        return;
    }
#if defined(__cpp_exceptions)
    throw error(static_cast<std::uint32_t>(code.value()));
#else
    std::abort();
#endif
}

/* True for a text that a C function sees whole. */
inline bool is_whole(const std::string &text, std::size_t capacity = std::string::npos) noexcept {
    return text.size() <= capacity && text.find('\0') == std::string::npos;
}

} // namespace detail

/**
 * What a statement writes, or compares with: a text, or an integer of any type but char, whose sign differs
 * from machine to machine. An integer beyond 32 bits is refused when the statement is executed; one beyond
 * its column is narrowed by the library.
 */
class value {
  public:
    /**
     * @param number  the number
     */
    template <typename Integer, std::enable_if_t<detail::is_number<Integer>, int> = 0>
    value(Integer number) noexcept
        : number_(number <= 0 || static_cast<std::uint64_t>(number) <= beyond
                      ? static_cast<std::int64_t>(number)
                      : beyond) {}
    /**
     * @param text  the text
     */
    value(std::string text) : text_(std::move(text)), is_text_(true) {}
    /**
     * @param text  the text
     */
    value(std::string_view text) : text_(text), is_text_(true) {}
    /**
     * @param text  the text, terminated and not null
     */
    value(const char *text) : text_(text), is_text_(true) {}

    /** @return whether it is a text */
    bool is_text() const noexcept { return is_text_; }
    /** @return the text; empty for a number */
    const std::string &text() const noexcept { return text_; }
    /** @return the number; 0 for a text */
    std::int64_t number() const noexcept { return number_; }

    /** @return false for a value that the library cannot take whole */
    bool is_within_capacity() const noexcept {
        return is_text_ ? detail::is_whole(text_, QRY_LIB_STRING_MAX)
                        : detail::holds<std::int32_t>(number_) || detail::holds<std::uint32_t>(number_);
    }

  private:
    /** Stands for every number above it: none of them fits 32 bits. */
    static constexpr std::int64_t beyond = std::numeric_limits<std::int64_t>::max();

    std::int64_t number_ = 0;
    std::string text_;
    bool is_text_ = false;
};

/**
 * A statement described field by field; a database makes it. The calls only describe, and may be chained:
 * names are checked when the statement is executed, and it may be changed and executed again.
 */
class statement {
  public:
    /**
     * What a database makes.
     *
     * @param database  its name
     * @param type      INSERT, UPDATE, DELETE or SELECT
     * @param table     the table
     */
    statement(std::string database, QRY_LIB_DB_QUERY_TYPE type, std::string table)
        : database_(std::move(database)), table_(std::move(table)), type_(type) {}

    /**
     * INSERT and UPDATE: gives a column its value. A column that is set again takes the new value.
     *
     * @param column   at most 31 characters
     * @param content  the value
     * @return this statement
     */
    statement &set(std::string column, value content) {
        for (auto &known : columns_) {
            if (known.first == column) {
                known.second = std::move(content);
                return *this;
            }
        }
        columns_.emplace_back(std::move(column), std::move(content));
        return *this;
    }

    /**
     * SELECT: adds a column.
     *
     * @param name  at most 31 characters, or "COUNT(*)" as the only one
     * @return this statement
     */
    statement &column(std::string name) {
        columns_.emplace_back(std::move(name), value(0));
        return *this;
    }

    /**
     * UPDATE, DELETE, SELECT: sets the condition. The last one counts.
     *
     * @param condition  without the word WHERE; empty: every row
     * @return this statement
     */
    statement &where(std::string condition) {
        where_ = std::move(condition);
        where_is_refused_ = false;
        return *this;
    }

    /**
     * UPDATE, DELETE, SELECT: sets the condition to one equality. Conditions know no escapes: a text that
     * holds " AND " or " OR " cannot be compared with, and the statement is then refused with
     * errc::invalid_argument.
     *
     * @param column   the column
     * @param content  the value
     * @return this statement
     */
    statement &where_equal(const std::string &column, const value &content) {
        where(column + " = " + literal(content));
        where_is_refused_ = !content.is_within_capacity() ||
                            content.text().find(" AND ") != std::string::npos ||
                            content.text().find(" OR ") != std::string::npos;
        return *this;
    }

    /**
     * SELECT: sets the sort phrase.
     *
     * @param phrase  without the words ORDER BY ("PSN_ID DESC")
     * @return this statement
     */
    statement &order_by(std::string phrase) {
        order_by_ = std::move(phrase);
        return *this;
    }

    /**
     * Runs an INSERT, UPDATE or DELETE.
     *
     * @param failure  set to the error, as of qry_lib_db_stmt_exec(), or cleared
     */
    void execute(std::error_code &failure) const {
        c_statement built;
        std::uint32_t code = fill(built.record);
        failure = code_from(code != 0 ? code : qry_lib_db_stmt_exec(&built.record));
    }
    /** Runs an INSERT, UPDATE or DELETE; throws qrylib::error. */
    void execute() const {
        std::error_code failure;
        execute(failure);
        detail::raise_if_failed(failure);
    }

    /**
     * Runs a SELECT.
     *
     * @param failure  set to the error, as of qry_lib_db_stmt_exec_query(), or cleared
     * @return the rows
     */
    rowset query(std::error_code &failure) const {
        c_statement built;
        rowset rows;
        std::uint32_t code = fill(built.record);
        failure = code_from(code != 0 ? code : qry_lib_db_stmt_exec_query(&built.record, rows.get()));
        return rows;
    }
    /**
     * Runs a SELECT; throws qrylib::error.
     *
     * @return the rows
     */
    rowset query() const {
        std::error_code failure;
        rowset rows = query(failure);
        detail::raise_if_failed(failure);
        return rows;
    }

  private:
    /** @cond */
    struct c_statement {
        c_statement() noexcept { qry_lib_db_stmt_init(&record); }
        c_statement(const c_statement &) = delete;
        c_statement &operator=(const c_statement &) = delete;
        ~c_statement() { qry_lib_db_stmt_term(&record); }

        qry_lib_db_stmt_ record;
    };
    /** @endcond */

    /** The dialect writes a number above 2147483647 as its negative counterpart. */
    static std::string literal(const value &content) {
        return content.is_text() ? "'" + content.text() + "'"
                                 : std::to_string(static_cast<std::int32_t>(content.number()));
    }

    bool is_within_capacity() const noexcept {
        for (const auto &column : columns_) {
            if (!detail::is_whole(column.first, QRY_LIB_COLUMN_NAME_MAX) ||
                !column.second.is_within_capacity()) {
                return false;
            }
        }
        return detail::is_whole(database_, QRY_LIB_DB_NAME_MAX) &&
               detail::is_whole(table_, QRY_LIB_TABLE_NAME_MAX) && detail::is_whole(where_) &&
               detail::is_whole(order_by_) && !where_is_refused_ && columns_.size() <= UINT16_MAX;
    }

    /** The setters tell nobody that memory ran out, so the record is looked at: a DELETE must not lose its
     * WHERE. */
    std::uint32_t fill(qry_lib_db_stmt_ &record) const {
        if (!is_within_capacity()) {
            return QRY_LIB_INVALID_ARGUMENT;
        }
        if (const std::uint32_t code = qry_lib_db_get_stmt(database_.c_str(), &record); code != 0) {
            return code;
        }
        qry_lib_db_stmt_set_exec_type(&record, type_);
        qry_lib_db_stmt_set_table_name(&record, table_.c_str());
        qry_lib_db_stmt_set_col_num(&record, static_cast<std::int32_t>(columns_.size()));
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            fill_column(record, static_cast<std::int32_t>(i));
        }
        if (!where_.empty()) {
            qry_lib_db_stmt_set_where_phrase(&record, where_.c_str());
        }
        if (!order_by_.empty()) {
            qry_lib_db_stmt_set_orderby_phrase(&record, order_by_.c_str());
        }
        const bool is_complete = record.table_name != nullptr &&
                                 (columns_.empty() || record.record.cols != nullptr) &&
                                 (where_.empty() || record.where_phrase != nullptr) &&
                                 (order_by_.empty() || record.orderby_phrase != nullptr);
        return is_complete ? QRY_LIB_OK : QRY_LIB_NO_MEMORY;
    }

    void fill_column(qry_lib_db_stmt_ &record, std::int32_t index) const {
        const auto &[name, content] = columns_[static_cast<std::size_t>(index)];
        qry_lib_db_stmt_set_col_name(&record, index, name.c_str());
        if (content.is_text()) {
            qry_lib_db_stmt_set_elem_as_str(&record, index, content.text().c_str());
        } else if (content.number() < 0) {
            qry_lib_db_stmt_set_elem_as_int(&record, index, static_cast<std::int32_t>(content.number()));
        } else {
            qry_lib_db_stmt_set_elem_as_ulong(&record, index, static_cast<std::uint32_t>(content.number()));
        }
    }

    std::string database_;
    std::string table_;
    QRY_LIB_DB_QUERY_TYPE type_;
    std::vector<std::pair<std::string, value>> columns_;
    std::string where_;
    std::string order_by_;
    bool where_is_refused_ = false;
};

/** One of the device's databases: "adbk_db", "department_db", "usrac_db" or "log_db". Nothing is opened. */
class database {
  public:
    /**
     * @param name  of the database, looked up when a statement is executed
     */
    explicit database(std::string name) : name_(std::move(name)) {}

    /** @return the name */
    const std::string &name() const noexcept { return name_; }

    /**
     * Runs a SELECT.
     *
     * @param sql      the text
     * @param failure  set to the error, as of qry_lib_db_exec_query(), or cleared
     * @return the rows
     */
    rowset query(const std::string &sql, std::error_code &failure) const {
        qry_lib_db_stmt_ carrier;
        rowset rows;
        const std::uint32_t code = bind(sql, carrier);
        failure = code_from(code != 0 ? code : qry_lib_db_exec_query(&carrier, sql.c_str(), rows.get()));
        return rows;
    }
    /**
     * Runs a SELECT; throws qrylib::error.
     *
     * @param sql  the text
     * @return the rows
     */
    rowset query(const std::string &sql) const {
        std::error_code failure;
        rowset rows = query(sql, failure);
        detail::raise_if_failed(failure);
        return rows;
    }

    /**
     * Runs any other SQL text: DELETE FROM, DROP TABLE, CREATE.
     *
     * @param sql      the text
     * @param failure  set to the error, as of qry_lib_db_exec(), or cleared
     */
    void execute(const std::string &sql, std::error_code &failure) const {
        qry_lib_db_stmt_ carrier;
        const std::uint32_t code = bind(sql, carrier);
        failure = code_from(code != 0 ? code : qry_lib_db_exec(&carrier, sql.c_str()));
    }
    /**
     * Runs any other SQL text; throws qrylib::error.
     *
     * @param sql  the text
     */
    void execute(const std::string &sql) const {
        std::error_code failure;
        execute(sql, failure);
        detail::raise_if_failed(failure);
    }

    /**
     * An INSERT, to be filled in and executed.
     *
     * @param table  the table, at most 127 characters
     * @return the statement
     */
    statement insert_into(std::string table) const {
        return make(QRY_LIB_DB_QUERY_TYPE_INSERT, std::move(table));
    }
    /**
     * An UPDATE, to be filled in and executed.
     *
     * @param table  the table, at most 127 characters
     * @return the statement
     */
    statement update(std::string table) const { return make(QRY_LIB_DB_QUERY_TYPE_UPDATE, std::move(table)); }
    /**
     * A DELETE, to be filled in and executed.
     *
     * @param table  the table, at most 127 characters
     * @return the statement
     */
    statement delete_from(std::string table) const {
        return make(QRY_LIB_DB_QUERY_TYPE_DELETE, std::move(table));
    }
    /**
     * A SELECT, to be filled in and executed.
     *
     * @param table  the table, at most 127 characters
     * @return the statement
     */
    statement select_from(std::string table) const {
        return make(QRY_LIB_DB_QUERY_TYPE_SELECT, std::move(table));
    }

  private:
    statement make(QRY_LIB_DB_QUERY_TYPE type, std::string table) const {
        return statement(name_, type, std::move(table));
    }

    /** Text carries its database in a statement record that holds nothing else, and so needs no end. */
    std::uint32_t bind(const std::string &sql, qry_lib_db_stmt_ &carrier) const {
        if (!detail::is_whole(sql) || !detail::is_whole(name_)) {
            return QRY_LIB_INVALID_ARGUMENT;
        }
        return qry_lib_db_get_stmt(name_.c_str(), &carrier);
    }

    std::string name_;
};

} // namespace qrylib

#endif
