// The emergency memory reserve and the recovery callback.
#include <tql70/gtime.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>
#include <sys/resource.h>

namespace {

// Answers the size it is given plus the argument, so a test sees both.
int record_recovery(unsigned int size, int argument)
{
    return static_cast<int>(size) + argument;
}

// Exchanges the setting; returns "result callback size" with what was
// handed back (the callback as none, record or other).
std::string exchange(RecoveryCallback callback, unsigned int size)
{
    const int result = zqtarvex_mem_recover_func(&callback, &size);
    const char* name = !callback ? "none" : callback == record_recovery ? "record" : "other";
    return std::to_string(result) + " " + name + " " + std::to_string(size);
}

TEST(MemoryReserve, ExchangeHandsBackTheSettingAndRecoveryReleasesTheReserve)
{
    EXPECT_EQ(gui_stdlib_recover(3), 1); // nothing installed
    EXPECT_EQ(exchange(record_recovery, 4096), "1 none 0");
    EXPECT_EQ(gui_stdlib_recover(5), 4096 + 5);
    // The reserve is gone: a second recovery passes size 0.
    EXPECT_EQ(gui_stdlib_recover(6), 6);
    // Exchanging for nothing hands back the setting in force.
    EXPECT_EQ(exchange(nullptr, 0), "1 record 0");
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
        exchange(record_recovery, 100);
        const rlimit limit{1u << 30, 1u << 30};
        setrlimit(RLIMIT_AS, &limit);
        const std::string failed = exchange([](unsigned int, int) { return 0; }, UINT_MAX);
        std::printf("%s, recovery %d", failed.c_str(), gui_stdlib_recover(9));
    });
    EXPECT_EQ(child.out, "0 record 100, recovery 109"); // the old reserve made again
#endif
}

} // namespace
