// The library's exported functions, as a caller calls them: each is passed on, and what it was given and
// handed out is recorded. A call from inside another one is passed on alone.
#include <time.h>

#include <atomic>

#include <qrylib/db_handle.h>
#include <qrylib/qrylib.h>

#include "tools/field/record_values.h"
#include "tools/field/recorder.h"

using namespace field;

namespace {

#define NEXT(name) (next_##name.get())
#define DECLARE_NEXT(name) next_function<decltype(name)> next_##name(#name);
FIELD_CALLS(DECLARE_NEXT)
#undef DECLARE_NEXT

// The clock is read for calls that take long enough to be worth it; all others tell no time of their own.
std::uint64_t now(call_number function) {
    if (function <= call_qry_lib_db_stmt_term || function == call_qry_lib_db_rowset_init ||
        function == call_qry_lib_db_rowset_term) {
        return 0;
    }
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000000 +
           static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

std::uint16_t next_thread_number() {
    static std::atomic<std::uint16_t> last{0};
    const std::uint16_t number = ++last;
    return number != 0 ? number : ++last;
}

// Writes one large frame.
template <typename Put>
void write_large(frame_kind kind, Put put) {
    std::uint8_t *const buffer = recorder::large_buffer();
    if (buffer == nullptr) {
        recorder::get().count_dropped();
        return;
    }
    frame_writer frame(buffer, frame_size_max);
    put(frame);
    recorder::get().write(frame, kind);
}

// A call of the library, with its arguments before and its result behind what it makes of the platform.
class call_scope {
  public:
    explicit call_scope(call_number function)
        : function_(function), is_counted_(recorder::is_active),
          is_outermost_(is_counted_ && thread.calls++ == 0) {}
    call_scope(const call_scope &) = delete;
    call_scope &operator=(const call_scope &) = delete;

    // A call that is left by an exception is told of too.
    ~call_scope() {
        if (is_outermost_ && !has_ended_) {
            end(0, [](frame_writer &frame) { frame.mark(flag_thrown); });
        }
        if (is_counted_) {
            --thread.calls;
        }
    }

    bool is_outermost() const { return is_outermost_; }

    template <typename Put>
    void begin(Put put) {
        const kept_errno kept;
        if (thread.number == 0) {
            thread.number = next_thread_number();
        }
        thread.lists = 0;
        thread.moves = thread.reads = 0;
        thread.moved = nullptr;
        thread.pairs_size = 0;
        for (open_list &list : thread.open) {
            list.list = nullptr;
        }
        write_large(frame_call, [&](frame_writer &frame) {
            frame.put16(function_);
            frame.put64(now(function_));
            put(frame);
        });
    }

    template <typename Put>
    void end(std::uint32_t result, Put put) {
        const kept_errno kept;
        has_ended_ = true;
        if (thread.moves != 0 || thread.reads != 0) {
            small_frame<64> frame(frame_count);
            frame.put32(thread.moves);
            frame.put32(thread.reads);
        }
        write_large(frame_result, [&](frame_writer &frame) {
            frame.put16(function_);
            frame.put64(now(function_));
            frame.put32(result);
            put(frame);
        });
        recorder::get().look_at(result, 0);
        recorder::get().end_call();
    }

  private:
    call_number function_;
    bool is_counted_;
    bool is_outermost_;
    bool has_ended_ = false;
};

constexpr auto nothing = [](frame_writer &) {};

template <typename Call, typename Before, typename After>
std::uint32_t recorded(call_number function, Call call, Before before, After after) {
    call_scope scope(function);
    if (!scope.is_outermost()) {
        return call();
    }
    scope.begin(before);
    const std::uint32_t result = call();
    scope.end(result, after);
    return result;
}

template <typename Call, typename Before>
std::uint32_t recorded(call_number function, Call call, Before before) {
    return recorded(function, call, before, nothing);
}

// A function without a result.
template <typename Call, typename Before>
void told(call_number function, Call call, Before before) {
    recorded(
        function,
        [&] {
            call();
            return 0u;
        },
        before, nothing);
}

// The column of a statement record that a setter is about; empty where nobody can tell.
const char *column_at(const qry_lib_db_stmt_ *stmt, std::int32_t index) {
    const bool is_there =
        stmt != nullptr && stmt->record.cols != nullptr && index >= 0 && index < stmt->record.col_num;
    return is_there ? stmt->record.cols[index].col_name : "";
}

void put_row(const QRY_LIB_RECORD &row) {
    write_large(frame_row, [&](frame_writer &frame) {
        frame.put32(static_cast<std::uint32_t>(row.col_num));
        for (std::int32_t i = 0; i < row.col_num; ++i) {
            put_column(frame, row.cols[i]);
        }
    });
}

// The rows first: a result without all of them is none.
std::uint32_t query(call_number function, qry_lib_db_rowset_ *rowset, bool is_whole,
                    const qry_lib_db_stmt_ *stmt, const char *sql,
                    std::uint32_t (*call)(qry_lib_db_stmt_ *, const char *, qry_lib_db_rowset_ *)) {
    return recorded(
        function,
        [&] {
            const std::uint32_t code = call(const_cast<qry_lib_db_stmt_ *>(stmt), sql, rowset);
            const bool has_rows = recorder::is_on() && thread.calls == 1 && code == 0 && rowset != nullptr;
            if (has_rows && recorder::has_values()) {
                const kept_errno kept;
                for (std::int32_t i = 0; i < rowset->record_num; ++i) {
                    put_row(rowset->records[i]);
                }
            }
            return code;
        },
        [&](frame_writer &frame) {
            put_statement(frame, stmt, is_whole);
            put_sql(frame, sql);
            frame.put_pointer(rowset);
        },
        [&](frame_writer &frame) {
            frame.put32(rowset == nullptr ? 0 : static_cast<std::uint32_t>(rowset->record_num));
        });
}

} // namespace

extern "C" {

void qry_lib_db_stmt_init(qry_lib_db_stmt_ *stmt) {
    told(
        call_qry_lib_db_stmt_init,
        [&] {
            NEXT(qry_lib_db_stmt_init)
            (stmt);
        },
        [&](frame_writer &frame) { frame.put_pointer(stmt); });
}

std::uint32_t qry_lib_db_get_stmt(const char *db_name, qry_lib_db_stmt_ *stmt) {
    return recorded(
        call_qry_lib_db_get_stmt, [&] { return NEXT(qry_lib_db_get_stmt)(db_name, stmt); },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            put_name(frame, db_name);
        });
}

void qry_lib_db_stmt_set_table_name(qry_lib_db_stmt_ *stmt, const char *name) {
    told(
        call_qry_lib_db_stmt_set_table_name,
        [&] {
            NEXT(qry_lib_db_stmt_set_table_name)
            (stmt, name);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            put_name(frame, name);
        });
}

void qry_lib_db_stmt_set_exec_type(qry_lib_db_stmt_ *stmt, QRY_LIB_DB_QUERY_TYPE type) {
    told(
        call_qry_lib_db_stmt_set_exec_type,
        [&] {
            NEXT(qry_lib_db_stmt_set_exec_type)
            (stmt, type);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            frame.put32(type);
        });
}

void qry_lib_db_stmt_set_col_num(qry_lib_db_stmt_ *stmt, std::int32_t col_num) {
    told(
        call_qry_lib_db_stmt_set_col_num,
        [&] {
            NEXT(qry_lib_db_stmt_set_col_num)
            (stmt, col_num);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            frame.put32(static_cast<std::uint32_t>(col_num));
        });
}

void qry_lib_db_stmt_set_col_name(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *name) {
    told(
        call_qry_lib_db_stmt_set_col_name,
        [&] {
            NEXT(qry_lib_db_stmt_set_col_name)
            (stmt, index, name);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            frame.put32(static_cast<std::uint32_t>(index));
            put_name(frame, name);
        });
}

#define SET_NUMBER(name, type)                                                                               \
    void name(qry_lib_db_stmt_ *stmt, std::int32_t index, type value) {                                      \
        told(                                                                                                \
            call_##name,                                                                                     \
            [&] {                                                                                            \
                NEXT(name)                                                                                   \
                (stmt, index, value);                                                                        \
            },                                                                                               \
            [&](frame_writer &frame) {                                                                       \
                frame.put_pointer(stmt);                                                                     \
                frame.put32(static_cast<std::uint32_t>(index));                                              \
                frame.put32(static_cast<std::uint32_t>(value));                                              \
            });                                                                                              \
    }
SET_NUMBER(qry_lib_db_stmt_set_elem_as_int, std::int32_t)
SET_NUMBER(qry_lib_db_stmt_set_elem_as_uchar, std::uint8_t)
SET_NUMBER(qry_lib_db_stmt_set_elem_as_ushort, std::uint16_t)
SET_NUMBER(qry_lib_db_stmt_set_elem_as_uint, std::uint32_t)
SET_NUMBER(qry_lib_db_stmt_set_elem_as_ulong, std::uint32_t)
#undef SET_NUMBER

void qry_lib_db_stmt_set_elem_as_str(qry_lib_db_stmt_ *stmt, std::int32_t index, const char *value) {
    told(
        call_qry_lib_db_stmt_set_elem_as_str,
        [&] {
            NEXT(qry_lib_db_stmt_set_elem_as_str)
            (stmt, index, value);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            frame.put32(static_cast<std::uint32_t>(index));
            put_column_text(frame, column_at(stmt, index), value, frame_size_max);
        });
}

void qry_lib_db_stmt_set_where_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    told(
        call_qry_lib_db_stmt_set_where_phrase,
        [&] {
            NEXT(qry_lib_db_stmt_set_where_phrase)
            (stmt, text);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            put_sql(frame, text);
        });
}

#define COMPARE_NUMBER(name, type)                                                                           \
    void name(qry_lib_db_stmt_ *stmt, const char *col_name, type value) {                                    \
        told(                                                                                                \
            call_##name,                                                                                     \
            [&] {                                                                                            \
                NEXT(name)                                                                                   \
                (stmt, col_name, value);                                                                     \
            },                                                                                               \
            [&](frame_writer &frame) {                                                                       \
                frame.put_pointer(stmt);                                                                     \
                put_name(frame, col_name);                                                                   \
                const bool is_masked = col_name != nullptr && is_masked_column(col_name);                    \
                frame.put32(is_masked ? 0 : static_cast<std::uint32_t>(value));                              \
                if (is_masked) {                                                                             \
                    frame.mark(flag_masked);                                                                 \
                }                                                                                            \
            });                                                                                              \
    }
COMPARE_NUMBER(qry_lib_db_stmt_set_where_equal_int, std::int32_t)
COMPARE_NUMBER(qry_lib_db_stmt_set_where_equal_ulong, std::uint32_t)
#undef COMPARE_NUMBER

void qry_lib_db_stmt_set_where_equal_str(qry_lib_db_stmt_ *stmt, const char *col_name, const char *value) {
    told(
        call_qry_lib_db_stmt_set_where_equal_str,
        [&] {
            NEXT(qry_lib_db_stmt_set_where_equal_str)
            (stmt, col_name, value);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            put_name(frame, col_name);
            put_column_text(frame, col_name != nullptr ? col_name : "", value, frame_size_max);
        });
}

void qry_lib_db_stmt_set_orderby_phrase(qry_lib_db_stmt_ *stmt, const char *text) {
    told(
        call_qry_lib_db_stmt_set_orderby_phrase,
        [&] {
            NEXT(qry_lib_db_stmt_set_orderby_phrase)
            (stmt, text);
        },
        [&](frame_writer &frame) {
            frame.put_pointer(stmt);
            put_sql(frame, text);
        });
}

void qry_lib_db_stmt_term(qry_lib_db_stmt_ *stmt) {
    told(
        call_qry_lib_db_stmt_term,
        [&] {
            NEXT(qry_lib_db_stmt_term)
            (stmt);
        },
        [&](frame_writer &frame) { frame.put_pointer(stmt); });
}

std::uint32_t qry_lib_db_exec_query(qry_lib_db_stmt_ *stmt, const char *sql, qry_lib_db_rowset_ *rowset) {
    return query(call_qry_lib_db_exec_query, rowset, false, stmt, sql,
                 [](qry_lib_db_stmt_ *s, const char *text, qry_lib_db_rowset_ *rows) {
                     return NEXT(qry_lib_db_exec_query)(s, text, rows);
                 });
}

std::uint32_t qry_lib_db_exec(qry_lib_db_stmt_ *stmt, const char *sql) {
    return query(call_qry_lib_db_exec, nullptr, false, stmt, sql,
                 [](qry_lib_db_stmt_ *s, const char *text, qry_lib_db_rowset_ *) {
                     return NEXT(qry_lib_db_exec)(s, text);
                 });
}

std::uint32_t qry_lib_db_stmt_exec_query(qry_lib_db_stmt_ *stmt, qry_lib_db_rowset_ *rowset) {
    return query(call_qry_lib_db_stmt_exec_query, rowset, true, stmt, nullptr,
                 [](qry_lib_db_stmt_ *s, const char *, qry_lib_db_rowset_ *rows) {
                     return NEXT(qry_lib_db_stmt_exec_query)(s, rows);
                 });
}

std::uint32_t qry_lib_db_stmt_exec(qry_lib_db_stmt_ *stmt) {
    return query(call_qry_lib_db_stmt_exec, nullptr, true, stmt, nullptr,
                 [](qry_lib_db_stmt_ *s, const char *, qry_lib_db_rowset_ *) {
                     return NEXT(qry_lib_db_stmt_exec)(s);
                 });
}

void qry_lib_db_rowset_init(qry_lib_db_rowset_ *rowset) {
    told(
        call_qry_lib_db_rowset_init,
        [&] {
            NEXT(qry_lib_db_rowset_init)
            (rowset);
        },
        [&](frame_writer &frame) { frame.put_pointer(rowset); });
}

void qry_lib_db_rowset_term(qry_lib_db_rowset_ *rowset) {
    told(
        call_qry_lib_db_rowset_term,
        [&] {
            NEXT(qry_lib_db_rowset_term)
            (rowset);
        },
        [&](frame_writer &frame) { frame.put_pointer(rowset); });
}

std::int32_t dsql_db_handle_add(void) {
    return static_cast<std::int32_t>(recorded(
        call_dsql_db_handle_add, [] { return static_cast<std::uint32_t>(NEXT(dsql_db_handle_add)()); },
        nothing));
}

std::int32_t dsql_db_handle_delete(void) {
    return static_cast<std::int32_t>(recorded(
        call_dsql_db_handle_delete, [] { return static_cast<std::uint32_t>(NEXT(dsql_db_handle_delete)()); },
        nothing));
}

std::uint32_t qry_lib_db_get_unused_id(const qry_lib_db_unused_id_param_ *param, std::uint32_t *id_out) {
    return recorded(
        call_qry_lib_db_get_unused_id, [&] { return NEXT(qry_lib_db_get_unused_id)(param, id_out); },
        [&](frame_writer &frame) {
            frame.put8(param != nullptr ? 1 : 0);
            frame.put8(id_out != nullptr ? 1 : 0);
            if (param != nullptr) {
                put_name(frame, param->db_name);
                put_name(frame, param->table_name);
                put_name(frame, param->col_name);
                frame.put32(param->min_id);
                frame.put32(param->max_id);
                frame.put32(param->max_count);
                frame.put8(param->id_kind);
            }
        },
        [&](frame_writer &frame) { frame.put32(id_out != nullptr ? *id_out : 0); });
}

// Element tables: a record or a default record, read and written as it stands.
static std::uint32_t
read_element(call_number function, std::uint32_t category, std::uint32_t record, std::uint32_t element,
             void *buffer, std::uint32_t (*call)(std::uint32_t, std::uint32_t, std::uint32_t, void *)) {
    return recorded(
        function, [&] { return call(category, record, element, buffer); },
        [&](frame_writer &frame) {
            frame.put32(category);
            frame.put32(record);
            frame.put32(element);
            frame.put8(buffer != nullptr ? 1 : 0);
        });
}

static std::uint32_t write_element(call_number function, std::uint32_t requester, std::uint32_t category,
                                   std::uint32_t record, std::uint32_t element, const void *buffer,
                                   std::uint32_t (*call)(std::uint32_t, std::uint32_t, std::uint32_t,
                                                         std::uint32_t, const void *)) {
    return recorded(
        function, [&] { return call(requester, category, record, element, buffer); },
        [&](frame_writer &frame) {
            frame.put32(requester);
            frame.put32(category);
            frame.put32(record);
            frame.put32(element);
            frame.put8(buffer != nullptr ? 1 : 0);
            put_value(frame, category, element, buffer);
        });
}

static std::uint32_t read_text(call_number function, std::uint32_t category, std::uint32_t record,
                               std::uint32_t element, char *buffer, std::uint32_t size,
                               std::uint32_t (*call)(std::uint32_t, std::uint32_t, std::uint32_t, char *,
                                                     std::uint32_t)) {
    return recorded(
        function, [&] { return call(category, record, element, buffer, size); },
        [&](frame_writer &frame) {
            frame.put32(category);
            frame.put32(record);
            frame.put32(element);
            frame.put8(buffer != nullptr ? 1 : 0);
            frame.put32(size);
        });
}

std::uint32_t qry_lib_tb_get_stc_table(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                                       void *buffer) {
    return read_element(call_qry_lib_tb_get_stc_table, category, record, element, buffer,
                        [](std::uint32_t c, std::uint32_t r, std::uint32_t e, void *b) {
                            return NEXT(qry_lib_tb_get_stc_table)(c, r, e, b);
                        });
}

std::uint32_t qry_lib_tb_get_stc_table_str(std::uint32_t category, std::uint32_t record,
                                           std::uint32_t element, char *buffer, std::uint32_t size) {
    return read_text(call_qry_lib_tb_get_stc_table_str, category, record, element, buffer, size,
                     [](std::uint32_t c, std::uint32_t r, std::uint32_t e, char *b, std::uint32_t s) {
                         return NEXT(qry_lib_tb_get_stc_table_str)(c, r, e, b, s);
                     });
}

std::uint32_t qry_lib_tb_set_stc_table(std::uint32_t requester, std::uint32_t category, std::uint32_t record,
                                       std::uint32_t element, const void *buffer) {
    return write_element(call_qry_lib_tb_set_stc_table, requester, category, record, element, buffer,
                         [](std::uint32_t q, std::uint32_t c, std::uint32_t r, std::uint32_t e,
                            const void *b) { return NEXT(qry_lib_tb_set_stc_table)(q, c, r, e, b); });
}

std::uint32_t qry_lib_tb_get_stc_default_table(std::uint32_t category, std::uint32_t element, void *buffer) {
    return read_element(call_qry_lib_tb_get_stc_default_table, category, 0, element, buffer,
                        [](std::uint32_t c, std::uint32_t, std::uint32_t e, void *b) {
                            return NEXT(qry_lib_tb_get_stc_default_table)(c, e, b);
                        });
}

std::uint32_t qry_lib_tb_get_stc_default_table_str(std::uint32_t category, std::uint32_t element,
                                                   char *buffer, std::uint32_t size) {
    return read_text(call_qry_lib_tb_get_stc_default_table_str, category, 0, element, buffer, size,
                     [](std::uint32_t c, std::uint32_t, std::uint32_t e, char *b, std::uint32_t s) {
                         return NEXT(qry_lib_tb_get_stc_default_table_str)(c, e, b, s);
                     });
}

std::uint32_t qry_lib_tb_set_stc_default_table(std::uint32_t requester, std::uint32_t category,
                                               std::uint32_t element, const void *buffer) {
    return write_element(call_qry_lib_tb_set_stc_default_table, requester, category, 0, element, buffer,
                         [](std::uint32_t q, std::uint32_t c, std::uint32_t, std::uint32_t e, const void *b) {
                             return NEXT(qry_lib_tb_set_stc_default_table)(q, c, e, b);
                         });
}

std::uint32_t qry_lib_tb_reset_one_stc_table(std::uint32_t category, std::uint32_t record) {
    return recorded(
        call_qry_lib_tb_reset_one_stc_table,
        [&] { return NEXT(qry_lib_tb_reset_one_stc_table)(category, record); },
        [&](frame_writer &frame) {
            frame.put32(category);
            frame.put32(record);
        });
}

std::uint32_t qry_lib_tb_reset_all_stc_table(std::uint32_t category) {
    return recorded(
        call_qry_lib_tb_reset_all_stc_table, [&] { return NEXT(qry_lib_tb_reset_all_stc_table)(category); },
        [&](frame_writer &frame) { frame.put32(category); });
}

std::uint32_t qry_lib_tb_get_stc_status(std::uint32_t category, std::uint32_t element, void *buffer) {
    return read_element(call_qry_lib_tb_get_stc_status, category, 0, element, buffer,
                        [](std::uint32_t c, std::uint32_t, std::uint32_t e, void *b) {
                            return NEXT(qry_lib_tb_get_stc_status)(c, e, b);
                        });
}

std::uint32_t qry_lib_tb_get_stc_status_str(std::uint32_t category, std::uint32_t element, char *buffer,
                                            std::uint32_t size) {
    return read_text(call_qry_lib_tb_get_stc_status_str, category, 0, element, buffer, size,
                     [](std::uint32_t c, std::uint32_t, std::uint32_t e, char *b, std::uint32_t s) {
                         return NEXT(qry_lib_tb_get_stc_status_str)(c, e, b, s);
                     });
}

std::uint32_t qry_lib_tb_set_stc_status(std::uint32_t requester, std::uint32_t category,
                                        std::uint32_t element, const void *buffer) {
    return write_element(call_qry_lib_tb_set_stc_status, requester, category, 0, element, buffer,
                         [](std::uint32_t q, std::uint32_t c, std::uint32_t, std::uint32_t e, const void *b) {
                             return NEXT(qry_lib_tb_set_stc_status)(q, c, e, b);
                         });
}

std::uint32_t qry_lib_tb_create_search_table_id(std::uint32_t category, std::uint16_t key_num,
                                                qry_lib_tb_list_filter_key_ *keys,
                                                qry_lib_tb_search_id *search_id, std::uint16_t *hit_num) {
    return recorded(
        call_qry_lib_tb_create_search_table_id,
        [&] { return NEXT(qry_lib_tb_create_search_table_id)(category, key_num, keys, search_id, hit_num); },
        [&](frame_writer &frame) {
            frame.put32(category);
            frame.put16(key_num);
            frame.put8(keys != nullptr ? 1 : 0);
            frame.put8(search_id != nullptr ? 1 : 0);
            frame.put8(hit_num != nullptr ? 1 : 0);
            for (std::uint32_t i = 0; keys != nullptr && i < key_num; ++i) {
                put_filter_key(frame, category, keys[i]);
            }
        },
        [&](frame_writer &frame) {
            frame.put64(search_id != nullptr ? *search_id : 0);
            frame.put16(hit_num != nullptr ? *hit_num : 0);
        });
}

void qry_lib_tb_delete_search_table_id(qry_lib_tb_search_id *search_id) {
    told(
        call_qry_lib_tb_delete_search_table_id,
        [&] {
            NEXT(qry_lib_tb_delete_search_table_id)
            (search_id);
        },
        [&](frame_writer &frame) {
            frame.put8(search_id != nullptr ? 1 : 0);
            frame.put64(search_id != nullptr ? *search_id : 0);
        });
}

std::uint32_t qry_lib_write_data_version(std::uint32_t area, std::uint32_t directory, std::uint32_t version) {
    return recorded(
        call_qry_lib_write_data_version,
        [&] { return NEXT(qry_lib_write_data_version)(area, directory, version); },
        [&](frame_writer &frame) {
            frame.put32(area);
            frame.put32(directory);
            frame.put32(version);
        });
}

std::uint32_t qry_lib_check_data_version(std::uint32_t area, std::uint32_t directory,
                                         std::uint32_t expected) {
    return recorded(
        call_qry_lib_check_data_version,
        [&] { return NEXT(qry_lib_check_data_version)(area, directory, expected); },
        [&](frame_writer &frame) {
            frame.put32(area);
            frame.put32(directory);
            frame.put32(expected);
        });
}

std::uint32_t qry_lib_get_doublecount_mode(std::uint32_t kind, std::uint32_t *mode) {
    return recorded(
        call_qry_lib_get_doublecount_mode, [&] { return NEXT(qry_lib_get_doublecount_mode)(kind, mode); },
        [&](frame_writer &frame) {
            frame.put32(kind);
            frame.put8(mode != nullptr ? 1 : 0);
        },
        [&](frame_writer &frame) { frame.put32(mode != nullptr ? *mode : 0); });
}

std::uint32_t qry_lib_judge_doublecount(std::uint32_t value, std::uint32_t kind, std::uint32_t *result) {
    return recorded(
        call_qry_lib_judge_doublecount, [&] { return NEXT(qry_lib_judge_doublecount)(value, kind, result); },
        [&](frame_writer &frame) {
            frame.put32(value);
            frame.put32(kind);
            frame.put8(result != nullptr ? 1 : 0);
        },
        [&](frame_writer &frame) { frame.put32(result != nullptr ? *result : 0); });
}

} // extern "C"
