#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "viewer/model/View.h"

namespace Tesseret::Viewer {
namespace {

constexpr double kClose = 1e-9;

MATCHER_P2(At, x, y, "")
{
    return std::abs(arg.x - x) < kClose && std::abs(arg.y - y) < kClose;
}

class ViewTest : public testing::Test {
protected:
    ViewTest()
    {
        view_.setArea({100, 50, 832, 632});  // 800 x 600 without the margins
        view_.setPicture({0, 0, 400, 200});
    }
    View view_;
};

TEST_F(ViewTest, FitsThePictureInTheMiddleWithYUpwards)
{
    EXPECT_DOUBLE_EQ(view_.scale(), 2.0);
    EXPECT_THAT(view_.toScreen({0, 0}), At(116, 566));
    EXPECT_THAT(view_.toScreen({400, 200}), At(916, 166));
    EXPECT_THAT(view_.toCanonical({516, 366}), At(200, 100));
    view_.setPicture({-50, 100, 0, 400});  // higher than wide, and elsewhere
    EXPECT_DOUBLE_EQ(view_.scale(), 2.0);
    EXPECT_THAT(view_.toScreen({-25, 250}), At(516, 366));
}

TEST_F(ViewTest, ShowsWhatTheAreaCovers)
{
    const OfxRectD seen = view_.visible();
    EXPECT_DOUBLE_EQ(seen.x1, -8.0);
    EXPECT_DOUBLE_EQ(seen.x2, 408.0);
    EXPECT_DOUBLE_EQ(seen.y1, -58.0);
    EXPECT_DOUBLE_EQ(seen.y2, 258.0);
}

TEST_F(ViewTest, ZoomKeepsWhatIsUnderThePointer)
{
    const OfxPointD pointer{300, 500};
    const OfxPointD under = view_.toCanonical(pointer);
    for (const double factor : {1.3, 7.0, 1.0 / 11.0}) {
        view_.zoomAbout(pointer, factor);
        EXPECT_THAT(view_.toCanonical(pointer), At(under.x, under.y));
    }
    view_.zoomAbout(pointer, 1e9);
    EXPECT_DOUBLE_EQ(view_.scale(), View::kMaxScale);
    EXPECT_THAT(view_.toCanonical(pointer), At(under.x, under.y));
    view_.zoomAbout(pointer, 1e-9);
    EXPECT_DOUBLE_EQ(view_.scale(), View::kMinScale);
}

TEST_F(ViewTest, PanMovesThePictureWithThePointer)
{
    view_.zoomAbout({516, 366}, 3.0);
    const OfxPointD held = view_.toCanonical({500, 300});
    view_.pan(40, -25);
    EXPECT_THAT(view_.toScreen(held), At(540, 275));
}

TEST_F(ViewTest, KeepsFittingUntilItIsMoved)
{
    view_.setArea({0, 0, 432, 232});
    EXPECT_DOUBLE_EQ(view_.scale(), 1.0);
    view_.pan(5, 0);
    view_.setArea({0, 0, 832, 632});
    EXPECT_DOUBLE_EQ(view_.scale(), 1.0) << "a view that was moved keeps its scale";
    view_.fit();
    view_.setArea({0, 0, 232, 132});
    EXPECT_DOUBLE_EQ(view_.scale(), 0.5) << "and follows the window again once it was fitted";
}

TEST_F(ViewTest, ShowsAPartAtMostPixelByPixelAndAtLeastAsFitted)
{
    view_.setPicture({0, 0, 4000, 3000});
    EXPECT_TRUE(view_.isLarge());
    view_.show({1000, 2000, 1100, 2050});
    EXPECT_DOUBLE_EQ(view_.scale(), 1.0);
    EXPECT_THAT(view_.toScreen({1050, 2025}), At(516, 366));
    view_.show({0, 0, 832, 632});
    EXPECT_DOUBLE_EQ(view_.scale(), 0.4) << "with its surroundings";
    view_.show({0, 0, 4000, 3000});
    EXPECT_DOUBLE_EQ(view_.scale(), 0.2) << "all of it";
    view_.setArea({0, 0, 100, 100});
    EXPECT_DOUBLE_EQ(view_.scale(), 0.2) << "a view that was chosen keeps its scale";
    const OfxPointD middle = view_.toCanonical({50, 50});
    view_.showActualSize();
    EXPECT_DOUBLE_EQ(view_.scale(), 1.0);
    EXPECT_THAT(view_.toCanonical({50, 50}), At(middle.x, middle.y));
    view_.setPicture({0, 0, 40, 30});
    EXPECT_FALSE(view_.isLarge());
}

TEST_F(ViewTest, NothingToSeeIsNoDivisionByZero)
{
    view_.setPicture({0, 0, 0, 0});
    view_.setArea({0, 0, 0, -10});
    const OfxPointD point = view_.toCanonical({3, 4});
    EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
    EXPECT_GE(view_.scale(), View::kMinScale);
}

}  // namespace
}  // namespace Tesseret::Viewer
