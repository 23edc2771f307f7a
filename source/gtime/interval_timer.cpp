// The interval timer and the date helpers of the gtime_ family.
#include <tql70/gtime.h>

#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

double interval_start = 0.0;
constexpr size_t kWhenBytes = 26; // the caller's buffer

} // namespace

extern "C" {

int gtime_clock(void)
{
    return 0;
}

void gtime_eewait(void) {}

float gtime_eetime_interval(int reset)
{
    const double now = monotonic_seconds();
    if (reset) {
        interval_start = now;
        return 0.0f;
    }
    return static_cast<float>(now - interval_start);
}

int gtime_eewhen(char* buffer)
{
    if (!buffer) {
        return 0;
    }
    static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const struct tm now = local_time_now();
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%.3s %.3s%3d %.2d:%.2d:%.2d %d", days[now.tm_wday % 7],
                                     months[now.tm_mon % 12], now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec,
                                     now.tm_year + 1900);
    const size_t kept = std::min<size_t>(length > 0 ? static_cast<size_t>(length) : 0, kWhenBytes - 1);
    std::memcpy(buffer, text, kept);
    buffer[kept] = '\0';
    return 1;
}

int gtime_jdays(void)
{
    const struct tm now = local_time_now();
    return now.tm_yday + 1 + (((now.tm_year - 70) * 1461) >> 2);
}

} // extern "C"
