#include "tests/endToEnd/Rig.h"

#include <gtest/gtest.h>

namespace Tesseret::EndToEnd {

using namespace Host;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

std::shared_ptr<Picture> mattePicture(const Shape& shape, Depth depth, OfxRectI bounds)
{
    auto matte = Fixtures::plainPicture(bounds, depth, 0.0, Components::Alpha);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            Fixtures::fillChannel(*matte, {x, y, x + 1, y + 1}, 0, shape(x, y));
        }
    }
    return matte;
}

bool isBlack(const Picture& picture)
{
    const OfxRectI bounds = picture.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            for (int c = 0; c < picture.channels(); ++c) {
                if (picture.channel(x, y, c) != 0.0) return false;
            }
        }
    }
    return true;
}

void expectRecovery(Rig& rig, const Fault& fault,
                    const std::function<void(unsigned int, OfxStatus, const Picture&)>& check)
{
    const Picture expected = rig.render();
    for (unsigned int k = 1;; ++k) {
        rig.quirks().*fault.order = k;
        rig.calls().reset();
        Picture spoilt;
        CaptureStderr();
        const OfxStatus status = rig.render(0, kBounds, spoilt);
        GetCapturedStderr();
        const Fixtures::Counters counters = rig.calls().counters();
        EXPECT_EQ(counters.imagesFetched, counters.imagesReleased) << k;
        EXPECT_EQ(counters.blocksLive, 0u) << k;
        rig.quirks().*fault.order = 0;
        ASSERT_TRUE(Fixtures::samePixels(rig.render(), expected)) << "after fault " << k;
        if (counters.*fault.calls < k) {
            EXPECT_TRUE(Fixtures::samePixels(spoilt, expected)) << "without a fault";
            EXPECT_GT(k, 1u);
            return;
        }
        check(k, status, spoilt);
    }
}

}  // namespace Tesseret::EndToEnd
