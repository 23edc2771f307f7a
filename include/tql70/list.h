/* Linked lists: singly linked chains of fixed-size items, a two-word list
 * descriptor holding the chain and a cursor, nodes allocated in blocks and
 * recycled through a caller-held free list. */
#ifndef TQL70_LIST_H
#define TQL70_LIST_H

#include "export.h"

TQL70_BEGIN_DECLS

/* A node: one link word followed by the caller's item bytes. */
typedef struct list_node {
    struct list_node* next; /* null at the end of the chain */
} list_node;

/* A list descriptor: the first node and a cursor on a node of the chain.
 * An empty list has both null; two descriptors may share one chain. A free
 * list is an ordinary descriptor holding released nodes. */
typedef struct list_t {
    list_node* head;
    list_node* cursor;
} list_t;

/* Orders two items (item addresses): negative, zero or positive. */
typedef int (*list_compare_fn)(const void* a, const void* b);

/* Every call answers a null descriptor with 0. */

/* head = cursor = node; 1. */
TQL70_API unsigned int list_init(list_node* node, list_t* list);
/* head = cursor = null; 1. */
TQL70_API unsigned int list_null(list_t* list);
/* cursor = head; 1. */
TQL70_API unsigned int list_head(list_t* list);
/* cursor = last node, walking from the cursor (from the head when the
 * cursor is null); 1, or 0 for an empty list. */
TQL70_API unsigned int list_tail(list_t* list);
/* cursor = its predecessor (null when the cursor is the head); 1. 0 when
 * the list is empty, has no cursor or its cursor is not on the chain. */
TQL70_API unsigned int list_prev(list_t* list);
/* cursor = the head moved n nodes on, null when the chain is shorter; 1,
 * or 0 for an empty list. */
TQL70_API unsigned int list_index(list_t* list, unsigned int n);
/* 1 when cursor = head (so also for an empty list). */
TQL70_API unsigned int list_at_head(list_t* list);
/* 1 when the cursor is set and has no successor. */
TQL70_API unsigned int list_at_tail(list_t* list);
/* *node_out = the cursor / the head; 1 (0 for a null node_out). */
TQL70_API unsigned int list_current(list_t* list, list_node** node_out);
TQL70_API unsigned int list_start(list_t* list, list_node** node_out);
/* The item address of the cursor node; null when empty or no cursor. */
TQL70_API void* list_item(list_t* list);
/* The item address of `node` (the node address plus one word); null for
 * a null node. */
TQL70_API void* list_link_item(list_node* node);
/* The number of nodes from the head. */
TQL70_API unsigned int list_len(list_t* list);
/* 1 when both words are equal / when the cursors are equal. */
TQL70_API unsigned int list_equal(list_t* a, list_t* b);
TQL70_API unsigned int list_links_equal(list_t* a, list_t* b);
/* Copies both words of src into dst; 1. */
TQL70_API unsigned int list_set_equal(list_t* dst, list_t* src);
/* Walks the cursor from the head until it equals other's cursor: 1 when
 * found; 0 when not (the cursor ends null). */
TQL70_API unsigned int list_find_item(list_t* list, list_t* other);

/* Appends other's chain after the tail; the cursor moves to the first
 * appended node and other is nulled. When list is empty it takes the chain
 * over (head = cursor = other's head; other is left as it is). 0 when other
 * is empty, and 0 with "infinite loop, abort list_add () operation\n" on
 * standard error when other's head is list's head or lies between list's
 * cursor and its tail (a list added to itself); the lists are then
 * unchanged. */
TQL70_API unsigned int list_add(list_t* list, list_t* other);
/* Inserts other's chain before the cursor (as the new head when the cursor
 * is the head or the list is empty); the cursor ends on the first inserted
 * node and other is nulled; 1. 0 when other is empty, when list has a
 * cursor without a head or a head without a cursor (or a cursor off its
 * chain), or when both share one chain. */
TQL70_API unsigned int list_ins(list_t* list, list_t* other);
/* Removes n nodes from the cursor on (fewer at the end of the chain) and
 * inserts them before the free list's cursor; the cursor moves to the node
 * after the run. 1; 0 when n is 0, the list is empty or has no cursor, or
 * the free list is null or inconsistent (nothing is removed then). */
TQL70_API unsigned int list_delete(list_t* list, unsigned int n, list_t* freelist);
/* Moves up to n nodes from src's cursor on to the end of dst (the run
 * becomes dst, head and cursor, when dst is empty; otherwise dst's cursor
 * stays); src's cursor moves to the node after the run. Returns the number
 * of nodes moved: 0 when a descriptor is null, n is 0 or src has no head or
 * no cursor. */
TQL70_API unsigned int list_ext(list_t* src, unsigned int n, list_t* dst);
/* Splits at the cursor: the nodes from the cursor on are appended to other
 * (or become other); list keeps the nodes before it (empty when the cursor
 * was the head). Both cursors end on their heads. 1; 0 when list_prev
 * fails. */
TQL70_API unsigned int list_div(list_t* list, list_t* other);
/* Reverses the chain; head = cursor = the former last node; 1. */
TQL70_API unsigned int list_rev(list_t* list);
/* Stable merge sort by compare(item a, item b): a node of the right run goes
 * first only when compare(left item, right item) > 0, so equal items keep
 * their order. head = cursor = the new first node. 1; 0 for an empty list
 * or a null compare. */
TQL70_API unsigned int list_sort(list_t* list, list_compare_fn compare);

/* Provides n nodes of item_size bytes in *out (which is reset): as many
 * recycled nodes of the free list as it has (from its head), and the rest
 * allocated as one block, chained in address order and placed before the
 * recycled ones; head = cursor = the first node. Nodes are spaced by
 * item_size plus one word, rounded up to a multiple of the word size so
 * that every link word is aligned. Item bytes are not initialised. Blocks
 * are never released. 1; 0 when n is 0 or the block cannot be allocated
 * (the recycled nodes then go back to the free list and out stays empty). */
TQL70_API unsigned int list_alloc(unsigned int n, unsigned int item_size, list_t* out, list_t* freelist);
/* Hands every node of the list to the free list (inserted before its
 * cursor); the list becomes empty. Does nothing when either is null. */
TQL70_API void list_free(list_t* list, list_t* freelist);

TQL70_END_DECLS

#endif /* TQL70_LIST_H */
