// The line parser families over 100 MB of lines with ten fields (words,
// integers, decimals), next to a strtok_r + strtod loop and a memchr scan of
// the same text. Reports MB/s, fields/s and the allocations made per line
// after warm-up (counted by wrapping the C library's allocator).
#include <tql70/gparse.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

extern "C" void* __libc_malloc(size_t);
extern "C" void* __libc_calloc(size_t, size_t);
extern "C" void* __libc_realloc(void*, size_t);

namespace {
std::atomic<long> g_allocations{0};
}

// Every allocation of the process (the library's included) is counted.
extern "C" void* malloc(size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* pointer, size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(pointer, size);
}

namespace {

struct Corpus {
    std::string text;            // lines separated by NULs
    std::vector<const char*> lines;
    size_t fields = 0;
};

const Corpus& corpus()
{
    static const Corpus made = [] {
        Corpus c;
        std::mt19937 random(42);
        const char* words[] = {"node", "wire", "net_12", "VDD", "gnd", "layer", "metal2", "via"};
        c.text.reserve(100u << 20);
        std::vector<size_t> starts;
        while (c.text.size() < (100u << 20)) {
            starts.push_back(c.text.size());
            for (int f = 0; f < 10; ++f) {
                switch (f % 3) {
                case 0:
                    c.text += words[random() % 8];
                    break;
                case 1:
                    c.text += std::to_string(static_cast<int>(random() % 200000) - 100000);
                    break;
                default:
                    c.text += std::to_string(random() % 10000) + "." + std::to_string(random() % 1000);
                    break;
                }
                c.text += f < 9 ? ' ' : '\0';
            }
            c.fields += 10;
        }
        for (size_t start : starts) {
            c.lines.push_back(c.text.data() + start);
        }
        return c;
    }();
    return made;
}

void report(benchmark::State& state, long allocations_before, size_t lines)
{
    const Corpus& c = corpus();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(c.text.size()));
    state.counters["fields/s"] =
        benchmark::Counter(static_cast<double>(c.fields) * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["allocs/line"] =
        static_cast<double>(g_allocations.load() - allocations_before) / (static_cast<double>(lines) * state.iterations());
}

void BM_Parline(benchmark::State& state)
{
    static parserec rec;
    const Corpus& c = corpus();
    const long before = g_allocations.load();
    for (auto _ : state) {
        for (const char* line : c.lines) {
            gparse_parline(line, " ", "", 0, &rec);
        }
        benchmark::DoNotOptimize(rec.count);
    }
    report(state, before, c.lines.size());
}
BENCHMARK(BM_Parline)->Unit(benchmark::kMillisecond)->Iterations(3);

template <unsigned int (*Parse)(const char*, const char*, const char*, char, parserecMem*),
          unsigned int (*Release)(parserecMem*)>
void BM_ParlineMem(benchmark::State& state)
{
    const Corpus& c = corpus();
    parserecMem rec;
    gparse_init_parserecMem(&rec);
    Parse(c.lines[0], " ", "", 0, &rec); // warm-up
    const long before = g_allocations.load();
    for (auto _ : state) {
        for (const char* line : c.lines) {
            Parse(line, " ", "", 0, &rec);
        }
        benchmark::DoNotOptimize(rec.count);
    }
    report(state, before, c.lines.size());
    Release(&rec);
}
BENCHMARK_TEMPLATE(BM_ParlineMem, gparse_parline_mem, gparse_parline_free_mem)
    ->Name("BM_ParlineMem")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_TEMPLATE(BM_ParlineMem, gparse_efficient_parline_mem, gparse_efficient_parline_free_mem)
    ->Name("BM_EfficientParlineMem")->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_StrtokStrtod(benchmark::State& state)
{
    const Corpus& c = corpus();
    std::vector<char> copy(1024);
    const long before = g_allocations.load();
    for (auto _ : state) {
        double sum = 0;
        for (const char* line : c.lines) {
            std::strcpy(copy.data(), line);
            char* save = nullptr;
            for (char* token = strtok_r(copy.data(), " ", &save); token; token = strtok_r(nullptr, " ", &save)) {
                char* end = nullptr;
                sum += std::strtod(token, &end);
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    report(state, before, c.lines.size());
}
BENCHMARK(BM_StrtokStrtod)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_MemchrScan(benchmark::State& state)
{
    const Corpus& c = corpus();
    const long before = g_allocations.load();
    for (auto _ : state) {
        size_t separators = 0;
        const char* p = c.text.data();
        const char* end = p + c.text.size();
        while ((p = static_cast<const char*>(std::memchr(p, ' ', static_cast<size_t>(end - p)))) != nullptr) {
            ++separators;
            ++p;
        }
        benchmark::DoNotOptimize(separators);
    }
    report(state, before, c.lines.size());
}
BENCHMARK(BM_MemchrScan)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
