// The hash database against std::unordered_map<std::string, std::string>:
// 1,000,000 random 16-byte keys with 32-byte data, all put and then all
// looked up, in a table whose page cache holds it whole. A second run with
// a 1 MB cache reports the pages read and written per operation.
//
// The keys and data are made before the timed loop; the table is an
// anonymous one in TMPDIR, opened with the timer paused.
#include "hashdb/hash_table.h"

#include <tql70/hashdb.h>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr size_t kPairs = 1000000;

struct Input {
    std::vector<std::string> keys;
    std::vector<std::string> data;
};

const Input& input()
{
    static const Input in = [] {
        Input made;
        std::mt19937_64 random(15);
        auto bytes = [&](size_t n) {
            std::string s(n, '\0');
            for (char& c : s) {
                c = static_cast<char>(random());
            }
            return s;
        };
        for (size_t i = 0; i < kPairs; ++i) {
            made.keys.push_back(bytes(16));
            made.data.push_back(bytes(32));
        }
        return made;
    }();
    return in;
}

DBT dbt(const std::string& s) { return {const_cast<char*>(s.data()), s.size()}; }

void run_table(benchmark::State& state, unsigned cachesize)
{
    const Input& in = input();
    unsigned long long reads = 0, writes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        HASHINFO info{0, 0, 0, cachesize, nullptr, 0};
        DB* db = hash_open(nullptr, O_RDWR, 0600, &info, 0);
        if (!db) {
            state.SkipWithError("cannot open an anonymous table");
            return;
        }
        state.ResumeTiming();
        for (size_t i = 0; i < kPairs; ++i) {
            DBT key = dbt(in.keys[i]), data = dbt(in.data[i]);
            if (db->put(db, &key, &data, 0) != 0) {
                state.SkipWithError("put failed");
                break;
            }
        }
        for (size_t i = 0; i < kPairs; ++i) {
            DBT key = dbt(in.keys[i]), data;
            if (db->get(db, &key, &data, 0) != 0 || data.size != 32) {
                state.SkipWithError("get failed");
                break;
            }
        }
        state.PauseTiming();
        const auto* table = static_cast<const tql70_hashdb::HashTable*>(db->internal);
        reads += table->pages_read();
        writes += table->pages_written();
        db->close(db);
        state.ResumeTiming();
    }
    const double operations = 2.0 * kPairs * state.iterations();
    state.counters["ns_per_op"] = benchmark::Counter(operations, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["pages_read_per_op"] = reads / operations;
    state.counters["pages_written_per_op"] = writes / operations;
}

void BM_HashDbCacheHoldsTable(benchmark::State& state) { run_table(state, 1u << 30); }
void BM_HashDbOneMegabyteCache(benchmark::State& state) { run_table(state, 1u << 20); }

void BM_UnorderedMap(benchmark::State& state)
{
    const Input& in = input();
    for (auto _ : state) {
        std::unordered_map<std::string, std::string> map;
        for (size_t i = 0; i < kPairs; ++i) {
            map[in.keys[i]] = in.data[i];
        }
        for (size_t i = 0; i < kPairs; ++i) {
            const auto found = map.find(in.keys[i]);
            if (found == map.end() || found->second.size() != 32) {
                state.SkipWithError("find failed");
                break;
            }
        }
        state.PauseTiming();
        map = {};
        state.ResumeTiming();
    }
    const double operations = 2.0 * kPairs * state.iterations();
    state.counters["ns_per_op"] = benchmark::Counter(operations, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(BM_UnorderedMap)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_HashDbCacheHoldsTable)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_HashDbOneMegabyteCache)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
