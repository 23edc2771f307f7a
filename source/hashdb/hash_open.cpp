// hash_open and the DB handle's operations over the page table, and
// tql_mkstemp.
#include <tql70/hashdb.h>

#include "hashdb/hash_table.h"
#include "platform/platform.h"

#include <cerrno>

using tql70_hashdb::HashTable;

namespace {

HashTable* table_of(const DB* db) { return static_cast<HashTable*>(db->internal); }

int db_close(DB* db)
{
    if (!db) {
        errno = EINVAL;
        return -1;
    }
    HashTable* table = table_of(db);
    const int result = table->close();
    delete table;
    delete db;
    return result;
}

int db_del(const DB* db, const DBT* key, unsigned flags)
{
    if (!db || !key || flags) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->del(*key);
}

int db_get(const DB* db, const DBT* key, DBT* data, unsigned flags)
{
    if (!db || !key || !data || flags) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->get(*key, *data);
}

int db_put(const DB* db, DBT* key, const DBT* data, unsigned flags)
{
    if (!db || !key || !data) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->put(*key, *data, flags);
}

int db_seq(const DB* db, DBT* key, DBT* data, unsigned flags)
{
    if (!db || !key || !data) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->seq(*key, *data, flags);
}

int db_sync(const DB* db, unsigned flags)
{
    if (!db || flags) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->sync();
}

int db_fd(const DB* db)
{
    if (!db) {
        errno = EINVAL;
        return -1;
    }
    return table_of(db)->fd();
}

} // namespace

DB* hash_open(const char* file, int flags, int mode, const HASHINFO* info, int /*dflags*/)
{
    HashTable* table = HashTable::open(file, flags, mode, info);
    if (!table) {
        return nullptr;
    }
    return new DB{db_close, db_del, db_get, db_put, db_seq, db_sync, db_fd, table};
}

int tql_mkstemp(char* template_name)
{
    if (!template_name) {
        errno = EINVAL;
        return -1;
    }
    return make_unique_file(template_name);
}
