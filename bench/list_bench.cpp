// list_sort against std::list::sort for 1,000,000 nodes with random int
// keys (many equal). Before each timed sort the keys are drawn again in
// list order with the timer paused, so every sort sees fresh random input
// on nodes scattered by the previous sort, for both lists alike.
#include <tql70/list.h>

#include <benchmark/benchmark.h>

#include <list>
#include <random>

namespace {

constexpr unsigned kNodes = 1000000;

struct Item {
    int key;
    int order;
};

int compare_keys(const void* a, const void* b)
{
    const int x = static_cast<const Item*>(a)->key;
    const int y = static_cast<const Item*>(b)->key;
    return (x > y) - (x < y);
}

void BM_ListSort(benchmark::State& state)
{
    static list_t freelist{nullptr, nullptr};
    list_t list{nullptr, nullptr};
    list_alloc(kNodes, sizeof(Item), &list, &freelist);
    std::mt19937 random(5);
    for (auto _ : state) {
        state.PauseTiming();
        for (list_node* node = list.head; node; node = node->next) {
            *static_cast<Item*>(list_link_item(node)) = Item{static_cast<int>(random() % 100000), 0};
        }
        state.ResumeTiming();
        list_sort(&list, compare_keys);
    }
    list_free(&list, &freelist);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kNodes));
}

void BM_StdListSort(benchmark::State& state)
{
    std::list<Item> list(kNodes);
    std::mt19937 random(5);
    for (auto _ : state) {
        state.PauseTiming();
        for (Item& item : list) {
            item = Item{static_cast<int>(random() % 100000), 0};
        }
        state.ResumeTiming();
        list.sort([](const Item& a, const Item& b) { return a.key < b.key; });
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kNodes));
}

BENCHMARK(BM_ListSort)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StdListSort)->Unit(benchmark::kMillisecond);

} // namespace
