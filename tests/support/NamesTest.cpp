#include <gtest/gtest.h>

#include "products/OFX/Support/Names.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {
namespace {

TEST(Names, ThatAreUnknownAreNone)
{
    for (const char* name :
         {"OfxFieldBoth", "OfxFieldNone", "OfxFieldSingle", "OfxBitDepthHalf",
          "OfxImageComponentRGB", "Filter", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(fieldFromName(name), OvField::None);
        EXPECT_EQ(depthFromName(name), OvDepth::None);
        EXPECT_EQ(componentsFromName(name), OvComponents::None);
        EXPECT_EQ(contextFromName(name), OvContext::None);
        EXPECT_EQ(changeReasonFromName(name), OvChangeReason::UserEdited);
    }
    EXPECT_EQ(fieldFromName("OfxFieldUpper"), OvField::Upper);
    EXPECT_EQ(depthFromName("OfxBitDepthShort"), OvDepth::Short);
    EXPECT_EQ(componentsFromName("OfxImageComponentAlpha"), OvComponents::Alpha);
}

TEST(Rects, ChangeTheirOrderAtTheBoundary)
{
    const OvRect rect = fromOfx({.x1 = 1.0, .y1 = 2.0, .x2 = 3.0, .y2 = 4.0});
    EXPECT_EQ(rect, (OvRect{.xMin = 1.0f, .xMax = 3.0f, .yMin = 2.0f, .yMax = 4.0f}));
    const OfxRectD back = toOfx(rect);
    EXPECT_TRUE(back.x1 == 1.0 && back.y1 == 2.0 && back.x2 == 3.0 && back.y2 == 4.0);
}

}  // namespace
}  // namespace Orvane
