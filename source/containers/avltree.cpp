// Height-balanced (AVL) binary search tree of caller items. Nodes come from
// the library allocator one by one; the caller's comparison function is
// passed to every call, so the tree itself holds nothing but node records.
//
// Insert and delete walk down without recursion, making one comparison per
// level, then repair balances upwards with single or double rotations where
// one subtree would be two levels taller than its sibling. The traversals
// (foreach, free) recurse as deep as the tree is high, which stays below
// 1.45 log2(n + 2).
#include <tql70/avltree.h>
#include <tql70/gmem.h>

namespace {

using Node = avltree_node;

// Rotations after an insert in the left subtree of *slot made it two levels
// taller than the right one. The subtree's height is then back to what it
// was before the insert.
void rebalance_left_grown(Node** slot)
{
    Node* p = *slot;
    Node* left = p->left;
    if (left->balance == -1) {
        // Single right rotation.
        p->left = left->right;
        left->right = p;
        p->balance = 0;
        left->balance = 0;
        *slot = left;
    } else {
        // Double rotation: left's right child becomes the subtree's root.
        Node* pivot = left->right;
        left->right = pivot->left;
        pivot->left = left;
        p->left = pivot->right;
        pivot->right = p;
        p->balance = pivot->balance == -1 ? 1 : 0;
        left->balance = pivot->balance == 1 ? -1 : 0;
        pivot->balance = 0;
        *slot = pivot;
    }
}

// Mirror image of rebalance_left_grown.
void rebalance_right_grown(Node** slot)
{
    Node* p = *slot;
    Node* right = p->right;
    if (right->balance == 1) {
        p->right = right->left;
        right->left = p;
        p->balance = 0;
        right->balance = 0;
        *slot = right;
    } else {
        Node* pivot = right->left;
        right->left = pivot->right;
        pivot->right = right;
        p->right = pivot->left;
        pivot->left = p;
        p->balance = pivot->balance == 1 ? -1 : 0;
        right->balance = pivot->balance == -1 ? 1 : 0;
        pivot->balance = 0;
        *slot = pivot;
    }
}

// An AVL tree of n nodes is less than 1.4405 log2(n + 2) levels high, so
// no path in a tree that fits in memory is longer than this.
constexpr int kMaxPath = 128;

// Inserts without recursion (Knuth's algorithm A): on the way down it
// remembers the deepest node whose balance is not 0. Only that node can
// need a rotation; the nodes below it on the path were level and now lean
// towards the new leaf. Returns 0 when no node can be allocated.
int insert_item(Node** tree, avltree_compare_fn compare, void* item, avltree_release_fn release)
{
    bool went_left[kMaxPath];
    Node** critical = tree; // slot of the deepest node that leans
    int critical_depth = 0;
    Node** slot = tree;
    int depth = 0;
    for (Node* p = *slot; p; p = *slot) {
        const int order = compare(item, p->item);
        if (order == 0) {
            if (release) {
                release(p->item);
            }
            p->item = item;
            return 1;
        }
        if (p->balance != 0) {
            critical = slot;
            critical_depth = depth;
        }
        went_left[depth++] = order < 0;
        slot = order < 0 ? &p->left : &p->right;
    }
    Node* leaf = static_cast<Node*>(gmem_ee_malloc(sizeof(Node), 1));
    if (!leaf) {
        return 0;
    }
    leaf->left = nullptr;
    leaf->right = nullptr;
    leaf->balance = 0;
    leaf->item = item;
    *slot = leaf;

    Node* top = *critical;
    if (top == leaf) {
        return 1; // the tree was empty
    }
    const bool left = went_left[critical_depth];
    Node* p = left ? top->left : top->right;
    for (int d = critical_depth + 1; p != leaf; ++d) {
        p->balance = went_left[d] ? -1 : 1;
        p = went_left[d] ? p->left : p->right;
    }
    if (top->balance == 0) {
        top->balance = left ? -1 : 1; // the root, level before: the tree grew
    } else if (top->balance == (left ? 1 : -1)) {
        top->balance = 0;
    } else if (left) {
        rebalance_left_grown(critical);
    } else {
        rebalance_right_grown(critical);
    }
    return 1;
}

// Repairs *slot after its left subtree lost one level; true when the
// subtree at *slot is now one level lower as a whole.
bool left_shrunk(Node** slot)
{
    Node* p = *slot;
    switch (p->balance) {
    case -1:
        p->balance = 0;
        return true;
    case 0:
        p->balance = 1;
        return false;
    default:
        break;
    }
    Node* right = p->right;
    if (right->balance >= 0) {
        // Single left rotation. With a level right child the height stays.
        p->right = right->left;
        right->left = p;
        *slot = right;
        if (right->balance == 0) {
            p->balance = 1;
            right->balance = -1;
            return false;
        }
        p->balance = 0;
        right->balance = 0;
        return true;
    }
    Node* pivot = right->left;
    right->left = pivot->right;
    pivot->right = right;
    p->right = pivot->left;
    pivot->left = p;
    p->balance = pivot->balance == 1 ? -1 : 0;
    right->balance = pivot->balance == -1 ? 1 : 0;
    pivot->balance = 0;
    *slot = pivot;
    return true;
}

// Mirror image of left_shrunk.
bool right_shrunk(Node** slot)
{
    Node* p = *slot;
    switch (p->balance) {
    case 1:
        p->balance = 0;
        return true;
    case 0:
        p->balance = -1;
        return false;
    default:
        break;
    }
    Node* left = p->left;
    if (left->balance <= 0) {
        p->left = left->right;
        left->right = p;
        *slot = left;
        if (left->balance == 0) {
            p->balance = -1;
            left->balance = 1;
            return false;
        }
        p->balance = 0;
        left->balance = 0;
        return true;
    }
    Node* pivot = left->right;
    left->right = pivot->left;
    pivot->left = left;
    p->left = pivot->right;
    pivot->right = p;
    p->balance = pivot->balance == -1 ? 1 : 0;
    left->balance = pivot->balance == 1 ? -1 : 0;
    pivot->balance = 0;
    *slot = pivot;
    return true;
}

// Deletes without recursion: the slots passed on the way down are kept, and
// on the way back up each parent whose subtree lost a level is repaired
// until one keeps its height.
int delete_item(Node** tree, avltree_compare_fn compare, const void* key, avltree_release_fn release)
{
    Node** path[kMaxPath];
    bool went_left[kMaxPath];
    int depth = 0;
    Node** slot = tree;
    Node* p;
    for (;;) {
        p = *slot;
        if (!p) {
            return 0;
        }
        const int order = compare(p->item, key);
        if (order == 0) {
            break;
        }
        path[depth] = slot;
        went_left[depth++] = order > 0;
        slot = order > 0 ? &p->left : &p->right;
    }
    if (!p->right) {
        *slot = p->left;
        gmem_ee_free(p);
    } else if (!p->left) {
        *slot = p->right;
        gmem_ee_free(p);
    } else {
        // Two children: the node keeps its place and takes over the item of
        // its in-order predecessor (the rightmost node of its left subtree),
        // whose node goes instead.
        if (release) {
            release(p->item);
        }
        path[depth] = slot;
        went_left[depth++] = true;
        Node** rightmost = &p->left;
        while ((*rightmost)->right) {
            path[depth] = rightmost;
            went_left[depth++] = false;
            rightmost = &(*rightmost)->right;
        }
        Node* predecessor = *rightmost;
        p->item = predecessor->item;
        *rightmost = predecessor->left;
        gmem_ee_free(predecessor);
    }
    // A rotation at one level changes only what its slot points to; the
    // slots higher up live in nodes it does not move.
    while (depth > 0) {
        --depth;
        const bool shrunk = went_left[depth] ? left_shrunk(path[depth]) : right_shrunk(path[depth]);
        if (!shrunk) {
            break;
        }
    }
    return 1;
}

bool visit_in_order(Node* p, avltree_visit_fn fn, void* ctx)
{
    while (p) {
        if (!visit_in_order(p->left, fn, ctx) || !fn(p->item, ctx)) {
            return false;
        }
        p = p->right; // the right subtree is a tail call: loop instead
    }
    return true;
}

void free_post_order(Node* p, avltree_release_fn release)
{
    if (!p) {
        return;
    }
    free_post_order(p->left, release);
    free_post_order(p->right, release);
    if (release) {
        release(p->item);
    }
    gmem_ee_free(p);
}

} // namespace

extern "C" {

void avltree_init(avltree* tree)
{
    if (tree) {
        *tree = nullptr;
    }
}

int avltree_insert(avltree* tree, avltree_compare_fn compare, void* item, avltree_release_fn release)
{
    if (!tree || !compare) {
        return 0;
    }
    return insert_item(tree, compare, item, release);
}

void* avltree_search(avltree* tree, avltree_compare_fn compare, const void* key)
{
    if (!tree || !compare) {
        return nullptr;
    }
    for (Node* p = *tree; p;) {
        const int order = compare(key, p->item);
        if (order == 0) {
            return p->item;
        }
        p = order < 0 ? p->left : p->right;
    }
    return nullptr;
}

int avltree_delete(avltree* tree, avltree_compare_fn compare, const void* key, avltree_release_fn release)
{
    if (!tree || !compare) {
        return 0;
    }
    return delete_item(tree, compare, key, release);
}

int avltree_foreach(avltree* tree, avltree_visit_fn fn, void* ctx)
{
    if (!tree || !fn) {
        return 1;
    }
    return visit_in_order(*tree, fn, ctx) ? 1 : 0;
}

void avltree_free(avltree* tree, avltree_release_fn release)
{
    if (!tree) {
        return;
    }
    free_post_order(*tree, release);
    *tree = nullptr;
}

} // extern "C"
