// glist_load of a 1,000,000-line file next to std::getline into a
// std::vector<std::string>; keyed inserts of random keys into a sorted
// glist next to std::map (the list is an array: each insert shifts the
// records after it, so n inserts cost O(n log n) compares and O(n^2)
// moves); gmsg lookup of a loaded message next to copying the message out
// of a std::vector<std::string>. Files live in $TMPDIR (default /tmp) and
// are made before the timed loops.
#include <tql70/glist.h>
#include <tql70/gmsg.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

std::string scratch(const std::string& name)
{
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp && *tmp ? tmp : "/tmp") + "/tql70-bench-" + name;
}

std::string message_line(int i)
{
    return "Message " + std::to_string(i) + ": " + std::string(20 + i % 40, 'm');
}

const std::string& million_lines()
{
    static const std::string path = [] {
        const std::string name = scratch("1m-lines.txt");
        std::ofstream out(name, std::ios::binary);
        for (int i = 0; i < 1000000; ++i) {
            out << message_line(i) << '\n';
        }
        return name;
    }();
    return path;
}

void BM_GlistLoad(benchmark::State& state)
{
    const std::string& path = million_lines();
    std::vector<char> message(path.size() + GLIST_MESSAGE_EXTRA);
    for (auto _ : state) {
        glist list = nullptr;
        glist_create(&list, 0, "bench", nullptr);
        if (!glist_load(list, path.c_str(), message.data())) {
            state.SkipWithError(message.data());
        }
        glist_close(list);
    }
}
BENCHMARK(BM_GlistLoad)->Unit(benchmark::kMillisecond);

void BM_GetlineIntoVector(benchmark::State& state)
{
    const std::string& path = million_lines();
    for (auto _ : state) {
        std::ifstream in(path, std::ios::binary);
        std::vector<std::string> lines;
        std::string line;
        while (std::getline(in, line)) {
            lines.push_back(line);
        }
        benchmark::DoNotOptimize(lines.data());
    }
}
BENCHMARK(BM_GetlineIntoVector)->Unit(benchmark::kMillisecond);

std::vector<std::string> random_keys(size_t count)
{
    std::mt19937 random(42);
    std::vector<std::string> keys;
    keys.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        keys.push_back("key" + std::to_string(random()));
    }
    return keys;
}

void BM_GlistKeyedInsert(benchmark::State& state)
{
    const std::vector<std::string> keys = random_keys(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        glist list = nullptr;
        glist_create(&list, GLIST_SORTED, "bench", nullptr);
        for (const std::string& key : keys) {
            glist_putkeystr(list, key.c_str());
        }
        glist_close(list);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_GlistKeyedInsert)->RangeMultiplier(10)->Range(1000, 100000)->Complexity()->Unit(benchmark::kMillisecond);

void BM_MapInsert(benchmark::State& state)
{
    const std::vector<std::string> keys = random_keys(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        std::map<std::string, int> map;
        for (const std::string& key : keys) {
            map.emplace(key, 0);
        }
        benchmark::DoNotOptimize(map.size());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_MapInsert)->RangeMultiplier(10)->Range(1000, 100000)->Complexity()->Unit(benchmark::kMillisecond);

// A message installation in $TMPDIR: the site configuration names the
// directory file, which names one set of 1,000 messages.
GmsgHandle open_catalogue()
{
    static GmsgHandle handle = [] {
        const std::string root = scratch("gmsg");
        ::mkdir(root.c_str(), 0755);
        ::mkdir((root + "/config").c_str(), 0755);
        std::ofstream(root + "/config/zqtarvex.cfg") << "ZQTARVEX_MSG_FILE=" << root << "/directory.cfg\n";
        std::ofstream(root + "/directory.cfg") << "BENCH=" << root << "/bench\n";
        std::ofstream messages(root + "/bench.msg");
        for (int i = 0; i < 1000; ++i) {
            messages << message_line(i) << '\n';
        }
        messages.close();
        setenv("ZQTARVEX_DIR", root.c_str(), 1);
        setenv("HOME", root.c_str(), 1);
        return gmsg_open("zqtarvex", nullptr, "ENGLISH");
    }();
    return handle;
}

void BM_GmsgLookup(benchmark::State& state)
{
    GmsgHandle handle = open_catalogue();
    char buffer[GMSG_MESSAGE_SIZE];
    int number = 0;
    if (!handle || !gmsg_retrieve_message(handle, "BENCH", 1, buffer)) {
        state.SkipWithError("no catalogue");
        return;
    }
    for (auto _ : state) {
        number = number % 1000 + 1;
        gmsg_retrieve_message(handle, "BENCH", number, buffer);
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_GmsgLookup);

void BM_VectorLookup(benchmark::State& state)
{
    std::vector<std::string> messages;
    for (int i = 0; i < 1000; ++i) {
        messages.push_back(message_line(i));
    }
    char buffer[GMSG_MESSAGE_SIZE];
    size_t number = 0;
    for (auto _ : state) {
        number = (number + 1) % messages.size();
        const std::string& message = messages[number];
        std::memcpy(buffer, message.c_str(), message.size() + 1);
        benchmark::DoNotOptimize(buffer);
    }
}
BENCHMARK(BM_VectorLookup);

} // namespace
