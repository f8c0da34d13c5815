// Values and texts in frames, their secrets masked.
#pragma once

#include <cstdint>

#include <qrylib/element_table.h>
#include <qrylib/types.h>

#include "tools/field/element_shapes.h"
#include "tools/field/frame_writer.h"
#include "tools/field/recorder.h"

namespace field {

// An element's value; null, or an element that is not known, leaves an empty one.
void put_value(frame_writer &frame, std::uint32_t category, std::uint32_t element, const void *value);
void put_list_value(frame_writer &frame, const open_list &list, const void *value);

// A text in which no secret can stand.
void put_name(frame_writer &frame, const char *name);

// A statement or a phrase of one.
void put_sql(frame_writer &frame, const char *text);

// A text that is the value of a column.
void put_column_text(frame_writer &frame, const char *column_name, const char *text, std::uint32_t size_max);

// A typed value of a column: its type, and a number or a text.
void put_column(frame_writer &frame, const QRY_LIB_COLUMN &column);

// What stands in a statement record. With `is_whole`, more than the database: its table, columns and phrases.
void put_statement(frame_writer &frame, const qry_lib_db_stmt_ *stmt, bool is_whole);

void put_filter_key(frame_writer &frame, std::uint32_t category, const qry_lib_tb_list_filter_key_ &key);

// Whether what a column of this name holds is masked. A name that is not known yet may become any.
bool is_masked_column(const char *name);

} // namespace field
