/* Height-balanced binary tree of caller items, and the string database
 * built on it. */
#ifndef TQL70_AVLTREE_H
#define TQL70_AVLTREE_H

#include "export.h"

TQL70_BEGIN_DECLS

/* One node of the tree, allocated one by one with the library allocator.
 * balance is the height of the right subtree minus that of the left one:
 * -1, 0 or +1. item is the caller's pointer; the tree never looks into it. */
typedef struct avltree_node {
    struct avltree_node* left;
    struct avltree_node* right;
    int balance;
    void* item;
} avltree_node;

/* The tree is one word: its root node, null when the tree is empty. */
typedef avltree_node* avltree;

/* Orders two items (or a key and an item): negative, zero or positive.
 * The argument order differs per call; see each function. */
typedef int (*avltree_compare_fn)(const void* a, const void* b);
/* Releases an item the tree gives up. */
typedef void (*avltree_release_fn)(void* item);
/* Visits an item; returning 0 stops the traversal. */
typedef int (*avltree_visit_fn)(void* item, void* ctx);

/* Makes *tree empty (does not free an existing tree). */
TQL70_API void avltree_init(avltree* tree);

/* Stores `item`, descending with compare(item, node item). When an item
 * compares equal, release(old item) is called (if release is not null) and
 * the new item takes its place in the same node. 1 on success; 0 when no
 * node can be allocated (the tree is unchanged and the item not stored). */
TQL70_API int avltree_insert(avltree* tree, avltree_compare_fn compare, void* item, avltree_release_fn release);

/* The item for which compare(key, node item) is 0, or null. */
TQL70_API void* avltree_search(avltree* tree, avltree_compare_fn compare, const void* key);

/* Removes the node whose item gives compare(node item, key) == 0; 1 when
 * one was found, 0 otherwise. A node with at most one child is unlinked
 * and its item is left to the caller (release is not called). A node with
 * two children stays in place: its item is released with release (if not
 * null) and replaced by the item of its in-order predecessor, whose node is
 * unlinked instead. Callers that own their items look the item up first
 * and pass a null release. */
TQL70_API int avltree_delete(avltree* tree, avltree_compare_fn compare, const void* key, avltree_release_fn release);

/* Calls fn(item, ctx) in ascending order. Stops and returns 0 as soon as
 * fn returns 0; returns 1 otherwise (also for an empty tree). */
TQL70_API int avltree_foreach(avltree* tree, avltree_visit_fn fn, void* ctx);

/* Frees every node, children before parents, calling release(item) on each
 * item when release is not null; leaves the tree empty. */
TQL70_API void avltree_free(avltree* tree, avltree_release_fn release);

/* String database: a dictionary from strings to value words, used through
 * the operation slots of its object, e.g. db->insert(db, "key", value). */

/* One stored pair. The key is the database's own copy of the caller's key. */
typedef struct ZQstringDB_entry {
    char* key;
    void* value;
} ZQstringDB_entry;

typedef struct ZQstringDB ZQstringDB;

/* Releases a value the database gives up. */
typedef void (*ZQstringDB_release_fn)(void* value);
/* foreach callback; returning 0 stops the traversal. */
typedef int (*ZQstringDB_visit_fn)(ZQstringDB_entry* entry, void* ctx);
/* walk callback: the key, its depth (1 for the root) and its value. */
typedef void (*ZQstringDB_walk_fn)(void* ctx, const char* key, int depth, void* value);

/* Value release rule: an entry is released by freeing its key copy, then
 * calling the *current* value release function on its value (when both are
 * set), then freeing the entry. remove and destroy make the database's
 * value_release current while they run. insert does not: a value displaced
 * by inserting an existing key goes to whatever function is current at
 * that moment, which outside remove and destroy is none, so the displaced
 * value is not released and stays the caller's. */
struct ZQstringDB {
    /* Non-zero: keys compare without regard to case (gparse_stricmp);
     * zero: byte-wise (tql_strcmp). */
    int case_insensitive;
    avltree root;
    /* Address of the value stored for key, or null (also for a null key).
     * The address stays valid until the entry is replaced or removed. */
    void** (*lookup)(ZQstringDB* db, const char* key);
    /* Stores a copy of key with value, replacing the entry of an equal key.
     * 1; 0 for a null key or when memory runs out. */
    int (*insert)(ZQstringDB* db, const char* key, void* value);
    /* Removes the entry of key, releasing its key copy, the entry and (with
     * value_release) its value. 1, also when no entry has the key; 0 for a
     * null key. */
    int (*remove)(ZQstringDB* db, const char* key);
    /* fn(entry, ctx) in ascending key order until fn returns 0; 0 when
     * stopped, 1 otherwise. The entries must not be changed. In a Qt
     * program with Qt keywords enabled, call it as (db->foreach)(db, fn,
     * ctx): the parentheses keep Qt's foreach macro out. */
    int (*foreach)(ZQstringDB* db, ZQstringDB_visit_fn fn, void* ctx);
    /* Releases every entry (values through value_release) and the object. */
    void (*destroy)(ZQstringDB* db);
    /* Number of levels of the tree; 0 when empty. */
    int (*height)(ZQstringDB* db);
    /* fn(ctx, key, depth, value) for every entry in ascending key order. */
    void (*walk)(ZQstringDB* db, void* ctx, ZQstringDB_walk_fn fn);
    /* 1 when the database holds no entry, else 0. */
    int (*is_empty)(ZQstringDB* db);
    ZQstringDB_release_fn value_release;
};

/* A new, empty database (library allocator; end it with db->destroy(db)).
 * value_release may be null: values are then never released. Null when
 * memory runs out. */
TQL70_API ZQstringDB* ZQstringDB_new(ZQstringDB_release_fn value_release, int case_insensitive);

TQL70_END_DECLS

#endif /* TQL70_AVLTREE_H */
