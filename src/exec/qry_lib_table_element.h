// The catalog: which tables and columns a database has, where their values lie, and how values pass between
// columns and element buffers.
#pragma once

#include <cstddef>
#include <list>

#include <qrylib/types.h>

#include "exec/qry_lib_element_info.h"
#include "exec/schema/schema.h"

namespace norvane {

// A column's value as text: a string as it stands, a number in decimal (as signed 32 bits).
class column_text {
  public:
    explicit column_text(const QRY_LIB_COLUMN &column);
    const char *text() const { return string_ != nullptr ? string_ : number_; }
    std::size_t length() const { return length_; }

  private:
    const char *string_ = nullptr; // within the column
    char number_[12] = {};
    std::size_t length_ = 0;
};

// One database's catalog. Objects have no data of their own and come from the factory; names are found by
// exact, case-sensitive match. Lookups answer 0, or 0xDB05 for an unknown table or column, without a trace.
class qry_lib_table_element {
  public:
    // True for every table that is searched through its primary key: all but the edit counter.
    virtual bool is_primary_filter_key(const char *table_name) = 0;
    virtual int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                               QRY_LIB_COLUMN_TYPE type, const char *text, char *buffer) = 0;
    virtual void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                                const char *buffer, QRY_LIB_COLUMN &column) = 0;

    // The table's first row, or null; element_num is written only when there is one.
    virtual const QRY_LIB_ELEMENT_DEF *get_table_info_(const char *table_name, short &element_num) = 0;

    int get_info(const char *table_name, const char *col_name, QRY_LIB_ELEMENT_INFO &info);

    // The same for reading where the schema has them: none for an unknown table, null for an unknown column.
    row_range<QRY_LIB_ELEMENT_DEF> columns_of(const char *table_name);
    const QRY_LIB_ELEMENT_INFO *find_info(const char *table_name, const char *col_name);

    // Appends the key columns in table order.
    int get_primary_key(const char *table_name, std::list<QRY_LIB_ELEMENT_INFO> &keys);

    // `out` holds at least 40 bytes.
    int get_first_field_name(const char *table_name, char *out);
    int get_tbdb_category_id(const char *table_name, unsigned int &category);

    // Element to column: writes name, type and value; the bytes behind a number are zero as far as a read of
    // the raw value goes. `buffer` holds the whole element, the composite one for a member. A string ends at
    // the element's size at the latest.
    void conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, const char *col_name, const char *buffer,
                               QRY_LIB_COLUMN &column);

    // The same for a column whose name stands there already.
    void conv_val_tbdb_to_db2e(const QRY_LIB_ELEMENT_INFO &info, const char *buffer, QRY_LIB_COLUMN &column);

    // Column to element, through decimal text: writes at member_offset for a member. `buffer` holds
    // member_offset and 3000 bytes. Always 0.
    int conv_val_db2e_to_tbdb(const QRY_LIB_ELEMENT_INFO &info, const QRY_LIB_COLUMN &column, char *buffer);

    // The same for a value that is text, as those of conditions are.
    int conv_text_to_tbdb(const QRY_LIB_ELEMENT_INFO &info, const char *text, char *buffer);

  protected:
    // Objects are neither copied nor destroyed through the base.
    ~qry_lib_table_element() = default;
};

// "adbk_db". It has no members; their conversions only leave their trace pairs.
class qry_lib_table_element_address final : public qry_lib_table_element {
  public:
    bool is_primary_filter_key(const char *table_name) override;
    int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                       QRY_LIB_COLUMN_TYPE type, const char *text, char *buffer) override;
    void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name, const char *buffer,
                                        QRY_LIB_COLUMN &column) override;
    const QRY_LIB_ELEMENT_DEF *get_table_info_(const char *table_name, short &element_num) override;
};

// "department_db". As above.
class qry_lib_table_element_dept final : public qry_lib_table_element {
  public:
    bool is_primary_filter_key(const char *table_name) override;
    int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                       QRY_LIB_COLUMN_TYPE type, const char *text, char *buffer) override;
    void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name, const char *buffer,
                                        QRY_LIB_COLUMN &column) override;
    const QRY_LIB_ELEMENT_DEF *get_table_info_(const char *table_name, short &element_num) override;
};

// "usrac_db". It has no members; their conversions do nothing.
class qry_lib_table_element_user final : public qry_lib_table_element {
  public:
    bool is_primary_filter_key(const char *table_name) override;
    int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                       QRY_LIB_COLUMN_TYPE type, const char *text, char *buffer) override;
    void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name, const char *buffer,
                                        QRY_LIB_COLUMN &column) override;
    const QRY_LIB_ELEMENT_DEF *get_table_info_(const char *table_name, short &element_num) override;
};

// "log_db", whose record tables keep most columns as members of one composite element.
class qry_lib_table_element_log final : public qry_lib_table_element {
  public:
    bool is_primary_filter_key(const char *table_name) override;
    int conv_val_db2e_to_tbdb_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name,
                                       QRY_LIB_COLUMN_TYPE type, const char *text, char *buffer) override;
    void conv_val_tbdb_to_db2e_internal(QRY_LIB_ELEMENT_INFO info, const char *col_name, const char *buffer,
                                        QRY_LIB_COLUMN &column) override;
    const QRY_LIB_ELEMENT_DEF *get_table_info_(const char *table_name, short &element_num) override;
};

class qry_lib_table_element_factory {
  public:
    // 0 and the database's catalog; 0xDB05 and null for an unknown database.
    static int create_elemet(const char *db_name, qry_lib_table_element **out);

    // Ends the use of a catalog and sets the pointer to null; a null pointer is left alone.
    static void delete_elemet(qry_lib_table_element **element);
};

} // namespace norvane
