// gfile_copy of a 256 MB file next to cp(1) and a copy_file_range loop, and
// gfile_getline over a 100 MB text next to std::getline. The files live in
// $TMPDIR (default /tmp) and are made once per run, before any timing.
#include <tql70/gfile.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string scratch(const char* name)
{
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp && *tmp ? tmp : "/tmp") + "/tql70-bench-" + name;
}

const std::string& big_file()
{
    static const std::string path = [] {
        const std::string name = scratch("256mb.bin");
        std::ofstream out(name, std::ios::binary);
        std::string block(1 << 20, '\0');
        for (size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<char>(i * 131 + 7);
        }
        for (int i = 0; i < 256; ++i) {
            out.write(block.data(), static_cast<std::streamsize>(block.size()));
        }
        return name;
    }();
    return path;
}

const std::string& text_file()
{
    static const std::string path = [] {
        const std::string name = scratch("100mb.txt");
        std::ofstream out(name, std::ios::binary);
        std::string line;
        size_t written = 0;
        for (int i = 0; written < (100u << 20); ++i) {
            line = "ZQ_VARIABLE_" + std::to_string(i) + " = " + std::string(40 + i % 60, 'v') + "\n";
            out << line;
            written += line.size();
        }
        return name;
    }();
    return path;
}

void set_bytes(benchmark::State& state, const std::string& file)
{
    struct stat st;
    stat(file.c_str(), &st);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * st.st_size);
}

void BM_GfileCopy(benchmark::State& state)
{
    const std::string& src = big_file();
    const std::string dst = scratch("copy.bin");
    for (auto _ : state) {
        if (!gfile_copy(src.c_str(), dst.c_str())) {
            state.SkipWithError("gfile_copy failed");
        }
    }
    set_bytes(state, big_file());
    unlink(dst.c_str());
}
BENCHMARK(BM_GfileCopy)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CpCommand(benchmark::State& state)
{
    const std::string dst = scratch("copy.bin");
    const std::string command = "cp " + big_file() + " " + dst;
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("cp failed");
        }
    }
    set_bytes(state, big_file());
    unlink(dst.c_str());
}
BENCHMARK(BM_CpCommand)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CopyFileRange(benchmark::State& state)
{
    const std::string& src = big_file();
    const std::string dst = scratch("copy.bin");
    for (auto _ : state) {
        const int in = open(src.c_str(), O_RDONLY);
        const int out = open(dst.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        struct stat st;
        fstat(in, &st);
        for (off_t left = st.st_size; left > 0;) {
            const ssize_t n = copy_file_range(in, nullptr, out, nullptr, static_cast<size_t>(left), 0);
            if (n <= 0) {
                state.SkipWithError("copy_file_range failed");
                break;
            }
            left -= n;
        }
        close(in);
        close(out);
    }
    set_bytes(state, big_file());
    unlink(dst.c_str());
}
BENCHMARK(BM_CopyFileRange)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_GfileGetline(benchmark::State& state)
{
    const std::string& text = text_file();
    char line[GFILE_LINE_MAX];
    for (auto _ : state) {
        FILE* fp = nullptr;
        gfile_filopn(&fp, text.c_str(), GFILE_READ);
        size_t lines = 0;
        while (gfile_getline(fp, line)) {
            ++lines;
        }
        gfile_filcls(fp);
        benchmark::DoNotOptimize(lines);
    }
    set_bytes(state, text_file());
}
BENCHMARK(BM_GfileGetline)->Unit(benchmark::kMillisecond);

void BM_StdGetline(benchmark::State& state)
{
    const std::string& text = text_file();
    std::string line;
    for (auto _ : state) {
        std::ifstream in(text);
        size_t lines = 0;
        while (std::getline(in, line)) {
            ++lines;
        }
        benchmark::DoNotOptimize(lines);
    }
    set_bytes(state, text_file());
}
BENCHMARK(BM_StdGetline)->Unit(benchmark::kMillisecond);

} // namespace
