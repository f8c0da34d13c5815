// Prints the schema as lines of fields between tabs, for the generator of the data dictionary: a line for
// each column, in the order in which they are stored.
#include <cinttypes>
#include <cstdio>

#include "exec/schema/schema.h"

namespace {

void print_column(const norvane::database_schema &database, const QRY_LIB_TABLE_DEF &table,
                  const QRY_LIB_ELEMENT_DEF &column) {
    const QRY_LIB_ELEMENT_INFO &info = column.info;
    const std::uint16_t capacity = norvane::capacity_of(info.category_id);
    std::printf("%s\t%s\t0x%08" PRIX32 "\t%u\t%s\t%u\t%u\t%u\t0x%08" PRIX32 "\t%u\t%u\n", database.name,
                table.table_name, info.category_id, unsigned{capacity}, info.name,
                unsigned{column.is_primary}, static_cast<unsigned>(info.elem_type), unsigned{info.size},
                info.element_id, unsigned{info.is_member}, unsigned{info.member_offset});
}

} // namespace

int main() {
    std::puts("database\ttable\tcategory\tcapacity\tcolumn\tkey\ttype\tsize\telement\tmember\toffset");
    for (const norvane::database_schema *database : norvane::databases) {
        for (const QRY_LIB_TABLE_DEF &table : norvane::tables_of(*database)) {
            for (const QRY_LIB_ELEMENT_DEF &column : norvane::columns_of(table)) {
                print_column(*database, table, column);
            }
        }
    }
    return 0;
}
