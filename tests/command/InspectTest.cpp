#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/fixtures/CommandRun.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A sanitizer's libraries need the C library of this machine.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr const char* kNewestGlibc = "99";
#else
constexpr const char* kNewestGlibc = "2.17";
#endif

TEST(InspectTest, OurBundleIsWell)
{
    const Outcome text = run({"inspect", TESSERET_BUNDLE, "--glibc", kNewestGlibc});
    EXPECT_EQ(text.code, 0) << text.out;
    EXPECT_THAT(text.out,
                AllOf(HasSubstr("com.orvane.brisant.tesseret 2.1030000\n"),
                      HasSubstr("Filter: clips Output, Source; "), HasSubstr("\nall is well\n")));
    const Outcome json = run({"inspect", TESSERET_BUNDLE, "--glibc", kNewestGlibc, "--json"});
    EXPECT_EQ(json.code, 0);
    const auto report = nlohmann::json::parse(json.out);
    EXPECT_TRUE(report.at("isWell"));
    EXPECT_EQ(report.at("plugins").at(0).at("contexts").size(), 2u);
}

TEST(InspectTest, FindingsAreLinesAndExitCodeOne)
{
    const Outcome text = run({"inspect", INVERT_PLUGIN});
    EXPECT_EQ(text.code, 1);
    EXPECT_THAT(text.out,
                AllOf(HasSubstr("\nwarning: libinvert_plugin.so: it is a library outside"),
                      HasSubstr("; hosts find it in NAME.ofx.bundle"),
                      HasSubstr("\n0 errors, 1 warning\n")));
    const Outcome json = run({"inspect", INVERT_PLUGIN, "--json", "--glibc", "2.1"});
    EXPECT_EQ(json.code, 1);
    const auto report = nlohmann::json::parse(json.out);
    EXPECT_FALSE(report.at("isWell"));
    EXPECT_EQ(report.at("findings").size(), 2u);
    EXPECT_EQ(report.at("findings").at(1).at("severity"), "warning");
}

TEST(InspectTest, UnusableRequestsAreExitCodeTwo)
{
    EXPECT_EQ(run({"inspect"}).code, 2);
    const Outcome missing = run({"inspect", "none.ofx.bundle"});
    EXPECT_EQ(missing.code, 2);
    EXPECT_THAT(missing.err, HasSubstr("none.ofx.bundle: no such file or folder"));
    EXPECT_EQ(run({"inspect", INVERT_PLUGIN, "--glibc", "new"}).code, 2);
    EXPECT_EQ(run({"inspect", INVERT_PLUGIN, "--time-limit", "0"}).code, 2);
}

}  // namespace

}  // namespace Tesseret::Command
