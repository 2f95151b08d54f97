#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/CommandRun.h"
#include "tests/fixtures/TemporaryFolder.h"
#include "tests/fixtures/TestPictures.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ViewTest : public testing::Test {
protected:
    ViewTest()
    {
        fs::current_path(folder_.path());
        paint("a.png", 64, 48, noise(1));
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }
    ~ViewTest() override { fs::current_path("/"); }

    TemporaryFolder folder_;
};

TEST_F(ViewTest, WithoutADisplayItSaysSoInOneLine)
{
    const Outcome outcome = runProgram({"view", "--source", "a.png"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, AllOf(StartsWith("tesseret: no display: `tesseret view` needs"),
                                   HasSubstr("`tesseret render` does without")));
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1);
}

TEST_F(ViewTest, WhatIsWrongWithTheFilesComesFirst)
{
    for (const auto& [arguments, said] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--source", "none.png"}, "none.png: no such file"},
             {{"--source", "a.png", "blockSize=3"}, "blockSize"},
             {{"--source", "a.png", "--size", "20x20"}, "--size 20x20: expected WxH"},
             {{"--source", "a.png", "--size", "800x600x3"}, "--size 800x600x3: expected WxH"},
             {{"--matte", "a.png"}, "--matte requires --source"}}) {
        std::vector<std::string> all{"view"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = run(all);
        EXPECT_EQ(outcome.code, 2) << said;
        EXPECT_THAT(outcome.err, HasSubstr(said));
    }
}

}  // namespace
}  // namespace Tesseret::Command
