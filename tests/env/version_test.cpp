// kps_version_str: "VERSION.FIX YYYY-MM-DD", optionally after "PREFIX (*) ".
#include <tql70/process_env.h>

#include <gtest/gtest.h>

#include <ctime>
#include <regex>
#include <string>

TEST(KpsVersionStr, EmptyPrefixGivesVersionFixLevelAndBuildDate)
{
    const std::string text = kps_version_str("");
    SCOPED_TRACE(text);
    std::smatch m;
    ASSERT_TRUE(std::regex_match(text, m, std::regex(R"(\d+\.\d+\.\d+ (\d{4})-(\d{2})-(\d{2}))")));
    EXPECT_EQ(text.rfind(TQL70_PROJECT_VERSION " ", 0), 0u); // version, point, fix level

    // The build date is a real calendar date, and not later than today.
    std::tm date{};
    date.tm_year = std::stoi(m[1]) - 1900;
    date.tm_mon = std::stoi(m[2]) - 1;
    date.tm_mday = std::stoi(m[3]);
    date.tm_hour = 12;
    std::tm normalised = date;
    const std::time_t when = timegm(&normalised);
    EXPECT_EQ(normalised.tm_mon, date.tm_mon);
    EXPECT_EQ(normalised.tm_mday, date.tm_mday);
    EXPECT_GE(date.tm_year + 1900, 2024);
    EXPECT_LE(when, std::time(nullptr) + 24 * 3600);
}

TEST(KpsVersionStr, PrefixComesBeforeTheSameText)
{
    const std::string plain = kps_version_str("");
    EXPECT_EQ(std::string(kps_version_str("x")), "x (*) " + plain);
    EXPECT_EQ(std::string(kps_version_str("Design Tool 3")), "Design Tool 3 (*) " + plain);
}

TEST(KpsVersionStr, ResultLivesInOneSharedBuffer)
{
    const std::string plain = kps_version_str("");
    // An earlier result shows the newest text while it fits.
    const char* first = kps_version_str("a prefix long enough for every later text");
    const char* second = kps_version_str("x");
    EXPECT_EQ(first, second);
    EXPECT_EQ(std::string(first), "x (*) " + plain);
    EXPECT_EQ(kps_version_str(""), first);
    EXPECT_EQ(std::string(first), plain);
}
