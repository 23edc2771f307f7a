// The block pool (poolMem) against glibc malloc/free for blocks of 8 to 128
// bytes (sizes drawn at random before the timed loop).
//
// Batch: 1,000,000 allocations, then 1,000,000 releases in the same order.
// Interleaved: a working set of N live blocks (1,000, 10,000, 100,000: the
// growth curve of the first-fit search); each step releases a random live
// block and allocates a new one in its place, 1,000,000 steps per pass.
// Each allocator runs one untimed pass first, so both are measured warm
// (the pool keeps its chunks, malloc keeps its arenas).
#include <tql70/memcntl.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr size_t kBatch = 1000000;
constexpr size_t kSteps = 1000000;

const std::vector<size_t>& sizes()
{
    static const std::vector<size_t> data = [] {
        std::mt19937 random(70);
        std::uniform_int_distribution<size_t> size(8, 128);
        std::vector<size_t> v(kBatch + kSteps);
        for (size_t& s : v) {
            s = size(random);
        }
        return v;
    }();
    return data;
}

const std::vector<size_t>& victims(size_t live)
{
    static std::map<size_t, std::vector<size_t>> cache;
    std::vector<size_t>& v = cache[live];
    if (v.empty()) {
        std::mt19937 random(static_cast<unsigned>(live));
        std::uniform_int_distribution<size_t> slot(0, live - 1);
        v.resize(kSteps);
        for (size_t& s : v) {
            s = slot(random);
        }
    }
    return v;
}

struct Pool {
    MemCntl cntl{nullptr, nullptr};
    Pool() { initialize_MemCntl(&cntl, &poolMem); }
    void* alloc(size_t n) { return alloc_Mem(&cntl, n, 1); }
    void release(void* p) { free_Mem(&cntl, p); }
};

struct Malloc {
    void* alloc(size_t n) { return std::malloc(n); }
    void release(void* p) { std::free(p); }
};

template <class Allocator>
void batch_pass(Allocator& allocator, std::vector<void*>& blocks)
{
    const std::vector<size_t>& s = sizes();
    for (size_t i = 0; i < kBatch; ++i) {
        blocks[i] = allocator.alloc(s[i]);
    }
    for (size_t i = 0; i < kBatch; ++i) {
        allocator.release(blocks[i]);
    }
}

template <class Allocator>
void BM_Batch(benchmark::State& state)
{
    Allocator allocator;
    std::vector<void*> blocks(kBatch);
    batch_pass(allocator, blocks);
    for (auto _ : state) {
        batch_pass(allocator, blocks);
        benchmark::DoNotOptimize(blocks.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kBatch));
}

template <class Allocator>
void interleaved_pass(Allocator& allocator, std::vector<void*>& live, const std::vector<size_t>& victim)
{
    const std::vector<size_t>& s = sizes();
    for (size_t i = 0; i < kSteps; ++i) {
        void*& slot = live[victim[i]];
        allocator.release(slot);
        slot = allocator.alloc(s[kBatch + i]);
    }
}

template <class Allocator>
void BM_Interleaved(benchmark::State& state)
{
    const size_t count = static_cast<size_t>(state.range(0));
    const std::vector<size_t>& victim = victims(count);
    Allocator allocator;
    std::vector<void*> live(count);
    for (size_t i = 0; i < count; ++i) {
        live[i] = allocator.alloc(sizes()[i]);
    }
    interleaved_pass(allocator, live, victim);
    for (auto _ : state) {
        interleaved_pass(allocator, live, victim);
        benchmark::DoNotOptimize(live.data());
    }
    for (void* p : live) {
        allocator.release(p);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kSteps));
}

BENCHMARK_TEMPLATE(BM_Batch, Pool)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Batch, Malloc)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Interleaved, Pool)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Interleaved, Malloc)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
