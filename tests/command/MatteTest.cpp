/// What is filled: mattes, their areas, and the source's alpha.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kReach = 16;  // 5 * (pathWidth + edgeBlend), and one pixel round the matte

using MatteTest = MatteFixture;

TEST_F(MatteTest, EveryPolarityFillsTheSame)
{
    paintMatte("m.png", masks({kMiddle}));
    paintMatte("inverse.png", masks({kMiddle}, {}, true));
    paintMatte("alpha.png", withAlpha(noise(9), masks({kMiddle})));
    paintMatte("colour.png", [](int x, int y) {
        return kMiddle.holds(x, y) ? std::vector{0, 90, 0} : std::vector{0, 0, 0};
    });
    const LoadedPicture wanted = filled({"--matte", in("m.png")});
    EXPECT_NE(wanted, load(in("a.png")));
    EXPECT_EQ(filled({"--matte", in("inverse.png"), "--matte-inverted"}), wanted);
    EXPECT_EQ(filled({"--matte", in("inverse.png"), "fillRegion=4"}), wanted);
    EXPECT_EQ(filled({"--matte", in("alpha.png")}), wanted);
    EXPECT_EQ(filled({"--matte", in("colour.png")}), wanted);
    EXPECT_NE(filled({"--matte", in("m.png"), "--matte-inverted"}), wanted);
}

TEST_F(MatteTest, TheSourcesAlphaFillsLikeTheSameMatte)
{
    paintMatte("m.png", masks({kMiddle}));
    paintMatte("set.png", withAlpha(noise(1), masks({kMiddle})));
    paintMatte("clear.png", withAlpha(noise(1), masks({kMiddle}, {}, true)));
    const CommandRun::Arguments matte{"--matte", in("m.png"), "--matte-window", "full"};
    EXPECT_EQ(filled({"--fill-alpha"}, "set.png"), filled(matte, "set.png"));
    EXPECT_EQ(filled({"--fill-alpha-inverted"}, "clear.png"), filled(matte, "clear.png"));
    EXPECT_EQ(filled({"--fill-alpha", "--context", "Filter"}, "set.png"), filled(matte, "set.png"));
    EXPECT_NE(filled({"--fill-alpha"}, "set.png"), load(in("set.png")));
}

TEST_F(MatteTest, SaysWhatItTook)
{
    paintMatte("grey.png", masks({kMiddle}));
    paintMatte("alpha.png", withAlpha(noise(9), masks({kMiddle})));
    paintMatte("colour.png", noise(1));
    const auto said = [&](const char* matte) {
        return fill("a.png", "out.png", {"--matte", in(matte)}).out;
    };
    EXPECT_THAT(said("grey.png"), HasSubstr("matte taken from its grey\n"));
    EXPECT_THAT(said("alpha.png"), HasSubstr("matte taken from its alpha\n"));
    EXPECT_THAT(said("colour.png"), HasSubstr("matte taken from its luminance\n"));
    EXPECT_THAT(fill("alpha.png", "out.png", {"--fill-alpha"}).out,
                HasSubstr("matte taken from the source's alpha\n"));
    EXPECT_THAT(fill("a.png", "out.png", {"--matte", in("grey.png"), "--quiet"}).out, IsEmpty());
}

TEST_F(MatteTest, AnAlphaThatIsFullEverywhereIsNoMatte)
{
    const auto white = [](Spot spot) {
        return [spot](int x, int y) { return std::vector(3, spot.holds(x, y) ? 255 : 0); };
    };
    const Painter full = [](int, int) { return std::vector{255}; };
    paintMatte("m.png", masks({kMiddle}));
    paintMatte("o.1.png", withAlpha(white(kMiddle), full));
    paintMatte("o.2.png", withAlpha(white(kLow), full));
    paintMatte("o.3.png", withAlpha(white(kMiddle), masks({kLow})));
    const Outcome outcome = fill("a.png", "f.#.png", {"--matte", in("o.#.png"), "--frames", "1-3"});
    EXPECT_EQ(outcome.err, "tesseret: warning: " + in("o.1.png") +
                               ": its alpha is full everywhere, so the matte is taken from "
                               "its colours\n");
    EXPECT_THAT(outcome.out, HasSubstr("matte taken from its luminance\n"));
    EXPECT_THAT(outcome.out, HasSubstr("frame 3: matte taken from its alpha\n"));
    EXPECT_EQ(load(in("f.1.png")), filled({"--matte", in("m.png")}));
    paintMatte("m.png", masks({kLow}));
    const LoadedPicture low = filled({"--matte", in("m.png")});
    EXPECT_EQ(load(in("f.2.png")), low);
    EXPECT_EQ(load(in("f.3.png")), low);
}

// Each area is filled over the result of the one before, from the lowest on.
TEST_F(MatteTest, AreasAreFilledOneAfterAnother)
{
    paintMatte("all.png", masks({kLow, kMiddle, kHigh}, {kHole}));
    paintMatte("island.png", [](int x, int y) {
        const bool isHole = kHole.holds(x, y) && !kIsland.holds(x, y);
        return std::vector{holds({kLow, kMiddle, kHigh}, x, y) && !isHole ? 255 : 0};
    });
    const std::vector<Spot> spots{kLow, kMiddle, kHigh};
    std::string source = "a.png";
    for (int i = 0; i < 3; ++i) {
        const std::string matte = numbered("m%d.png", i);
        const std::string output = numbered("step%d.png", i);
        paintMatte(matte, masks({spots[static_cast<std::size_t>(i)]}));
        fill(source, output, {"--matte", in(matte)});
        source = output;
    }
    const LoadedPicture wanted = load(in("step2.png"));
    const Outcome all = fill("a.png", "all-out.png", {"--matte", in("all.png")});
    EXPECT_THAT(all.out, HasSubstr("\n3 areas to fill\n"));
    EXPECT_EQ(load(in("all-out.png")), wanted);
    EXPECT_EQ(filled({"--matte", in("island.png")}), wanted) << "a hole is filled with its area";

    const Outcome first =
        fill("a.png", "first.png", {"--matte", in("all.png"), "--areas", "first"});
    EXPECT_THAT(first.out, Not(HasSubstr("to fill")));
    EXPECT_EQ(load(in("first.png")), load(in("step0.png")));
}

TEST_F(MatteTest, LeavesTheRestOfThePictureAlone)
{
    paintMatte("all.png", masks({kLow, kMiddle, kHigh}));
    paintMatte("rgba.png", withAlpha(noise(1), noise(5)));
    struct Case {
        const char* source;
        const char* output;
        CommandRun::Arguments more;
    };
    for (const auto& [name, output, more] :
         {Case{"a.png", "out.png", {}}, Case{"rgba.png", "out.png", {}},
          Case{"rgba.png", "out.png", {"luminanceMatch=on"}},
          Case{"rgba.png", "out.tif", {"--depth", "short"}},
          Case{"rgba.png", "out.exr", {"--depth", "float"}}}) {
        SCOPED_TRACE(testing::Message() << name << " to " << output);
        CommandRun::Arguments arguments{"--matte", in("all.png")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        fill(name, output, arguments);
        const LoadedPicture source = load(in(name)), picture = load(in(output));
        ASSERT_EQ(picture.channels, source.channels);
        int changedOutside = 0, changedInside = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const bool isNear = kLow.isNear(x, y, 2 * kReach) ||
                                    kHigh.isNear(x, y, 2 * kReach) ||
                                    kMiddle.isNear(x, y, 2 * kReach);
                for (int c = 0; c < source.channels; ++c) {
                    const bool changed = picture.at(x, y, c) != source.at(x, y, c);
                    (isNear ? changedInside : changedOutside) += changed;
                }
            }
        }
        EXPECT_EQ(changedOutside, 0);
        EXPECT_GT(changedInside, 1000);
    }
}

TEST_F(MatteTest, ACroppedMatteCostsASmallQuilt)
{
    paintMatte("all.png", masks({kLow, kHigh}));
    const auto blocks = [&](CommandRun::Arguments more) {
        more.insert(more.begin(), {"--matte", in("all.png"), "--verbose"});
        const std::string out = fill("a.png", "out.png", more).out;
        return std::stoi(out.substr(out.find("\nblocks ") + 8));
    };
    const int area = blocks({"--areas", "first"});
    const int full = blocks({"--areas", "first", "--matte-window", "full"});
    EXPECT_LT(area * 4, full);
    EXPECT_EQ(blocks({"--matte-window", "full"}), 2 * full);
}

// Of an uncropped matte the plug-in itself fills the first area.
TEST_F(MatteTest, AnUntouchedMatteGivesTheSameFirstArea)
{
    paintMatte("all.png", masks({kLow, kMiddle, kHigh}));
    paintMatte("low.png", masks({kLow}));
    const CommandRun::Arguments full{"--areas", "first", "--matte-window", "full", "--matte"};
    const auto withMatte = [&](const char* matte) {
        CommandRun::Arguments arguments = full;
        arguments.push_back(in(matte));
        return filled(arguments);
    };
    EXPECT_EQ(withMatte("all.png"), withMatte("low.png"));
    EXPECT_EQ(filled({"--matte", in("low.png"), "--matte-window", "full"}), withMatte("low.png"));
}

TEST_F(MatteTest, GrowsByADisc)
{
    constexpr double kBy = 6.5;
    paintMatte("m.png", masks({kMiddle, kHigh}));
    paintMatte("grown.png", [](int x, int y) {
        return std::vector{kMiddle.isNear(x, y, kBy) || kHigh.isNear(x, y, kBy) ? 255 : 0};
    });
    paintMatte("inverse.png", masks({kMiddle, kHigh}, {}, true));
    const LoadedPicture wanted = filled({"--matte", in("grown.png")});
    EXPECT_NE(filled({"--matte", in("m.png")}), wanted);
    EXPECT_EQ(filled({"--matte", in("m.png"), "--matte-grow", "6.5"}), wanted);
    EXPECT_EQ(filled({"--matte", in("inverse.png"), "--matte-inverted", "--matte-grow", "6.5"}),
              wanted);
    // Grown enough, the two areas become one.
    EXPECT_THAT(fill("a.png", "out.png", {"--matte", in("m.png"), "--matte-grow", "60"}).out,
                Not(HasSubstr("to fill")));
}

TEST_F(MatteTest, AnEmptyMatteLeavesTheSource)
{
    paintMatte("rgba.png", withAlpha(noise(1), noise(5)));
    paintMatte("none.png", masks({}));
    paintMatte("all.png", masks({}, {}, true));
    for (const CommandRun::Arguments& more : {CommandRun::Arguments{"--matte", in("none.png")},
                                              {"--matte", in("all.png"), "--matte-inverted"},
                                              {"--matte", in("none.png"), "--matte-grow", "9",
                                               "--areas", "first", "--matte-window", "full"}}) {
        const Outcome outcome = fill("rgba.png", "out.png", more);
        EXPECT_THAT(outcome.err, HasSubstr("masks nothing"));
        EXPECT_EQ(load(in("out.png")), load(in("rgba.png")));
    }
}

TEST_F(MatteTest, ASpeckledMatteIsFilledWithAWarning)
{
    paintMatte("m.png",
               [](int x, int y) { return std::vector{x % 16 == 3 && y % 14 == 5 ? 255 : 0}; });
    const Outcome outcome = fill("a.png", "out.png", {"--matte", in("m.png")});
    EXPECT_THAT(outcome.out, HasSubstr("156 areas to fill"));
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("m.png: has 156 separate areas"),
                                   HasSubstr("--matte-grow"), HasSubstr("--areas first")));
    EXPECT_NE(load(in("out.png")), load(in("a.png")));
}

TEST_F(MatteTest, WindowsAndScalesCutTheFillToo)
{
    paintMatte("m.png", masks({kLow, kMiddle}));
    paintMatte("none.png", masks({}));
    // The part has the first area and half of the second.
    const CommandRun::Arguments window{"--window", "45,60,200,160"};
    const CommandRun::Arguments scale{"--render-scale", "0.5"};
    for (const CommandRun::Arguments& more : {window, scale}) {
        CommandRun::Arguments matte = more, none = more;
        matte.insert(matte.end(), {"--matte", in("m.png")});
        none.insert(none.end(), {"--matte", in("none.png")});
        const LoadedPicture picture = filled(matte), source = filled(none);
        const double factor = more == scale ? 0.5 : 1.0;
        const int left = more == scale ? 0 : 45, top = more == scale ? 0 : 60;
        int changedOutside = 0, changedInLow = 0, changedInMiddle = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const int fullX = static_cast<int>(x / factor) + left;
                const int fullY = static_cast<int>(y / factor) + top;
                const bool changed = picture.at(x, y, 0) != source.at(x, y, 0);
                changedInLow += kLow.holds(fullX, fullY) && changed;
                changedInMiddle += kMiddle.holds(fullX, fullY) && changed;
                changedOutside += changed && !kLow.isNear(fullX, fullY, 2 * kReach) &&
                                  !kMiddle.isNear(fullX, fullY, 2 * kReach);
            }
        }
        EXPECT_EQ(changedOutside, 0) << more.front();
        EXPECT_GT(changedInLow, 80) << more.front();
        EXPECT_GT(changedInMiddle, 80) << more.front();
    }
}

TEST_F(MatteTest, TellsWhenTheSampleBoxHoldsWhatIsToGo)
{
    paintMatte("m.png", masks({kLow, kMiddle}));
    const auto said = [&](CommandRun::Arguments more) {
        more.insert(more.end(), {"--matte", in("m.png")});
        return fill("a.png", "out.png", more).err;
    };
    const auto isNoted =
        AllOf(ContainsRegex("note: the sample box overlaps the region"),
              HasSubstr("--sample-box x1,y1,x2,y2"), HasSubstr("avoidFillRegion=on"));
    EXPECT_THAT(said({"avoidFillRegion=off"}), isNoted);
    EXPECT_THAT(said({"--render-scale", "0.5", "avoidFillRegion=off"}), isNoted);
    EXPECT_THAT(said({"--sample-box", "150,20,190,139"}), isNoted);
    EXPECT_THAT(said({"--sample-box", "150,20,190,139", "--window", "0,0,99,99"}), isNoted);
    for (const CommandRun::Arguments& more :
         {CommandRun::Arguments{"--sample-box", "70,10,140,150"},
          {"avoidFillRegion=on"},
          {"seed=1"},
          {"--texture1", in("a.png")}}) {
        EXPECT_THAT(said(more), Not(HasSubstr("sample box"))) << more.front();
    }
}

TEST_F(MatteTest, TakesNothingOfWhatIsToGoUnlessToldTo)
{
    constexpr int kMarked = 255;
    const auto inside = [](int x, int y) { return kMiddle.holds(x, y); };
    paint(in("object.png"), 200, 160, [&](int x, int y) {
        return std::vector{inside(x, y) ? kMarked : (x * 31 + y * 17) % 90, 40, 60};
    });
    paintMatte("m.png", masks({kMiddle}));
    const auto leftOver = [&](CommandRun::Arguments more) {
        more.insert(more.end(), {"--matte", in("m.png"), "edgeBlend=0", "pathWidth=2"});
        EXPECT_EQ(fill("object.png", "out.png", more).code, 0);
        const LoadedPicture picture = load(in("out.png"));
        int count = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) count += picture.at(x, y, 0) == kMarked;
        }
        return count;
    };
    EXPECT_EQ(leftOver({}), 0);
    EXPECT_EQ(leftOver({"seed=7"}), 0);
    EXPECT_GT(leftOver({"--sample-box", "20,60,70,110"}), 0);
}

}  // namespace
}  // namespace Tesseret::Command
