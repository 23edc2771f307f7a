// Clocks and waits: the monotonic clock, the local calendar time and a
// sleep that survives signals.
#include "platform/platform.h"

#include <cerrno>
#include <time.h>

double monotonic_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec / 1000000) / 1000.0;
}

struct tm local_time_now()
{
    const time_t now = time(nullptr);
    struct tm local{};
    localtime_r(&now, &local);
    return local;
}

void sleep_seconds(unsigned int seconds)
{
    timespec wanted{static_cast<time_t>(seconds), 0};
    timespec left{};
    while (nanosleep(&wanted, &left) == -1 && errno == EINTR) {
        wanted = left;
    }
}
