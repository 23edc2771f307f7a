// Linked lists: cursor moves, runs moved between descriptors (and a list
// refused as its own addition), node recycling and the stable sort.
#include <tql70/list.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

struct Item {
    int key;
    int order;
};

// Nodes come from and go back to one free list that lives as long as the
// process (blocks are never released).
list_t g_free{nullptr, nullptr};

Item* item(list_node* node)
{
    return static_cast<Item*>(list_link_item(node));
}

// A list whose items carry `keys` in order (order = position).
list_t make_list(const std::vector<int>& keys)
{
    list_t list{nullptr, nullptr};
    EXPECT_EQ(list_alloc(static_cast<unsigned>(keys.size()), sizeof(Item), &list, &g_free), 1u);
    int position = 0;
    for (list_node* node = list.head; node; node = node->next, ++position) {
        *item(node) = Item{keys[static_cast<size_t>(position)], position};
    }
    return list;
}

std::vector<int> keys_of(const list_t& list)
{
    std::vector<int> keys;
    for (list_node* node = list.head; node; node = node->next) {
        keys.push_back(item(node)->key);
    }
    return keys;
}

int compare_keys(const void* a, const void* b)
{
    return static_cast<const Item*>(a)->key - static_cast<const Item*>(b)->key;
}

TEST(LinkedList, CursorMovesDeleteAndNodeRecycling)
{
    list_t list = make_list({1, 2, 3});
    EXPECT_EQ(list_index(&list, 10), 1u);
    EXPECT_EQ(list.cursor, nullptr);
    EXPECT_EQ(list_tail(&list), 1u); // from the head when the cursor is null
    EXPECT_EQ(list_at_tail(&list), 1u);
    EXPECT_EQ(list_prev(&list), 1u);
    EXPECT_EQ(static_cast<Item*>(list_item(&list))->key, 2);
    list_head(&list);
    EXPECT_EQ(list_prev(&list), 1u); // from the head: no cursor
    EXPECT_EQ(list.cursor, nullptr);
    EXPECT_EQ(list_prev(&list), 0u);
    list_node stray{nullptr};
    list_t other{nullptr, &stray}; // a node not on the chain
    EXPECT_EQ(list_find_item(&list, &other), 0u);
    other.cursor = list.head->next->next;
    EXPECT_EQ(list_find_item(&list, &other), 1u);
    EXPECT_EQ(list.cursor, other.cursor);

    // Deleting from the second node on takes the rest, however many are asked for.
    list_t recycled{nullptr, nullptr};
    list_index(&list, 1);
    ASSERT_EQ(list_delete(&list, 5, &recycled), 1u);
    EXPECT_EQ(keys_of(list), std::vector<int>{1});
    EXPECT_EQ(list.cursor, nullptr);
    EXPECT_EQ(keys_of(recycled), (std::vector<int>{2, 3}));

    list_node* const first_recycled = recycled.head;
    list_t out{nullptr, nullptr};
    ASSERT_EQ(list_alloc(3, 16, &out, &recycled), 1u);
    EXPECT_EQ(recycled.head, nullptr);
    ASSERT_EQ(list_len(&out), 3u);
    EXPECT_EQ(out.head->next, first_recycled); // the new node comes first
    EXPECT_EQ(out.cursor, out.head);
    EXPECT_EQ(static_cast<char*>(list_link_item(out.head)), reinterpret_cast<char*>(out.head) + sizeof(void*));

    list_t fresh{nullptr, nullptr};
    ASSERT_EQ(list_alloc(3, 5, &fresh, &recycled), 1u); // strides stay word-aligned
    EXPECT_EQ(reinterpret_cast<char*>(fresh.head->next) - reinterpret_cast<char*>(fresh.head), 16);
    list_free(&out, &g_free);
    list_free(&fresh, &g_free);
    list_free(&list, &g_free);
    EXPECT_EQ(list.head, nullptr);
}

TEST(LinkedList, RunsMoveBetweenDescriptors)
{
    list_t a = make_list({1, 2, 3});
    list_t b = make_list({8, 9});
    list_t empty{nullptr, nullptr};
    EXPECT_EQ(list_add(&a, &empty) + list_ins(&a, &empty) + list_ext(&empty, 1, &a) + list_div(&empty, &a), 0u);
    EXPECT_EQ(list_delete(&a, 0, &g_free) + list_sort(&empty, compare_keys) + list_tail(&empty), 0u);

    ASSERT_EQ(list_add(&a, &b), 1u); // cursor on the first appended node
    EXPECT_EQ(keys_of(a), (std::vector<int>{1, 2, 3, 8, 9}));
    EXPECT_EQ(item(a.cursor)->key, 8);
    EXPECT_EQ(b.head, nullptr);

    list_index(&a, 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(list_add(&a, &a), 0u); // its own chain, even with the cursor past the head
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "infinite loop, abort list_add () operation\n");
    list_t moved{nullptr, nullptr};
    EXPECT_EQ(list_ext(&a, 2, &moved), 2u);
    EXPECT_EQ(keys_of(a), (std::vector<int>{1, 8, 9}));
    EXPECT_EQ(item(a.cursor)->key, 8);
    EXPECT_EQ(keys_of(moved), (std::vector<int>{2, 3}));

    ASSERT_EQ(list_ins(&a, &moved), 1u); // before the cursor (8)
    EXPECT_EQ(keys_of(a), (std::vector<int>{1, 2, 3, 8, 9}));
    EXPECT_EQ(item(a.cursor)->key, 2);

    list_index(&a, 3);
    ASSERT_EQ(list_div(&a, &empty), 1u);
    EXPECT_EQ(keys_of(a), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(keys_of(empty), (std::vector<int>{8, 9}));
    EXPECT_TRUE(a.cursor == a.head && empty.cursor == empty.head);

    list_head(&a);
    ASSERT_EQ(list_div(&a, &empty), 1u); // from the head: a becomes empty
    EXPECT_EQ(a.head, nullptr);
    EXPECT_EQ(keys_of(empty), (std::vector<int>{8, 9, 1, 2, 3}));

    ASSERT_EQ(list_rev(&empty), 1u);
    EXPECT_EQ(keys_of(empty), (std::vector<int>{3, 2, 1, 9, 8}));
    list_free(&empty, &g_free);
}

TEST(LinkedList, SortIsStable)
{
    std::mt19937 random(13);
    for (const int size : {1, 2, 3, 7, 64, 1000}) {
        SCOPED_TRACE(size);
        std::vector<int> keys(static_cast<size_t>(size));
        for (int& key : keys) {
            key = static_cast<int>(random() % 5);
        }
        list_t list = make_list(size == 3 ? std::vector<int>{2, 1, 1} : keys);
        list_tail(&list);
        ASSERT_EQ(list_sort(&list, compare_keys), 1u);
        EXPECT_EQ(list.cursor, list.head);
        // Ordered by key, equal keys in their first order, none lost.
        std::vector<int> key_then_order;
        for (list_node* node = list.head; node; node = node->next) {
            key_then_order.push_back(item(node)->key * 10000 + item(node)->order);
        }
        EXPECT_TRUE(std::is_sorted(key_then_order.begin(), key_then_order.end()));
        EXPECT_EQ(key_then_order.size(), keys.size());
        list_free(&list, &g_free);
    }
}

} // namespace
