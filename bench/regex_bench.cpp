// tql_regexec against std::regex_search (ECMAScript) and the C library's
// regexec (extended syntax, asking for the whole match's position, as
// tql_regexec always gives it) on 1 MiB of log-like lines, every line
// searched, for eight patterns; and compiling each pattern against
// constructing a std::regex. The text is made before timing. Reports
// bytes/s and the number of matching lines (equal for the three engines).
#include <tql70/tql_regex.h>

#include <benchmark/benchmark.h>

#include <regex.h>

#include <cstdlib>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace {

const char* const kPatterns[] = {
    "error",
    "err.*fail",
    "^[A-Z_][A-Z0-9_]*=",
    "(a|b)*abb",
    "[0-9]+\\.[0-9]+",
    "x(ab)y",
    "warn|error|fatal",
    "[a-z]+@[a-z]+\\.(com|org)",
};

// About 1 MiB of lines: timestamps, levels, messages, assignments, mail
// addresses, numbers, with the patterns' literals spread in.
const std::vector<std::string>& lines()
{
    static const std::vector<std::string> text = [] {
        std::mt19937 random(70);
        const char* const levels[] = {"info", "debug", "warn", "error", "trace", "notice"};
        const char* const words[] = {"request", "served", "cache", "miss", "retry", "abba", "xaby", "failed",
                                     "connection", "closed", "user", "bob@site.org", "ann@mail.com", "queue",
                                     "flush", "ababb", "timeout", "fatal", "3.14", "ok", "node", "PATH_X=/bin"};
        std::vector<std::string> out;
        std::size_t total = 0;
        while (total < (1u << 20)) {
            std::string line;
            if (random() % 10 == 0) {
                line = "VAR_" + std::to_string(random() % 1000) + "=value " + std::to_string(random() % 100);
            } else {
                line = "2026-11-23 12:" + std::to_string(random() % 60) + ":" + std::to_string(random() % 60) + " " +
                       levels[random() % 6] + " pid " + std::to_string(random() % 90000) + ":";
                const int count = 4 + static_cast<int>(random() % 10);
                for (int i = 0; i < count; ++i) {
                    line += ' ';
                    line += words[random() % (sizeof words / sizeof words[0])];
                }
            }
            total += line.size() + 1;
            out.push_back(line);
        }
        return out;
    }();
    return text;
}

void finish(benchmark::State& state, long matches)
{
    std::size_t bytes = 0;
    for (const std::string& line : lines()) {
        bytes += line.size() + 1;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.counters["matching_lines"] = static_cast<double>(matches);
}

void BM_tql_regexec(benchmark::State& state)
{
    tql_regexp* r = tql_regcomp(kPatterns[state.range(0)]);
    state.SetLabel(kPatterns[state.range(0)]);
    long matches = 0;
    for (auto _ : state) {
        matches = 0;
        for (const std::string& line : lines()) {
            matches += tql_regexec(r, line.c_str());
        }
        benchmark::DoNotOptimize(matches);
    }
    finish(state, matches);
    std::free(r);
}

void BM_std_regex_search(benchmark::State& state)
{
    const std::regex r(kPatterns[state.range(0)], std::regex::ECMAScript);
    state.SetLabel(kPatterns[state.range(0)]);
    long matches = 0;
    std::cmatch found;
    for (auto _ : state) {
        matches = 0;
        for (const std::string& line : lines()) {
            matches += std::regex_search(line.c_str(), found, r);
        }
        benchmark::DoNotOptimize(matches);
    }
    finish(state, matches);
}

void BM_posix_regexec(benchmark::State& state)
{
    regex_t r;
    if (regcomp(&r, kPatterns[state.range(0)], REG_EXTENDED) != 0) {
        state.SkipWithError("regcomp failed");
        return;
    }
    state.SetLabel(kPatterns[state.range(0)]);
    long matches = 0;
    regmatch_t found[1];
    for (auto _ : state) {
        matches = 0;
        for (const std::string& line : lines()) {
            matches += regexec(&r, line.c_str(), 1, found, 0) == 0;
        }
        benchmark::DoNotOptimize(matches);
    }
    finish(state, matches);
    regfree(&r);
}

void BM_tql_regcomp(benchmark::State& state)
{
    state.SetLabel(kPatterns[state.range(0)]);
    for (auto _ : state) {
        tql_regexp* r = tql_regcomp(kPatterns[state.range(0)]);
        benchmark::DoNotOptimize(r);
        std::free(r);
    }
}

void BM_std_regex_construct(benchmark::State& state)
{
    state.SetLabel(kPatterns[state.range(0)]);
    for (auto _ : state) {
        std::regex r(kPatterns[state.range(0)], std::regex::ECMAScript);
        benchmark::DoNotOptimize(r);
    }
}

void patterns(benchmark::internal::Benchmark* b)
{
    for (int i = 0; i < static_cast<int>(sizeof kPatterns / sizeof kPatterns[0]); ++i) {
        b->Arg(i);
    }
}

} // namespace

BENCHMARK(BM_tql_regexec)->Apply(patterns)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_std_regex_search)->Apply(patterns)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_posix_regexec)->Apply(patterns)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_tql_regcomp)->Apply(patterns);
BENCHMARK(BM_std_regex_construct)->Apply(patterns);
