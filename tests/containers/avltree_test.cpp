// avltree_*: order and balance of the node records after random inserts
// and deletes, the comparison argument order of each call, replacement and
// the release calls of insert, delete and free, and foreach's early stop.
#include <tql70/avltree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstddef>
#include <random>
#include <iterator>
#include <set>
#include <vector>

namespace {

int compare_ints(const void* a, const void* b)
{
    const int x = *static_cast<const int*>(a);
    const int y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

// Records every item handed to a release function.
std::vector<void*> g_released;
void record_release(void* item)
{
    g_released.push_back(item);
}

// Height of the subtree at `node`; checks the AVL invariants on the way
// and appends the items in order.
int check_subtree(const avltree_node* node, std::vector<int>& in_order)
{
    if (!node) {
        return 0;
    }
    const int left = check_subtree(node->left, in_order);
    in_order.push_back(*static_cast<const int*>(node->item));
    const int right = check_subtree(node->right, in_order);
    EXPECT_LE(std::abs(right - left), 1) << "at item " << *static_cast<const int*>(node->item);
    EXPECT_EQ(node->balance, right - left) << "at item " << *static_cast<const int*>(node->item);
    return 1 + std::max(left, right);
}

// Checks the tree against the model; returns the tree's height.
int check_tree(avltree tree, const std::set<int>& model)
{
    std::vector<int> in_order;
    const int height = check_subtree(tree, in_order);
    EXPECT_EQ(in_order, std::vector<int>(model.begin(), model.end()));
    return height;
}

class AvlTreeTest : public testing::Test {
protected:
    AvlTreeTest()
    {
        avltree_init(&tree_);
        g_released.clear();
        for (int i = 0; i < static_cast<int>(std::size(values_)); ++i) {
            values_[i] = i;
        }
    }
    ~AvlTreeTest() override { avltree_free(&tree_, nullptr); }

    void insert_all(std::initializer_list<int> keys)
    {
        for (int k : keys) {
            ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[k], record_release), 1);
        }
    }

    avltree tree_;
    int values_[2000];
};

TEST_F(AvlTreeTest, NodeRecordLayout)
{
    EXPECT_EQ(offsetof(avltree_node, left), 0u);
    EXPECT_EQ(offsetof(avltree_node, right), sizeof(void*));
    EXPECT_EQ(offsetof(avltree_node, balance), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(static_cast<avltree_node*>(nullptr)->balance), 4u);
    EXPECT_EQ(offsetof(avltree_node, item), 3 * sizeof(void*));
    EXPECT_EQ(sizeof(avltree), sizeof(void*));
}

TEST_F(AvlTreeTest, EmptyTree)
{
    EXPECT_EQ(tree_, nullptr);
    const int key = 3;
    EXPECT_EQ(avltree_search(&tree_, compare_ints, &key), nullptr);
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &key, record_release), 0);
    int visits = 0;
    EXPECT_EQ(avltree_foreach(&tree_, [](void*, void* ctx) { return ++*static_cast<int*>(ctx), 1; }, &visits), 1);
    EXPECT_EQ(visits, 0);
    avltree_free(&tree_, record_release);
    EXPECT_TRUE(g_released.empty());
}

TEST_F(AvlTreeTest, RandomInsertsAndDeletesKeepOrderAndBalance)
{
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> pick(0, 1999);
    std::set<int> model;
    for (int round = 0; round < 6000; ++round) {
        const int k = pick(random);
        // Inserts dominate in the first half, deletes in the second, so the
        // tree grows, then shrinks through every shape of deletion.
        const bool insert = (round < 3000) ? (random() % 4 != 0) : (random() % 4 == 0);
        if (insert) {
            ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[k], nullptr), 1);
            model.insert(k);
        } else {
            EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[k], nullptr), model.erase(k) ? 1 : 0);
        }
        if (round % 50 == 0) {
            check_tree(tree_, model);
            // A broken tree is not worth operating on any further.
            ASSERT_FALSE(HasFailure()) << "after round " << round;
        }
    }
    const int height = check_tree(tree_, model);
    EXPECT_LE(height, 1.4405 * std::log2(model.size() + 2.0));
    for (int k = 0; k < 2000; ++k) {
        const void* found = avltree_search(&tree_, compare_ints, &k);
        EXPECT_EQ(found, model.count(k) ? &values_[k] : nullptr) << k;
    }
    // Delete the rest in random order, checking after each step.
    std::vector<int> rest(model.begin(), model.end());
    std::shuffle(rest.begin(), rest.end(), random);
    for (int k : rest) {
        ASSERT_EQ(avltree_delete(&tree_, compare_ints, &k, nullptr), 1);
        model.erase(k);
        check_tree(tree_, model);
        ASSERT_FALSE(HasFailure()) << "after deleting " << k;
    }
    EXPECT_EQ(tree_, nullptr);
}

TEST_F(AvlTreeTest, AscendingAndDescendingRunsStayBalanced)
{
    std::set<int> model;
    for (int k = 0; k < 1023; ++k) {
        ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[k], nullptr), 1);
        model.insert(k);
    }
    EXPECT_EQ(check_tree(tree_, model), 10); // 2^10 - 1 keys in order: perfect
    avltree_free(&tree_, nullptr);
    model.clear();
    for (int k = 1999; k >= 1000; --k) {
        ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[k], nullptr), 1);
        model.insert(k);
    }
    EXPECT_LE(check_tree(tree_, model), 11);
}

// Each call gives the comparison its arguments in its own order: insert
// (new item, node item), search (key, node item), delete (node item, key).
// A comparison that reads its arguments as different types shows it.
struct Tagged {
    int tag; // 1 for the probe, 0 for stored items
    int value;
};
int compare_probe_first(const void* a, const void* b)
{
    const Tagged* x = static_cast<const Tagged*>(a);
    const Tagged* y = static_cast<const Tagged*>(b);
    EXPECT_EQ(x->tag, 1);
    EXPECT_EQ(y->tag, 0);
    return (x->value > y->value) - (x->value < y->value);
}
int compare_probe_second(const void* a, const void* b)
{
    return -compare_probe_first(b, a);
}

TEST(AvlTree, ComparisonArgumentOrder)
{
    std::vector<Tagged> items;
    for (int v : {50, 20, 80, 10, 30, 70, 90, 60}) {
        items.push_back({0, v});
    }
    avltree tree;
    avltree_init(&tree);
    for (Tagged& item : items) {
        item.tag = 1; // the new item is the probe while it is inserted
        ASSERT_EQ(avltree_insert(&tree, compare_probe_first, &item, nullptr), 1);
        item.tag = 0;
    }
    const Tagged key60{1, 60};
    const Tagged key65{1, 65};
    EXPECT_EQ(avltree_search(&tree, compare_probe_first, &key60), &items[7]);
    EXPECT_EQ(avltree_search(&tree, compare_probe_first, &key65), nullptr);
    EXPECT_EQ(avltree_delete(&tree, compare_probe_second, &key65, nullptr), 0);
    EXPECT_EQ(avltree_delete(&tree, compare_probe_second, &key60, nullptr), 1);
    EXPECT_EQ(avltree_search(&tree, compare_probe_first, &key60), nullptr);
    avltree_free(&tree, nullptr);
}

TEST_F(AvlTreeTest, EqualKeyReplacesTheItemInPlace)
{
    insert_all({2, 1, 3});
    int other_two = 2;
    avltree root_before = tree_;
    ASSERT_EQ(avltree_insert(&tree_, compare_ints, &other_two, record_release), 1);
    EXPECT_EQ(tree_, root_before);
    EXPECT_EQ(tree_->item, &other_two);                       // same node, new item
    EXPECT_EQ(g_released, std::vector<void*>{&values_[2]});   // the old one released
    const int key = 2;
    EXPECT_EQ(avltree_search(&tree_, compare_ints, &key), &other_two);
    check_tree(tree_, {1, 2, 3});

    // Without a release function the old item is simply dropped.
    g_released.clear();
    ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[2], nullptr), 1);
    EXPECT_EQ(tree_->item, &values_[2]);
    EXPECT_TRUE(g_released.empty());
}

TEST_F(AvlTreeTest, DeleteReleasesOnlyTheItemOfANodeWithTwoChildren)
{
    // Shape:        4
    //           2       6
    //         1   3   5
    insert_all({4, 2, 6, 1, 3, 5});
    check_tree(tree_, {1, 2, 3, 4, 5, 6});

    // Leaf: unlinked, its item left to the caller.
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[3], record_release), 1);
    EXPECT_TRUE(g_released.empty());
    check_tree(tree_, {1, 2, 4, 5, 6});

    // One child (6 has only its left child 5): unlinked, nothing released.
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[6], record_release), 1);
    EXPECT_TRUE(g_released.empty());
    check_tree(tree_, {1, 2, 4, 5});
    EXPECT_EQ(tree_->right->item, &values_[5]);

    // Two children (the root 4 over 2 and 5): the root node stays, its item
    // is released and replaced by the in-order predecessor's (2, the
    // rightmost of the left subtree), whose node goes.
    avltree_node* root = tree_;
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[4], record_release), 1);
    EXPECT_EQ(g_released, std::vector<void*>{&values_[4]});
    EXPECT_EQ(tree_, root);
    EXPECT_EQ(root->item, &values_[2]);
    check_tree(tree_, {1, 2, 5});

    // A key that is not there: nothing changes, nothing released.
    const int absent = 7;
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &absent, record_release), 0);
    EXPECT_EQ(g_released.size(), 1u);
    check_tree(tree_, {1, 2, 5});
}

TEST_F(AvlTreeTest, DeleteTakesThePredecessorFromDeepInTheLeftSubtree)
{
    // 1..15 in a perfect tree under 8; without 7, the predecessor of 8 is 6,
    // the rightmost of the left subtree, and its left child 5 takes its place.
    insert_all({8, 4, 12, 2, 6, 10, 14, 1, 3, 5, 7, 9, 11, 13, 15});
    ASSERT_EQ(avltree_delete(&tree_, compare_ints, &values_[7], nullptr), 1);
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[8], record_release), 1);
    EXPECT_EQ(g_released, std::vector<void*>{&values_[8]});
    EXPECT_EQ(tree_->item, &values_[6]);
    EXPECT_EQ(tree_->left->right->item, &values_[5]);
    check_tree(tree_, {1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 15});
}

struct Visits {
    std::vector<int> seen;
    int stop_after;
};
int visit(void* item, void* ctx)
{
    Visits* v = static_cast<Visits*>(ctx);
    v->seen.push_back(*static_cast<int*>(item));
    return static_cast<int>(v->seen.size()) < v->stop_after;
}

TEST_F(AvlTreeTest, ForeachVisitsInOrderAndStopsOnZero)
{
    insert_all({5, 3, 8, 1, 4, 7, 9});
    Visits all{{}, 100};
    EXPECT_EQ(avltree_foreach(&tree_, visit, &all), 1);
    EXPECT_EQ(all.seen, (std::vector<int>{1, 3, 4, 5, 7, 8, 9}));

    Visits two{{}, 2};
    EXPECT_EQ(avltree_foreach(&tree_, visit, &two), 0);
    EXPECT_EQ(two.seen, (std::vector<int>{1, 3}));

    // Stopping on the last item still reports the stop.
    Visits seven{{}, 7};
    EXPECT_EQ(avltree_foreach(&tree_, visit, &seven), 0);
    EXPECT_EQ(seven.seen.size(), 7u);
}

TEST_F(AvlTreeTest, FreeReleasesEveryItemChildrenFirst)
{
    insert_all({4, 2, 6, 1, 3, 5, 7});
    avltree_free(&tree_, record_release);
    EXPECT_EQ(tree_, nullptr);
    ASSERT_EQ(g_released.size(), 7u);
    EXPECT_EQ(g_released.back(), &values_[4]); // the root goes last
    std::vector<void*> expected;
    for (int k : {1, 3, 2, 5, 7, 6, 4}) {
        expected.push_back(&values_[k]);
    }
    EXPECT_EQ(g_released, expected);
}

} // namespace
