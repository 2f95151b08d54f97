#include <atomic>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Instances, AreCreatedInOneFixedOrder)
{
    TinyHost tiny;
    tiny.start();
    tinyBehaviour().onHook = [](const std::string& hook, const Orvane::OvOfxEffect& effect) {
        if (hook == "instanceCreated") effect.instance()->setSequentialRender(false);
    };
    tiny.effect().describeInContext(kOfxImageEffectContextFilter);
    tiny.calls().reset();
    tinyBehaviour().isRecording = true;
    const auto instance = tiny.create();
    EXPECT_THAT(tinyBehaviour().calls,
                ElementsAre("instanceCreated", "change size 0 0", "change height 0 0"));
    EXPECT_THAT(tiny.writesTo("effect"),
                ElementsAre(kOfxImageEffectInstancePropSequentialRender, kOfxPropInstanceData,
                            kOfxImageEffectInstancePropSequentialRender));
    EXPECT_EQ(instance->properties().intOr(kOfxImageEffectInstancePropSequentialRender, -1), 1);
}

TEST(Instances, PassOnTheStatusOfTheWriteThatDecides)
{
    struct Case {
        const char* refused;
        int changes;  ///< before it is over
    };
    for (const Case& each :
         {Case{kOfxPropInstanceData, 0}, Case{kOfxImageEffectInstancePropSequentialRender, 2}}) {
        TinyHost tiny;
        const auto instance = tiny.create();
        EXPECT_EQ(instance->action(kOfxActionDestroyInstance), kOfxStatOK);
        std::atomic<int> destroyed = 0;
        tinyBehaviour().destroyed = &destroyed;
        int changes = 0, created = 0;
        tinyBehaviour().onHook = [&](const std::string& hook, Orvane::OvOfxEffect&) {
            if (hook.starts_with("change")) ++changes;
            if (hook == "instanceCreated") ++created;
            if (hook == "instanceDestroyed") --created;
        };
        tiny.quirks().refusedWrites[each.refused] = 7;
        EXPECT_EQ(instance->action(kOfxActionCreateInstance), 7);
        EXPECT_EQ(changes, each.changes);
        // The host has no instance, and none is left behind.
        EXPECT_EQ(instance->properties().pointerOr(kOfxPropInstanceData, nullptr), nullptr);
        EXPECT_EQ(destroyed, 1);
        EXPECT_EQ(created, 0);
    }
}

TEST(Instances, AreDestroyedAfterTheirRecord)
{
    TinyHost tiny;
    std::atomic<int> destroyed = 0;
    tinyBehaviour().destroyed = &destroyed;
    auto instance = tiny.create();
    const int descriptors = destroyed;
    bool hadRecord = true;
    tinyBehaviour().onHook = [&](const std::string& hook, const Orvane::OvOfxEffect& effect) {
        if (hook == "instanceDestroyed") hadRecord = effect.instance() != nullptr;
    };
    instance.reset();
    EXPECT_FALSE(hadRecord);
    EXPECT_EQ(destroyed, descriptors + 1);
}

TEST(Changes, ReachTheParameterThatTheyName)
{
    TinyHost tiny;
    const auto instance = tiny.create();
    tinyBehaviour().isRecording = true;
    tinyBehaviour().onHook = [](const std::string& hook, Orvane::OvOfxEffect& effect) {
        if (!hook.starts_with("change")) return;
        EXPECT_EQ(effect.findParam("height")->changeTime, 12.0);
    };
    const auto change = [&](const char* type, const char* name, const char* reason) {
        return instance->changed(type, name, reason, 12.0);
    };
    EXPECT_EQ(change(kOfxTypeParameter, "height", kOfxChangeTime), kOfxStatReplyDefault);
    EXPECT_EQ(change(kOfxTypeParameter, "height", "OfxChangeOfHeart"), kOfxStatReplyDefault);
    EXPECT_EQ(change(kOfxTypeParameter, "nothing", kOfxChangeUserEdited), kOfxStatReplyDefault);
    EXPECT_EQ(change(kOfxTypeClip, "height", kOfxChangeUserEdited), kOfxStatReplyDefault);
    EXPECT_EQ(change(kOfxTypeImageEffect, "height", kOfxChangeUserEdited), kOfxStatReplyDefault);
    EXPECT_EQ(instance->beginChanged(kOfxChangePluginEdited), kOfxStatReplyDefault);
    EXPECT_EQ(instance->endChanged(kOfxChangeTime), kOfxStatReplyDefault);
    EXPECT_THAT(tinyBehaviour().calls,
                ElementsAre("change height 3 12", "change height 1 12", "beginInstanceChanged 2",
                            "endInstanceChanged 3"));
}

TEST(Changes, ByAUserAreFatalOnABackgroundHost)
{
    Fixtures::HostQuirks quirks;
    quirks.identity.isBackground = true;
    TinyHost tiny(quirks);
    const auto instance = tiny.create();
    tinyBehaviour().isRecording = true;
    EXPECT_EQ(instance->changed(kOfxTypeParameter, "size", kOfxChangeUserEdited, 1.0),
              kOfxStatErrFatal);
    EXPECT_EQ(instance->action(kOfxActionInstanceChanged), kOfxStatErrFatal);  // no reason at all
    EXPECT_THAT(tinyBehaviour().calls, IsEmpty());
    EXPECT_EQ(instance->changed(kOfxTypeParameter, "size", kOfxChangePluginEdited, 1.0),
              kOfxStatReplyDefault);
    EXPECT_THAT(tinyBehaviour().calls, ElementsAre("change size 2 1"));
}

TEST(Queries, RunForConnectedInputsOnlyAndReturnCanonicalUnits)
{
    TinyHost tiny;
    const auto instance = tiny.create(kOfxImageEffectContextGeneral);
    instance->connect("Source", tinySource());
    Host::Project project;
    project.size = {8.0, 4.0};
    project.pixelAspectRatio = 2.0;
    instance->setProject(project);
    tinyBehaviour().handlesQueries = true;
    tinyBehaviour().rect = {.xMin = 1.0f, .xMax = 5.0f, .yMin = 2.0f, .yMax = 4.0f};
    tinyBehaviour().isRecording = true;

    OfxRectD region{};
    EXPECT_EQ(instance->regionOfDefinition(0.0, {0.5, 0.25}, region), kOfxStatOK);
    EXPECT_THAT((std::vector{region.x1, region.y1, region.x2, region.y2}),
                ElementsAre(4.0, 8.0, 20.0, 16.0));
    std::map<std::string, OfxRectD> regions;
    EXPECT_EQ(instance->regionsOfInterest(0.0, {1.0, 1.0}, {1.0, 2.0, 6.0, 7.0}, regions),
              kOfxStatOK);
    const OfxRectD& interest = regions["Source"];
    EXPECT_THAT((std::vector{interest.x1, interest.y1, interest.x2, interest.y2}),
                ElementsAre(2.0, 2.0, 14.0, 7.0));
    std::map<std::string, std::vector<OfxRangeD>> frames;
    EXPECT_EQ(instance->framesNeeded(0.0, frames), kOfxStatOK);
    Host::Identity identity;
    EXPECT_EQ(instance->isIdentity({.time = 7.0, .window = {0, 0, 8, 4}}, identity), kOfxStatOK);
    EXPECT_EQ(identity.clip, "Source");
    EXPECT_EQ(identity.time, 8.0);
    EXPECT_THAT(tinyBehaviour().calls,
                ElementsAre("getRegionOfDefinition", "getRegionOfInterest Source",
                            "getFramesNeeded Source", "isIdentity"));
}

TEST(Queries, OfTimeAndPreferencesReturnThroughTheirFrame)
{
    TinyHost tiny;
    const auto instance = tiny.create();
    tinyBehaviour().onHook = [&](const std::string& hook, const Orvane::OvOfxEffect& effect) {
        if (hook != "getTimeDomain" && hook != "getClipPreferences") return;
        Orvane::OvOfxActionFrame* frame = effect.instance()->frame();
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(static_cast<int>(frame->kind), hook == "getTimeDomain" ? 10 : 2);
        frame->outArgs.setDoubles(kOfxImageEffectPropFrameRange, std::vector{3.0, 9.0});
        frame->outArgs.setDouble(kOfxImageEffectPropFrameRate, 50.0);
        frame->status = kOfxStatOK;
    };
    OfxRangeD range{};
    EXPECT_EQ(instance->timeDomain(range), kOfxStatOK);
    EXPECT_EQ(range.min, 3.0);
    EXPECT_EQ(range.max, 9.0);
    Host::ClipPreferences preferences;
    EXPECT_EQ(instance->clipPreferences(preferences), kOfxStatOK);
    EXPECT_EQ(preferences.frameRate, 50.0);

    // A hook that fails leaves no frame behind for later actions to take for their own.
    const Orvane::OvOfxEffect* seen = nullptr;
    tinyBehaviour().onHook = [&](const std::string&, Orvane::OvOfxEffect& effect) {
        seen = &effect;
        throw std::bad_alloc();
    };
    EXPECT_EQ(instance->timeDomain(range), kOfxStatErrMemory);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->instance()->frame(), nullptr);
}

TEST(DescribeInContext, ListsTheParametersThatClipPreferencesDependOn)
{
    TinyHost tiny;
    tinyBehaviour().preferencesSlave = "height";
    tiny.start();
    tiny.effect().describeInContext(kOfxImageEffectContextFilter);
    EXPECT_THAT(tiny.effect()
                    .contextDescriptor(kOfxImageEffectContextFilter)
                    ->properties()
                    .strings(kOfxImageEffectPropClipPreferencesSlaveParam),
                ElementsAre("height"));
}

TEST(DescribeInContext, FailsForAnUnknownContext)
{
    TinyHost tiny;
    tiny.start();
    EXPECT_EQ(tiny.effect().sendDescribeInContext("OfxImageEffectContextDreams"), kOfxStatFailed);
    EXPECT_EQ(tiny.effect().send(kOfxImageEffectActionDescribeInContext,
                                 tiny.effect().descriptor().handle(), nullptr, nullptr),
              kOfxStatErrBadHandle);
}

}  // namespace
}  // namespace Tesseret::Fixtures
