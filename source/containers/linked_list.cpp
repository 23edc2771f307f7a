// Linked lists: the list_ descriptor operations, moving runs of nodes
// between descriptors, block allocation of nodes and the stable merge sort.
#include <tql70/gmem.h>
#include <tql70/list.h>

#include <cstdio>
#include <mutex>
#include <new>
#include <vector>

namespace {

// Node blocks are never released. Every block stays in a registry that is
// never destroyed, so it stays reachable and leak checkers do not report it.
void remember_block(void* block)
{
    static std::mutex lock;
    static auto* blocks = new std::vector<void*>;
    std::lock_guard<std::mutex> guard(lock);
    try {
        blocks->push_back(block);
    } catch (const std::bad_alloc&) {
        // Only the leak checker's view is lost; the block is in use.
    }
}

bool is_empty(const list_t* list)
{
    return list->head == nullptr;
}

// The last node of the chain that runs through `from` (non-null).
list_node* last_from(list_node* from)
{
    while (from->next) {
        from = from->next;
    }
    return from;
}

// The node before `node` in the chain from `head`; null when `node` is the
// head. `found` is false when `node` is not on the chain.
list_node* predecessor(list_node* head, const list_node* node, bool& found)
{
    found = true;
    if (head == node) {
        return nullptr;
    }
    for (list_node* p = head; p; p = p->next) {
        if (p->next == node) {
            return p;
        }
    }
    found = false;
    return nullptr;
}

// Cuts the run of up to n nodes starting at the cursor out of `list`: the
// node before it (or the head) is linked to the node after it, and the
// cursor moves there. Returns the run's first node; `last` and `count`
// receive its last node (its link nulled) and its length. Null when the
// cursor is not on the chain.
list_node* cut_run(list_t* list, unsigned int n, list_node*& last, unsigned int& count)
{
    bool found;
    list_node* before = predecessor(list->head, list->cursor, found);
    if (!found) {
        return nullptr;
    }
    list_node* first = list->cursor;
    last = first;
    count = 1;
    while (count < n && last->next) {
        last = last->next;
        ++count;
    }
    list_node* after = last->next;
    last->next = nullptr;
    if (before) {
        before->next = after;
    } else {
        list->head = after;
    }
    list->cursor = after;
    return first;
}

// Links the chain first..last after the tail of `dst`, or makes it `dst`.
void append_chain(list_t* dst, list_node* first)
{
    if (is_empty(dst)) {
        dst->head = dst->cursor = first;
        return;
    }
    last_from(dst->cursor ? dst->cursor : dst->head)->next = first;
}

// The item bytes follow the link word.
void* item_of(list_node* node)
{
    return node + 1;
}

// Merges two sorted chains; a right node goes first only when it compares
// strictly below the left one, which keeps equal items in order.
list_node* merge(list_node* left, list_node* right, list_compare_fn compare)
{
    list_node start{nullptr};
    list_node* tail = &start;
    while (left && right) {
        if (compare(item_of(left), item_of(right)) > 0) {
            tail->next = right;
            right = right->next;
        } else {
            tail->next = left;
            left = left->next;
        }
        tail = tail->next;
    }
    tail->next = left ? left : right;
    return start.next;
}

// Sorts the first n (>= 1) nodes from *rest, leaving *rest on the node after
// them; the first half is n div 2 nodes.
list_node* sort_run(list_node** rest, unsigned int n, list_compare_fn compare)
{
    if (n == 1) {
        list_node* node = *rest;
        *rest = node->next;
        node->next = nullptr;
        return node;
    }
    list_node* left = sort_run(rest, n / 2, compare);
    list_node* right = sort_run(rest, n - n / 2, compare);
    return merge(left, right, compare);
}

} // namespace

extern "C" {

unsigned int list_init(list_node* node, list_t* list)
{
    if (!list) {
        return 0;
    }
    list->head = list->cursor = node;
    return 1;
}

unsigned int list_null(list_t* list)
{
    return list_init(nullptr, list);
}

unsigned int list_head(list_t* list)
{
    if (!list) {
        return 0;
    }
    list->cursor = list->head;
    return 1;
}

unsigned int list_tail(list_t* list)
{
    if (!list || is_empty(list)) {
        return 0;
    }
    list->cursor = last_from(list->cursor ? list->cursor : list->head);
    return 1;
}

unsigned int list_prev(list_t* list)
{
    if (!list || is_empty(list) || !list->cursor) {
        return 0;
    }
    bool found;
    list_node* before = predecessor(list->head, list->cursor, found);
    if (!found) {
        return 0;
    }
    list->cursor = before;
    return 1;
}

unsigned int list_index(list_t* list, unsigned int n)
{
    if (!list || is_empty(list)) {
        return 0;
    }
    list_node* node = list->head;
    for (; node && n > 0; --n) {
        node = node->next;
    }
    list->cursor = node;
    return 1;
}

unsigned int list_at_head(list_t* list)
{
    return list && list->cursor == list->head;
}

unsigned int list_at_tail(list_t* list)
{
    return list && list->cursor && !list->cursor->next;
}

unsigned int list_current(list_t* list, list_node** node_out)
{
    if (!list || !node_out) {
        return 0;
    }
    *node_out = list->cursor;
    return 1;
}

unsigned int list_start(list_t* list, list_node** node_out)
{
    if (!list || !node_out) {
        return 0;
    }
    *node_out = list->head;
    return 1;
}

void* list_item(list_t* list)
{
    return list ? list_link_item(list->cursor) : nullptr;
}

void* list_link_item(list_node* node)
{
    return node ? item_of(node) : nullptr;
}

unsigned int list_len(list_t* list)
{
    unsigned int count = 0;
    for (list_node* node = list ? list->head : nullptr; node; node = node->next) {
        ++count;
    }
    return count;
}

unsigned int list_equal(list_t* a, list_t* b)
{
    return a && b && a->head == b->head && a->cursor == b->cursor;
}

unsigned int list_links_equal(list_t* a, list_t* b)
{
    return a && b && a->cursor == b->cursor;
}

unsigned int list_set_equal(list_t* dst, list_t* src)
{
    if (!dst || !src) {
        return 0;
    }
    *dst = *src;
    return 1;
}

unsigned int list_find_item(list_t* list, list_t* other)
{
    if (!list || !other) {
        return 0;
    }
    list_node* node = list->head;
    while (node && node != other->cursor) {
        node = node->next;
    }
    list->cursor = node;
    return node != nullptr;
}

unsigned int list_add(list_t* list, list_t* other)
{
    if (!list || !other || is_empty(other)) {
        return 0;
    }
    if (is_empty(list)) {
        list->head = list->cursor = other->head;
        return 1;
    }
    // Walk to the tail, watching for other's chain inside this one: linking
    // it after the tail would close a loop.
    list_node* tail = list->cursor ? list->cursor : list->head;
    bool loop = list->head == other->head || tail == other->head;
    for (; !loop && tail->next; tail = tail->next) {
        loop = tail->next == other->head;
    }
    if (loop) {
        std::fputs("infinite loop, abort list_add () operation\n", stderr);
        return 0;
    }
    tail->next = other->head;
    list->cursor = other->head;
    other->head = other->cursor = nullptr;
    return 1;
}

unsigned int list_ins(list_t* list, list_t* other)
{
    if (!list || !other || is_empty(other) || !list->head != !list->cursor || list->head == other->head) {
        return 0;
    }
    bool found;
    list_node* before = predecessor(list->head, list->cursor, found);
    if (!found) {
        return 0;
    }
    last_from(other->cursor ? other->cursor : other->head)->next = list->cursor;
    if (before) {
        before->next = other->head;
    } else {
        list->head = other->head;
    }
    list->cursor = other->head;
    other->head = other->cursor = nullptr;
    return 1;
}

unsigned int list_delete(list_t* list, unsigned int n, list_t* freelist)
{
    if (!list || !freelist || n == 0 || is_empty(list) || !list->cursor || !freelist->head != !freelist->cursor) {
        return 0;
    }
    list_node* last;
    unsigned int count;
    list_node* first = cut_run(list, n, last, count);
    if (!first) {
        return 0;
    }
    list_t run{first, first};
    return list_ins(freelist, &run);
}

unsigned int list_ext(list_t* src, unsigned int n, list_t* dst)
{
    if (!src || !dst || n == 0 || !src->head || !src->cursor) {
        return 0;
    }
    list_node* last;
    unsigned int count;
    list_node* first = cut_run(src, n, last, count);
    if (!first) {
        return 0;
    }
    append_chain(dst, first);
    return count;
}

unsigned int list_div(list_t* list, list_t* other)
{
    if (!other) {
        return 0;
    }
    list_node* from = list ? list->cursor : nullptr;
    if (!list_prev(list)) {
        return 0;
    }
    if (list->cursor) {
        list->cursor->next = nullptr;
    } else {
        list->head = nullptr;
    }
    append_chain(other, from);
    list->cursor = list->head;
    other->cursor = other->head;
    return 1;
}

unsigned int list_rev(list_t* list)
{
    if (!list) {
        return 0;
    }
    list_node* reversed = nullptr;
    for (list_node* node = list->head; node;) {
        list_node* next = node->next;
        node->next = reversed;
        reversed = node;
        node = next;
    }
    list->head = list->cursor = reversed;
    return 1;
}

unsigned int list_sort(list_t* list, list_compare_fn compare)
{
    if (!list || !compare || is_empty(list)) {
        return 0;
    }
    list_node* rest = list->head;
    list->head = list->cursor = sort_run(&rest, list_len(list), compare);
    return 1;
}

unsigned int list_alloc(unsigned int n, unsigned int item_size, list_t* out, list_t* freelist)
{
    if (!out || !freelist || n == 0) {
        return 0;
    }
    out->head = out->cursor = nullptr;
    unsigned int recycled = 0;
    if (!is_empty(freelist)) {
        freelist->cursor = freelist->head;
        recycled = list_ext(freelist, n, out);
    }
    if (recycled == n) {
        return 1;
    }
    const unsigned int m = n - recycled;
    const size_t word = sizeof(list_node);
    const size_t stride = (item_size + word + word - 1) / word * word;
    char* block = static_cast<char*>(gmem_ee_malloc(stride, m));
    if (!block) {
        list_free(out, freelist);
        return 0;
    }
    remember_block(block);
    for (unsigned int i = 0; i + 1 < m; ++i) {
        reinterpret_cast<list_node*>(block + i * stride)->next = reinterpret_cast<list_node*>(block + (i + 1) * stride);
    }
    reinterpret_cast<list_node*>(block + (m - 1) * stride)->next = out->head;
    out->head = out->cursor = reinterpret_cast<list_node*>(block);
    return 1;
}

void list_free(list_t* list, list_t* freelist)
{
    if (!list || !freelist || is_empty(list)) {
        return;
    }
    list->cursor = list->head;
    list_ins(freelist, list);
}

} // extern "C"
