// The cost of DBUG_ENTER / DBUG_RETURN while nothing is pushed, against the
// same function with the macros compiled out (TQL70_DBUG_OFF in
// dbug_bench_off.cpp), the alternative a user would pick.
#include <tql70/dbug.h>

#include <benchmark/benchmark.h>

int dbug_bench_untraced(int x);

namespace {

__attribute__((noinline)) int traced(int x)
{
    DBUG_ENTER("traced");
    DBUG_RETURN(x + 1);
}

void BM_EnterReturnTracingOff(benchmark::State& state)
{
    int x = 0;
    for (auto _ : state) {
        x = traced(x);
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_EnterReturnTracingOff);

void BM_CompiledOut(benchmark::State& state)
{
    int x = 0;
    for (auto _ : state) {
        x = dbug_bench_untraced(x);
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_CompiledOut);

} // namespace
