// Variable lookups in environments of 10, 100 and 1000 variables next to a
// std::unordered_map lookup of the same names, and the expansion of a text
// with ten references.
#include <tql70/gui_env.h>

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace {

std::vector<std::string> variable_names(int count)
{
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("ZQ_VARIABLE_" + std::to_string(i * 7919 % 100003));
    }
    return names;
}

void BM_GuiEnvGet(benchmark::State& state)
{
    const auto names = variable_names(static_cast<int>(state.range(0)));
    GuiEnv env = gui_env_open("bench", 99) /* no files */;
    for (size_t i = 0; i < names.size(); ++i) {
        // Spread over the four levels, as configuration files would.
        gui_env_put(env, names[i].c_str(), "some value", static_cast<int>(1 + i % 4));
    }
    char buffer[64];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            gui_env_get(env, names[i].c_str(), buffer, nullptr, sizeof buffer, GUI_ENV_ANY));
        i = (i + 1) % names.size();
    }
    gui_env_close(env, 0);
}
BENCHMARK(BM_GuiEnvGet)->Arg(10)->Arg(100)->Arg(1000);

void BM_UnorderedMapGet(benchmark::State& state)
{
    const auto names = variable_names(static_cast<int>(state.range(0)));
    std::unordered_map<std::string, std::string> map;
    for (const auto& name : names) {
        map[name] = "some value";
    }
    char buffer[64];
    size_t i = 0;
    for (auto _ : state) {
        // Same work as the library: find by a C string, copy the value out.
        const auto found = map.find(names[i].c_str());
        benchmark::DoNotOptimize(found->second.copy(buffer, sizeof buffer - 1));
        i = (i + 1) % names.size();
    }
}
BENCHMARK(BM_UnorderedMapGet)->Arg(10)->Arg(100)->Arg(1000);

void BM_ExpandTenReferences(benchmark::State& state)
{
    GuiEnv env = gui_env_open("bench", 99) /* no files */;
    std::string text;
    for (int i = 0; i < 10; ++i) {
        const std::string name = "DIR" + std::to_string(i);
        gui_env_put(env, name.c_str(), ("\\opt\\part" + std::to_string(i)).c_str(), GUI_ENV_SITE);
        text += "%" + name + "\\x;";
    }
    char out[1024];
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            gui_env_expand_str(out, text.c_str(), sizeof out, env, static_cast<GuiEnv>(nullptr)));
    }
    gui_env_close(env, 0);
}
BENCHMARK(BM_ExpandTenReferences);

} // namespace
