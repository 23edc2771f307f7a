// glist_*: positional records across blocks, moves, the sort and keyed
// calls in both orders, the query codes, and the file load and store with
// their oddities (store count versus length, TABs, the 1023-character cut)
// and their messages. The line ends and the end-of-file mark of loading
// are the line reader's (tests/gfile/file_handle_test.cpp).
#include <tql70/glist.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace tql_test;

namespace {

struct ListGuard {
    glist list = nullptr;
    explicit ListGuard(int flags = 0, const char* name = "test") { EXPECT_EQ(glist_create(&list, flags, name, "d"), 1); }
    ~ListGuard() { glist_closeall(); }
};

void put_all(glist list, const std::vector<std::string>& texts)
{
    for (size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(glist_putstr(list, static_cast<unsigned>(i), texts[i].c_str()), 1);
    }
}

unsigned query(glist list, int code)
{
    unsigned value = 99;
    glist_query(list, code, &value);
    return value;
}

std::vector<std::string> contents(glist list)
{
    const unsigned length = query(list, GLIST_LENGTH);
    std::vector<std::string> texts;
    std::vector<char> buffer(20000);
    for (unsigned i = 0; i < length; ++i) {
        EXPECT_EQ(glist_getstr(list, i, buffer.data()), 1);
        texts.emplace_back(buffer.data());
    }
    return texts;
}

} // namespace

TEST(Glist, PositionalRecordsMovesAndMixedBlocks)
{
    ListGuard guard;
    put_all(guard.list, {"a", "b", "c", "d"});
    EXPECT_EQ(glist_move(guard.list, 2, -1), 1);
    EXPECT_EQ(contents(guard.list), (std::vector<std::string>{"a", "c", "d"}));
    EXPECT_EQ(glist_move(guard.list, 1, 2), 1);
    EXPECT_EQ(contents(guard.list), (std::vector<std::string>{"a", "", "", "c", "d"}));
    EXPECT_EQ(query(guard.list, GLIST_STORE_COUNT), 5u);
    EXPECT_EQ(glist_move(guard.list, 1, -2), 0); // nothing before position 0
    EXPECT_EQ(glist_setlength(guard.list, 2), 1);
    EXPECT_EQ(contents(guard.list), (std::vector<std::string>{"a", ""}));
    char out[8];
    EXPECT_EQ(glist_getstr(guard.list, 2, out), 0);
    // A record without a NUL reads back bounded by its own size.
    unsigned copied = 0;
    char record[16] = {};
    ASSERT_EQ(glist_putrec(guard.list, 0, "xyz", 3), 1);
    EXPECT_EQ(glist_getrec(guard.list, 0, record, sizeof record, &copied), 1);
    EXPECT_EQ(copied, 3u);

    // Blocks of mixed sizes keep every record at its place.
    ASSERT_EQ(glist_setlength(guard.list, 62), 1); // one block of 61 records and one more
    // Blocks of another size (100 bytes: 22 records) mixed with the first.
    const unsigned small = 100;
    ASSERT_EQ(glist_set(guard.list, GLIST_BLOCK_BYTES, &small), 1);
    ASSERT_EQ(glist_putstr(guard.list, 144, "last"), 1);
    ASSERT_EQ(glist_putstr(guard.list, 122, "mid"), 1);
    ASSERT_EQ(glist_move(guard.list, 100, 3), 1);
    ASSERT_EQ(glist_move(guard.list, 60, -2), 1);
    const std::vector<std::string> texts = contents(guard.list);
    ASSERT_EQ(texts.size(), 146u);
    EXPECT_EQ(texts[123], "mid");
    EXPECT_EQ(texts[145], "last");
}

TEST(Glist, SortAndKeyedCalls)
{
    struct Case {
        const char* name;
        int flags;
        std::vector<std::string> input;
        std::vector<std::string> inserts;
        std::vector<std::string> expected;
    } cases[] = {
        {"ascending", 0, {"b", "a", "c"}, {"bb", "b"}, {"a", "b", "bb", "c"}},
        {"descending", GLIST_DESCENDING, {"b", "a", "c"}, {"d"}, {"d", "c", "b", "a"}},
        {"duplicates kept", GLIST_DUPLICATES, {"b", "a"}, {"b", "b"}, {"a", "b", "b", "b"}},
        {"many equal", 0, std::vector<std::string>(300, "x"), {}, std::vector<std::string>(300, "x")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ListGuard guard(c.flags);
        put_all(guard.list, c.input);
        EXPECT_EQ(glist_putkeystr(guard.list, "z"), 0); // never sorted
        EXPECT_EQ(glist_sort(guard.list, 1, 1), 0);
        ASSERT_EQ(glist_sort(guard.list, 0, static_cast<unsigned>(c.input.size() - 1)), 1);
        EXPECT_NE(glist_query(guard.list, GLIST_IS_SORTED, nullptr), 0);
        for (const std::string& text : c.inserts) {
            EXPECT_EQ(glist_putkeystr(guard.list, text.c_str()), 1);
        }
        EXPECT_EQ(contents(guard.list), c.expected);
        char key[8] = "b";
        unsigned index = 99, copied = 0;
        const bool has_b = std::find(c.expected.begin(), c.expected.end(), "b") != c.expected.end();
        EXPECT_EQ(glist_getkeyrec(guard.list, &index, key, sizeof key, &copied), has_b ? 1 : 0);
        EXPECT_TRUE(!has_b || (c.expected[index] == "b" && copied == 2u)) << index;
        ASSERT_EQ(glist_putstr(guard.list, 0, "q"), 1);
        EXPECT_EQ(glist_query(guard.list, GLIST_IS_SORTED, nullptr), 0);
    }
}

TEST(Glist, TableQueriesAndNullArguments)
{
    ListGuard guard(0x7ff, "longname123");
    glist again = nullptr;
    EXPECT_EQ(glist_open(&again, "longname"), 1); // names are cut to 8
    EXPECT_EQ(again, guard.list);
    EXPECT_EQ(glist_query(guard.list, GLIST_SHARED, nullptr), 1);
    EXPECT_EQ(glist_close(again), 1);
    EXPECT_EQ(glist_query(guard.list, GLIST_SHARED, nullptr), 0);
    EXPECT_EQ(glist_query(guard.list, GLIST_HAS_A, nullptr), 1);
    EXPECT_EQ(glist_query(guard.list, GLIST_HAS_C, nullptr), 0); // 0x004 is not kept by create
    EXPECT_EQ(glist_set(guard.list, GLIST_HAS_C, nullptr), 1);
    EXPECT_EQ(glist_query(guard.list, GLIST_HAS_C, nullptr), 4);
    EXPECT_EQ(query(guard.list, GLIST_BLOCK_BYTES), 256u);
    const std::string long_text(200, 'x');
    EXPECT_EQ(glist_set(guard.list, GLIST_DESCRIPTION, long_text.c_str()), 1);
    char description[GLIST_DESCRIPTION_SIZE];
    EXPECT_EQ(glist_query(guard.list, GLIST_DESCRIPTION, description), 1);
    EXPECT_EQ(std::string(description), long_text.substr(0, 128));
    EXPECT_EQ(glist_query(guard.list, 30, description), 0);
    EXPECT_EQ(query(nullptr, GLIST_LENGTH), 0u);
    EXPECT_EQ(glist_query(nullptr, GLIST_VALID, nullptr), 0);
    void *a = nullptr, *b = nullptr;
    EXPECT_EQ(glist_remote_stfh(guard.list, &a, &b), 0);
    int x = 0, y = 0;
    EXPECT_EQ(glist_save_stfh(guard.list, &x, &y), 1);
    EXPECT_EQ(glist_remote_stfh(guard.list, &a, &b), 1);
    EXPECT_EQ(a, &x);
    EXPECT_EQ(b, &y);
    EXPECT_EQ(glist_remove_stfh(guard.list), 1);
    EXPECT_EQ(glist_remove_stfh(guard.list), 0);
    EXPECT_EQ(glist_create(nullptr, 0, "n", "d"), 0);
    EXPECT_EQ(glist_putstr(guard.list, 0, nullptr), 0);
    EXPECT_EQ(glist_close(nullptr), 0);
}

TEST(Glist, StoreAndMessages)
{
    TempDir dir;
    const std::string path = dir.path() + "/out.txt";
    ListGuard guard;
    put_all(guard.list, {"a\tb", "", "c"});
    char message[512] = "";
    ASSERT_EQ(glist_store(guard.list, path.c_str(), message), 1);
    EXPECT_EQ(read_file(path), ""); // the store count is still 0
    const unsigned three = 3;
    ASSERT_EQ(glist_set(guard.list, GLIST_STORE_COUNT, &three), 1);
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    ASSERT_EQ(glist_store(guard.list, path.c_str(), message), 1);
    EXPECT_EQ(read_file(path), "a\tb\n\nc\n");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640)); // kept by the rewrite
    // Loading turns TABs into blanks, keeps empty lines and sets the store
    // count; a line is cut at 1,023 characters.
    ASSERT_EQ(glist_load(guard.list, path.c_str(), message), 1);
    EXPECT_EQ(contents(guard.list), (std::vector<std::string>{"a b", "", "c"}));
    const std::string long_line = dir.write_file("long.txt", std::string(1500, 'k') + "\r\nend");
    ListGuard other;
    ASSERT_EQ(glist_load(other.list, long_line.c_str(), message), 1);
    EXPECT_EQ(contents(other.list), (std::vector<std::string>{std::string(1023, 'k'), "end"}));
    EXPECT_EQ(query(other.list, GLIST_STORE_COUNT), 2u);

    struct Case {
        glist list;
        std::string path;
        int (*call)(glist, const char*, char*);
        std::string expected;
    } cases[] = {
        {nullptr, "f", glist_load, "<GLIST_LOAD> (0) not open: f"},
        {nullptr, "f", glist_store, "<GLIST_STORE> (0) not open: f"},
        {guard.list, dir.path() + "/none", glist_load, "Not found: " + dir.path() + "/none"},
        {guard.list, dir.path() + "/no/x", glist_store, "Cannot create: " + dir.path() + "/no/x"},
        {guard.list, dir.path(), glist_store, "Write error: " + dir.path()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        char text[512] = "";
        EXPECT_EQ(c.call(c.list, c.path.c_str(), text), 0);
        EXPECT_EQ(std::string(text), c.expected);
    }
    EXPECT_EQ(read_file(path), "a\tb\n\nc\n"); // untouched by the failures
}
