// avltree_* against std::map<int, const int*> for inserting, searching and
// deleting 100,000 distinct keys in random order.
//
// The tree's items are pointers into one array of ints, ordered by an int
// comparison called through a function pointer; the map stores the same
// pointers under their int keys. Only the measured operation is timed: the
// tree or map that a delete run empties is built with the timer paused, and
// the one an insert run fills is freed with the timer paused.
#include <tql70/avltree.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr int kKeys = 100000;

int compare_ints(const void* a, const void* b)
{
    const int x = *static_cast<const int*>(a);
    const int y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

struct Input {
    std::vector<int> values;        // values[i] == i: the items
    std::vector<int*> insert_order; // every item once, shuffled
    std::vector<int*> lookup_order; // every item once, shuffled differently
};

const Input& input()
{
    static const Input data = [] {
        Input in;
        in.values.resize(kKeys);
        std::iota(in.values.begin(), in.values.end(), 0);
        for (int& v : in.values) {
            in.insert_order.push_back(&v);
        }
        in.lookup_order = in.insert_order;
        std::mt19937 random(12345);
        std::shuffle(in.insert_order.begin(), in.insert_order.end(), random);
        std::shuffle(in.lookup_order.begin(), in.lookup_order.end(), random);
        return in;
    }();
    return data;
}

avltree build_tree()
{
    avltree tree;
    avltree_init(&tree);
    for (int* item : input().insert_order) {
        avltree_insert(&tree, compare_ints, item, nullptr);
    }
    return tree;
}

std::map<int, const int*> build_map()
{
    std::map<int, const int*> map;
    for (const int* item : input().insert_order) {
        map.emplace(*item, item);
    }
    return map;
}

void BM_AvlInsert(benchmark::State& state)
{
    const Input& in = input();
    for (auto _ : state) {
        avltree tree;
        avltree_init(&tree);
        for (int* item : in.insert_order) {
            avltree_insert(&tree, compare_ints, item, nullptr);
        }
        benchmark::DoNotOptimize(tree);
        state.PauseTiming();
        avltree_free(&tree, nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}

void BM_MapInsert(benchmark::State& state)
{
    const Input& in = input();
    for (auto _ : state) {
        std::map<int, const int*> map;
        for (const int* item : in.insert_order) {
            map.emplace(*item, item);
        }
        benchmark::DoNotOptimize(map);
        state.PauseTiming();
        map.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}

void BM_AvlSearch(benchmark::State& state)
{
    const Input& in = input();
    avltree tree = build_tree();
    for (auto _ : state) {
        for (const int* key : in.lookup_order) {
            benchmark::DoNotOptimize(avltree_search(&tree, compare_ints, key));
        }
    }
    avltree_free(&tree, nullptr);
    state.SetItemsProcessed(state.iterations() * kKeys);
}

void BM_MapSearch(benchmark::State& state)
{
    const Input& in = input();
    const std::map<int, const int*> map = build_map();
    for (auto _ : state) {
        for (const int* key : in.lookup_order) {
            auto it = map.find(*key);
            benchmark::DoNotOptimize(it == map.end() ? nullptr : it->second);
        }
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}

void BM_AvlDelete(benchmark::State& state)
{
    const Input& in = input();
    for (auto _ : state) {
        state.PauseTiming();
        avltree tree = build_tree();
        state.ResumeTiming();
        for (const int* key : in.lookup_order) {
            avltree_delete(&tree, compare_ints, key, nullptr);
        }
        benchmark::DoNotOptimize(tree);
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}

void BM_MapDelete(benchmark::State& state)
{
    const Input& in = input();
    for (auto _ : state) {
        state.PauseTiming();
        std::map<int, const int*> map = build_map();
        state.ResumeTiming();
        for (const int* key : in.lookup_order) {
            map.erase(*key);
        }
        benchmark::DoNotOptimize(map);
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}

} // namespace

BENCHMARK(BM_AvlInsert)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MapInsert)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AvlSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MapSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AvlDelete)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MapDelete)->Unit(benchmark::kMillisecond);
