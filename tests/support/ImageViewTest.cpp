#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/map/Map.h"
#include "products/OFX/Support/Clip.h"
#include "tests/support/FrameworkRig.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane;
using Engine::PixelKind;

/// Edges that make unstored pixels visible: outside there is a colour of its own.
constexpr std::array<float, 4> kOutside = {0.0f, 0.5f, 1.0f, 0.25f};

void sourceAndMatte(OvOfxEffect& effect, OvOfxContextContainer& container)
{
    auto& source = effect.own<OvOfxClip>("Source");
    source.supportedComponents = {"RGBA"};
    auto& matte = effect.own<OvOfxClip>("Matte");
    matte.supportedComponents = {"alpha"};
    matte.optional = true;
    for (OvOfxClip* clip : {&source, &matte}) {
        clip->edgeMethodX = clip->edgeMethodY = OvEdgeMethod::Colour;
        clip->edgeColour = kOutside;
        container.clips.push_back(clip);
    }
}

/// An instance with a source and a matte over the same bounds; every pixel holds its position.
class ImageView : public ::testing::Test {
protected:
    void start(const Fixtures::HostQuirks& quirks, OfxRectI bounds, Depth depth = Depth::Byte)
    {
        rig_.reset();
        rig_ = std::make_unique<FrameworkRig>(sourceAndMatte, quirks);
        ASSERT_EQ(rig_->describe(), kOfxStatOK);
        effect_ = &rig_->bind();
        connect("Source", bounds, depth, Components::RGBA);
        connect("Matte", bounds, depth, Components::Alpha);
    }
    void connect(const char* clip, OfxRectI bounds, Depth depth, Components components)
    {
        auto picture = std::make_shared<Picture>(bounds, depth, components);
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            for (int x = bounds.x1; x < bounds.x2; ++x) {
                for (int c = 0; c < picture->channels(); ++c) {
                    picture->setChannel(x, y, c, valueAt(x, y, c, depth));
                }
            }
        }
        rig_->instance().connect(
            clip, std::make_shared<Host::StillSource>(std::move(picture), OfxRangeD{1.0, 10.0}));
    }
    static double valueAt(int x, int y, int c, Depth depth)
    {
        const double value = (x + 20) + 3 * (y + 20) + 50 * c;
        return depth == Depth::Float ? value / 512.0 : value;
    }

    const OvOfxClipAccessor& clip(const char* name) { return effect_->findClip(name)->accessor(); }
    std::unique_ptr<Engine::ClipImage> image(const char* name = "Source", double time = 1.0)
    {
        return clip(name).image(time, nullptr);
    }
    /// Expects the picture's pixels inside `visible` and the edge colour everywhere around it.
    template <typename Pixel>
    void expectReads(OfxRectI visible, Depth depth, Pixel outside)
    {
        const auto fetched = image();
        ASSERT_NE(fetched, nullptr);
        const Engine::Map<Pixel>* map = fetched->as<Pixel>();
        ASSERT_NE(map, nullptr);
        EXPECT_FALSE(map->ownsData());
        for (int y = -20; y < 30; ++y) {
            for (int x = -20; x < 30; ++x) {
                const bool inside =
                    x >= visible.x1 && x < visible.x2 && y >= visible.y1 && y < visible.y2;
                const Pixel pixel = map->read(x, y);
                ASSERT_EQ(static_cast<double>(pixel.r),
                          inside ? valueAt(x, y, 0, depth) : static_cast<double>(outside.r))
                    << x << ", " << y;
                ASSERT_EQ(static_cast<double>(pixel.a),
                          inside ? valueAt(x, y, 3, depth) : static_cast<double>(outside.a))
                    << x << ", " << y;
            }
        }
    }
    void expectAllReleased()
    {
        const Fixtures::Counters counters = rig_->calls().counters();
        EXPECT_EQ(counters.imagesReleased, counters.imagesFetched);
    }

    std::unique_ptr<FrameworkRig> rig_;
    OvOfxEffect* effect_ = nullptr;
};

constexpr OfxRectI kBounds = {-3, -2, 9, 6};

TEST_F(ImageView, ShowsThePixelsOfEveryDepthAndTheEdgeColourAround)
{
    start({}, kBounds, Depth::Byte);
    expectReads<Engine::PixelRGBA8>(kBounds, Depth::Byte, {0, 127, 255, 63});
    start({}, kBounds, Depth::Short);
    expectReads<Engine::PixelRGBA16>(kBounds, Depth::Short, {0, 32767, 65535, 16383});
    start({}, kBounds, Depth::Float);
    expectReads<Engine::PixelRGBAf>(kBounds, Depth::Float, {0.0f, 0.5f, 1.0f, 0.25f});
    expectAllReleased();
}

TEST_F(ImageView, SurvivesAnyBoundsAndRowsOfAHost)
{
    struct Case {
        const char* what;
        std::optional<RowLayout> rows;
        std::optional<OfxRectI> change;
        bool infinite;
        OfxRectI visible;
    };
    const OfxRectI none = {0, 0, 0, 0};
    const OfxRectI larger = {-4, -3, 2, 5};
    const Case cases[] = {
        {"top down", RowLayout{.topDown = true}, {}, false, kBounds},
        {"padded", RowLayout{.padding = 12}, {}, false, kBounds},
        {"top down and padded", RowLayout{.topDown = true, .padding = 4}, {}, false, kBounds},
        {"smaller bounds", {}, OfxRectI{2, 1, -3, -2}, false, {-1, -1, 6, 4}},
        {"larger bounds", {}, larger, false, kBounds},
        {"larger bounds, top down", RowLayout{.topDown = true}, larger, false, kBounds},
        {"shifted bounds", {}, OfxRectI{5, -3, 5, -3}, false, {2, -2, 9, 3}},
        {"disjoint bounds", {}, OfxRectI{15, 0, 15, 0}, false, none},
        {"no bounds", {}, OfxRectI{0, 0, 0, -8}, false, none},
        {"defined everywhere", {}, {}, true, kBounds},
        {"defined everywhere, smaller bounds", {}, OfxRectI{2, 1, -3, -2}, true, {-1, -1, 6, 4}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        Fixtures::HostQuirks quirks;
        quirks.rowLayout = each.rows;
        quirks.boundsChange = each.change;
        quirks.infiniteRegion = each.infinite;
        start(quirks, kBounds);
        expectReads<Engine::PixelRGBA8>(each.visible, Depth::Byte, {0, 127, 255, 63});
        expectAllReleased();
    }
}

TEST_F(ImageView, PrefersTheImageToTheClip)
{
    start({}, kBounds);
    EXPECT_EQ(image("Matte")->kind(), PixelKind::Alpha8);
    Fixtures::HostQuirks quirks;
    quirks.matte = Fixtures::MatteDelivery::RgbaUnannounced;
    start(quirks, kBounds, Depth::Short);
    EXPECT_EQ(effect_->findClip("Matte")->components(), OvComponents::Alpha);
    EXPECT_EQ(image("Matte")->kind(), PixelKind::RGBA16);
    rig_->quirks().refusedReads[kOfxImageEffectPropComponents] = kOfxStatErrUnknown;
    EXPECT_EQ(image("Matte"), nullptr);  // its components are unknown
    EXPECT_EQ(rig_->calls().counters().imagesFetched, 2u);
    expectAllReleased();
}

TEST_F(ImageView, IsNullWithoutAnImage)
{
    start({}, kBounds);
    rig_->quirks().failFetch = 1;
    EXPECT_EQ(image(), nullptr);
    rig_->quirks().failFetch = 0;
    rig_->instance().connect("Matte", nullptr);
    EXPECT_FALSE(clip("Matte").isConnected());
    EXPECT_EQ(image("Matte"), nullptr);
    EXPECT_NE(image(), nullptr);
    expectAllReleased();
}

TEST_F(ImageView, IsFetchedOnlyInsideAFrameRangeThatCanBeRead)
{
    start({}, kBounds);
    for (const double time : {0.0, 0.99, 10.01}) EXPECT_EQ(image("Source", time), nullptr) << time;
    EXPECT_EQ(rig_->calls().counters().fetchCalls, 0u);
    for (const double time : {1.0, 10.0}) EXPECT_NE(image("Source", time), nullptr) << time;
    Fixtures::HostQuirks quirks;
    quirks.frameRange = Fixtures::FrameRangeQuirk::Missing;
    start(quirks, kBounds);
    EXPECT_EQ(image("Source", 0.0), nullptr);
    EXPECT_EQ(rig_->calls().counters().fetchCalls, 1u);  // the request reached the host
    EXPECT_FALSE(effect_->findClip("Source")->frameRange());
}

TEST_F(ImageView, IsFetchedAtAnyTimeWhereRangesSayNothingAboutImages)
{
    for (const char* name : {"fr.inria.Natron", "pyofx", "openfx-driver", "Natron"}) {
        Fixtures::HostQuirks quirks;
        quirks.identity.name = name;
        start(quirks, kBounds);
        EXPECT_EQ(image("Source", 0.0), nullptr);  // nor has this host an image there
        EXPECT_EQ(rig_->calls().counters().fetchCalls, name == std::string("Natron") ? 0u : 1u);
        EXPECT_TRUE(effect_->findClip("Source")->frameRange());
    }
}

TEST_F(ImageView, IsReleasedOnceWhereTheHostReturnsOneSetForEveryFetch)
{
    Fixtures::HostQuirks quirks;
    quirks.oneImageSetPerClip = true;
    start(quirks, kBounds);
    {
        const auto first = image();
        const auto second = image();
    }
    EXPECT_EQ(rig_->calls().counters().imagesFetched, 2u);
    expectAllReleased();
}

TEST_F(ImageView, ClipsReturnNothingUnboundOrOutOfUse)
{
    start({}, kBounds);
    OvOfxClip unbound("Source");
    EXPECT_FALSE(unbound.isConnected());
    OvOfxClip& source = *effect_->findClip("Source");
    EXPECT_TRUE(source.isConnected());
    EXPECT_EQ(source.components(), OvComponents::RGBA);
    source.inUse = false;
    for (const OvOfxClip* silent : {&unbound, &source}) {
        EXPECT_FALSE(silent->isConnected());
        EXPECT_EQ(silent->regionOfDefinition(1.0), OvRect());
        EXPECT_EQ(silent->accessor().pixelRegionOfDefinition(1.0, 2.0), OvRect());
        EXPECT_EQ(silent->frameRate(), 0.0);
        EXPECT_EQ(silent->components(), OvComponents::None);
        EXPECT_EQ(silent->pixelDepth(), OvDepth::None);
        EXPECT_EQ(silent->imageAsMap(1.0, nullptr), nullptr);
    }
    EXPECT_EQ(rig_->calls().counters().fetchCalls, 0u);
}

}  // namespace
}  // namespace Tesseret::Fixtures
