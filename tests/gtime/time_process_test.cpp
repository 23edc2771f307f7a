// The clock stubs, the date helpers, the login name, the sleep and the
// interval timer.
#include <tql70/gmem.h>
#include <tql70/gtime.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <pwd.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

TEST(TimeProcess, ClockWaitAndDates)
{
    EXPECT_EQ(gtime_clock(), 0);
    gtime_eewait();

    char when[32];
    std::memset(when, '#', sizeof when);
    const std::time_t before = std::time(nullptr);
    ASSERT_EQ(gtime_eewhen(when), 1);
    const std::time_t after = std::time(nullptr);
    EXPECT_EQ(when[25], '#'); // 25 bytes written
    // The layout and the English names of asctime, which ignores the locale.
    const auto asctime_of = [](std::time_t t) { return std::string(std::asctime(std::localtime(&t)), 24); };
    EXPECT_TRUE(when == asctime_of(before) || when == asctime_of(after)) << when;
    EXPECT_EQ(gtime_eewhen(nullptr), 0);

    // Day of the year plus whole 365.25-day years: within two days of the
    // days since 1970.
    EXPECT_LE(std::labs(gtime_jdays() - static_cast<long>(before / 86400)), 2) << gtime_jdays();
}

TEST(TimeProcess, LoginNameIsTheSessionOrTheEffectiveUser)
{
    char* name = tql_getlogin();
    ASSERT_NE(name, nullptr);
    char session[1024];
    const passwd* account = getpwuid(geteuid());
    const bool has_session = getlogin_r(session, sizeof session) == 0 && session[0];
    EXPECT_STREQ(name, has_session ? session : account ? account->pw_name : "");
    gmem_ee_free(name);
}

// The sleep outlasts signals (the system never restarts an interrupted
// nanosleep by itself), and the interval timer measures it.
TEST(TimeProcess, SleepResumesAfterSignalsAndTheIntervalTimerMeasuresIt)
{
    const auto child = tql_test::run_in_child([] {
        std::signal(SIGALRM, [](int) {});
        const itimerval every_200ms{{0, 200000}, {0, 200000}};
        setitimer(ITIMER_REAL, &every_200ms, nullptr);
        const float reset = gtime_eetime_interval(1);
        const int result = tql_sleep(1);
        const float slept = gtime_eetime_interval(0);
        std::printf("%g %d %d", reset, result, slept >= 1.0f && slept < 5.0f);
        std::exit(0); // through exit, so the child's coverage is kept
    });
    EXPECT_EQ(child.out, "0 0 1");
}

} // namespace
