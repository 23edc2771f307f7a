// The string database: an AVL tree of (key copy, value) entries behind an
// object whose operation slots are the only way callers reach it.
//
// The tree's comparison and release functions take no context, so the
// database's settings travel in two module globals: the current case flag
// (read by the entry comparison) and the current value release function
// (read when an entry is released). Every operation sets the case flag from
// its object and restores the previous one on return. remove and destroy
// also install the object's value release function for their duration;
// insert deliberately leaves the current one alone, so a value displaced by
// re-inserting a key is normally not released (see the header).
#include <tql70/avltree.h>
#include <tql70/gmem.h>
#include <tql70/gparse.h>
#include <tql70/string_search.h>
#include <tql70/zq_paths.h>

namespace {

using Entry = ZQstringDB_entry;

int g_case_insensitive = 0;
ZQstringDB_release_fn g_value_release = nullptr;

// Sets the current case flag from a database for one operation.
class CaseScope {
public:
    explicit CaseScope(const ZQstringDB* db) : saved_(g_case_insensitive)
    {
        g_case_insensitive = db->case_insensitive;
    }
    ~CaseScope() { g_case_insensitive = saved_; }
    CaseScope(const CaseScope&) = delete;
    CaseScope& operator=(const CaseScope&) = delete;

private:
    int saved_;
};

// Makes a database's value release function current for one operation.
class ReleaseScope {
public:
    explicit ReleaseScope(const ZQstringDB* db) : saved_(g_value_release)
    {
        g_value_release = db->value_release;
    }
    ~ReleaseScope() { g_value_release = saved_; }
    ReleaseScope(const ReleaseScope&) = delete;
    ReleaseScope& operator=(const ReleaseScope&) = delete;

private:
    ZQstringDB_release_fn saved_;
};

int compare_entries(const void* a, const void* b)
{
    const char* left = static_cast<const Entry*>(a)->key;
    const char* right = static_cast<const Entry*>(b)->key;
    return g_case_insensitive ? gparse_stricmp(left, right) : tql_strcmp(left, right);
}

void release_entry(void* item)
{
    Entry* entry = static_cast<Entry*>(item);
    gmem_ee_free(entry->key);
    if (g_value_release && entry->value) {
        g_value_release(entry->value);
    }
    gmem_ee_free(entry);
}

// A stand-in entry that carries a caller's key into the comparison.
Entry probe_for(const char* key)
{
    return Entry{const_cast<char*>(key), nullptr};
}

void** db_lookup(ZQstringDB* db, const char* key)
{
    if (!db || !key) {
        return nullptr;
    }
    CaseScope scope(db);
    const Entry probe = probe_for(key);
    Entry* entry = static_cast<Entry*>(avltree_search(&db->root, compare_entries, &probe));
    return entry ? &entry->value : nullptr;
}

int db_insert(ZQstringDB* db, const char* key, void* value)
{
    if (!db || !key) {
        return 0;
    }
    CaseScope scope(db);
    Entry* entry = static_cast<Entry*>(gmem_ee_malloc(sizeof(Entry), 1));
    if (!entry) {
        return 0;
    }
    entry->key = ZQ_stringcopy(key);
    entry->value = value;
    if (!entry->key || !avltree_insert(&db->root, compare_entries, entry, release_entry)) {
        gmem_ee_free(entry->key);
        gmem_ee_free(entry);
        return 0;
    }
    return 1;
}

int db_remove(ZQstringDB* db, const char* key)
{
    if (!db || !key) {
        return 0;
    }
    CaseScope case_scope(db);
    ReleaseScope release_scope(db);
    const Entry probe = probe_for(key);
    // The tree releases an item only when the deleted node has two
    // children, so the entry is taken out of the tree without a release
    // function and released here, whatever the node's shape.
    void* entry = avltree_search(&db->root, compare_entries, &probe);
    if (entry) {
        avltree_delete(&db->root, compare_entries, &probe, nullptr);
        release_entry(entry);
    }
    return 1;
}

struct VisitCall {
    ZQstringDB_visit_fn fn;
    void* ctx;
};

int visit_entry(void* item, void* ctx)
{
    const VisitCall* call = static_cast<const VisitCall*>(ctx);
    return call->fn(static_cast<Entry*>(item), call->ctx);
}

int db_foreach(ZQstringDB* db, ZQstringDB_visit_fn fn, void* ctx)
{
    if (!db || !fn) {
        return 1;
    }
    CaseScope scope(db);
    VisitCall call{fn, ctx};
    return avltree_foreach(&db->root, visit_entry, &call);
}

void db_destroy(ZQstringDB* db)
{
    if (!db) {
        return;
    }
    {
        CaseScope case_scope(db);
        ReleaseScope release_scope(db);
        avltree_free(&db->root, release_entry);
    }
    gmem_ee_free(db);
}

int levels(const avltree_node* node)
{
    if (!node) {
        return 0;
    }
    const int left = levels(node->left);
    const int right = levels(node->right);
    return 1 + (left > right ? left : right);
}

int db_height(ZQstringDB* db)
{
    if (!db) {
        return 0;
    }
    CaseScope scope(db);
    return levels(db->root);
}

void walk_in_order(const avltree_node* node, int depth, void* ctx, ZQstringDB_walk_fn fn)
{
    for (; node; node = node->right, ++depth) {
        walk_in_order(node->left, depth + 1, ctx, fn);
        const Entry* entry = static_cast<const Entry*>(node->item);
        fn(ctx, entry->key, depth, entry->value);
    }
}

void db_walk(ZQstringDB* db, void* ctx, ZQstringDB_walk_fn fn)
{
    if (!db || !fn) {
        return;
    }
    CaseScope scope(db);
    walk_in_order(db->root, 1, ctx, fn);
}

int db_is_empty(ZQstringDB* db)
{
    if (!db) {
        return 1;
    }
    CaseScope scope(db);
    return db->root ? 0 : 1;
}

} // namespace

extern "C" ZQstringDB* ZQstringDB_new(ZQstringDB_release_fn value_release, int case_insensitive)
{
    ZQstringDB* db = static_cast<ZQstringDB*>(gmem_ee_calloc(sizeof(ZQstringDB), 1));
    if (!db) {
        return nullptr;
    }
    db->case_insensitive = case_insensitive;
    avltree_init(&db->root);
    db->lookup = db_lookup;
    db->insert = db_insert;
    db->remove = db_remove;
    db->foreach = db_foreach;
    db->destroy = db_destroy;
    db->height = db_height;
    db->walk = db_walk;
    db->is_empty = db_is_empty;
    db->value_release = value_release;
    return db;
}
