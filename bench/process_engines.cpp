// This library on a device image, and SQLite on a file with a write-ahead log that is not synced, its
// statements fresh each time or kept.
#include <qrylib/qrylib.h>

#include "engines.h"
#include "platform/host/qryhost.h"
#include "processes.h"

namespace bench {

namespace {

std::string image_in(const std::string &folder) {
    return folder + "/device.image";
}

void create_image(const std::string &folder) {
    require(qryhost_open(image_in(folder).c_str()) == 0, qryhost_error());
    fill_element_tables();
    require(qryhost_close() == 0, qryhost_error());
}

class image_session final : public session {
  public:
    explicit image_session(const std::string &folder) {
        qryhost_set_trace_sink(nullptr, nullptr);
        require(qryhost_open(image_in(folder).c_str()) == 0, qryhost_error());
    }
    void read(int id) override {
        query(("SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = " + std::to_string(id)).c_str());
    }
    void write(int id, std::uint32_t value) override {
        qry_lib_db_stmt_ stmt;
        qry_lib_db_get_stmt("department_db", &stmt);
        qry_lib_db_stmt_set_exec_type(&stmt, QRY_LIB_DB_QUERY_TYPE_UPDATE);
        qry_lib_db_stmt_set_table_name(&stmt, "DEPT_TBL");
        qry_lib_db_stmt_set_col_num(&stmt, 1);
        qry_lib_db_stmt_set_col_name(&stmt, 0, "TOTAL_M");
        qry_lib_db_stmt_set_elem_as_ulong(&stmt, 0, value);
        qry_lib_db_stmt_set_where_equal_int(&stmt, "ID", id);
        require(qry_lib_db_stmt_exec(&stmt) == 0, "an UPDATE fails");
        qry_lib_db_stmt_term(&stmt);
    }
};

constexpr int patience = 10000; // milliseconds that SQLite waits for a lock

sqlite3 *open_file(const std::string &folder) {
    sqlite3 *database = nullptr;
    require(sqlite3_open_v2((folder + "/database").c_str(), &database,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                            nullptr) == SQLITE_OK,
            "SQLite does not open");
    sqlite3_busy_timeout(database, patience);
    query(database, "PRAGMA synchronous = OFF");
    return database;
}

void create_database(const std::string &folder) {
    sqlite3 *database = open_file(folder);
    query(database, "PRAGMA journal_mode = WAL");
    fill(database);
    sqlite3_close(database);
}

class fresh_session final : public session {
  public:
    explicit fresh_session(const std::string &folder) : database_(open_file(folder)) {}
    void read(int id) override {
        query(database_, ("SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = " + std::to_string(id)).c_str());
    }
    void write(int id, std::uint32_t value) override {
        query(database_,
              ("UPDATE DEPT_TBL SET TOTAL_M = " + std::to_string(value) + " WHERE ID = " + std::to_string(id))
                  .c_str());
    }

  private:
    sqlite3 *database_;
};

class kept_session final : public session {
  public:
    explicit kept_session(const std::string &folder)
        : database_(open_file(folder)),
          read_(prepare(database_, "SELECT NAME, TOTAL_M FROM DEPT_TBL WHERE ID = ?1")),
          write_(prepare(database_, "UPDATE DEPT_TBL SET TOTAL_M = ?2 WHERE ID = ?1")) {}
    void read(int id) override {
        sqlite3_bind_int(read_, 1, id);
        query(read_);
    }
    void write(int id, std::uint32_t value) override {
        sqlite3_bind_int(write_, 1, id);
        sqlite3_bind_int64(write_, 2, value);
        query(write_);
    }

  private:
    sqlite3 *database_;
    sqlite3_stmt *read_;
    sqlite3_stmt *write_;
};

template <typename Session>
std::unique_ptr<session> open(const std::string &folder) {
    return std::make_unique<Session>(folder);
}

} // namespace

const std::vector<engine> engines = {{"qrylib", create_image, open<image_session>},
                                     {"sqlite_fresh", create_database, open<fresh_session>},
                                     {"sqlite_kept", create_database, open<kept_session>}};

} // namespace bench
