// The functions that a recording tells apart, numbered in this order: a recording of another order has
// another format version. Functions that only read what their caller holds (a rowset's cursor, comparisons,
// the catalog) are no part of it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace field {

#define FIELD_CALLS(EACH)                                                                                    \
    EACH(qry_lib_db_stmt_init)                                                                               \
    EACH(qry_lib_db_get_stmt)                                                                                \
    EACH(qry_lib_db_stmt_set_table_name)                                                                     \
    EACH(qry_lib_db_stmt_set_exec_type)                                                                      \
    EACH(qry_lib_db_stmt_set_col_num)                                                                        \
    EACH(qry_lib_db_stmt_set_col_name)                                                                       \
    EACH(qry_lib_db_stmt_set_elem_as_int)                                                                    \
    EACH(qry_lib_db_stmt_set_elem_as_uchar)                                                                  \
    EACH(qry_lib_db_stmt_set_elem_as_ushort)                                                                 \
    EACH(qry_lib_db_stmt_set_elem_as_uint)                                                                   \
    EACH(qry_lib_db_stmt_set_elem_as_ulong)                                                                  \
    EACH(qry_lib_db_stmt_set_elem_as_str)                                                                    \
    EACH(qry_lib_db_stmt_set_where_phrase)                                                                   \
    EACH(qry_lib_db_stmt_set_where_equal_int)                                                                \
    EACH(qry_lib_db_stmt_set_where_equal_ulong)                                                              \
    EACH(qry_lib_db_stmt_set_where_equal_str)                                                                \
    EACH(qry_lib_db_stmt_set_orderby_phrase)                                                                 \
    EACH(qry_lib_db_stmt_term)                                                                               \
    EACH(qry_lib_db_exec_query)                                                                              \
    EACH(qry_lib_db_exec)                                                                                    \
    EACH(qry_lib_db_stmt_exec_query)                                                                         \
    EACH(qry_lib_db_stmt_exec)                                                                               \
    EACH(qry_lib_db_rowset_init)                                                                             \
    EACH(qry_lib_db_rowset_term)                                                                             \
    EACH(dsql_db_handle_add)                                                                                 \
    EACH(dsql_db_handle_delete)                                                                              \
    EACH(qry_lib_db_get_unused_id)                                                                           \
    EACH(qry_lib_tb_get_stc_table)                                                                           \
    EACH(qry_lib_tb_get_stc_table_str)                                                                       \
    EACH(qry_lib_tb_set_stc_table)                                                                           \
    EACH(qry_lib_tb_get_stc_default_table)                                                                   \
    EACH(qry_lib_tb_get_stc_default_table_str)                                                               \
    EACH(qry_lib_tb_set_stc_default_table)                                                                   \
    EACH(qry_lib_tb_reset_one_stc_table)                                                                     \
    EACH(qry_lib_tb_reset_all_stc_table)                                                                     \
    EACH(qry_lib_tb_get_stc_status)                                                                          \
    EACH(qry_lib_tb_get_stc_status_str)                                                                      \
    EACH(qry_lib_tb_set_stc_status)                                                                          \
    EACH(qry_lib_tb_create_search_table_id)                                                                  \
    EACH(qry_lib_tb_delete_search_table_id)                                                                  \
    EACH(qry_lib_write_data_version)                                                                         \
    EACH(qry_lib_check_data_version)                                                                         \
    EACH(qry_lib_get_doublecount_mode)                                                                       \
    EACH(qry_lib_judge_doublecount)

#define FIELD_SERVICES(EACH)                                                                                 \
    EACH(pfwOSWOrgAllocMemPart)                                                                              \
    EACH(pfwOSWOrgFreeMemPart)                                                                               \
    EACH(pfwOSWCreateMutexSem)                                                                               \
    EACH(pfwOSWRequestMutexSem)                                                                              \
    EACH(pfwOSWReleaseMutexSem)                                                                              \
    EACH(pfwOSWLockTask)                                                                                     \
    EACH(pfwOSWUnlockTask)                                                                                   \
    EACH(tbctSTCGetTable)                                                                                    \
    EACH(tbctSTCSetTable)                                                                                    \
    EACH(tbSTCInitTable)                                                                                     \
    EACH(tbctResetTable)                                                                                     \
    EACH(tbctSTCGetStatus)                                                                                   \
    EACH(tbctSTCSetStatus)                                                                                   \
    EACH(tbctSTCCreateListTable)                                                                             \
    EACH(tbctSTCListTableSetPos)                                                                             \
    EACH(tbctSTCListTableGetVal)                                                                             \
    EACH(tbctSTCDeleteListTable)                                                                             \
    EACH(sdb_CreateDBHandle)                                                                                 \
    EACH(sdb_RegisterDBHandleService)                                                                        \
    EACH(sdb_DeregisterDBHandleService)                                                                      \
    EACH(fsa_fio_existfile)                                                                                  \
    EACH(fsa_fio_mkdir)                                                                                      \
    EACH(fsa_fio_remove)                                                                                     \
    EACH(fsa_fio_fopen)                                                                                      \
    EACH(fsa_fio_fread)                                                                                      \
    EACH(fsa_fio_fwrite)                                                                                     \
    EACH(fsa_fio_fclose)                                                                                     \
    EACH(cmn_lib_sort)

#define FIELD_NUMBER(name) call_##name,
enum call_number : std::uint16_t { FIELD_CALLS(FIELD_NUMBER) call_num };
#undef FIELD_NUMBER
#define FIELD_NUMBER(name) service_##name,
enum service_number : std::uint16_t { FIELD_SERVICES(FIELD_NUMBER) service_num };
#undef FIELD_NUMBER

#define FIELD_NAME(name) #name,
constexpr const char *call_names[] = {FIELD_CALLS(FIELD_NAME)};
constexpr const char *service_names[] = {FIELD_SERVICES(FIELD_NAME)};
#undef FIELD_NAME

} // namespace field
