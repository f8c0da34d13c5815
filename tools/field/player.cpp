// Each kind of call: what it needs of the earlier ones, how it is made again, what of its outcome is
// compared.
#include "tools/field/player.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include <qrylib/db_handle.h>

#include "tools/field/element_shapes.h"
#include "tools/field/statement_contents.h"
#include "util/element_type.h"

namespace field {

namespace {

constexpr char lost_statement[] = "the statement record was made before the recording begins";
constexpr char lost_rowset[] = "the rowset was filled before the recording begins";
constexpr char lost_search[] = "the search was made before the recording begins";
constexpr char lost_handles[] = "the handles of before the recording are not known";
constexpr char not_recorded[] = "not all of it was recorded";

// A value of an element, read or to be written.
struct alignas(8) element_value {
    std::uint8_t bytes[3008]{};
};

const char *c_text(const std::optional<std::string> &text) {
    return text ? text->c_str() : nullptr;
}

column_value value_of(const QRY_LIB_COLUMN &column) {
    column_value value;
    value.type = column.type;
    if (column.type == QRY_LIB_COLUMN_TYPE_STR) {
        value.text.assign(column.value.str_value,
                          ::strnlen(column.value.str_value, sizeof column.value.str_value));
    } else if (const std::uint32_t width = norvane::number_width(column.type); width != 0) {
        value.number = norvane::load_number(&column.value, width);
    }
    return value;
}

std::string value_text(const column_value &value) {
    return value.type == QRY_LIB_COLUMN_TYPE_STR ? quoted(value.text) : std::to_string(value.number);
}

void take_key(payload_reader &payload, qry_lib_tb_list_filter_key_ &key) {
    key.category_id = payload.take32();
    key.element_id = payload.take32();
    key.elem_type = static_cast<std::uint8_t>(payload.take8());
    key.cmp_size = static_cast<std::uint8_t>(payload.take8());
    key.member_offset = static_cast<std::uint16_t>(payload.take16());
    key.operation = static_cast<QRY_LIB_OPERATION_TYPE>(payload.take32());
    key.join = static_cast<QRY_LIB_JOIN_TYPE>(payload.take32());
    if (const std::uint32_t width = norvane::number_width(key.elem_type); width != 0) {
        norvane::store_number(key.value, width, payload.take32());
        return;
    }
    const std::string_view text = payload.take_bytes();
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), sizeof key.value - 1), key.value);
}

} // namespace

player::~player() {
    for (auto &each : statements_) {
        qry_lib_db_stmt_term(&each.second.record);
    }
    for (auto &each : rowsets_) {
        qry_lib_db_rowset_term(&each.second.record);
    }
    for (auto &each : searches_) {
        qry_lib_tb_delete_search_table_id(&each.second);
    }
}

played_call player::play(const recorded_call &call) {
    played_call played;
    used_ = nullptr;
    std::string reason = not_recorded;
    const action made = call.is_cut || call.function >= call_num ? action() : prepare(call, reason);
    if (!made) {
        played.judged = verdict::incomplete;
        played.reason = reason;
        return played;
    }
    feeder source(call);
    feeder::current = &source;
    try {
        const outcome result = made();
        feeder::current = nullptr;
        source.end();
        compare(call, result, source);
    } catch (const std::bad_alloc &) {
        feeder::current = nullptr;
        if (!call.is_thrown) {
            source.report({"", "", "the standard library had no memory"});
        }
    }
    judge(call, source, played);
    return played;
}

// What a rowset holds follows from how it was filled, and so does what giving it back comes to.
void player::judge(const recorded_call &call, const feeder &source, played_call &played) {
    const verdict before = used_ != nullptr ? used_->filled : verdict::same;
    played.position = source.position();
    if (source.differs()) {
        played.judged = call.is_masked ? verdict::masked : verdict::different;
        played.found = source.found();
    } else if (source.is_beyond_end() || !call.has_result) {
        played.judged = verdict::incomplete;
        played.reason = "the recording ends inside it";
    }
    if (!is_statement(call.function) && before != verdict::same && played.judged == verdict::different) {
        played.judged = before == verdict::masked ? verdict::masked : verdict::incomplete;
        played.reason = "its rowset was not filled as recorded";
    }
    if (used_ != nullptr) {
        used_->filled = is_statement(call.function) ? played.judged : verdict::same;
    }
}

void player::compare(const recorded_call &call, const outcome &made, feeder &source) const {
    if (source.differs() || source.is_beyond_end() || !call.has_result) {
        return;
    }
    if (call.is_thrown) {
        source.report({"", "", "the recorded call ended by an exception"});
        return;
    }
    if (made.result != call.result) {
        char text[2][32];
        static_cast<void>(std::snprintf(text[0], sizeof text[0], "result 0x%04X", call.result));
        static_cast<void>(std::snprintf(text[1], sizeof text[1], "result 0x%04X", made.result));
        source.report({text[0], text[1], ""});
        return;
    }
    payload_reader handed_out(call.handed_out);
    for (const std::uint64_t number : made.numbers) {
        const std::uint64_t recorded = handed_out.take32();
        if (recorded != number) {
            source.report(
                {"handed out " + std::to_string(recorded), "handed out " + std::to_string(number), ""});
        }
    }
    if (made.rows != nullptr && call.result == 0) {
        compare_rows(call, *made.rows, source);
    }
}

void player::compare_rows(const recorded_call &call, const qry_lib_db_rowset_ &made, feeder &source) {
    if (static_cast<std::size_t>(made.record_num) != call.rows.size()) {
        source.report(
            {std::to_string(call.rows.size()) + " rows", std::to_string(made.record_num) + " rows", ""});
        return;
    }
    for (std::size_t r = 0; r < call.rows.size(); ++r) {
        const QRY_LIB_RECORD &row = made.records[r];
        for (std::size_t c = 0; c < call.rows[r].size(); ++c) {
            const bool is_there = c < static_cast<std::size_t>(row.col_num);
            const column_value value = is_there ? value_of(row.cols[c]) : column_value();
            if (!is_there || !(value == call.rows[r][c])) {
                const std::string place = "row " + std::to_string(r) + ", column " + std::to_string(c) + ": ";
                source.report({place + value_text(call.rows[r][c]), place + value_text(value), ""});
                return;
            }
        }
    }
}

player::action player::prepare(const recorded_call &call, std::string &reason) {
    if (is_statement(call.function)) {
        return prepare_statement(call, reason);
    }
    if (call.function <= call_qry_lib_db_stmt_term) {
        return prepare_setter(call, reason);
    }
    if (call.function >= call_qry_lib_tb_get_stc_table && call.function <= call_qry_lib_tb_set_stc_status) {
        return prepare_element(call, reason);
    }
    if (call.function == call_qry_lib_tb_create_search_table_id ||
        call.function == call_qry_lib_tb_delete_search_table_id) {
        return prepare_search(call, reason);
    }
    return prepare_other(call, reason);
}

// Setters, and what begins and ends a statement record.
player::action player::prepare_setter(const recorded_call &call, std::string &reason) {
    arguments given(call.arguments);
    const std::uint64_t pointer = given.take64();
    statement &kept = statements_[pointer];
    qry_lib_db_stmt_ *const stmt = pointer == 0 ? nullptr : &kept.record;
    if (call.function == call_qry_lib_db_stmt_init || call.function == call_qry_lib_db_get_stmt) {
        kept.is_known = true;
    } else if (!kept.is_known && stmt != nullptr) {
        reason = lost_statement;
        return {};
    }
    const auto with_text = [&](void (*set)(qry_lib_db_stmt_ *, const char *)) -> action {
        return [stmt, set, text = given.take_text()] {
            set(stmt, c_text(text));
            return outcome();
        };
    };
    const auto with_index = [&](auto set) -> action {
        const auto index = static_cast<std::int32_t>(given.take32());
        return [stmt, set, index, number = given.take32()] {
            set(stmt, index, number);
            return outcome();
        };
    };
    const auto with_indexed_text =
        [&](void (*set)(qry_lib_db_stmt_ *, std::int32_t, const char *)) -> action {
        const auto index = static_cast<std::int32_t>(given.take32());
        return [stmt, set, index, text = given.take_text()] {
            set(stmt, index, c_text(text));
            return outcome();
        };
    };
    switch (call.function) {
    case call_qry_lib_db_stmt_init:
        return [stmt] {
            qry_lib_db_stmt_init(stmt);
            return outcome();
        };
    case call_qry_lib_db_get_stmt:
        return [stmt, name = given.take_text()] {
            return outcome{qry_lib_db_get_stmt(c_text(name), stmt), {}, nullptr};
        };
    case call_qry_lib_db_stmt_set_table_name:
        return with_text(qry_lib_db_stmt_set_table_name);
    case call_qry_lib_db_stmt_set_exec_type:
        return [stmt, type = given.take32()] {
            qry_lib_db_stmt_set_exec_type(stmt, static_cast<QRY_LIB_DB_QUERY_TYPE>(type));
            return outcome();
        };
    case call_qry_lib_db_stmt_set_col_num:
        return [stmt, num = given.take32()] {
            qry_lib_db_stmt_set_col_num(stmt, static_cast<std::int32_t>(num));
            return outcome();
        };
    case call_qry_lib_db_stmt_set_col_name:
        return with_indexed_text(qry_lib_db_stmt_set_col_name);
    case call_qry_lib_db_stmt_set_elem_as_int:
        return with_index([](qry_lib_db_stmt_ *s, std::int32_t i, std::uint32_t number) {
            qry_lib_db_stmt_set_elem_as_int(s, i, static_cast<std::int32_t>(number));
        });
    case call_qry_lib_db_stmt_set_elem_as_uchar:
        return with_index([](qry_lib_db_stmt_ *s, std::int32_t i, std::uint32_t number) {
            qry_lib_db_stmt_set_elem_as_uchar(s, i, static_cast<std::uint8_t>(number));
        });
    case call_qry_lib_db_stmt_set_elem_as_ushort:
        return with_index([](qry_lib_db_stmt_ *s, std::int32_t i, std::uint32_t number) {
            qry_lib_db_stmt_set_elem_as_ushort(s, i, static_cast<std::uint16_t>(number));
        });
    case call_qry_lib_db_stmt_set_elem_as_uint:
        return with_index(qry_lib_db_stmt_set_elem_as_uint);
    case call_qry_lib_db_stmt_set_elem_as_ulong:
        return with_index(qry_lib_db_stmt_set_elem_as_ulong);
    case call_qry_lib_db_stmt_set_elem_as_str:
        return with_indexed_text(qry_lib_db_stmt_set_elem_as_str);
    case call_qry_lib_db_stmt_set_where_phrase:
        return with_text(qry_lib_db_stmt_set_where_phrase);
    case call_qry_lib_db_stmt_set_where_equal_int:
        return [stmt, name = given.take_text(), number = given.take32()] {
            qry_lib_db_stmt_set_where_equal_int(stmt, c_text(name), static_cast<std::int32_t>(number));
            return outcome();
        };
    case call_qry_lib_db_stmt_set_where_equal_ulong:
        return [stmt, name = given.take_text(), number = given.take32()] {
            qry_lib_db_stmt_set_where_equal_ulong(stmt, c_text(name), number);
            return outcome();
        };
    case call_qry_lib_db_stmt_set_where_equal_str:
        return [stmt, name = given.take_text(), text = given.take_text()] {
            qry_lib_db_stmt_set_where_equal_str(stmt, c_text(name), c_text(text));
            return outcome();
        };
    case call_qry_lib_db_stmt_set_orderby_phrase:
        return with_text(qry_lib_db_stmt_set_orderby_phrase);
    default:
        return [stmt] {
            qry_lib_db_stmt_term(stmt);
            return outcome();
        };
    }
}

// What a statement record holds when it runs is recorded with the run: setters may have been told masked
// values, and callers may write the record themselves.
player::action player::prepare_statement(const recorded_call &call, std::string &) {
    arguments given(call.arguments);
    const statement_contents contents = take_statement(given);
    const std::optional<std::string> sql = given.take_text();
    const std::uint64_t rows_pointer = given.take64();
    qry_lib_db_stmt_ *const stmt = contents.is_null ? nullptr : &statements_[contents.pointer].record;
    if (stmt != nullptr) {
        fill(contents, *stmt);
    }
    rowset &kept = rowsets_[rows_pointer];
    kept.is_known = true;
    used_ = rows_pointer == 0 ? nullptr : &kept;
    qry_lib_db_rowset_ *const rows = rows_pointer == 0 ? nullptr : &kept.record;
    switch (call.function) {
    case call_qry_lib_db_exec_query:
        return [=] { return outcome{qry_lib_db_exec_query(stmt, c_text(sql), rows), {}, rows}; };
    case call_qry_lib_db_exec:
        return [=] { return outcome{qry_lib_db_exec(stmt, c_text(sql)), {}, nullptr}; };
    case call_qry_lib_db_stmt_exec_query:
        return [=] { return outcome{qry_lib_db_stmt_exec_query(stmt, rows), {}, rows}; };
    default:
        return [=] { return outcome{qry_lib_db_stmt_exec(stmt), {}, nullptr}; };
    }
}

player::action player::prepare_element(const recorded_call &call, std::string &) {
    arguments given(call.arguments);
    const bool writes = call.function == call_qry_lib_tb_set_stc_table ||
                        call.function == call_qry_lib_tb_set_stc_default_table ||
                        call.function == call_qry_lib_tb_set_stc_status;
    const std::uint32_t requester = writes ? given.take32() : 0;
    const std::uint32_t category = given.take32();
    // Resetting a whole category names no record.
    const std::uint32_t record = given.take32();
    const std::uint32_t element = given.take32();
    const bool has_buffer = given.take8() != 0;
    const auto value = std::make_shared<element_value>();
    std::uint32_t size = 0;
    if (writes) {
        const std::string_view bytes = given.take_bytes();
        std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof value->bytes), value->bytes);
    } else {
        size = std::min<std::uint32_t>(given.take32(), sizeof value->bytes);
    }
    const auto call_with = [=](auto function) -> action {
        return [=] { return outcome{function(has_buffer ? value->bytes : nullptr), {}, nullptr}; };
    };
    const auto text = [](void *buffer) { return static_cast<char *>(buffer); };
    switch (call.function) {
    case call_qry_lib_tb_get_stc_table:
        return call_with(
            [=](void *buffer) { return qry_lib_tb_get_stc_table(category, record, element, buffer); });
    case call_qry_lib_tb_get_stc_table_str:
        return call_with([=](void *buffer) {
            return qry_lib_tb_get_stc_table_str(category, record, element, text(buffer), size);
        });
    case call_qry_lib_tb_set_stc_table:
        return call_with([=](void *buffer) {
            return qry_lib_tb_set_stc_table(requester, category, record, element, buffer);
        });
    case call_qry_lib_tb_get_stc_default_table:
        return call_with(
            [=](void *buffer) { return qry_lib_tb_get_stc_default_table(category, element, buffer); });
    case call_qry_lib_tb_get_stc_default_table_str:
        return call_with([=](void *buffer) {
            return qry_lib_tb_get_stc_default_table_str(category, element, text(buffer), size);
        });
    case call_qry_lib_tb_set_stc_default_table:
        return call_with([=](void *buffer) {
            return qry_lib_tb_set_stc_default_table(requester, category, element, buffer);
        });
    case call_qry_lib_tb_reset_one_stc_table:
        return [=] { return outcome{qry_lib_tb_reset_one_stc_table(category, record), {}, nullptr}; };
    case call_qry_lib_tb_reset_all_stc_table:
        return [=] { return outcome{qry_lib_tb_reset_all_stc_table(category), {}, nullptr}; };
    case call_qry_lib_tb_get_stc_status:
        return call_with([=](void *buffer) { return qry_lib_tb_get_stc_status(category, element, buffer); });
    case call_qry_lib_tb_get_stc_status_str:
        return call_with([=](void *buffer) {
            return qry_lib_tb_get_stc_status_str(category, element, text(buffer), size);
        });
    default:
        return call_with(
            [=](void *buffer) { return qry_lib_tb_set_stc_status(requester, category, element, buffer); });
    }
}

player::action player::prepare_search(const recorded_call &call, std::string &reason) {
    arguments given(call.arguments);
    if (call.function == call_qry_lib_tb_delete_search_table_id) {
        const bool has_id = given.take8() != 0;
        const std::uint64_t recorded = given.take64();
        if (recorded != 0 && searches_.count(recorded) == 0) {
            reason = lost_search;
            return {};
        }
        return [this, has_id, recorded] {
            qry_lib_tb_search_id id = recorded == 0 ? 0 : searches_[recorded];
            searches_.erase(recorded);
            qry_lib_tb_delete_search_table_id(has_id ? &id : nullptr);
            return outcome();
        };
    }
    const std::uint32_t category = given.take32();
    const auto key_num = static_cast<std::uint16_t>(given.take16());
    const bool has_keys = given.take8() != 0;
    const bool has_id = given.take8() != 0;
    const bool has_num = given.take8() != 0;
    const auto keys = std::make_shared<std::vector<qry_lib_tb_list_filter_key_>>(key_num);
    for (std::size_t i = 0; has_keys && i < key_num; ++i) {
        take_key(given, (*keys)[i]);
    }
    payload_reader handed_out(call.handed_out);
    const std::uint64_t recorded = handed_out.take64();
    return [=] {
        qry_lib_tb_search_id id = 0;
        std::uint16_t num = 0;
        const std::uint32_t code =
            qry_lib_tb_create_search_table_id(category, key_num, has_keys ? keys->data() : nullptr,
                                              has_id ? &id : nullptr, has_num ? &num : nullptr);
        if (id != 0) {
            searches_[recorded] = id;
        }
        return outcome{code, {}, nullptr};
    };
}

player::action player::prepare_other(const recorded_call &call, std::string &reason) {
    arguments given(call.arguments);
    switch (call.function) {
    case call_qry_lib_db_rowset_init:
    case call_qry_lib_db_rowset_term: {
        const std::uint64_t pointer = given.take64();
        rowset &kept = rowsets_[pointer];
        if (!kept.is_known && pointer != 0 && recorded_.overwritten != 0) {
            reason = lost_rowset;
            return {};
        }
        kept.is_known = true;
        used_ = &kept;
        qry_lib_db_rowset_ *const rows = pointer == 0 ? nullptr : &kept.record;
        const auto end =
            call.function == call_qry_lib_db_rowset_init ? qry_lib_db_rowset_init : qry_lib_db_rowset_term;
        return [rows, end] {
            end(rows);
            return outcome();
        };
    }
    case call_dsql_db_handle_add:
    case call_dsql_db_handle_delete: {
        if (recorded_.overwritten != 0) {
            reason = lost_handles;
            return {};
        }
        const auto handle =
            call.function == call_dsql_db_handle_add ? dsql_db_handle_add : dsql_db_handle_delete;
        return [handle] { return outcome{static_cast<std::uint32_t>(handle()), {}, nullptr}; };
    }
    case call_qry_lib_db_get_unused_id: {
        const bool has_param = given.take8() != 0;
        const bool has_id = given.take8() != 0;
        const std::optional<std::string> db = given.take_text();
        const std::optional<std::string> table = given.take_text();
        const std::optional<std::string> column = given.take_text();
        qry_lib_db_unused_id_param_ param{};
        param.min_id = given.take32();
        param.max_id = given.take32();
        param.max_count = given.take32();
        param.id_kind = static_cast<std::uint8_t>(given.take8());
        return [=]() mutable {
            param.db_name = c_text(db);
            param.table_name = c_text(table);
            param.col_name = c_text(column);
            std::uint32_t id = 0;
            const std::uint32_t code =
                qry_lib_db_get_unused_id(has_param ? &param : nullptr, has_id ? &id : nullptr);
            return code == 0 ? outcome{code, {id}, nullptr} : outcome{code, {}, nullptr};
        };
    }
    case call_qry_lib_write_data_version:
    case call_qry_lib_check_data_version: {
        const std::uint32_t area = given.take32();
        const std::uint32_t directory = given.take32();
        const std::uint32_t version = given.take32();
        const auto function = call.function == call_qry_lib_write_data_version ? qry_lib_write_data_version
                                                                               : qry_lib_check_data_version;
        return [=] { return outcome{function(area, directory, version), {}, nullptr}; };
    }
    case call_qry_lib_get_doublecount_mode: {
        const std::uint32_t kind = given.take32();
        const bool has_mode = given.take8() != 0;
        return [=] {
            std::uint32_t mode = 0;
            const std::uint32_t code = qry_lib_get_doublecount_mode(kind, has_mode ? &mode : nullptr);
            return code == 0 ? outcome{code, {mode}, nullptr} : outcome{code, {}, nullptr};
        };
    }
    default: {
        const std::uint32_t value = given.take32();
        const std::uint32_t kind = given.take32();
        const bool has_result = given.take8() != 0;
        return [=] {
            std::uint32_t result = 0;
            const std::uint32_t code = qry_lib_judge_doublecount(value, kind, has_result ? &result : nullptr);
            return code == 0 ? outcome{code, {result}, nullptr} : outcome{code, {}, nullptr};
        };
    }
    }
}

std::string statement_text(const recorded_call &call) {
    const char *const name = call.function < call_num ? call_names[call.function] : "(unknown)";
    if (!is_statement(call.function)) {
        return name;
    }
    payload_reader given(call.arguments);
    const statement_contents contents = take_statement(given);
    if (const std::optional<std::string> sql = given.take_text()) {
        return *sql;
    }
    constexpr const char *kinds[] = {"(none)", "INSERT", "UPDATE", "DELETE", "SELECT", "COUNT", "CREATE"};
    std::string text =
        contents.exec_type < sizeof kinds / sizeof *kinds ? kinds[contents.exec_type] : "(unknown)";
    text += " " + contents.table_name.value_or("(no table)");
    for (std::size_t i = 0; i < contents.columns.size(); ++i) {
        const statement_column &column = contents.columns[i];
        text += (i == 0 ? " (" : ", ") + column.name;
        const bool is_written = contents.exec_type <= QRY_LIB_DB_QUERY_TYPE_UPDATE;
        text += is_written ? " = " + value_text(column.value) : "";
    }
    text += contents.columns.empty() ? "" : ")";
    text += contents.where_phrase ? " WHERE " + *contents.where_phrase : "";
    return text + (contents.orderby_phrase ? " ORDER BY " + *contents.orderby_phrase : "");
}

} // namespace field
