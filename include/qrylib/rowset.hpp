/**
 * @file
 * Results for C++17 callers: rowsets that own their rows, and reads that say what they could not read.
 * Conventions as in qrylib.hpp, which includes this header.
 *
 * @since 1.0
 */
#ifndef QRYLIB_ROWSET_HPP
#define QRYLIB_ROWSET_HPP

#include <qrylib/rowset.h>
#include <qrylib/types.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace qrylib {

namespace detail {

/* The column's number; absent for a text. */
inline std::optional<std::int64_t> number_in(const QRY_LIB_COLUMN &column) noexcept {
    switch (static_cast<std::uint32_t>(column.type)) {
    case QRY_LIB_COLUMN_TYPE_INT:
        return column.value.int_value;
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return column.value.uchar_value;
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return column.value.ushort_value;
    case QRY_LIB_COLUMN_TYPE_UINT:
    case QRY_LIB_COLUMN_TYPE_ULONG:
        return column.value.ulong_value;
    default:
        return std::nullopt;
    }
}

/* The column's text; absent for a number. */
inline std::optional<std::string_view> text_in(const QRY_LIB_COLUMN &column) noexcept {
    if (column.type != QRY_LIB_COLUMN_TYPE_STR) {
        return std::nullopt;
    }
    const char *text = column.value.str_value;
    const void *end = std::memchr(text, '\0', sizeof column.value.str_value);
    const std::size_t capacity = QRY_LIB_STRING_MAX;
    return std::string_view(
        text, end == nullptr ? capacity : static_cast<std::size_t>(static_cast<const char *>(end) - text));
}

template <typename Integer>
constexpr bool is_number =
    std::is_integral_v<Integer> && !std::is_same_v<Integer, bool> && !std::is_same_v<Integer, char>;

template <typename Integer>
constexpr bool holds(std::int64_t number) noexcept {
    using limits = std::numeric_limits<Integer>;
    if (number < 0) {
        return std::is_signed_v<Integer> && number >= static_cast<std::int64_t>(limits::min());
    }
    return static_cast<std::uint64_t>(number) <= static_cast<std::uint64_t>(limits::max());
}

} // namespace detail

/** One row of a rowset: a view, valid as long as its rowset. Columns are numbered from 0 in select-list
 * order. */
class row {
  public:
    /**
     * @param record  a row of a rowset, which must outlive the view
     */
    explicit row(const QRY_LIB_RECORD &record) noexcept : record_(&record) {}

    /** @return the number of columns */
    std::size_t size() const noexcept { return static_cast<std::size_t>(record_->col_num); }

    /**
     * @param index  of the column, from 0
     * @return the column as the C records hold it; null where there is none
     */
    const QRY_LIB_COLUMN *column(std::size_t index) const noexcept {
        return index < size() ? &record_->cols[index] : nullptr;
    }

    /**
     * @param name   the column's name
     * @param table  its table; empty: of any table
     * @return the first column of that name; null where there is none
     */
    const QRY_LIB_COLUMN *column(std::string_view name, std::string_view table = {}) const noexcept {
        for (std::size_t i = 0; i < size(); ++i) {
            const QRY_LIB_COLUMN &candidate = record_->cols[i];
            if (name == candidate.col_name && (table.empty() || table == candidate.table_name)) {
                return &candidate;
            }
        }
        return nullptr;
    }

    /**
     * Reads a column as an integer type, std::string or std::string_view. Nothing is traced.
     *
     * @param index  of the column, from 0
     * @return the value; absent when there is no such column, when a number is asked for and it holds a text
     * or the other way round, and when the number is outside the type's range
     */
    template <typename Type>
    std::optional<Type> get(std::size_t index) const {
        return read<Type>(column(index));
    }
    /**
     * Reads a column by its name.
     *
     * @param name   the column's name
     * @param table  its table; empty: of any table
     * @return as above
     */
    template <typename Type>
    std::optional<Type> get(std::string_view name, std::string_view table = {}) const {
        return read<Type>(column(name, table));
    }

  private:
    template <typename Type>
    static std::optional<Type> read(const QRY_LIB_COLUMN *column) {
        constexpr bool is_text = std::is_same_v<Type, std::string> || std::is_same_v<Type, std::string_view>;
        static_assert(is_text || detail::is_number<Type>, "read an integer, a std::string or a string_view");
        if (column == nullptr) {
            return std::nullopt;
        }
        if constexpr (is_text) {
            const std::optional<std::string_view> text = detail::text_in(*column);
            return text ? std::optional<Type>(Type(*text)) : std::nullopt;
        } else {
            const std::optional<std::int64_t> number = detail::number_in(*column);
            return number && detail::holds<Type>(*number) ? std::optional<Type>(static_cast<Type>(*number))
                                                          : std::nullopt;
        }
    }

    const QRY_LIB_RECORD *record_;
};

/** The rows of a result. Empty when default-constructed, moved from, or handed out by a call that failed. */
class rowset {
  public:
    class iterator {
      public:
        using iterator_category = std::input_iterator_tag;
        using value_type = row;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = row;

        explicit iterator(const QRY_LIB_RECORD *at) noexcept : at_(at) {}
        row operator*() const noexcept { return row(*at_); }
        iterator &operator++() noexcept {
            ++at_;
            return *this;
        }
        iterator operator++(int) noexcept { return iterator(at_++); }
        friend bool operator==(iterator a, iterator b) noexcept { return a.at_ == b.at_; }
        friend bool operator!=(iterator a, iterator b) noexcept { return a.at_ != b.at_; }

      private:
        const QRY_LIB_RECORD *at_;
    };

    /** An empty one. */
    rowset() noexcept = default;
    /**
     * Takes the rows of another.
     *
     * @param other  empty afterwards
     */
    rowset(rowset &&other) noexcept : rows_(std::exchange(other.rows_, empty_rows)) {}
    /**
     * Takes the rows of another and gives its own back.
     *
     * @param other  empty afterwards
     * @return this rowset
     */
    rowset &operator=(rowset &&other) noexcept {
        rowset taken(std::move(other));
        std::swap(rows_, taken.rows_);
        return *this;
    }
    rowset(const rowset &) = delete;
    rowset &operator=(const rowset &) = delete;
    /** Gives the rows back. */
    ~rowset() { qry_lib_db_rowset_term(&rows_); }

    /** @return the number of rows */
    std::size_t size() const noexcept { return static_cast<std::size_t>(rows_.record_num); }
    /** @return whether there are no rows */
    bool empty() const noexcept { return size() == 0; }
    /** @return an iterator on the first row */
    iterator begin() const noexcept { return iterator(rows_.records); }
    /** @return the iterator behind the last row */
    iterator end() const noexcept { return iterator(empty() ? rows_.records : rows_.records + size()); }

    /**
     * @param index  of the row, from 0; it must be below size()
     * @return the row
     */
    row operator[](std::size_t index) const noexcept { return row(rows_.records[index]); }

    /** @return the C record, for the functions of rowset.h and query.h; it stays this rowset's */
    qry_lib_db_rowset_ *get() noexcept { return &rows_; }

  private:
    static constexpr qry_lib_db_rowset_ empty_rows{0, nullptr, -1};

    qry_lib_db_rowset_ rows_ = empty_rows;
};

} // namespace qrylib

#endif
