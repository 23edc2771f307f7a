// kps_version_str: "VERSION.FIX YYYY-MM-DD", optionally after "PREFIX (*) ".
#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <regex>
#include <string>

TEST(KpsVersionStr, VersionAndDateAfterAnOptionalPrefixInOneBuffer)
{
    const std::string plain = kps_version_str("");
    EXPECT_TRUE(std::regex_match(plain, std::regex(R"(\d+\.\d+\.\d+ 20\d\d-[01]\d-[0-3]\d)"))) << plain;
    EXPECT_EQ(plain.rfind(TQL70_PROJECT_VERSION " ", 0), 0u);
    // An earlier result shows the newest text while it fits.
    const char* first = kps_version_str("a prefix long enough for every later text");
    const char* second = kps_version_str("Design Tool 3");
    EXPECT_EQ(first, second);
    EXPECT_EQ(std::string(first), "Design Tool 3 (*) " + plain);
}
