// The current configuration and the astr_ environment wrappers, on
// configuration files in the fixture's temporary folder; then the astr_
// string helpers.
#include "env/env_test_support.h"

#include "env/env_store.h"

#include <tql70/astr.h>
#include <tql70/gmem.h>

#include <string>

namespace tql_test {
namespace {

// A returned string as text ("<null>" for null); the string is freed.
std::string take(char* text)
{
    if (!text) return "<null>";
    std::string copy = text;
    gmem_ee_free(text);
    return copy;
}

int open_environment_count()
{
    int count = 0;
    for (GuiEnv env = tql::env::open_environments(); env; env = env->next) ++count;
    return count;
}

class AstrEnvironment : public EnvTest {
protected:
    void SetUp() override
    {
        site_ = sandbox_.write_file("root/config/tool.cfg",
                                    "# site settings\nSITE_ONLY=s\nSHARED=site\nREF=%SITE_ONLY/x\n");
        sandbox_.write_file("root/custom/config/tool.cfg", "CUSTOM_ONLY=c\nSHARED=custom\n");
        sandbox_.write_file("home/zqtarvex/config/tool.cfg", "SHARED=home\n");
        local_ = sandbox_.write_file("tool.cfg", "SHARED=local\nEMPTY=\nLONG=" + std::string(300, 'l') +
                                                     "\nTWICE=%LONG%LONG\n");
    }
    void TearDown() override
    {
        // Forget the current configuration before the fixture closes every
        // environment, so no test inherits it.
        astr_set_environment(nullptr);
        EnvTest::TearDown();
    }

    std::string site_;
    std::string local_;
};

TEST_F(AstrEnvironment, CurrentConfigurationLookupsAndClosing)
{
    char buffer[64];
    EXPECT_EQ(astr_environment_string("SHARED", buffer, sizeof buffer), 0); // no current configuration
    ASSERT_EQ(astr_set_environment("tool"), 1);
    EXPECT_EQ(take(astr_environment_value("SHARED")), "local");
    // The expansion needs more room than the stored value.
    EXPECT_EQ(take(astr_environment_value("TWICE")), std::string(600, 'l'));
    EXPECT_EQ(take(astr_environment_value(nullptr)), "<null>");
    // An empty value expands to nothing, which the expansion treats as a
    // failure.
    EXPECT_EQ(take(astr_environment_value("EMPTY")), "<null>");

    EXPECT_EQ(astr_environment_string("REF", buffer, sizeof buffer), 1);
    EXPECT_STREQ(buffer, "s/x");
    // A buffer that is too small still reports the variable as present.
    char small[4] = "old";
    EXPECT_EQ(astr_environment_string("SHARED", small, sizeof small), 1);
    EXPECT_STREQ(small, "old");

    EXPECT_EQ(astr_close_environment(), 1);
    EXPECT_EQ(take(astr_environment_value("SHARED")), "<null>");

    // A current environment closed behind its back is not used; lookups by
    // name open the files anew.
    ASSERT_EQ(astr_set_environment("tool"), 1);
    gui_env_deinit(0);
    EXPECT_EQ(take(astr_environment_value("SHARED")), "<null>");
    EXPECT_EQ(astr_close_environment(), 0);
    EXPECT_EQ(take(astr_get_environment_value("tool", "SHARED", ASTR_SCOPE_HOME)), "home");

    // A configuration file is readable; a directory is not.
    EXPECT_EQ(astr_config_file_is_readable("root\\config\\tool.cfg"), 1);
    EXPECT_EQ(astr_config_file_is_readable("root\\config"), 0);
    EXPECT_EQ(astr_config_file_is_readable(nullptr), 0);
}

TEST_F(AstrEnvironment, ScopesChooseTheLevel)
{
    const struct { const char* variable; int scope; const char* value; } cases[] = {
        {"SHARED", ASTR_SCOPE_HOME, "home"},      {"SHARED", ASTR_SCOPE_SITE, "site"},
        {"SHARED", 17, "local"},                  {"CUSTOM_ONLY", ASTR_SCOPE_SITE, "<null>"},
        {"REF", ASTR_SCOPE_ALL, "s/x"},
    };
    // Once through configurations opened for each call, once through the
    // current configuration.
    for (bool current : {false, true}) {
        if (current) {
            ASSERT_EQ(astr_set_environment("tool"), 1);
        }
        ASSERT_EQ(gui_env_init(), 1); // opening a configuration makes the default one
        const int open_before = open_environment_count();
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.variable) + " scope " + std::to_string(c.scope) + (current ? " current" : ""));
            EXPECT_EQ(take(astr_get_environment_value("tool", c.variable, c.scope)), c.value);
            EXPECT_EQ(astr_environment_var_exists("tool", c.variable, c.scope), std::string(c.value) != "<null>" ? 1 : 0);
        }
        // Configurations opened for a call are closed again.
        EXPECT_EQ(open_environment_count(), open_before);
    }
    EXPECT_EQ(astr_environment_var_exists(nullptr, "SHARED", ASTR_SCOPE_ALL), 0);
}

TEST_F(AstrEnvironment, SetValueSavesOpenedAndCurrentConfigurations)
{
    const std::string before = read_file(local_);
    // A configuration opened for the call is saved at once with save and
    // forgets the change without.
    EXPECT_EQ(astr_set_environment_value("tool", "SITE_NEW", "s2", ASTR_SCOPE_SITE, 1), 1);
    EXPECT_EQ(read_file(site_), "# site settings\nSITE_ONLY=s\nSHARED=site\nREF=%SITE_ONLY/x\nSITE_NEW=s2\n");
    EXPECT_EQ(astr_set_environment_value("tool", "UNSAVED", "u", ASTR_SCOPE_LOCAL, 0), 1);
    EXPECT_EQ(take(astr_get_environment_value("tool", "UNSAVED", ASTR_SCOPE_ALL)), "<null>");
    // Failures: no value for a new variable, no configuration.
    EXPECT_EQ(astr_set_environment_value("tool", "NOT_THERE", nullptr, ASTR_SCOPE_LOCAL, 1), 0);
    EXPECT_EQ(astr_set_environment_value(nullptr, "X", "x", ASTR_SCOPE_LOCAL, 1), 0);

    sandbox_.write_file("other.cfg", "OTHER=o\n");
    ASSERT_EQ(astr_set_environment("tool"), 1);
    // Without save the change stays in the current environment only.
    EXPECT_EQ(astr_set_environment_value("tool", "KEPT", "k", ASTR_SCOPE_LOCAL, 0), 1);
    EXPECT_EQ(take(astr_environment_value("KEPT")), "k");
    EXPECT_EQ(read_file(local_), before);
    // With save every pending change is written and the configuration is
    // opened again, now reading the file (edited outside meanwhile).
    sandbox_.write_file("tool.cfg", before + "EDITED=outside\n");
    EXPECT_EQ(astr_set_environment_value("tool", "SAVED", "s", ASTR_SCOPE_LOCAL, 1), 1);
    EXPECT_NE(read_file(local_).find("KEPT=k\nSAVED=s\n"), std::string::npos);
    EXPECT_EQ(take(astr_environment_value("EDITED")), "outside");

    // Changing the current configuration saves the old one's changes.
    ASSERT_EQ(astr_set_environment_value("tool", "SWITCHED", "w", ASTR_SCOPE_LOCAL, 0), 1);
    ASSERT_EQ(astr_set_environment("other"), 1);
    EXPECT_NE(read_file(local_).find("SWITCHED=w\n"), std::string::npos);
    EXPECT_EQ(take(astr_environment_value("SAVED")), "<null>");

    // A null or empty name forgets the current configuration.
    EXPECT_EQ(astr_set_environment(""), 0);
    EXPECT_EQ(take(astr_environment_value("OTHER")), "<null>");
}

TEST(AstrStrings, ExtractLineCompareAndTail)
{
    // next: the offset of the returned pointer, -1 for null.
    char line[16];
    const struct { const char* text; int max; const char* line; long next; } lines[] = {
        {"abcd", 2, "ab", 3}, {"ab", 2, "ab", -1}, {"abc", 0, "", 1}, {"a\n\nb", 9, "a", 2},
        {"abcdef\n", 3, "abc", 4}};
    for (const auto& c : lines) {
        SCOPED_TRACE(c.text);
        const char* next = astr_extract_line_from_multilines(c.text, line, c.max);
        EXPECT_STREQ(line, c.line);
        EXPECT_EQ(next, c.next < 0 ? nullptr : c.text + c.next);
    }
    EXPECT_EQ(astr_extract_line_from_multilines(nullptr, line, 3), nullptr);
    // tail: astr_str_matches_at_tail(a, b).
    const struct { const char* a; const char* b; int equal; int tail; } pairs[] = {
        {"abc", "ABC", 1, 0}, {"abc", "abcd", 0, 0}, {"abab", "ab", 0, 1}, {"x", "", 0, 1},
        {"abAB", "ab", 0, 0}, {"a[", "A{", 0, 0}, {"\xc3\xa9", "\xc3\x89", 0, 0}, {nullptr, nullptr, 0, 0}};
    for (const auto& c : pairs) {
        SCOPED_TRACE(std::string(c.a ? c.a : "(null)") + " / " + (c.b ? c.b : "(null)"));
        EXPECT_EQ(astr_strings_equal(c.a, c.b), c.equal);
        EXPECT_EQ(astr_str_matches_at_tail(c.a, c.b), c.tail);
    }
}

TEST(AstrStrings, LeafPathAndExtent)
{
    const struct { const char* path; const char* leaf; const char* directory; const char* without_extent; } cases[] = {
        {"dir.d/file.tar.gz", "file.tar.gz", "dir.d", "dir.d\\file"}, {"plain.cfg", "plain.cfg", "<null>", "plain"},
        {"x/.hidden", ".hidden", "x", "x\\"}, {"\\\\srv\\share\\f", "f", "\\\\srv\\share", "\\\\srv\\share\\f"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        std::string a = c.path, b = c.path, d = c.path;
        EXPECT_STREQ(astr_get_leaf_name(&a[0]), c.leaf);
        EXPECT_EQ(take(astr_get_path_name(&b[0])), c.directory);
        EXPECT_EQ(astr_remove_extent(&d[0]), 1);
        EXPECT_STREQ(d.c_str(), c.without_extent);
    }
    EXPECT_EQ(astr_remove_extent(nullptr), 0);
    EXPECT_EQ(astr_get_leaf_name(nullptr), nullptr);
    EXPECT_EQ(astr_get_path_name(nullptr), nullptr);
}

TEST(AstrStrings, DatasetNamesVarFunctionsAndCopies)
{
    for (const auto& [name, expected] : {std::pair{"my-data.set 2", "my_data_set_2"}, std::pair{"2.5@x", "_2_5_x"}}) {
        EXPECT_EQ(take(astr_translate_kps_dataset_name(name)), expected);
    }
    for (const char* name : {"", "var(\"inner\")"}) {
        SCOPED_TRACE(name);
        char* text = astr_add_var_fn(name);
        EXPECT_EQ(std::string(text), std::string("var(\"") + name + "\")");
        EXPECT_EQ(take(astr_delete_var_fn(text)), name);
        gmem_ee_free(text);
    }
    for (const char* malformed : {"var(name)", "VAR(\"x\")", "var(\"x\") ", "var(\")"}) {
        SCOPED_TRACE(malformed);
        EXPECT_EQ(take(astr_delete_var_fn(malformed)), "<null>");
    }
    EXPECT_EQ(take(astr_new_string("copy me")), "copy me");
    for (auto make : {astr_translate_kps_dataset_name, astr_add_var_fn, astr_delete_var_fn, astr_new_string}) {
        EXPECT_EQ(make(nullptr), nullptr);
    }
}



} // namespace
} // namespace tql_test
