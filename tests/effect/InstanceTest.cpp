#include <array>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ofx/ofxMessage.h"
#include "tests/fixtures/PluginMemory.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kFilter = kOfxImageEffectContextFilter;
constexpr const char* kGeneral = kOfxImageEffectContextGeneral;

/// The instance's last sequential render flag, -1 if never set.
int sequentialRender(TestHost& test)
{
    return test.instance().properties().intOr(kOfxImageEffectInstancePropSequentialRender, -1);
}

std::array<double, 4> sides(const OfxRectD& rect)
{
    return {rect.x1, rect.y1, rect.x2, rect.y2};
}

TEST(EffectInstance, ReportsWhetherFramesHaveToComeInOrder)
{
    TestHost test;
    test.create(kFilter);
    std::vector<int> flags;
    for (const Fixtures::PropertyWrite& write : test.calls().propertyWrites()) {
        if (write.property == kOfxImageEffectInstancePropSequentialRender) {
            flags.push_back(std::get<int>(write.value));
        }
    }
    // By the hook, from the description, and once more when every parameter is brought up to date.
    EXPECT_THAT(flags, ElementsAre(0, 1, 0));
    EXPECT_EQ(sequentialRender(test), 0);
    test.instance().set("temporalConsistancy", 1);
    EXPECT_EQ(sequentialRender(test), 1);
    test.instance().set("temporalConsistancy", 0, kOfxChangePluginEdited);
    EXPECT_EQ(sequentialRender(test), 0);
    test.instance().set("seed", 5);
    EXPECT_EQ(sequentialRender(test), 0);
    test.expectClean();
}

TEST(EffectInstance, ShowsItsHelpToAUserOnly)
{
    TestHost test;
    test.create(kGeneral);
    EXPECT_THAT(test.calls().messages(), IsEmpty());  // no button was pressed at creation
    test.instance().press("about", kOfxChangePluginEdited);
    test.instance().press("about", kOfxChangeTime);
    EXPECT_THAT(test.calls().messages(), IsEmpty());
    test.instance().press("about");
    const std::vector<Host::Message> messages = test.calls().messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].type, "OfxMessageMessage");
    EXPECT_EQ(messages[0].id, "");
    EXPECT_EQ(messages[0].instance, &test.instance());
    EXPECT_THAT(messages[0].text,
                StartsWith("Tesseret \nBrisant 1.1.v3 (2.1030000)\n\nTesseret replicates large "));
    EXPECT_THAT(messages[0].text, ::testing::EndsWith("plug-in in this mode."));
}

TEST(EffectInstance, NeedsTheWholeOfEveryConnectedImage)
{
    struct Case {
        double aspect;
        OfxPointD scale;
        std::array<double, 4> source;
    };
    // The source covers (2, 4) to (34, 28) in pixels, which is twice as wide at an aspect ratio of
    // 2. In canonical units the result is the region itself, divided by the render scale.
    for (const Case& each : {Case{1.0, {1.0, 1.0}, {2.0, 4.0, 34.0, 28.0}},
                             Case{2.0, {1.0, 1.0}, {4.0, 4.0, 68.0, 28.0}},
                             Case{2.0, {0.5, 0.25}, {8.0, 16.0, 136.0, 112.0}}}) {
        TestHost test;
        auto source = texturePicture({2, 4, 34, 28}, Depth::Byte, 1);
        source->setPixelAspectRatio(each.aspect);
        test.create(kGeneral, source);
        test.connect("Texture2", texturePicture({0, 0, 8, 8}, Depth::Byte, 2));
        test.connect("Matte", plainPicture({2, 4, 34, 28}, Depth::Byte, 1.0, Components::Alpha));
        std::map<std::string, OfxRectD> regions;
        test.calls().reset();
        EXPECT_EQ(test.instance().regionsOfInterest(0.0, each.scale, {0, 0, 1, 1}, regions),
                  kOfxStatOK);
        EXPECT_EQ(sides(regions["Source"]), each.source);
        std::vector<std::string> written;
        for (const Fixtures::PropertyWrite& write : test.calls().propertyWrites()) {
            if (write.index == 0) written.push_back(write.property);
        }
        EXPECT_THAT(written,
                    ElementsAre("OfxImageClipPropRoI_Source", "OfxImageClipPropRoI_Texture2"));
        test.expectClean();
    }
}

TEST(EffectInstance, LeavesOtherQueriesToTheHost)
{
    TestHost test;
    Host::Instance& instance = test.create(kGeneral);
    OfxRectD region{};
    OfxRangeD range{};
    std::map<std::string, std::vector<OfxRangeD>> frames;
    Host::ClipPreferences preferences;
    Host::Identity identity;
    EXPECT_EQ(instance.regionOfDefinition(0.0, {1.0, 1.0}, region), kOfxStatReplyDefault);
    EXPECT_EQ(instance.timeDomain(range), kOfxStatReplyDefault);
    EXPECT_EQ(instance.framesNeeded(0.0, frames), kOfxStatReplyDefault);
    EXPECT_EQ(instance.clipPreferences(preferences), kOfxStatReplyDefault);
    EXPECT_EQ(instance.isIdentity({.window = {0, 0, 8, 8}}, identity), kOfxStatReplyDefault);
    EXPECT_EQ(instance.syncPrivateData(), kOfxStatReplyDefault);
    EXPECT_EQ(instance.purgeCaches(), kOfxStatReplyDefault);
    test.expectClean();
}

TEST(EffectInstance, RendersEveryDepthAndReleasesEveryImage)
{
    for (const Depth depth : {Depth::Byte, Depth::Short, Depth::Float}) {
        TestHost test;
        const auto source = texturePicture({0, 0, 64, 48}, depth, 1);
        test.create(kFilter, source);
        const Picture picture = test.render();
        EXPECT_NE(checksum(picture), checksum(*source));
        EXPECT_EQ(checksum(test.render()), checksum(picture));
        const Fixtures::Counters counters = test.calls().counters();
        EXPECT_EQ(counters.imagesFetched, 4u);  // the source and the output, twice
        EXPECT_EQ(counters.imagesReleased, 4u);
        test.expectClean();
    }
}

TEST(EffectInstance, ReleasesEveryImageWhicheverFetchFails)
{
    for (unsigned int k = 1; k <= 4; ++k) {
        SCOPED_TRACE(k);
        TestHost test;
        test.create(kGeneral);
        for (const char* clip : {"Texture1", "Texture3"}) {
            test.connect(clip, texturePicture({0, 0, 40, 40}, Depth::Byte, k));
        }
        test.instance().set("useTexture1", 1);
        test.instance().set("useTexture3", 1);
        test.calls().reset();
        test.quirks().failFetch = k;
        Picture output({0, 0, 64, 48}, Depth::Byte);
        EXPECT_EQ(test.render(0.0, {0, 0, 64, 48}, output), kOfxStatOK);
        EXPECT_GE(test.calls().counters().fetchCalls, k);
        test.expectClean();
    }
}

TEST(EffectInstance, RendersNothingIntoAnOutputWithoutColour)
{
    TestHost test;
    test.create(kFilter, Depth::Float);
    test.instance().clip("Output")->properties().assign(kOfxImageEffectPropComponents,
                                                        {std::string(kOfxImageComponentAlpha)});
    Host::PropertySet inArgs(test.host(), "arguments");
    inArgs.define(kOfxPropTime, {0.0});
    inArgs.define(kOfxImageEffectPropRenderWindow, {0, 0, 64, 48});
    test.calls().reset();
    EXPECT_EQ(test.effect().send(kOfxImageEffectActionRender, test.instance().handle(),
                                 inArgs.handle(), nullptr),
              kOfxStatOK);
    EXPECT_EQ(test.calls().counters().fetchCalls, 0u);
}

TEST(EffectInstance, UsesDefaultsForParametersThatTheHostRefused)
{
    Fixtures::HostQuirks limited;
    limited.identity.maxParameters = 4;  // corners, avoidFillRegion, fillRegion
    TestHost few(limited);
    few.create(kFilter);
    TestHost all;
    all.create(kFilter);
    all.instance().set("fillRegion", 0);
    EXPECT_TRUE(samePixels(few.render(), all.render()));
    EXPECT_EQ(sequentialRender(few), 0);
}

TEST(EffectInstance, LeavesNothingBehindWhereTheHostRefusesAWrite)
{
    for (const char* refused :
         {kOfxPropInstanceData, kOfxImageEffectInstancePropSequentialRender}) {
        SCOPED_TRACE(refused);
        TestHost test;
        Host::Instance& instance = test.create(kFilter);
        EXPECT_EQ(instance.action(kOfxActionDestroyInstance), kOfxStatOK);
        const PluginMemory memory(reinterpret_cast<const void*>(test.effect().plugin().mainEntry));
        test.quirks().refusedWrites[refused] = kOfxStatErrUnknown;
        for (int i = 0; i < 1000; ++i) {
            ASSERT_EQ(instance.action(kOfxActionCreateInstance), kOfxStatErrUnknown);
        }
        EXPECT_EQ(PluginMemory::live(), 0);
        test.quirks().refusedWrites.clear();
        EXPECT_EQ(instance.action(kOfxActionCreateInstance), kOfxStatOK);
    }
}

TEST(EffectInstance, ReportsOnceThatAFrameRangeLeavesNothingToRender)
{
    HostQuirks quirks;
    quirks.frameRange = FrameRangeQuirk::Wrong;  // 1 to 10
    TestHost test(quirks);
    for (int instance = 0; instance < 2; ++instance) {
        test.create(kFilter);
        test.calls().reset();
        for (const double time : {42.0, 42.0, 43.5}) {
            const Picture output = test.render(time);
            EXPECT_TRUE(samePixels(output, Picture(output.bounds(), Depth::Byte)));
        }
        test.render(10.0);
        const auto messages = test.calls().messages();
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].type, kOfxMessageLog);
        EXPECT_EQ(messages[0].text,
                  "Tesseret renders nothing at frame 42: the host reports frames "
                  "1 to 10 for the clip Output.");
        EXPECT_EQ(messages[0].instance, &test.instance());
    }
    test.destroyInstance();
    test.expectClean();
}

TEST(EffectInstance, ReportsNoFrameRangeForAnImageThatIsMissingInIt)
{
    TestHost test;
    test.create(kFilter);
    test.instance().connect("Source", nullptr);
    test.calls().reset();
    Picture output({0, 0, 64, 48}, Depth::Byte);
    EXPECT_EQ(test.instance().renderOnly({.window = output.bounds()}, &output), kOfxStatOK);
    EXPECT_THAT(test.calls().messages(), IsEmpty());
}

TEST(EffectInstance, ForgetsItsBlocksWhenTheHostPurges)
{
    TestHost test;
    test.create(kFilter);
    test.instance().set("temporalConsistancy", 1);
    test.render(0.0);
    test.instance().set("seed", 77);
    const Picture replayed = test.render(1.0);  // blocks of frame 0: the new seed is not used
    EXPECT_EQ(test.instance().purgeCaches(), kOfxStatReplyDefault);
    test.expectClean();  // nothing is kept, image memory included
    const Picture fresh = test.render(1.0);
    EXPECT_FALSE(samePixels(replayed, fresh));
    test.destroyInstance();
    test.expectClean();
}

}  // namespace
}  // namespace Tesseret::Fixtures
