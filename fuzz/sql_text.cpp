// SQL text through both entry points on a filled store. The first character chooses the database.
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const fuzz::balanced_memory balanced;
    const std::string sql(reinterpret_cast<const char *>(data) + 1, size - 1);
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt(qry_lib_catalog_db(data[0] % 4), &stmt);

    fuzz::restore_store();
    qry_lib_db_rowset_ rowset{};
    const std::uint32_t code = qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset);
    fuzz::read_and_release(code, rowset);
    qry_lib_db_exec(&stmt, sql.c_str());
    qry_lib_db_stmt_term(&stmt);
    return 0;
}
