// The same records in LMDB, got and put by their id as bytes: no statement, no columns. What any such store
// costs at least.
#include <lmdb.h>

#include <cstring>

#include "library.h"
#include "processes.h"

namespace bench {

namespace {

struct record {
    char name[193];
    std::uint32_t total;
};

void check(int code) {
    require(code == 0, mdb_strerror(code));
}

class lmdb_session final : public session {
  public:
    explicit lmdb_session(const std::string &folder) {
        check(mdb_env_create(&environment_));
        check(mdb_env_set_mapsize(environment_, std::size_t{64} * 1024 * 1024));
        check(mdb_env_open(environment_, folder.c_str(), MDB_NOSYNC | MDB_WRITEMAP, 0600));
        MDB_txn *transaction = begin(0);
        check(mdb_dbi_open(transaction, nullptr, MDB_INTEGERKEY, &table_));
        check(mdb_txn_commit(transaction));
    }
    void read(int id) override {
        MDB_txn *transaction = begin(MDB_RDONLY);
        total_ += get(transaction, id).total;
        mdb_txn_abort(transaction);
    }
    void write(int id, std::uint32_t value) override {
        MDB_txn *transaction = begin(0);
        record changed = get(transaction, id);
        changed.total = value;
        put(transaction, id, changed);
        check(mdb_txn_commit(transaction));
    }
    void fill() {
        const std::vector<column> columns = columns_of(table_names[0]);
        MDB_txn *transaction = begin(0);
        for (int id = 1; id <= department_num(); ++id) {
            record fresh{};
            for (const column &column : columns) {
                if (column.name == "NAME") {
                    const std::string name = text_value(column, id);
                    std::memcpy(fresh.name, name.c_str(), name.size() + 1);
                } else if (column.name == "TOTAL_M") {
                    fresh.total = number_value(column, id);
                }
            }
            put(transaction, id, fresh);
        }
        check(mdb_txn_commit(transaction));
        mdb_env_close(environment_);
    }

  private:
    MDB_txn *begin(unsigned flags) {
        MDB_txn *transaction = nullptr;
        check(mdb_txn_begin(environment_, nullptr, flags, &transaction));
        return transaction;
    }
    record get(MDB_txn *transaction, int id) {
        MDB_val key = {sizeof id, &id};
        MDB_val value;
        check(mdb_get(transaction, table_, &key, &value));
        record found;
        std::memcpy(&found, value.mv_data, sizeof found);
        return found;
    }
    void put(MDB_txn *transaction, int id, record &fresh) {
        MDB_val key = {sizeof id, &id};
        MDB_val value = {sizeof fresh, &fresh};
        check(mdb_put(transaction, table_, &key, &value, 0));
    }

    MDB_env *environment_ = nullptr;
    MDB_dbi table_ = 0;
    std::uint64_t total_ = 0;
};

void create(const std::string &folder) {
    lmdb_session(folder).fill();
}

std::unique_ptr<session> open(const std::string &folder) {
    return std::make_unique<lmdb_session>(folder);
}

} // namespace

const std::vector<engine> engines = {{"lmdb", create, open}};

} // namespace bench
