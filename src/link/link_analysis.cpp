// A SELECT over several tables becomes one query for each table and the conditions that join them.
#include <algorithm>
#include <cstring>
#include <numeric>
#include <set>
#include <string>

#include "link/qry_lib_analyze_link_info.h"
#include "parser/qry_lib_sql_parser.h"
#include "util/bounded_text.h"
#include "util/trace.h"

namespace norvane {

namespace {

// A reference of the form table.column, both parts trimmed.
struct column_reference {
    std::string table;
    std::string column;
};

// False, without a trace of its own, for a text of any other form.
bool split_reference(const qry_lib_sql_parser &parser, const char *text, column_reference &out) {
    std::vector<std::string> parts;
    unsigned int count = 0;
    if (parser.divide_keyword(text, ".", count, parts) != 0 || count != 2) {
        return false;
    }
    out.table = std::move(parts[0]);
    out.column = std::move(parts[1]);
    return parser.trimmed(out.table) && parser.trimmed(out.column);
}

// Where each table stands in a list, found without a look at all of them: a text may list 65,535 tables, and
// name one in as many columns and conditions. Refers to the names, which stay where they are.
class table_places {
  public:
    void add(const char *name) { names_.push_back(name); }

    // To be called once, behind the last name. Sorts on a heap: as quick as needed and short.
    void close() {
        order_.resize(names_.size());
        std::iota(order_.begin(), order_.end(), std::uint16_t{0});
        const auto before = [this](std::uint16_t a, std::uint16_t b) {
            const int by_name = std::strcmp(names_[a], names_[b]);
            return by_name != 0 ? by_name < 0 : a < b;
        };
        std::make_heap(order_.begin(), order_.end(), before);
        std::sort_heap(order_.begin(), order_.end(), before);
    }

    // The places of one name, in ascending order.
    struct range {
        const std::uint16_t *first;
        const std::uint16_t *last;

        const std::uint16_t *begin() const { return first; }
        const std::uint16_t *end() const { return last; }
        bool empty() const { return first == last; }
    };
    range find(const std::string &name) const {
        const std::uint16_t *end = order_.data() + order_.size();
        const std::uint16_t *first = std::partition_point(
            order_.data(), end, [&](std::uint16_t place) { return name.compare(names_[place]) > 0; });
        const std::uint16_t *last = std::partition_point(
            first, end, [&](std::uint16_t place) { return name.compare(names_[place]) == 0; });
        return {first, last};
    }

  private:
    std::vector<const char *> names_;
    std::vector<std::uint16_t> order_; // by name, then by place
};

void name_side(QRY_LIB_COLUMN &side, const column_reference &reference) {
    copy_bounded(side.table_name, reference.table.c_str());
    copy_bounded(side.col_name, reference.column.c_str());
}

} // namespace

std::uint32_t qry_lib_sql_parser::analyze_sql_select_link(qry_lib_analyze_info &info,
                                                          qry_lib_analyze_link_info &link_info) const {
    const QRY_LIB_DB_QUERY_TYPE type = info.get_exec_type();
    if (type != QRY_LIB_DB_QUERY_TYPE_SELECT && type != QRY_LIB_DB_QUERY_TYPE_COUNT) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    std::vector<qry_lib_analyze_info> per_table(info.get_table_num());
    for (std::uint16_t t = 0; t < info.get_table_num(); ++t) {
        char table[QRY_LIB_TABLE_NAME_MAX + 1];
        if (const std::uint32_t code = info.get_table(t, table); code != 0) {
            trace_return(__func__, 350, code);
            return QRY_LIB_NOT_ACCEPTED;
        }
        per_table[t].set_exec_type(type);
        per_table[t].set_order(table, "", QRY_LIB_ODER_TYPE_NOTHING);
        per_table[t].set_table(table);
        per_table[t].set_db_name(info.get_db_name());
    }
    if (type != QRY_LIB_DB_QUERY_TYPE_COUNT && set_link_select_cols(info, per_table, link_info) != 0) {
        return refuse(__func__, 368);
    }
    if (set_link_filter_cols(info, per_table, link_info) != 0) {
        return refuse(__func__, 376);
    }
    // The result of a linked query is not sorted; its ORDER BY ends here.
    link_info.set_order("", "", QRY_LIB_ODER_TYPE_NOTHING);
    link_info.add_analyze_infos(std::move(per_table));
    return 0;
}

std::uint32_t qry_lib_sql_parser::set_link_select_cols(qry_lib_analyze_info &info,
                                                       std::vector<qry_lib_analyze_info> &per_table,
                                                       qry_lib_analyze_link_info &link_info) const {
    if (info.get_cols_num() == 0) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    table_places tables;
    for (std::uint16_t t = 0; t < info.get_table_num(); ++t) {
        tables.add(info.table_at(t));
    }
    tables.close();
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        const QRY_LIB_COLUMN *column = info.col_at(i);
        if (column == nullptr) {
            return trace_return(__func__, 1657, QRY_LIB_NO_SUCH_ITEM);
        }
        column_reference selected;
        if (!split_reference(*this, column->col_name, selected)) {
            return QRY_LIB_NOT_ACCEPTED;
        }
        const table_places::range named = tables.find(selected.table);
        if (named.empty()) {
            return refuse(__func__, 1705);
        }
        for (const std::uint16_t t : named) {
            // A table listed several times gets the column each time, beyond what 16 bits count.
            if (link_info.get_cols_num() == UINT16_MAX) {
                return refuse(__func__, __LINE__);
            }
            per_table[t].add_cols(selected.table.c_str(), selected.column.c_str(), column->value,
                                  QRY_LIB_COLUMN_TYPE_STR);
            link_info.add_cols(selected.table.c_str(), selected.column.c_str());
        }
    }
    return 0;
}

namespace {

// How many dots an unquoted value has: a join's has one.
unsigned int dots_in(const QRY_LIB_CONDITION &filter) {
    unsigned int num = 0;
    qry_lib_sql_parser().get_keyword_num(filter.value.str_value, ".", num);
    return num;
}

std::size_t number_of_joins(const qry_lib_analyze_info &info) {
    std::size_t num = 0;
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        const QRY_LIB_CONDITION &filter = *info.filter_at(i);
        num += filter.value_is_quoted == 0 && dots_in(filter) == 1 ? 1 : 0;
    }
    return num;
}

// Takes the conditions of a linked query over, one by one: a join becomes a link, any other comparison goes
// to the query of its table. Conditions and distinct columns are counted over all queries along the way, for
// a table listed several times gets one each time: beyond what 16 bits count, the text is not accepted.
class condition_splitter {
  public:
    condition_splitter(const qry_lib_sql_parser &parser, const qry_lib_analyze_info &info,
                       std::vector<qry_lib_analyze_info> &per_table, qry_lib_analyze_link_info &link_info)
        : parser_(parser), info_(info), per_table_(per_table), link_info_(link_info) {
        std::uint16_t t = 0; // as many as the query counts
        for (const qry_lib_analyze_info &query : per_table) {
            tables_.add(query.get_table());
            condition_num_ += query.get_filter_cols_num();
            for (std::uint16_t i = 0; i < query.get_cols_num(); ++i) {
                columns_.emplace(query.col_at(i)->col_name, t);
            }
            ++t;
        }
        tables_.close();
    }

    std::uint32_t take_over(std::uint16_t index, bool &is_join);
    std::uint32_t add_link(std::uint16_t index);

  private:
    std::uint32_t add_comparison(const column_reference &compared, const QRY_LIB_CONDITION &filter);
    bool is_listed(const std::string &table) const;
    bool add_key_column(const column_reference &key);

    const qry_lib_sql_parser &parser_;
    const qry_lib_analyze_info &info_;
    std::vector<qry_lib_analyze_info> &per_table_;
    qry_lib_analyze_link_info &link_info_;
    using named_places = std::set<std::pair<std::string, std::uint16_t>>;

    table_places tables_;
    named_places columns_; // the distinct columns of each query, by the query's place
    named_places keys_;    // the references that every query they name has as a column, at place 0
    std::size_t condition_num_ = 0;
};

std::uint32_t condition_splitter::take_over(std::uint16_t index, bool &is_join) {
    static constexpr char name[] = "set_link_filter_cols";
    const QRY_LIB_CONDITION *filter = info_.filter_at(index);
    if (filter == nullptr) {
        return trace_return(name, 1763, QRY_LIB_NO_SUCH_ITEM);
    }
    column_reference compared;
    if (!split_reference(parser_, filter->col_name.c_str(), compared)) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (filter->value_is_quoted != 0) {
        return add_comparison(compared, *filter);
    }
    const unsigned int dot_num = dots_in(*filter);
    if (dot_num > 1) {
        return refuse(name, 1816);
    }
    if (dot_num == 1) {
        if (filter->operation != QRY_LIB_OPERATION_TYPE_EQUAL || filter->join != QRY_LIB_JOIN_TYPE_AND) {
            return refuse(name, 1824);
        }
        is_join = true;
        const std::uint32_t code = add_link(index);
        return code == 0 ? 0 : trace_return(name, 1831, code);
    }
    int is_number = 0;
    parser_.check_col_val(filter->value.str_value, is_number);
    return is_number == 0 ? std::uint32_t{QRY_LIB_NOT_ACCEPTED} : add_comparison(compared, *filter);
}

std::uint32_t condition_splitter::add_comparison(const column_reference &compared,
                                                 const QRY_LIB_CONDITION &filter) {
    static constexpr char name[] = "set_link_filter_cols";
    const table_places::range named = tables_.find(compared.table);
    if (named.empty()) {
        return refuse(name, filter.value_is_quoted != 0 ? 1806 : 1866);
    }
    for (const std::uint16_t t : named) {
        if (++condition_num_ > UINT16_MAX) {
            return refuse(name, __LINE__);
        }
        per_table_[t].add_filter_cols(compared.table.c_str(), compared.column.c_str(), filter.value.str_value,
                                      filter.operation, filter.join, filter.value_is_quoted);
    }
    return 0;
}

std::uint32_t condition_splitter::add_link(std::uint16_t index) {
    static constexpr char name[] = "set_link_filter_val";
    const QRY_LIB_CONDITION *filter = info_.filter_at(index);
    if (filter == nullptr) {
        trace_return(name, 1914, QRY_LIB_NO_SUCH_ITEM);
        return QRY_LIB_NOT_ACCEPTED;
    }
    std::vector<std::string> parts;
    unsigned int count = 0;
    if (const std::uint32_t code = parser_.divide_keyword(filter->col_name.c_str(), ".", count, parts);
        code != 0 || count != 2) {
        trace_return(name, 1923, code);
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (const std::uint32_t code = parser_.divide_keyword(filter->value.str_value, ".", count, parts);
        code != 0 || count != 2) {
        trace_return(name, 1929, code);
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (parts.size() != 4) {
        return refuse(name, 1934);
    }
    for (std::string &part : parts) {
        if (!parser_.trimmed(part)) {
            return QRY_LIB_NOT_ACCEPTED;
        }
    }
    const column_reference left{parts[0], parts[1]};
    const column_reference right{parts[2], parts[3]};
    if (!is_listed(left.table) || !is_listed(right.table)) {
        return refuse(name, 1963);
    }
    if (left.column.size() > QRY_LIB_COLUMN_NAME_MAX || right.column.size() > QRY_LIB_COLUMN_NAME_MAX) {
        return refuse(name, __LINE__);
    }
    QRY_LIB_LINK link{};
    name_side(link.left, left);
    name_side(link.right, right);
    link_info_.add_link(link);
    if (!add_key_column(left) || !add_key_column(right)) {
        return refuse(name, __LINE__);
    }
    return 0;
}

// Where there is no such name each query is asked, once: one without a table traces that.
bool condition_splitter::is_listed(const std::string &table) const {
    return !tables_.find(table).empty() ||
           std::any_of(per_table_.begin(), per_table_.end(), [&](qry_lib_analyze_info &query) {
               return parser_.get_is_table(0, table, query) == 1;
           });
}

// The join keys come back from the per-table queries, whether or not the caller selected them. False when
// there is no room for one more column.
bool condition_splitter::add_key_column(const column_reference &key) {
    // A table that is listed often need not be gone through for each join of the same column.
    if (!keys_.emplace(key.table + "." + key.column, std::uint16_t{0}).second) {
        return true;
    }
    for (const std::uint16_t t : tables_.find(key.table)) {
        if (columns_.count({key.column, t}) != 0) {
            continue;
        }
        if (columns_.size() >= UINT16_MAX || per_table_[t].get_cols_num() == UINT16_MAX) {
            return false;
        }
        per_table_[t].add_empty_col(key.table.c_str(), key.column);
        columns_.emplace(key.column, t);
    }
    return true;
}

} // namespace

std::uint32_t qry_lib_sql_parser::set_link_filter_cols(qry_lib_analyze_info &info,
                                                       std::vector<qry_lib_analyze_info> &per_table,
                                                       qry_lib_analyze_link_info &link_info) const {
    const int joins_needed = info.get_table_num() - 1;
    if (info.get_filter_cols_num() < joins_needed) {
        return refuse(__func__, 1745);
    }
    if (info.get_filter_cols_num() == 0) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    link_info.expect_links(std::size_t{link_info.get_link_num()} + number_of_joins(info));
    condition_splitter splitter(*this, info, per_table, link_info);
    int join_num = 0;
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        bool is_join = false;
        if (const std::uint32_t code = splitter.take_over(i, is_join); code != 0) {
            // A text that already names its joins shows what failed; any other lacks joins to begin with.
            return join_num >= joins_needed ? code : std::uint32_t{QRY_LIB_NOT_ACCEPTED};
        }
        join_num += is_join ? 1 : 0;
    }
    return join_num < joins_needed ? std::uint32_t{QRY_LIB_NOT_ACCEPTED} : 0;
}

std::uint32_t qry_lib_sql_parser::set_link_filter_val(unsigned short index, qry_lib_analyze_info &info,
                                                      std::vector<qry_lib_analyze_info> &per_table,
                                                      qry_lib_analyze_link_info &link_info) const {
    return condition_splitter(*this, info, per_table, link_info).add_link(index);
}

} // namespace norvane
