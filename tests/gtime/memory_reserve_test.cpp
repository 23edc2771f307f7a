// The emergency memory reserve and the recovery callback.
#include <tql70/gtime.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <sys/resource.h>

namespace {

unsigned int g_released = 12345;
int g_argument = 0;

int record_recovery(unsigned int size, int argument)
{
    g_released = size;
    g_argument = argument;
    return 7;
}

[[maybe_unused]] int other_recovery(unsigned int, int)
{
    return 8;
}

TEST(MemoryReserve, ExchangeHandsBackTheSettingAndRecoveryReleasesTheReserve)
{
    EXPECT_EQ(gui_stdlib_recover(3), 1); // nothing installed

    RecoveryCallback callback = record_recovery;
    unsigned int size = 4096;
    ASSERT_EQ(zqtarvex_mem_recover_func(&callback, &size), 1);
    EXPECT_EQ(callback, nullptr); // the old setting is handed back
    EXPECT_EQ(size, 0u);

    EXPECT_EQ(gui_stdlib_recover(5), 7);
    EXPECT_EQ(g_released, 4096u);
    EXPECT_EQ(g_argument, 5);
    // The reserve is gone: a second recovery passes size 0.
    EXPECT_EQ(gui_stdlib_recover(6), 7);
    EXPECT_EQ(g_released, 0u);

    // Exchanging for nothing hands back the setting in force.
    callback = nullptr;
    size = 0;
    ASSERT_EQ(zqtarvex_mem_recover_func(&callback, &size), 1);
    EXPECT_EQ(callback, &record_recovery);
}

// A reserve that cannot be had leaves the old setting in force. An address
// space limit makes the allocation fail; the sanitizers' shadow memory does
// not work under such a limit, so their builds skip this test.
TEST(MemoryReserve, FailedReserveKeepsTheOldSetting)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "address-space limits do not work with sanitizers";
#else
    const tql_test::ChildResult child = tql_test::run_in_child([] {
        RecoveryCallback callback = record_recovery;
        unsigned int size = 100;
        zqtarvex_mem_recover_func(&callback, &size);
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = 1u << 30;
        setrlimit(RLIMIT_AS, &limit);
        callback = other_recovery;
        size = UINT_MAX;
        const int installed = zqtarvex_mem_recover_func(&callback, &size);
        const int recovered = gui_stdlib_recover(9);
        std::printf("%d %d %u %u", installed, recovered, g_released, size);
    });
    EXPECT_EQ(child.out, "0 7 100 100");
#endif
}

} // namespace
