#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/Sequence.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Files {
namespace {

using testing::ElementsAre;

TEST(FrameRangeTest, ReadsWhatPeopleWrite)
{
    EXPECT_THAT(parseFrames("1001"), ElementsAre(1001));
    EXPECT_THAT(parseFrames("8-11"), ElementsAre(8, 9, 10, 11));
    EXPECT_THAT(parseFrames("1-8x3"), ElementsAre(1, 4, 7));
    EXPECT_THAT(parseFrames("-2-0"), ElementsAre(-2, -1, 0));
    EXPECT_THAT(parseFrames("-5--4"), ElementsAre(-5, -4));
    EXPECT_THAT(parseFrames("7,1-3,2"), ElementsAre(7, 1, 2, 3));
    EXPECT_THAT(parseFrames("2147483646-2147483647"), ElementsAre(2147483646, 2147483647));
    for (const char* wrong : {"", "a", "1-", "1-2-3", "5-1", "1-9x0", "1,", "1 2", "0-99999999",
                              "99999999999", "1-9x-2"}) {
        EXPECT_THROW(parseFrames(wrong), std::invalid_argument) << wrong;
    }
    EXPECT_EQ(framesText({1, 2, 3, 7, 9, 10}), "1-3,7,9-10");
}

TEST(SequencePatternTest, PutsTheNumberAtTheLastMark)
{
    struct Case {
        const char* pattern;
        int frame;
        const char* file;
    };
    for (const auto& [pattern, frame, file] :
         {Case{"plate.####.exr", 7, "plate.0007.exr"}, Case{"plate.#.exr", 1001, "plate.1001.exr"},
          Case{"a#b/shot#2.##.png", 5, "a#b/shot#2.05.png"}, Case{"p%04d.png", 12, "p0012.png"},
          Case{"p%d.png", 12, "p12.png"}, Case{"p.###.png", -3, "p.-003.png"},
          Case{"still.png", 5, "still.png"}, Case{"100%.png", 5, "100%.png"}}) {
        EXPECT_EQ(SequencePattern(pattern).file(frame).string(), file) << pattern;
    }
    EXPECT_TRUE(SequencePattern("a.##.png").isSequence());
    EXPECT_FALSE(SequencePattern("a#/b.png").isSequence());
}

TEST(SequencePatternTest, ListsAllMissingFrames)
{
    const Fixtures::TemporaryFolder folder;
    for (const char* name : {"p.01.png", "p.03.png"}) std::ofstream(folder / name) << "x";
    EXPECT_THAT(SequencePattern(folder / "p.##.png").missing({1, 2, 3, 4}), ElementsAre(2, 4));
}

}  // namespace
}  // namespace Tesseret::Files
