// Fuzz target for the hash database: the input is written as a database
// file, opened, walked with seq, each key seen looked up with get, and one
// pair put and deleted. A damaged file may be refused or fail an
// operation; it must never crash or read outside a page. A sound walk
// ends within as many pairs as the file has bytes.
#include <tql70/hashdb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

const std::string& database_file()
{
    static const std::string name = [] {
        const char* tmp = std::getenv("TMPDIR");
        std::string path = std::string(tmp && *tmp ? tmp : "/tmp") + "/hashdb_fuzzXXXXXX";
        const int fd = tql_mkstemp(path.data());
        check(fd >= 0);
        return path;
    }();
    return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& file = database_file();
    FILE* out = std::fopen(file.c_str(), "wb");
    check(out != nullptr);
    check(std::fwrite(data, 1, size, out) == size);
    std::fclose(out);

    DB* db = hash_open(file.c_str(), O_RDWR, 0600, nullptr, 0);
    if (!db) {
        return 0;
    }
    std::vector<std::string> keys;
    DBT key, value;
    int r = db->seq(db, &key, &value, R_FIRST);
    for (; r == 0; r = db->seq(db, &key, &value, R_NEXT)) {
        check(keys.size() <= size);
        keys.emplace_back(static_cast<const char*>(key.data), key.size);
    }
    check(r == 1 || r == -1);
    for (const std::string& k : keys) {
        DBT probe{const_cast<char*>(k.data()), k.size()};
        r = db->get(db, &probe, &value, 0);
        check(r >= -1 && r <= 1);
    }
    char k[] = "fuzz key";
    DBT probe{k, sizeof k}, datum{k, sizeof k};
    if (db->put(db, &probe, &datum, 0) == 0) {
        check(db->get(db, &probe, &value, 0) != 1);
        db->del(db, &probe, 0);
    }
    db->close(db);
    return 0;
}
