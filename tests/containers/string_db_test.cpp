// ZQstringDB_new: the string database through its operation slots: case
// rules of the keys, replacement, the value release rules (including the
// deliberate insert/remove asymmetry), height, walk depths and bad keys.
// Key copies and entries are checked for leaks by the sanitizer build.
#include <tql70/avltree.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

// Every value handed to release_a.
std::vector<void*> g_released;
// Run once from release_a, when set (cleared before it runs).
void (*g_on_release_a)() = nullptr;

void release_a(void* value)
{
    g_released.push_back(value);
    if (void (*hook)() = g_on_release_a) {
        g_on_release_a = nullptr;
        hook();
    }
}

using Walked = std::vector<std::pair<std::string, int>>;
void record_walk(void* ctx, const char* key, int depth, void*)
{
    static_cast<Walked*>(ctx)->push_back({key, depth});
}
Walked walk(ZQstringDB* db)
{
    Walked walked;
    db->walk(db, &walked, record_walk);
    return walked;
}

class StringDbTest : public testing::Test {
protected:
    StringDbTest() { g_released.clear(); }
    ~StringDbTest() override
    {
        for (ZQstringDB* db : dbs_) db->destroy(db);
    }
    ZQstringDB* make(ZQstringDB_release_fn release, int case_insensitive)
    {
        ZQstringDB* db = ZQstringDB_new(release, case_insensitive);
        EXPECT_NE(db, nullptr);
        dbs_.push_back(db);
        return db;
    }
    std::vector<ZQstringDB*> dbs_;
    int v_[8] = {};
};

TEST_F(StringDbTest, CaseRulesOfTheKeysAndReplacementWithoutRelease)
{
    ZQstringDB* folded = make(release_a, 1);
    ZQstringDB* exact = make(nullptr, 0);
    for (ZQstringDB* db : {folded, exact}) {
        for (const char* key : {"Abc", "B", "a"}) ASSERT_EQ(db->insert(db, key, &v_[1]), 1);
    }
    EXPECT_EQ(exact->lookup(exact, "abc"), nullptr);

    // An existing key is replaced by the new key copy and value; the value
    // it displaces is not released.
    ASSERT_EQ(folded->insert(folded, "ABC", &v_[2]), 1);
    ASSERT_NE(folded->lookup(folded, "abc"), nullptr);
    EXPECT_EQ(*folded->lookup(folded, "abc"), &v_[2]);
    EXPECT_TRUE(g_released.empty());

    // Order: "B" < "a" byte-wise, "a" < "B" without regard to case.
    Walked f = walk(folded), e = walk(exact);
    EXPECT_EQ(f.front().first + f[1].first + f[2].first, "aABCB");
    EXPECT_EQ(e.front().first + e[1].first + e[2].first, "AbcBa");
}

// Remove and destroy release each value once, through the database's
// release function, which is current while they run: an insert that
// displaces a value in another database then releases it with that function.
ZQstringDB* g_other = nullptr;
int g_late_values[3];
void insert_into_other() { g_other->insert(g_other, "y", &g_late_values[1]); }

TEST_F(StringDbTest, RemoveAndDestroyReleaseEachValueOnce)
{
    ZQstringDB* db = ZQstringDB_new(release_a, 0);
    ASSERT_NE(db, nullptr);
    for (const char* key : {"1", "2", "3"}) db->insert(db, key, &v_[key[0] - '0']);
    // "2" is the root with two children: its own value goes, not the
    // value of the entry that takes its place.
    EXPECT_EQ(db->remove(db, "2"), 1);
    EXPECT_EQ(db->remove(db, "3"), 1);
    EXPECT_EQ(db->lookup(db, "2"), nullptr);
    ASSERT_NE(db->lookup(db, "1"), nullptr);
    EXPECT_EQ(*db->lookup(db, "1"), &v_[1]); // the entry moved into the root

    // An absent key still gives 1 and releases nothing; a null value is
    // never handed to the release function.
    EXPECT_EQ(db->remove(db, "nothing"), 1);
    db->insert(db, "null", nullptr);
    EXPECT_EQ(db->remove(db, "null"), 1);

    g_other = make(nullptr, 0);
    g_other->insert(g_other, "y", &g_late_values[0]);
    g_on_release_a = insert_into_other;
    db->destroy(db);
    g_other->insert(g_other, "y", &g_late_values[2]); // nothing is current any more
    EXPECT_EQ(g_released, (std::vector<void*>{&v_[2], &v_[3], &v_[1], &g_late_values[0]}));
}

// Height and walk depths of a full tree of seven, foreach's order and early
// stop, then bad and odd keys.
TEST_F(StringDbTest, HeightWalkForeachAndKeys)
{
    ZQstringDB* db = make(nullptr, 0);
    EXPECT_EQ(db->height(db), 0);
    EXPECT_EQ(db->is_empty(db), 1);
    for (const char* key : {"1", "2", "3", "4", "5", "6", "7"}) db->insert(db, key, nullptr);
    EXPECT_EQ(db->height(db), 3);
    EXPECT_EQ(db->is_empty(db), 0);
    EXPECT_EQ(walk(db), (Walked{{"1", 3}, {"2", 2}, {"3", 3}, {"4", 1}, {"5", 3}, {"6", 2}, {"7", 3}}));

    // foreach gives the entries in order and stops when the function says 0.
    struct Ctx { std::string keys; int limit; };
    auto fn = [](ZQstringDB_entry* entry, void* c) {
        Ctx* x = static_cast<Ctx*>(c);
        x->keys += entry->key;
        return static_cast<int>(x->keys.size()) < x->limit ? 1 : 0;
    };
    Ctx all{"", 10};
    EXPECT_EQ(db->foreach(db, fn, &all), 1);
    EXPECT_EQ(all.keys, "1234567");
    Ctx two{"", 2};
    EXPECT_EQ(db->foreach(db, fn, &two), 0);

    // A null key is refused, "" is an ordinary key, and the key is the
    // database's own copy.
    EXPECT_EQ(db->insert(db, nullptr, &v_[1]), 0);
    EXPECT_EQ(db->remove(db, nullptr), 0);
    EXPECT_EQ(db->lookup(db, nullptr), nullptr);
    EXPECT_EQ(db->insert(db, "", nullptr), 1);
    EXPECT_NE(db->lookup(db, ""), nullptr);
    char key[] = "mutable";
    db->insert(db, key, nullptr);
    key[0] = 'M';
    EXPECT_NE(db->lookup(db, "mutable"), nullptr);
    EXPECT_EQ(db->lookup(db, key), nullptr);
}

} // namespace
