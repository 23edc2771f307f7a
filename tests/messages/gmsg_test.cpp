// gmsg_*: opening a catalogue from the configuration files (defaults, the
// fallback configuration, the language's extension and font), retrieval
// with its error codes, separators turned into newlines, and the reloading
// of the set when another set or handle was used in between.
#include <tql70/gerror.h>
#include <tql70/gmsg.h>
#include <tql70/gui_env.h>

#include "support/scoped_env.h"

#include <gtest/gtest.h>

#include <string>

using namespace tql_test;

namespace {

class GmsgTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        gui_env_deinit(0);
        const std::string msg = sandbox_.path() + "/msg";
        sandbox_.write_file("root/config/zqtarvex.cfg",
                            "ZQTARVEX_MSG_FILE=" + msg + "/directory.cfg\n"
                            "ENGLISH_MSG_EXT=msg\nENGLISH_MSG_FONT=9x15bold\n"
                            "FRENCH_MSG_EXT=fr\n"
                            "OTHER_MSG_FILE=" + msg + "/none.cfg\n");
        sandbox_.write_file("msg/directory.cfg", "ERRORS=" + msg + "/errors\nMISSING=" + msg + "/gone\nNAMES=%MSGDIR/names\n"
                                                 "MSGDIR=" + msg + "\n");
        sandbox_.write_file("msg/errors", "first\nsecond\x0epart\x0e" "end\n\tthird\n");
        sandbox_.write_file("msg/errors.fr", "premier\n");
        sandbox_.write_file("msg/names.msg", "alpha\n");
    }
    void TearDown() override { gui_env_deinit(0); }

    std::string retrieve(GmsgHandle handle, const char* set, int number)
    {
        char buffer[GMSG_MESSAGE_SIZE] = "";
        if (!gmsg_retrieve_message(handle, set, number, buffer)) {
            return "<error " + std::to_string(GuiErrno) + ">";
        }
        return buffer;
    }

    SandboxInstallation sandbox_;
    ScopedEnv language_{"ZQTARVEX_LANGUAGE", std::nullopt};
};

} // namespace

TEST_F(GmsgTest, OpenReadsSettingsOfTheConfiguration)
{
    struct Case {
        const char* name;
        const char* config;
        const char* prefix;
        const char* language;
        bool opens;
        int code;
        const char* font;
    } cases[] = {
        {"defaults fall back to zqtarvex", nullptr, nullptr, nullptr, true, 7, "9x15bold"},
        {"language without a font", "zqtarvex", "", "FRENCH", true, 9, "9x15bold"},
        {"no directory file variable", "zqtarvex", "nothing", nullptr, false, 10, nullptr},
        {"directory file missing", "zqtarvex", "OTHER", nullptr, false, 12, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        GmsgHandle handle = gmsg_open(c.config, c.prefix, c.language);
        EXPECT_EQ(handle != nullptr, c.opens);
        EXPECT_EQ(GuiErrno, c.code);
        if (handle) {
            EXPECT_STREQ(gmsg_query_font(handle), c.font);
            EXPECT_EQ(gmsg_close(handle), 1);
        }
    }
    EXPECT_EQ(gmsg_close(nullptr), 1);
}

TEST_F(GmsgTest, RetrieveMessagesAndErrorCodes)
{
    GmsgHandle handle = gmsg_open("zqtarvex", nullptr, nullptr);
    ASSERT_NE(handle, nullptr);
    struct Case {
        GmsgHandle handle;
        const char* set;
        int number;
        std::string expected;
    } cases[] = {
        {handle, "ERRORS", 1, "first"},
        {handle, "errors", 2, "second\npart\nend"}, // set names ignore case
        {handle, "ERRORS", 3, " third"},             // a TAB becomes a blank
        {handle, "ERRORS", 0, "<error 20>"},
        {handle, "ERRORS", 4, "<error 20>"},
        {handle, "NAMES", 1, "alpha"}, // expanded value, ".msg" added
        {handle, "NOSUCH", 1, "<error 15>"},
        {handle, "MISSING", 1, "<error 12>"},
        {handle, nullptr, 1, "<error 18>"},
        {nullptr, "ERRORS", 1, "<error 19>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.set ? c.set : "null") + " " + std::to_string(c.number));
        EXPECT_EQ(retrieve(c.handle, c.set, c.number), c.expected);
    }
    EXPECT_EQ(gmsg_check_index(handle, "ERRORS", 3), 1);
    EXPECT_EQ(gmsg_close(handle), 1);

    GmsgHandle french = gmsg_open("zqtarvex", nullptr, "FRENCH");
    ASSERT_NE(french, nullptr);
    EXPECT_EQ(retrieve(french, "ERRORS", 1), "premier");
    EXPECT_EQ(gmsg_close(french), 1);
}

TEST_F(GmsgTest, SetIsReloadedAfterAnotherSetOrHandle)
{
    GmsgHandle first = gmsg_open("zqtarvex", nullptr, nullptr);
    GmsgHandle second = gmsg_open("zqtarvex", nullptr, nullptr);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(retrieve(first, "ERRORS", 1), "first");
    sandbox_.write_file("msg/errors", "changed\n");
    EXPECT_EQ(retrieve(first, "ERRORS", 1), "first"); // the loaded set is reused
    EXPECT_EQ(retrieve(second, "NAMES", 1), "alpha");
    EXPECT_EQ(retrieve(first, "ERRORS", 1), "changed");
    sandbox_.write_file("msg/errors", "again\n");
    EXPECT_EQ(retrieve(first, "NAMES", 1), "alpha");
    EXPECT_EQ(retrieve(first, "ERRORS", 1), "again");
    EXPECT_EQ(gmsg_close(first), 1);
    EXPECT_EQ(gmsg_close(second), 1);
}
