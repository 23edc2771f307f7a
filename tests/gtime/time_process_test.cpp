// The interval timer, the date helpers, the login name and the sleep.
#include <tql70/gmem.h>
#include <tql70/gtime.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <pwd.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>

namespace {

TEST(TimeProcess, IntervalTimerAndDates)
{
    EXPECT_EQ(gtime_clock(), 0);
    gtime_eewait();
    EXPECT_EQ(gtime_eetime_interval(1), 0.0f);
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    const float elapsed = gtime_eetime_interval(0);
    EXPECT_GE(elapsed, 0.05f);
    EXPECT_LT(elapsed, 5.0f);

    char when[32];
    std::memset(when, '#', sizeof when);
    ASSERT_EQ(gtime_eewhen(when), 1);
    EXPECT_EQ(std::strlen(when), 24u);
    EXPECT_EQ(when[25], '#'); // 25 bytes written
    char day[4], month[4];
    int date, hour, minute, second, year;
    EXPECT_EQ(std::sscanf(when, "%3s %3s %2d %2d:%2d:%2d %4d", day, month, &date, &hour, &minute, &second, &year), 7);
    EXPECT_TRUE(date >= 1 && date <= 31 && hour < 24 && year >= 2000) << when;
    EXPECT_EQ(gtime_eewhen(nullptr), 0);

    // Day of the year plus whole 365.25-day years: within two days of the
    // days since 1970.
    const long since_1970 = static_cast<long>(std::time(nullptr) / 86400);
    EXPECT_LE(std::labs(gtime_jdays() - since_1970), 2) << gtime_jdays();
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

TEST(TimeProcess, SleepResumesAfterSignals)
{
    const auto child = tql_test::run_in_child([] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr); // no SA_RESTART
        const itimerval every_200ms{{0, 200000}, {0, 200000}};
        setitimer(ITIMER_REAL, &every_200ms, nullptr);
        timespec start{}, end{};
        clock_gettime(CLOCK_MONOTONIC, &start);
        const int result = tql_sleep(1);
        clock_gettime(CLOCK_MONOTONIC, &end);
        const double slept = double(end.tv_sec - start.tv_sec) + double(end.tv_nsec - start.tv_nsec) / 1e9;
        std::printf("%d %d\n", result, slept >= 0.999 ? 1 : 0);
    });
    EXPECT_EQ(child.out, "0 1\n");
}

} // namespace
