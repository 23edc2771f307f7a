// Tests of ErrorHandler: the stack of handlers, the hooks each one carries
// beside the global hooks, and its own report functions.
#include "error/error_test_support.h"

#include <tql70/aerr.h>
#include <tql70/error.h>

#include "support/child_process.h"

#include <gtest/gtest.h>

#include <QChar>
#include <QString>

#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Report {
    int kind;
    std::string module;
    int code;
    std::string message;
    std::string text;
    bool operator==(const Report& o) const
    {
        return kind == o.kind && module == o.module && code == o.code && message == o.message && text == o.text;
    }
};

std::ostream& operator<<(std::ostream& os, const Report& r)
{
    return os << "{" << r.kind << ", " << r.module << ", " << r.code << ", " << r.message << ", " << r.text << "}";
}

class RecordingHandler final : public ErrorHandler {
public:
    explicit RecordingHandler(bool result = true) : result_(result) {}
    bool handle_report(int kind, const char* module, int code, const char* message, const char* text) override
    {
        reports.push_back({kind, module, code, message, text});
        return result_;
    }
    std::vector<Report> reports;

private:
    bool result_;
};

// Calls of the hooks below, as "name:text".
std::vector<std::string> g_calls;

int global_hook(char*, int, char*, char* text)
{
    g_calls.push_back(std::string("global:") + text);
    return 1;
}

int handler_hook(char*, int, char*, char* text)
{
    g_calls.push_back(std::string("handler:") + text);
    return 1;
}

int declining_hook(char*, int, char*, char* text)
{
    g_calls.push_back(std::string("declining:") + text);
    return 0;
}

using tql_test::pending_text;

class ErrorHandlerTest : public tql_test::ErrorStateTest {
protected:
    void clear() override
    {
        ErrorStateTest::clear();
        g_calls.clear();
    }
};

TEST_F(ErrorHandlerTest, ReportsGoToTheNewestHandler)
{
    aerr_set_error_function(global_hook);
    aerr_set_warning_function(global_hook);
    {
        RecordingHandler a;
        report_error("one");
        EXPECT_EQ(a.reports, (std::vector<Report>{{1, "", -1, "", "one"}}));
        {
            RecordingHandler b;
            report_error("two");
            report_warning("w");
            aerr_process_error("GUI", 12, "M", "T%d", 1);
            aerr_process_warning("GUI", 7, "W", nullptr);
            EXPECT_EQ(b.reports, (std::vector<Report>{{1, "", -1, "", "two"},
                                                      {2, "", -1, "", "w"},
                                                      {1, "GUI", 12, "M", "T1"},
                                                      {2, "GUI", 7, "W", ""}}));
            EXPECT_EQ(a.reports.size(), 1u);
        }
        report_error("three");
        EXPECT_EQ(a.reports.size(), 2u);
        EXPECT_EQ(a.reports.back(), (Report{1, "", -1, "", "three"}));
        EXPECT_FALSE(error_pending());
        // The global hooks stay out of the way while any handler is current.
        EXPECT_TRUE(g_calls.empty());
    }
    report_error("four");
    report_warning("w2");
    EXPECT_EQ(g_calls, (std::vector<std::string>{"global:four", "global:w2"}));
}

TEST_F(ErrorHandlerTest, HooksBelongToTheCurrentHandler)
{
    EXPECT_EQ(aerr_set_error_function(global_hook), global_hook);
    EXPECT_EQ(aerr_set_warning_function(global_hook), global_hook);
    {
        RecordingHandler a;
        EXPECT_EQ(aerr_get_error_function(), nullptr);
        EXPECT_EQ(aerr_get_warning_function(), nullptr);
        EXPECT_EQ(aerr_set_error_function(handler_hook), handler_hook);
        EXPECT_EQ(aerr_set_warning_function(handler_hook), handler_hook);
        EXPECT_EQ(a.get_legacy_error_function(), handler_hook);
        EXPECT_EQ(a.get_legacy_warning_function(), handler_hook);
        report_error("e");
        report_warning("w");
        EXPECT_EQ(g_calls, (std::vector<std::string>{"handler:e", "handler:w"}));
        EXPECT_TRUE(a.reports.empty());
        {
            RecordingHandler b;
            EXPECT_EQ(aerr_get_error_function(), nullptr);
            EXPECT_EQ(aerr_get_warning_function(), nullptr);
            report_error("inner");
            EXPECT_EQ(b.reports.size(), 1u);
        }
        EXPECT_EQ(aerr_get_error_function(), handler_hook);
        EXPECT_EQ(aerr_get_warning_function(), handler_hook);
        a.set_legacy_error_function(nullptr);
        EXPECT_EQ(aerr_get_error_function(), nullptr);
    }
    EXPECT_EQ(aerr_get_error_function(), global_hook);
    EXPECT_EQ(aerr_get_warning_function(), global_hook);
}

TEST_F(ErrorHandlerTest, HandlerOwnReportsBypassHooksAndKeepTheText)
{
    RecordingHandler a;
    a.set_legacy_error_function(handler_hook);
    a.set_legacy_warning_function(handler_hook);
    set_pending_error("pending text");
    a.report_error("shown");
    EXPECT_FALSE(error_pending());
    EXPECT_EQ(pending_text(), "pending text");
    a.report_error(std::string("s"));
    a.report_error(QString("caf") + QChar(0xE9));

    set_pending_error("still");
    a.report_warning("careful");
    a.report_warning(std::string("w"));
    a.report_warning(QString("q"));
    EXPECT_TRUE(error_pending());
    EXPECT_EQ(pending_text(), "still");
    {
        // Called on a handler that is not current, the report still goes
        // to that handler.
        RecordingHandler b;
        a.report_warning("direct");
        EXPECT_TRUE(b.reports.empty());
    }
    EXPECT_EQ(a.reports, (std::vector<Report>{{1, "", -1, "", "shown"},
                                              {1, "", -1, "", "s"},
                                              {1, "", -1, "", "caf\xC3\xA9"},
                                              {2, "", -1, "", "careful"},
                                              {2, "", -1, "", "w"},
                                              {2, "", -1, "", "q"},
                                              {2, "", -1, "", "direct"}}));
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(ErrorHandlerTest, UnhandledReportsArePrinted)
{
    struct Case {
        const char* name;
        void (*body)();
        std::string err;
        std::string out;
    };
    const Case cases[] = {
        {"handler declines",
         [] {
             RecordingHandler a(false);
             report_error("x");
             report_warning("y\n");
             aerr_process_warning("GUI", 7, "M", "z");
             std::printf("reports=%zu", a.reports.size());
         },
         "ERROR         -001 x: \nWARNING y\nWARNING    GUI0007 z: M\n", "reports=3"},
        {"a declining hook hides the handler",
         [] {
             RecordingHandler a(true);
             a.set_legacy_error_function(declining_hook);
             a.set_legacy_warning_function(declining_hook);
             report_error("x");
             report_warning("y\n");
             std::printf("reports=%zu hooks=%zu", a.reports.size(), g_calls.size());
         },
         "ERROR         -001 x: \nWARNING y\n", "reports=0 hooks=2"},
        {"messages never reach a handler",
         [] {
             RecordingHandler a(true);
             aerr_process_message("GUI", 3, "M", nullptr);
             std::printf("reports=%zu", a.reports.size());
         },
         "INFO       GUI0003: M\n", "reports=0"},
        {"after the last handler is gone",
         [] {
             { RecordingHandler a(true); }
             report_error("x");
         },
         "ERROR         -001 x: \n", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const tql_test::ChildResult result = tql_test::run_in_child(c.body, 10);
        EXPECT_TRUE(result.exited);
        EXPECT_EQ(result.exit_status, 0);
        EXPECT_EQ(result.err, c.err);
        EXPECT_EQ(result.out, c.out);
    }
}

} // namespace
