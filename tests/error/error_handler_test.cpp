// Tests of ErrorHandler: the stack of handlers, the hooks each one carries
// beside the global hooks, and its own report functions.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <QString>

#include <cstdio>
#include <string>
#include <vector>

namespace {

// Every report a handler or hook saw, as "who:kind:module:code:message:text".
std::vector<std::string> g_calls;

class RecordingHandler final : public ErrorHandler {
public:
    explicit RecordingHandler(const char* name, bool result = true) : name_(name), result_(result) {}
    bool handle_report(int kind, const char* module, int code, const char* message, const char* text) override
    {
        g_calls.push_back(name_ + ":" + std::to_string(kind) + ":" + module + ":" + std::to_string(code) + ":" +
                          message + ":" + text);
        return result_;
    }

private:
    std::string name_;
    bool result_;
};

int global_hook(char*, int, char*, char* text) { return g_calls.push_back(std::string("global:") + text), 1; }
int handler_hook(char*, int, char*, char* text) { return g_calls.push_back(std::string("hook:") + text), 1; }
int declining_hook(char*, int, char*, char* text) { return g_calls.push_back(std::string("declining:") + text), 0; }

using Calls = std::vector<std::string>;

class ErrorHandlerTest : public tql_test::ErrorStateTest {
protected:
    void clear() override { ErrorStateTest::clear(), g_calls.clear(); }
};

TEST_F(ErrorHandlerTest, ReportsGoToTheNewestHandlerAndItsOwnHooks)
{
    aerr_set_error_function(global_hook);
    aerr_set_warning_function(global_hook);
    {
        RecordingHandler a("a");
        {
            RecordingHandler b("b");
            EXPECT_EQ(aerr_get_warning_function(), nullptr);
            report_error("two");
            report_warning("w");
            aerr_process_error("GUI", 12, "M", "T%d", 1);
            aerr_process_warning("GUI", 7, "W", nullptr);
        }
        report_error("three");
        EXPECT_FALSE(error_pending());
        // Hooks set while a handler is current belong to that handler.
        EXPECT_EQ(aerr_set_error_function(handler_hook), handler_hook);
        aerr_set_warning_function(handler_hook);
        EXPECT_EQ(a.get_legacy_error_function(), handler_hook);
        report_error("e");
        report_warning("w");
        a.set_legacy_error_function(nullptr);
        EXPECT_EQ(aerr_get_error_function(), nullptr);
    }
    EXPECT_EQ(aerr_get_error_function(), global_hook);
    report_error("four");
    EXPECT_EQ(g_calls, (Calls{"b:1::-1::two", "b:2::-1::w", "b:1:GUI:12:M:T1", "b:2:GUI:7:W:", "a:1::-1::three",
                              "hook:e", "hook:w", "global:four"}));
}

TEST_F(ErrorHandlerTest, HandlerOwnReportsBypassHooksAndKeepTheText)
{
    RecordingHandler a("a");
    a.set_legacy_error_function(handler_hook);
    a.set_legacy_warning_function(handler_hook);
    set_pending_error("pending text");
    a.report_error(QString("shown"));
    a.report_error(std::string("s"));
    EXPECT_FALSE(error_pending());
    EXPECT_EQ(tql_test::pending_text(), "pending text");
    set_pending_error("still");
    a.report_warning(std::string("careful"));
    a.report_warning(QString("q"));
    EXPECT_TRUE(error_pending());
    {
        // Called on a handler that is not current, the report still goes
        // to that handler.
        RecordingHandler b("b");
        a.report_warning("direct");
    }
    EXPECT_EQ(g_calls, (Calls{"a:1::-1::shown", "a:1::-1::s", "a:2::-1::careful", "a:2::-1::q", "a:2::-1::direct"}));
}

TEST_F(ErrorHandlerTest, UnhandledReportsArePrinted)
{
    struct Case { const char* name; void (*body)(); std::string err; std::string out; };
    const Case cases[] = {
        {"handler declines",
         [] {
             RecordingHandler a("a", false);
             report_error("x");
             aerr_process_warning("GUI", 7, "M", "z");
             std::printf("%zu", g_calls.size());
         },
         "ERROR         -001 x: \nWARNING    GUI0007 z: M\n", "2"},
        {"a declining hook hides the handler",
         [] {
             RecordingHandler a("a");
             a.set_legacy_warning_function(declining_hook);
             report_warning("y\n");
             std::printf("%s", g_calls.at(0).c_str());
         },
         "WARNING y\n", "declining:y\n"},
        {"messages never reach a handler",
         [] { RecordingHandler a("a"); aerr_process_message("GUI", 3, "M", nullptr); std::printf("%zu", g_calls.size()); },
         "INFO       GUI0003: M\n", "0"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string out;
        EXPECT_EQ(tql_test::child_stderr(c.body, &out), c.err);
        EXPECT_EQ(out, c.out);
    }
}

} // namespace
