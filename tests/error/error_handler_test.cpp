// Tests of report routing: the handler stack, each handler's hooks beside
// the global ones, a handler's own reports, and the printout of the rest.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include <gtest/gtest.h>

#include <QString>

#include <functional>
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
int taking_hook(char*, int, char*, char* text) { return g_calls.push_back(std::string("taking:") + text), 7; }

// Records what it is given and the pending text it reads meanwhile (a
// report that holds the lock deadlocks here), and declines.
int reading_hook(char* module, int code, char* message, char* text)
{
    g_calls.push_back(std::string("reading:") + module + ":" + std::to_string(code) + ":" + message + ":" + text + ":" +
                      tql_test::pending_text());
    return 0;
}

using Calls = std::vector<std::string>;

class ErrorHandlerTest : public tql_test::ErrorStateTest {
protected:
    void clear() override { ErrorStateTest::clear(), g_calls.clear(); }
};

TEST_F(ErrorHandlerTest, ReportsGoToTheNewestHandlerOrItsHooks)
{
    aerr_set_error_function(global_hook);
    aerr_set_warning_function(global_hook);
    {
        RecordingHandler a("a");
        {
            RecordingHandler b("b");
            EXPECT_EQ(aerr_get_warning_function(), nullptr);
            report_warning(std::string("w"));
            EXPECT_EQ(aerr_process_warning("GUI", 7, "W", nullptr), 1);
            aerr_process_error("GUI", 12, "M", "T%d", 1);
            // Called on a handler that is not current, the report still
            // goes to that handler.
            a.report_warning("direct");
        }
        report_error(QString("three"));
        // Hooks set while a handler is current belong to that handler.
        EXPECT_EQ(aerr_set_error_function(taking_hook), taking_hook);
        aerr_set_warning_function(taking_hook);
        EXPECT_EQ(a.get_legacy_error_function(), taking_hook);
        report_error(std::string("e"), std::string("f"));
        report_warning(std::string("w"), std::string("v"));
        // The handler's own reports bypass its hooks; its errors clear the
        // flag but keep the pending text.
        set_pending_error("pending text");
        a.report_error(QString("shown"));
        a.report_error(std::string("s"));
        EXPECT_FALSE(error_pending());
        EXPECT_EQ(tql_test::pending_text(), "pending text");
        set_pending_error("still");
        a.report_warning(std::string("careful"));
        a.report_warning(QString("q"));
        EXPECT_TRUE(error_pending());
        a.set_legacy_error_function(nullptr);
        EXPECT_EQ(aerr_get_error_function(), nullptr);
    }
    EXPECT_EQ(aerr_get_error_function(), global_hook);
    report_error("four");
    EXPECT_EQ(g_calls, (Calls{"b:2::-1::w", "b:2:GUI:7:W:", "b:1:GUI:12:M:T1", "a:2::-1::direct", "a:1::-1::three",
                              "taking:e\nf", "taking:w\nv", "a:1::-1::shown", "a:1::-1::s", "a:2::-1::careful",
                              "a:2::-1::q", "global:four"}));
}

// Reports no hook or handler takes are printed on stderr; the same
// printout serves coded and plain errors, warnings and messages.
TEST_F(ErrorHandlerTest, UnhandledReportsArePrinted)
{
    struct Case { const char* name; std::function<int()> body; std::string err; int result; Calls calls; };
    const Case cases[] = {
        {"error hook declines: null format, long module and code not cut, message printed as is",
         [] {
             aerr_set_error_function(reading_hook);
             aerr_process_error("MODULE7", 12345, "50%d", nullptr);
             return 0;
         },
         "ERROR   MODULE712345: 50%d\n", 0, {"reading:MODULE7:12345:50%d::"}},
        {"handler declines",
         [] {
             RecordingHandler a("a", false);
             report_error("a", "b");
             report_warning(QString("y\n"));
             return aerr_process_warning("GUI", 7, "M", "z");
         },
         "ERROR         -001 a\nb: \nWARNING y\nWARNING    GUI0007 z: M\n", 4,
         {"a:1::-1::a\nb", "a:2::-1::y\n", "a:2:GUI:7:M:z"}},
        {"messages never reach a handler",
         [] { RecordingHandler a("a"); return aerr_process_message("GUI", 3, "", "hi %s", "x"); },
         "INFO       GUI0003 hi x: \n", 3, {}},
        {"message function takes it",
         [] { aerr_set_message_function(taking_hook); return aerr_process_message("GUI", 3, "M", "t"); }, "", 7,
         {"taking:t"}},
        {"error hook takes a set error; then nothing is pending, and an empty warning prints nothing",
         [] {
             aerr_set_error_function(taking_hook);
             aerr_set("GUI", 12, "M", "T");
             const int reported = aerr_report() * 10 + aerr_report();
             report_pending_error();
             report_warning("");
             return reported;
         },
         "", 10, {"taking:T"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        clear();
        testing::internal::CaptureStderr();
        EXPECT_EQ(c.body(), c.result);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.err);
        EXPECT_EQ(g_calls, c.calls);
    }
}

} // namespace
