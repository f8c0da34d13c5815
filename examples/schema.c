/* What the library tells of itself: its version, its codes in words, and a database's tables and columns. */
#include <inttypes.h>
#include <stdio.h>

#include <qrylib/qrylib.h>

static const char *type_name(uint8_t type) {
    static const char *const names[] = {"int", "uchar", "ushort", "uint", "ulong", "str"};
    return type < sizeof names / sizeof names[0] ? names[type] : "?";
}

static void print_table(const char *database, const char *table) {
    uint16_t records = 0;
    uint16_t i;
    qry_lib_catalog_capacity(database, table, &records);
    printf("%s.%s: %u records\n", database, table, (unsigned)records);
    for (i = 0; i < qry_lib_catalog_column_num(database, table); ++i) {
        qry_lib_catalog_column_ column;
        if (qry_lib_catalog_column(database, table, i, &column) == QRY_LIB_OK) {
            printf("  %s %s %u%s\n", column.name, type_name(column.type), (unsigned)column.size,
                   column.is_key ? " key" : "");
        }
    }
}

int main(void) {
    uint16_t databases = qry_lib_catalog_db_num();
    uint16_t i;
    printf("version known: %s\n", qry_lib_version()[0] != '\0' ? "yes" : "no");
    printf("%s\n", qry_lib_code_text(QRY_LIB_NO_FREE_ENTRY));
    for (i = 0; i < databases; ++i) {
        const char *database = qry_lib_catalog_db(i);
        printf("%s: %u tables, the first is %s\n", database, (unsigned)qry_lib_catalog_table_num(database),
               qry_lib_catalog_table(database, 0));
    }
    print_table("adbk_db", "PSN_TBL");
    return databases == 4 ? 0 : 1;
}
