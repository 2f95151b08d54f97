/// Parts of a matte, cropped textures and lists of steps in `tesseret render`.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::HasSubstr;

class FillStepsTest : public MatteFixture {
protected:
    FillStepsTest()
    {
        paintMatte("all.png", masks({kLow, kMiddle, kHigh}));
        paintMatte("low.png", masks({kLow}));
        paintMatte("high.png", masks({kHigh}));
    }
};

TEST_F(FillStepsTest, NumberedAreasAreThoseOfTheirOwnMattes)
{
    const LoadedPicture both = filled({"--matte", in("all.png"), "--areas", "1,3"});
    fill("a.png", "low-filled.png", {"--matte", in("low.png")});
    EXPECT_EQ(both, filled({"--matte", in("high.png")}, "low-filled.png"));
    const Outcome beyond = fill("a.png", "o.png", {"--matte", in("all.png"), "--areas", "3,7"});
    EXPECT_THAT(beyond.err, HasSubstr("all.png: has 3 areas, so there is no area 7"));
    for (const char* text : {"0", "2,x", "some"}) {
        const Outcome wrong = render("a.png", "o.png", {"--matte", in("all.png"), "--areas", text});
        EXPECT_EQ(wrong.code, 2) << text;
        EXPECT_THAT(wrong.err, HasSubstr("--areas")) << text;
    }
}

// The line goes through the middles of pixels, which belong to the side; both sides together are
// the whole.
TEST_F(FillStepsTest, ASideOfALineIsThatPartOfTheMatte)
{
    const Spot lower{30, 85, 60, 100};
    paintMatte("lower.png", masks({lower}));
    paintMatte("whole.png", masks({kMiddle}));
    const LoadedPicture expected = filled({"--matte", in("lower.png")});
    EXPECT_EQ(filled({"--matte", in("whole.png"), "--matte-side", "0,85.5,90"}), expected);
    EXPECT_EQ(filled({"--matte", in("whole.png"), "--matte-side", "0,85,90"}), expected);
    EXPECT_NE(filled({"--matte", in("whole.png"), "--matte-side", "0,85.5,-90"}), expected);
}

TEST_F(FillStepsTest, ACropOfTheSourceIsATextureInItsPlace)
{
    const LoadedPicture cropped =
        filled({"--matte", in("low.png"), "--texture1-crop", "100,20,190,110"});
    EXPECT_EQ(filled({"--matte", in("low.png"), "--texture1", in("a.png"), "--texture1-crop",
                      "100,20,190,110", "avoidFillRegion=on"}),
              cropped);
    EXPECT_NE(filled({"--matte", in("low.png")}), cropped);
    const Outcome outside = render("a.png", "o.png", {"--texture1-crop", "500,0,600,90"});
    EXPECT_EQ(outside.code, 2);
    EXPECT_THAT(outside.err, HasSubstr("--texture1-crop"));
}

// Steps are renders one after another.
TEST_F(FillStepsTest, AListOfStepsIsAChainOfRenders)
{
    const char* list =
        R"({"context": "General", "steps": [
            {"areas": [3], "matteGrow": 4, "parameters": {"seed": 5}},
            {"areas": [1], "texture1Crop": [100, 20, 190, 110], "parameters": {"seed": 9}}]})";
    const LoadedPicture chained = filled({"--matte", in("all.png"), "--parameters", list});
    fill("a.png", "first.png", {"--matte", in("high.png"), "--matte-grow", "4", "seed=5"});
    EXPECT_EQ(filled({"--matte", in("low.png"), "--texture1-crop", "100,20,190,110", "seed=9"},
                     "first.png"),
              chained);
}

TEST_F(FillStepsTest, WrongStepsAreRefused)
{
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {R"({"steps": []})", "holds no parameters"},
        {R"({"steps": [{"areas": [0], "parameters": {}}]})", "\"areas\": [0]"},
        {R"({"parameters": {}, "matteGrow": -1})", "\"matteGrow\": -1"},
        {R"({"parameters": {}, "matteSide": [1, 2]})", "\"matteSide\""},
        {R"({"parameters": {}, "texture2Crop": [9, 9, 1, 1]})", "\"texture2Crop\""},
        {R"({"parameters": )", "is invalid JSON at line 1"},
    };
    for (const auto& wrong : cases) {
        const Outcome outcome =
            render("a.png", "o.png", {"--matte", in("all.png"), "--parameters", wrong.text});
        EXPECT_EQ(outcome.code, 2) << wrong.text;
        EXPECT_THAT(outcome.err, HasSubstr(wrong.message));
    }
}

}  // namespace
}  // namespace Tesseret::Command
