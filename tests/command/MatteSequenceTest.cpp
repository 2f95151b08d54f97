/// Mattes of sequences, and the blocks that their areas repeat.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class MatteSequenceTest : public MatteFixture {
protected:
    MatteSequenceTest()
    {
        for (int frame = 1; frame <= 4; ++frame) {
            paint(in(numbered("p%d.png", frame)), kWidth, kHeight, noise(frame));
        }
    }

    Outcome fillFrames(const char* output, const char* matte, CommandRun::Arguments more = {}) const
    {
        more.insert(more.end(), {"--frames", "1-4", "--matte", in(matte)});
        return fill("p#.png", output, more);
    }
    LoadedPicture frame(const char* output, int number) const
    {
        return load(in(numbered(output, number)));
    }
};

// Each area keeps an instance of its own, which repeats its own blocks.
TEST_F(MatteSequenceTest, EveryAreaRepeatsItsBlocks)
{
    paintMatte("both.png", masks({kLow, kMiddle}));
    paintMatte("low.png", masks({kLow}));
    paintMatte("middle.png", masks({kMiddle}));
    const Outcome outcome = fillFrames("both%d.png", "both.png", {"temporalConsistancy=on"});
    EXPECT_THAT(outcome.out, HasSubstr("frame 1: 2 areas to fill\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("frame 2:")));
    EXPECT_THAT(outcome.err, Not(HasSubstr("warning")));
    fillFrames("low%d.png", "low.png", {"temporalConsistancy=on"});
    fill("low#.png", "chain#.png",
         {"--frames", "1-4", "--matte", in("middle.png"), "temporalConsistancy=on"});
    fillFrames("fresh%d.png", "both.png");
    for (int number = 1; number <= 4; ++number) {
        EXPECT_EQ(frame("both%d.png", number), frame("chain%d.png", number)) << number;
    }
    EXPECT_EQ(frame("both%d.png", 1), frame("fresh%d.png", 1));
    EXPECT_NE(frame("both%d.png", 3), frame("fresh%d.png", 3));
}

// When areas appear, disappear or move, no area gets the blocks of another.
TEST_F(MatteSequenceTest, ChangedAreasBeginAnew)
{
    paintMatte("m1.png", masks({kLow, kMiddle}));
    paintMatte("m2.png", masks({kMiddle}));
    paintMatte("m3.png", masks({kHigh}));
    paintMatte("m4.png", masks({kHigh, kMiddle}));
    const Outcome outcome = fillFrames("on%d.png", "m#.png", {"temporalConsistancy=on"});
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("frame 1: 2 areas"), HasSubstr("frame 2: 1 area to"),
                                   HasSubstr("frame 4: 2 areas")));
    EXPECT_THAT(outcome.err, HasSubstr("m2.png: the areas differ from those of the frame before"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("m3.png")));
    const Outcome plain = fillFrames("off%d.png", "m#.png");
    EXPECT_THAT(plain.err, Not(HasSubstr("the areas differ")));
    for (int number = 1; number <= 4; ++number) {
        EXPECT_EQ(frame("on%d.png", number), frame("off%d.png", number)) << number;
    }
}

TEST_F(MatteSequenceTest, FramesWithoutAMaskAreTheSource)
{
    for (const int number : {1, 4}) paintMatte(numbered("m%d.png", number), masks({kLow, kMiddle}));
    for (const int number : {2, 3}) paintMatte(numbered("m%d.png", number), masks({}));
    paintMatte("still.png", masks({kLow, kMiddle}));
    const Outcome outcome = fillFrames("o%d.png", "m#.png", {"temporalConsistancy=on"});
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("m2.png: masks nothing"), Not(HasSubstr("m3.png"))));
    EXPECT_EQ(frame("o%d.png", 2), frame("p%d.png", 2));
    fillFrames("still%d.png", "still.png", {"temporalConsistancy=on"});
    EXPECT_EQ(frame("o%d.png", 4), frame("still%d.png", 4)) << "the blocks of frame 1 again";
}

}  // namespace
}  // namespace Tesseret::Command
