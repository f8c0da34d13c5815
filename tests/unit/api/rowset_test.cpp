// Reading results: every stored type through every read, strings into buffers of every size.
#include <optional>

#include "unit/query_support.h"

namespace {

using test::number_column;
using test::text_column;
using test::texts;

constexpr std::uint32_t int_type = QRY_LIB_COLUMN_TYPE_INT;
constexpr std::uint32_t uchar_type = QRY_LIB_COLUMN_TYPE_UCHAR;
constexpr std::uint32_t ushort_type = QRY_LIB_COLUMN_TYPE_USHORT;
constexpr std::uint32_t uint_type = QRY_LIB_COLUMN_TYPE_UINT;
constexpr std::uint32_t ulong_type = QRY_LIB_COLUMN_TYPE_ULONG;

class rowset_reads : public test::trace_test {
  protected:
    ~rowset_reads() override { qry_lib_db_rowset_term(&rowset); }

    // One row of the given columns, cursor on it.
    void hold(const std::vector<QRY_LIB_COLUMN> &columns) {
        qry_lib_db_rowset_term(&rowset);
        rowset = test::make_rowset({columns});
        ASSERT_EQ(qry_lib_db_rowset_next(&rowset), 1u);
    }

    // What get_str leaves in a buffer of `length` bytes that were all '#' before; '.' stands for zero.
    std::string buffer_after_get_str(std::uint32_t length, const char *default_str,
                                     std::uint16_t col_index = 0) {
        std::string buffer(length + 1, '#');
        qry_lib_db_rowset_get_str(buffer.data(), length, &rowset, col_index, default_str);
        EXPECT_EQ(buffer.back(), '#') << "written beyond the buffer";
        buffer.pop_back();
        for (char &c : buffer) {
            c = c == '\0' ? '.' : c;
        }
        return buffer;
    }

    std::string get_str(std::uint32_t length, const char *default_str) {
        std::vector<char> buffer(length, '#');
        qry_lib_db_rowset_get_str(buffer.data(), length, &rowset, 0, default_str);
        EXPECT_EQ(buffer.back(), '\0');
        return buffer.data();
    }

    qry_lib_db_rowset_ rowset{0, nullptr, -1};
};

// What each read answers for a stored number; nothing: it is refused.
struct read_row {
    std::uint32_t type;
    std::uint32_t bits;
    std::optional<std::uint32_t> as_ulong;
    std::optional<std::uint32_t> as_uint;
    std::optional<std::int32_t> as_int;
};

const std::optional<std::uint32_t> refused;
const std::optional<std::int32_t> refused_int;

const read_row read_rows[] = {
    {int_type, 0, 0, 0, 0},
    {int_type, 5, 5, 5, 5},
    {int_type, 2147483647, 2147483647, 2147483647, 2147483647},
    {int_type, 0xFFFFFFFF, refused, refused, -1},
    {int_type, 0x80000000, refused, refused, INT32_MIN},
    {uchar_type, 0, 0, 0, 0},
    {uchar_type, 255, 255, 255, 255},
    {ushort_type, 258, 258, 258, 258},
    {ushort_type, 65535, 65535, 65535, 65535},
    {uint_type, 5, 5, 5, 5},
    {uint_type, 2147483647, 2147483647, 2147483647, 2147483647},
    {uint_type, 2147483648, 2147483648, 2147483648, refused_int},
    {uint_type, 4294967295, 4294967295, 4294967295, refused_int},
    {ulong_type, 0, 0, refused, 0},
    {ulong_type, 5, 5, refused, 5},
    {ulong_type, 2147483647, 2147483647, refused, 2147483647},
    {ulong_type, 2147483648, 2147483648, refused, refused_int},
    {ulong_type, 4294967295, 4294967295, refused, refused_int},
    {5, 0x31000000, refused, refused, refused_int},
    {6, 0x31000000, refused, refused, refused_int},
    {7, 5, refused, refused, refused_int},
    {0xFFFFFFFF, 5, refused, refused, refused_int},
};

TEST_F(rowset_reads, each_type_is_read_or_refused) {
    constexpr std::uint32_t fallback = 7777;
    for (const read_row &row : read_rows) {
        SCOPED_TRACE("type " + std::to_string(row.type) + " bits " + std::to_string(row.bits));
        hold({number_column("T", "C", row.type, row.bits)});
        EXPECT_EQ(qry_lib_db_rowset_get_ulong(&rowset, 0, fallback), row.as_ulong.value_or(fallback));
        EXPECT_EQ(take_chain(), row.as_ulong ? texts{} : texts{"qry_lib_db_wrapper_rowset_get_ulong 0xDB05"});
        EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, fallback), row.as_uint.value_or(fallback));
        EXPECT_EQ(take_chain(), row.as_uint ? texts{} : texts{"qry_lib_db_wrapper_rowset_get_uint 0xDB05"});
        EXPECT_EQ(qry_lib_db_rowset_get_int(&rowset, 0, -33), row.as_int.value_or(-33));
        EXPECT_EQ(take_chain(), row.as_int ? texts{} : texts{"qry_lib_db_wrapper_rowset_get_int 0xDB05"});
    }
}

TEST_F(rowset_reads, without_a_column_to_read_the_default_comes_back) {
    hold({number_column("T", "C", uint_type, 5)});
    const std::pair<std::int32_t, std::uint16_t> places[] = {{-1, 0}, {1, 0}, {0, 1}, {0, 65535}};
    for (const auto &[current, col_index] : places) {
        SCOPED_TRACE(std::to_string(current) + "/" + std::to_string(col_index));
        rowset.current = current;
        EXPECT_EQ(qry_lib_db_rowset_get_ulong(&rowset, col_index, 71), 71u);
        EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, col_index, 72), 72u);
        EXPECT_EQ(qry_lib_db_rowset_get_int(&rowset, col_index, -73), -73);
        EXPECT_EQ(buffer_after_get_str(4, "ab", col_index), "ab.#");
        EXPECT_EQ(
            take_chain(),
            (texts{"qry_lib_db_wrapper_rowset_get_ulong 0xDB05", "qry_lib_db_wrapper_rowset_get_uint 0xDB05",
                   "qry_lib_db_wrapper_rowset_get_int 0xDB05", "qry_lib_db_wrapper_rowset_get_str 0xDB05"}));
    }
}

TEST_F(rowset_reads, the_default_string_is_copied_only_where_it_is_no_longer_than_the_buffer) {
    hold({number_column("T", "C", uint_type, 5)});
    rowset.current = -1;
    EXPECT_EQ(buffer_after_get_str(4, "abcd"), "abc."); // as long as the buffer: cut by one
    EXPECT_EQ(buffer_after_get_str(4, "abc"), "abc.");
    EXPECT_EQ(buffer_after_get_str(4, ""), ".###");
    EXPECT_EQ(buffer_after_get_str(4, "abcde"), "####");
    EXPECT_EQ(buffer_after_get_str(1, "a"), ".");
    EXPECT_EQ(buffer_after_get_str(1, "ab"), "#");
    EXPECT_EQ(buffer_after_get_str(2, nullptr), ".#");
    EXPECT_EQ(take_chain(), texts(7, "qry_lib_db_wrapper_rowset_get_str 0xDB05"));
}

TEST_F(rowset_reads, a_string_is_cut_to_the_buffer_and_always_terminated) {
    hold({text_column("T", "C", "abcdefghijklmnopqrst")});
    EXPECT_EQ(buffer_after_get_str(8, "default"), "abcdefg.");
    EXPECT_EQ(buffer_after_get_str(1, "default"), ".");
    EXPECT_EQ(buffer_after_get_str(20, nullptr), "abcdefghijklmnopqrs.");
    EXPECT_EQ(buffer_after_get_str(21, nullptr), "abcdefghijklmnopqrst.");
    EXPECT_EQ(get_str(3000, ""), "abcdefghijklmnopqrst");
    hold({text_column("T", "C", "")});
    EXPECT_EQ(get_str(8, "default"), "");
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_reads, the_last_byte_of_the_buffer_is_a_terminator_whatever_the_length) {
    hold({text_column("T", "C", "ab"), number_column("T", "N", uint_type, 0x41424344)});
    for (const std::uint16_t col_index : test::indexes{0, 1}) {
        for (const std::uint32_t length : {6u, 9u}) {
            EXPECT_EQ(buffer_after_get_str(length, "", col_index).back(), '.');
        }
    }
}

TEST_F(rowset_reads, the_longest_string_is_read_whole) {
    const std::string longest(QRY_LIB_STRING_MAX, 'x');
    hold({text_column("T", "C", longest)});
    EXPECT_EQ(get_str(QRY_LIB_STRING_MAX + 1, ""), longest);
    EXPECT_EQ(get_str(QRY_LIB_STRING_MAX, ""), longest.substr(1));
    EXPECT_EQ(get_str(9000, ""), longest);
}

TEST_F(rowset_reads, a_string_without_its_end_is_not_read_beyond_the_value) {
    QRY_LIB_COLUMN column = text_column("T", "C", "");
    std::memset(column.value.str_value, 'x', sizeof column.value.str_value);
    hold({column});
    EXPECT_LE(get_str(9000, "").size(), sizeof column.value.str_value);
}

// A number read as text: its bytes, most significant first, up to the first zero byte.
struct raw_row {
    std::uint32_t type;
    std::uint32_t bits;
    const char *text;
};

const raw_row raw_rows[] = {
    {int_type, 5, ""},
    {int_type, 0x41424344, "ABCD"},
    {uint_type, 0x41420043, "AB"},
    {ulong_type, 0x41000000, "A"},
    {ulong_type, 0x00414243, ""},
    {uchar_type, 0x41, "A"},
    {ushort_type, 0x4142, "AB"},
    {ushort_type, 0x41, ""},
    {ushort_type, 0x4100, "A"},
};

TEST_F(rowset_reads, a_number_reads_as_its_raw_bytes_over_the_default) {
    for (const raw_row &row : raw_rows) {
        SCOPED_TRACE("type " + std::to_string(row.type) + " bits " + std::to_string(row.bits));
        hold({number_column("T", "C", row.type, row.bits)});
        EXPECT_EQ(get_str(8, "d"), row.text);
        EXPECT_EQ(get_str(8, nullptr), row.text);
        EXPECT_EQ(take_chain(), texts(2, "qry_lib_db_wrapper_rowset_get_str 0xDB05"));
    }
}

TEST_F(rowset_reads, a_number_is_not_read_where_the_default_is_longer_than_the_buffer) {
    hold({number_column("T", "C", uint_type, 0x41424344)});
    EXPECT_EQ(buffer_after_get_str(3, "four"), "###");
    EXPECT_EQ(take_chain(), texts{"qry_lib_db_wrapper_rowset_get_str 0xDB05"});
    EXPECT_EQ(buffer_after_get_str(3, "abc"), "AB.");
    EXPECT_EQ(buffer_after_get_str(4, ""), "ABC.");
    EXPECT_EQ(buffer_after_get_str(1, ""), ".");
    EXPECT_EQ(take_chain(), texts(3, "qry_lib_db_wrapper_rowset_get_str 0xDB05"));
}

TEST_F(rowset_reads, a_value_of_an_unknown_type_reads_as_the_string_that_it_holds) {
    hold({text_column("T", "C", "abc", 6)});
    EXPECT_EQ(get_str(8, "d"), "abc");
    hold({text_column("T", "C", "abc", 4000000000u)});
    EXPECT_EQ(get_str(3, "d"), "ab");
    EXPECT_EQ(take_chain(), texts(2, "qry_lib_db_wrapper_rowset_get_str 0xDB05"));
}

TEST_F(rowset_reads, rows_are_walked_rewound_and_counted) {
    EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 0u);
    EXPECT_EQ(qry_lib_db_rowset_get_row_num(&rowset), 0);
    test::hand_made_rows three;
    for (const std::uint32_t value : {11u, 12u, 13u}) {
        three.push_back({number_column("T", "C", uint_type, value)});
    }
    rowset = test::make_rowset(three);
    EXPECT_EQ(qry_lib_db_rowset_get_row_num(&rowset), 3);
    for (const std::uint32_t value : {11u, 12u, 13u}) {
        EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 1u);
        EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, 0), value);
    }
    EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 0u);
    EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, 0), 13u);
    qry_lib_db_rowset_init_value(&rowset);
    EXPECT_EQ(rowset.current, -1);
    EXPECT_EQ(qry_lib_db_rowset_next(&rowset), 1u);
    EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, 0), 11u);
    EXPECT_EQ(take_chain(), texts{});
}

TEST_F(rowset_reads, init_and_term_release_the_rows) {
    const std::uint32_t blocks = qryhost_pool_blocks();
    for (void (*release)(qry_lib_db_rowset_ *) : {qry_lib_db_rowset_init, qry_lib_db_rowset_term}) {
        hold({number_column("T", "C", uint_type, 1)});
        release(&rowset);
        EXPECT_EQ(rowset.record_num, 0);
        EXPECT_EQ(rowset.current, -1);
        EXPECT_EQ(qryhost_pool_blocks(), blocks);
    }
    EXPECT_EQ(qry_lib_db_rowset_get_uint(&rowset, 0, 9), 9u);
}

TEST_F(rowset_reads, null_arguments_are_traced_and_harmless) {
    qry_lib_db_rowset_init(nullptr);
    qry_lib_db_rowset_term(nullptr);
    EXPECT_EQ(qry_lib_db_rowset_next(nullptr), 0u);
    qry_lib_db_rowset_init_value(nullptr);
    EXPECT_EQ(qry_lib_db_rowset_get_row_num(nullptr), 0);
    EXPECT_EQ(qry_lib_db_rowset_get_ulong(nullptr, 0, 1), 1u);
    EXPECT_EQ(qry_lib_db_rowset_get_uint(nullptr, 0, 2), 2u);
    EXPECT_EQ(qry_lib_db_rowset_get_int(nullptr, 0, -3), -3);
    char buffer[4] = "###";
    qry_lib_db_rowset_get_str(buffer, sizeof buffer, nullptr, 0, "ab");
    EXPECT_STREQ(buffer, "ab");
    texts expected;
    for (const char *name : {"init", "term", "next", "init_value", "get_row_num", "get_ulong", "get_uint",
                             "get_int", "get_str"}) {
        expected.push_back(std::string("qry_lib_db_wrapper_rowset_") + name + " 0xDB05");
    }
    EXPECT_EQ(take_chain(), expected);
}

TEST_F(rowset_reads, no_buffer_is_never_written) {
    hold({text_column("T", "C", "abc")});
    char guard = '#';
    qry_lib_db_rowset_get_str(nullptr, 8, &rowset, 0, "d");
    qry_lib_db_rowset_get_str(&guard, 0, &rowset, 0, "");
    EXPECT_EQ(guard, '#');
    rowset.current = -1;
    qry_lib_db_rowset_get_str(&guard, 0, &rowset, 0, "");
    EXPECT_EQ(guard, '#');
    EXPECT_EQ(take_chain(), texts(3, "qry_lib_db_wrapper_rowset_get_str 0xDB05"));
}

} // namespace
