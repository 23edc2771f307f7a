// avltree_*: order and balance of the node records after random inserts
// and deletes, replacement and the release calls of insert, delete and free.
#include <tql70/avltree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
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
void record_release(void* item) { g_released.push_back(item); }

// Height of the subtree at `node`; checks the AVL invariants on the way
// and appends the items in order.
int check_subtree(const avltree_node* node, std::vector<int>& in_order)
{
    if (!node) return 0;
    const int left = check_subtree(node->left, in_order);
    in_order.push_back(*static_cast<const int*>(node->item));
    const int right = check_subtree(node->right, in_order);
    EXPECT_LE(std::abs(right - left), 1) << "at item " << *static_cast<const int*>(node->item);
    EXPECT_EQ(node->balance, right - left) << "at item " << *static_cast<const int*>(node->item);
    return 1 + std::max(left, right);
}

// Checks the tree's balance and order against the model (the balance of
// every node bounds the height).
void check_tree(avltree tree, const std::set<int>& model)
{
    std::vector<int> in_order;
    check_subtree(tree, in_order);
    EXPECT_EQ(in_order, std::vector<int>(model.begin(), model.end()));
}

class AvlTreeTest : public testing::Test {
protected:
    AvlTreeTest()
    {
        avltree_init(&tree_);
        g_released.clear();
        for (int i = 0; i < static_cast<int>(std::size(values_)); ++i) values_[i] = i;
    }
    ~AvlTreeTest() override { avltree_free(&tree_, nullptr); }

    avltree tree_;
    int values_[2000];
};

TEST_F(AvlTreeTest, RandomInsertsAndDeletesKeepOrderAndBalance)
{
    std::mt19937 random(20240611);
    std::set<int> model;
    for (int round = 0; round < 6000; ++round) {
        const int k = static_cast<int>(random() % 2000);
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
    check_tree(tree_, model);
    for (int k = 0; k < 2000; ++k) {
        const void* found = avltree_search(&tree_, compare_ints, &k);
        EXPECT_EQ(found, model.count(k) ? &values_[k] : nullptr) << k;
    }
}

// The release calls: an equal key replaces the item in place and releases
// the old one; delete releases only the item of a node with two children;
// free releases every item, children first.
TEST_F(AvlTreeTest, ReplaceDeleteAndFreeReleaseCalls)
{
    // Shape:        4
    //           2       6
    //         1   3       7
    for (int k : {4, 2, 6, 1, 3, 7}) ASSERT_EQ(avltree_insert(&tree_, compare_ints, &values_[k], record_release), 1);
    int other_two = 2;
    const avltree root = tree_;
    ASSERT_EQ(avltree_insert(&tree_, compare_ints, &other_two, record_release), 1);
    EXPECT_EQ(tree_, root);
    EXPECT_EQ(root->left->item, &other_two); // same node, new item
    EXPECT_EQ(g_released, std::vector<void*>{&values_[2]});
    g_released.clear();

    // A leaf (3) and a node with one child (6 over 7) are unlinked, their
    // items left to the caller; a key that is not there (8) changes nothing.
    for (int k : {3, 6, 8}) {
        EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[k], record_release), k != 8 ? 1 : 0);
    }
    EXPECT_TRUE(g_released.empty());
    check_tree(tree_, {1, 2, 4, 7});

    // Two children (the root 4 over 2 and 7): the root node stays, its item
    // is released and replaced by the in-order predecessor's (2, the
    // rightmost of the left subtree), whose node goes.
    EXPECT_EQ(avltree_delete(&tree_, compare_ints, &values_[4], record_release), 1);
    EXPECT_EQ(g_released, std::vector<void*>{&values_[4]});
    EXPECT_EQ(tree_, root);
    EXPECT_EQ(root->item, &other_two);
    check_tree(tree_, {1, 2, 7});

    // Shape now: 2 over 1 and 7.
    g_released.clear();
    avltree_free(&tree_, record_release);
    EXPECT_EQ(tree_, nullptr);
    EXPECT_EQ(g_released, (std::vector<void*>{&values_[1], &values_[7], &other_two}));
}

} // namespace
