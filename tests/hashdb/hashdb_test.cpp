// The hash database: pairs surviving close and reopen (small, big, many),
// the flags, overflow exhaustion, refused and damaged files, the
// process-wide table and tql_mkstemp.
#include "support/scoped_env.h"

#include <tql70/hashdb.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <unistd.h>

namespace tql_test {
namespace {

namespace fs = std::filesystem;

DBT dbt(const std::string& s) { return {const_cast<char*>(s.data()), s.size()}; }
std::string str(const DBT& d) { return std::string(static_cast<const char*>(d.data), d.size); }

std::map<std::string, std::string> all_pairs(DB* db)
{
    std::map<std::string, std::string> pairs;
    DBT key, data;
    for (int r = db->seq(db, &key, &data, R_FIRST); r == 0; r = db->seq(db, &key, &data, R_NEXT)) {
        EXPECT_TRUE(pairs.emplace(str(key), str(data)).second) << "seq gave a key twice";
    }
    return pairs;
}

void put_all(DB* db, const std::map<std::string, std::string>& pairs)
{
    for (const auto& [k, v] : pairs) {
        DBT key = dbt(k), data = dbt(v);
        ASSERT_EQ(db->put(db, &key, &data, 0), 0) << k.size() << " " << v.size();
    }
}

TEST(HashDb, PairsSurviveCloseAndReopen)
{
    struct Case {
        const char* name;
        unsigned bsize, cachesize, ffactor;
        int count;
        size_t key_size, data_size;
    };
    const Case cases[] = {
        {"defaults", 0, 0, 0, 2000, 16, 32},
        {"small pages, tiny cache", 256, 1024, 4, 3000, 10, 20},
        {"big data", 256, 0, 0, 20, 8, 5000},
        {"big keys", 512, 0, 0, 20, 700, 3},
        {"empty data", 1024, 0, 8, 500, 12, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string file = dir.path() + "/t.db";
        std::map<std::string, std::string> pairs;
        for (int i = 0; i < c.count; ++i) {
            std::string key = std::to_string(i);
            key.resize(c.key_size, char('a' + i % 26));
            pairs[key] = std::string(c.data_size, char('A' + i % 26));
        }
        HASHINFO info{c.bsize, c.ffactor, 0, c.cachesize, nullptr, 0};
        DB* db = hash_open(file.c_str(), O_RDWR | O_CREAT, 0600, &info, 0);
        ASSERT_NE(db, nullptr);
        put_all(db, pairs);
        ASSERT_EQ(db->close(db), 0);

        db = hash_open(file.c_str(), O_RDONLY, 0, nullptr, 0);
        ASSERT_NE(db, nullptr);
        EXPECT_EQ(all_pairs(db), pairs);
        for (const auto& [k, v] : pairs) {
            DBT key = dbt(k), data{};
            ASSERT_EQ(db->get(db, &key, &data, 0), 0);
            ASSERT_EQ(str(data), v);
        }
        const std::string absent = "absent";
        DBT key = dbt(absent), data = dbt(absent);
        EXPECT_EQ(db->get(db, &key, &data, 0), 1);
        errno = 0;
        EXPECT_EQ(db->put(db, &key, &data, 0), -1);
        EXPECT_EQ(errno, EPERM);
        EXPECT_EQ(db->close(db), 0);
    }
}

TEST(HashDb, FlagsAndDelete)
{
    TempDir dir;
    ScopedEnv tmpdir("TMPDIR", dir.path());
    DB* db = hash_open(nullptr, O_RDWR, 0, nullptr, 0);
    ASSERT_NE(db, nullptr);
    ASSERT_EQ(fs::directory_iterator(dir.path())->path().filename().string().rfind("_hash", 0), 0u);
    const std::string k = "k", small = "one", big(9000, 'b');
    DBT key = dbt(k), one = dbt(small), two = dbt(big), out{};
    EXPECT_EQ(db->put(db, &key, &one, R_NOOVERWRITE), 0);
    EXPECT_EQ(db->put(db, &key, &two, R_NOOVERWRITE), 1);
    ASSERT_EQ(db->get(db, &key, &out, 0), 0);
    EXPECT_EQ(str(out), "one");
    EXPECT_EQ(db->put(db, &key, &two, 0), 0); // replaces, small by big
    ASSERT_EQ(db->get(db, &key, &out, 0), 0);
    EXPECT_EQ(str(out), big);
    EXPECT_EQ(db->put(db, &key, &one, 0), 0); // and big by small
    EXPECT_EQ(all_pairs(db), (std::map<std::string, std::string>{{"k", "one"}}));
    EXPECT_EQ(db->del(db, &key, 0), 0);
    EXPECT_EQ(db->del(db, &key, 0), 1);
    EXPECT_EQ(db->get(db, &key, &out, 0), 1);
    EXPECT_EQ(db->seq(db, &key, &out, R_FIRST), 1);
    EXPECT_EQ(db->put(db, &key, &one, 99), -1);
    EXPECT_EQ(db->close(db), 0);
    EXPECT_TRUE(fs::is_empty(dir.path())) << "the anonymous table's file is removed";
}

TEST(HashDb, OverflowExhaustionFailsThePut)
{
    TempDir dir;
    const std::string file = dir.path() + "/full.db";
    HASHINFO info{256, 0, 0, 0, nullptr, 0};
    DB* db = hash_open(file.c_str(), O_RDWR | O_CREAT, 0600, &info, 0);
    ASSERT_NE(db, nullptr);
    const std::string value(4000, 'v');
    int stored = 0, result = 0;
    testing::internal::CaptureStderr();
    while (stored < 1000 && (result = [&] {
               std::string k = "key" + std::to_string(stored);
               DBT key = dbt(k), data = dbt(value);
               return db->put(db, &key, &data, 0);
           }()) == 0) {
        ++stored;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "HASH: Out of overflow pages. Increase page size\n");
    EXPECT_EQ(result, -1);
    EXPECT_GT(stored, 10);
    ASSERT_EQ(db->close(db), 0);
    db = hash_open(file.c_str(), O_RDONLY, 0, nullptr, 0);
    ASSERT_NE(db, nullptr);
    EXPECT_EQ(all_pairs(db).size(), size_t(stored));
    db->close(db);
}

uint32_t other_hash(const void*, size_t size) { return uint32_t(size); }

TEST(HashDb, DamagedFilesAreRefusedOrReadSafely)
{
    TempDir dir;
    const std::string good = dir.path() + "/good.db";
    {
        HASHINFO info{256, 4, 0, 0, nullptr, 0};
        DB* db = hash_open(good.c_str(), O_RDWR | O_CREAT, 0600, &info, 0);
        ASSERT_NE(db, nullptr);
        std::map<std::string, std::string> pairs;
        for (int i = 0; i < 300; ++i) {
            pairs["key" + std::to_string(i)] = std::string(i % 50, 'x');
        }
        put_all(db, pairs);
        ASSERT_EQ(db->close(db), 0);
    }
    std::ifstream in(good, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    struct Case {
        const char* name;
        std::string content;
        bool opens; // the header is sound; damage lies in the pages
        HASHINFO info;
    };
    std::string flipped_header = bytes, flipped_page = bytes;
    flipped_header[30] ^= 1;
    for (size_t i = 256; i < flipped_page.size(); i += 97) {
        flipped_page[i] = char(0xff);
    }
    const Case cases[] = {
        {"empty", "", false, {}},
        {"foreign", std::string(4096, 'z'), false, {}},
        {"short header", bytes.substr(0, 100), false, {}},
        {"truncated", bytes.substr(0, bytes.size() / 2), false, {}},
        {"header bit flipped", flipped_header, false, {}},
        {"other hash function", bytes, false, {0, 0, 0, 0, other_hash, 0}},
        {"pages overwritten", flipped_page, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string file = dir.write_file("bad.db", c.content);
        errno = 0;
        DB* db = hash_open(file.c_str(), O_RDONLY, 0, &c.info, 0);
        if (!c.opens) {
            EXPECT_EQ(db, nullptr);
            EXPECT_EQ(errno, EINVAL);
            continue;
        }
        ASSERT_NE(db, nullptr);
        DBT key, data;
        int r = db->seq(db, &key, &data, R_FIRST), n = 0;
        for (; r == 0 && n < 1000; ++n) {
            r = db->seq(db, &key, &data, R_NEXT);
        }
        EXPECT_EQ(r, -1);
        EXPECT_EQ(errno, EINVAL);
        db->close(db);
    }
}

TEST(HashDb, ProcessTableGrowsPastItsSize)
{
    ASSERT_NE(tql_hcreate(2), 0);
    static char keys[50][8];
    for (int i = 0; i < 50; ++i) {
        std::snprintf(keys[i], sizeof keys[i], "k%d", i);
        ENTRY item{keys[i], &keys[i]};
        ASSERT_NE(tql_hsearch(item, ENTER), nullptr);
    }
    char probe[] = "k37", missing[] = "k50";
    ENTRY* found = tql_hsearch(ENTRY{probe, nullptr}, FIND);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->data, &keys[37]);
    EXPECT_EQ(tql_hsearch(ENTRY{probe, nullptr}, ENTER)->data, &keys[37]); // an existing key is kept
    EXPECT_EQ(tql_hsearch(ENTRY{missing, nullptr}, FIND), nullptr);
    tql_hdestroy();
    EXPECT_EQ(tql_hsearch(ENTRY{probe, nullptr}, FIND), nullptr);
}

TEST(HashDb, MkstempMakesNewFiles)
{
    TempDir dir;
    std::string first = dir.path() + "/_hashXXXXXX", second = first;
    const int a = tql_mkstemp(first.data()), b = tql_mkstemp(second.data());
    ASSERT_GE(a, 0);
    ASSERT_GE(b, 0);
    EXPECT_NE(first, second);
    // The six X are replaced (a random letter may itself be an X).
    EXPECT_NE(first.substr(first.size() - 6), "XXXXXX");
    EXPECT_TRUE(fs::exists(first) && fs::exists(second));
    close(a);
    close(b);
    std::string bad = dir.path() + "/noXs";
    EXPECT_EQ(tql_mkstemp(bad.data()), -1);
}

} // namespace
} // namespace tql_test
