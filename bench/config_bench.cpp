// Loading the default environment from a site file of 10,000 variables with
// 10 include files (1,000 variables each), next to a plain std::getline +
// std::unordered_map load of the same lines; and 1e5 gui_env_get_ee
// lookups. The files live in a scratch folder under $TMPDIR.
#include <tql70/gui_env.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kSiteVariables = 10000;
constexpr int kIncludes = 10;
constexpr int kIncludeVariables = 1000;
constexpr int kLines = kSiteVariables + kIncludes * kIncludeVariables;

struct Installation {
    std::string root;
    std::vector<std::string> files;
};

const Installation& installation()
{
    static const Installation made = [] {
        const char* tmp = std::getenv("TMPDIR");
        Installation inst;
        inst.root = std::string(tmp && *tmp ? tmp : "/tmp") + "/tql70-config-bench";
        mkdir(inst.root.c_str(), 0755);
        mkdir((inst.root + "/config").c_str(), 0755);
        const std::string site = inst.root + "/config/zqtarvex.cfg";
        std::ofstream out(site);
        out << "# generated site configuration\n";
        for (int i = 0; i < kSiteVariables; ++i) {
            out << "SITE_VARIABLE_" << i << "=\\opt\\zqtarvex\\value\\" << i << "\n";
        }
        for (int f = 0; f < kIncludes; ++f) {
            out << "+part" << f << "\n";
            const std::string part = inst.root + "/config/part" + std::to_string(f) + ".cfg";
            std::ofstream inc(part);
            for (int i = 0; i < kIncludeVariables; ++i) {
                inc << "PART" << f << "_VARIABLE_" << i << "=" << std::string(20 + i % 30, 'x') << "\n";
            }
            inst.files.push_back(part);
        }
        inst.files.insert(inst.files.begin(), site);
        return inst;
    }();
    return made;
}

void point_at_installation()
{
    setenv("ZQTARVEX_DIR", installation().root.c_str(), 1);
    setenv("HOME", (installation().root + "/nohome").c_str(), 1);
    unsetenv("KPS_CUSTOM_DIR");
}

void BM_GuiEnvInitLoad(benchmark::State& state)
{
    point_at_installation();
    for (auto _ : state) {
        gui_env_init();
        gui_env_deinit(0);
    }
    state.counters["lines/s"] = benchmark::Counter(static_cast<double>(kLines) * state.iterations(),
                                                   benchmark::Counter::kIsRate);
}
BENCHMARK(BM_GuiEnvInitLoad)->Unit(benchmark::kMillisecond);

void BM_PlainGetlineLoad(benchmark::State& state)
{
    for (auto _ : state) {
        std::unordered_map<std::string, std::string> variables;
        std::string line;
        for (const std::string& file : installation().files) {
            std::ifstream in(file);
            while (std::getline(in, line)) {
                const size_t equals = line.find('=');
                if (line.empty() || line[0] == '#' || line[0] == '+' || equals == std::string::npos) {
                    continue;
                }
                variables[line.substr(0, equals)] = line.substr(equals + 1);
            }
        }
        benchmark::DoNotOptimize(variables.size());
    }
    state.counters["lines/s"] = benchmark::Counter(static_cast<double>(kLines) * state.iterations(),
                                                   benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PlainGetlineLoad)->Unit(benchmark::kMillisecond);

void BM_GuiEnvGetEe(benchmark::State& state)
{
    point_at_installation();
    gui_env_init();
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i) {
        names.push_back("SITE_VARIABLE_" + std::to_string(i * 7 % kSiteVariables));
    }
    char buffer[256];
    for (auto _ : state) {
        for (int i = 0; i < 100000; ++i) {
            benchmark::DoNotOptimize(
                gui_env_get_ee(names[i % names.size()].c_str(), buffer, nullptr, sizeof buffer, GUI_ENV_ANY));
        }
    }
    gui_env_deinit(0);
}
BENCHMARK(BM_GuiEnvGetEe)->Unit(benchmark::kMillisecond);

} // namespace
