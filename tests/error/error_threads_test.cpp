// Several threads setting, reading, extending and reporting the one pending
// error at once. The error hook is installed before the threads start and
// takes every report, so nothing is printed.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 8;
constexpr int kIterations = 2000;

// What the threads below can leave behind: location lines "at N\n" in front
// of nothing or of one thread's text "Tn-i", with or without its detail
// line. A torn or interleaved text does not match.
bool well_formed(const std::string& text)
{
    static const std::regex form("(at [0-7]\n)*(T[0-7]-[0-9]{1,4}(\ndetail)?)?");
    return std::regex_match(text, form);
}

bool module_and_code_match(const char* module, int code)
{
    return (std::strcmp(module, "") == 0 && code == -1) ||
           (std::strcmp(module, "THR") == 0 && code >= 0 && code < kThreads);
}

std::atomic<int> g_error_reports{0};
std::atomic<int> g_bad_reports{0};

int counting_error_hook(char* module, int code, char*, char* text)
{
    g_error_reports.fetch_add(1);
    g_bad_reports.fetch_add(!module_and_code_match(module, code) || !well_formed(text));
    return 1;
}

using ErrorThreadsTest = tql_test::ErrorStateTest;

TEST_F(ErrorThreadsTest, ConcurrentSettersReadersAndReports)
{
    aerr_set_error_function(counting_error_hook);

    std::atomic<int> bad_reads{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const std::string location = "at " + std::to_string(t) + "\n";
            for (int i = 0; i < kIterations; ++i) {
                const std::string text = "T" + std::to_string(t) + "-" + std::to_string(i);
                switch ((i + t) % 6) {
                case 0: set_pending_error(text); break;
                case 1: set_pending_error(text.c_str(), "detail"); break;
                case 2: aerr_set("THR", t, "coded", "%s", text.c_str()); break;
                // The location ends in a line feed, so plain and coded
                // errors both get it as a line of its own.
                case 3: add_error_location_info(location.c_str()); break;
                case 4: report_error(text); break;
                case 5: report_pending_error(); break;
                }
                const std::string read = tql_test::pending_text();
                const char* module = nullptr;
                int code = 0;
                const bool got = aerr_get(&module, &code, nullptr) == 1;
                if (!well_formed(read) || (got && !module_and_code_match(module, code))) bad_reads.fetch_add(1);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(bad_reads.load(), 0);
    EXPECT_EQ(g_bad_reports.load(), 0);
    EXPECT_GE(g_error_reports.load(), 1);
}

} // namespace
