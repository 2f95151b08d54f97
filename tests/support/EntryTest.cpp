#include <atomic>

#include <gtest/gtest.h>

#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

TEST(Entry, FillsItsOneRecordAtEachCall)
{
    EXPECT_EQ(OfxGetNumberOfPlugins(), 1);
    EXPECT_EQ(OfxGetPlugin(1), nullptr);
    EXPECT_EQ(OfxGetPlugin(-1), nullptr);
    OfxPlugin* record = OfxGetPlugin(0);
    *record = OfxPlugin{};
    ASSERT_EQ(OfxGetPlugin(0), record);
    EXPECT_STREQ(record->pluginApi, "OfxImageEffectPluginAPI");
    EXPECT_EQ(record->apiVersion, 1);
    EXPECT_STREQ(record->pluginIdentifier, "com.example.tiny");
    EXPECT_EQ(record->pluginVersionMajor, 3u);
    EXPECT_EQ(record->pluginVersionMinor, 14u);
    EXPECT_NE(record->setHost, nullptr);
    EXPECT_NE(record->mainEntry, nullptr);
}

struct Statuses {
    const char* action;
    OfxStatus withoutInstance;
    OfxStatus unhandled;  ///< with an instance that leaves everything to the host
    OfxStatus handled;    ///< with one that handles every query
};

constexpr Statuses kStatuses[] = {
    {nullptr, 14, 14, 14},
    {"OfxActionUnknown", 14, 14, 14},
    {"ofxActionUnload", 14, 14, 14},
    {"OfxActionPurgeCaches", 14, 14, 14},
    {"OfxActionSyncPrivateData", 14, 14, 0},
    {"OfxActionBeginInstanceEdit", 14, 14, 14},
    {"OfxActionEndInstanceEdit", 14, 14, 14},
    {"OfxActionBeginInstanceChanged", 14, 14, 14},
    {"OfxActionInstanceChanged", 14, 14, 14},
    {"OfxActionEndInstanceChanged", 14, 14, 14},
    {"OfxImageEffectActionGetRegionOfDefinition", 14, 14, 0},
    {"OfxImageEffectActionGetRegionsOfInterest", 14, 14, 0},
    {"OfxImageEffectActionGetTimeDomain", 14, 14, 14},
    {"OfxImageEffectActionGetFramesNeeded", 14, 14, 0},
    {"OfxImageEffectActionGetClipPreferences", 14, 14, 14},
    {"OfxImageEffectActionIsIdentity", 14, 14, 0},
    {"OfxImageEffectActionRender", 14, 0, 0},
    {"OfxImageEffectActionBeginSequenceRender", 14, 14, 14},
    {"OfxImageEffectActionEndSequenceRender", 14, 14, 14},
    {"OfxActionLoad", 14, 14, 14},
};

TEST(Entry, ReturnsItsStatusForEveryActionWithAndWithoutAnInstance)
{
    TinyHost tiny;
    const auto instance = tiny.create();
    const auto destroyed = tiny.create();
    instance->connect("Source", tinySource());
    EXPECT_EQ(destroyed->action(kOfxActionDestroyInstance), kOfxStatOK);
    const OfxImageEffectHandle withoutInstance[] = {nullptr, tiny.effect().descriptor().handle(),
                                                    destroyed->handle()};
    for (const Statuses& row : kStatuses) {
        SCOPED_TRACE(row.action != nullptr ? row.action : "no action");
        const auto send = [&](OfxImageEffectHandle handle) {
            return tiny.effect().send(row.action, handle, nullptr, nullptr);
        };
        for (const OfxImageEffectHandle handle : withoutInstance) {
            EXPECT_EQ(send(handle), row.withoutInstance);
        }
        tinyBehaviour().handlesQueries = false;
        EXPECT_EQ(send(instance->handle()), row.unhandled);
        tinyBehaviour().handlesQueries = true;
        EXPECT_EQ(send(instance->handle()), row.handled);
    }
    EXPECT_EQ(tiny.effect().send(kOfxActionDestroyInstance, nullptr, nullptr, nullptr),
              kOfxStatErrBadHandle);
    EXPECT_EQ(destroyed->action(kOfxActionDestroyInstance), kOfxStatOK);
    tiny.quirks().refusedWrites[kOfxPropInstanceData] = 5;
    EXPECT_EQ(destroyed->action(kOfxActionDestroyInstance), 5);
}

TEST(Entry, UnloadReturnsOKAndRunsTheHookOfTheEffect)
{
    TinyHost tiny;
    std::atomic<int> unloads = 0;
    tinyBehaviour().unloads = &unloads;
    EXPECT_EQ(tiny.effect().sendUnload(), kOfxStatOK);
    EXPECT_EQ(unloads, 1);
}

TEST(Entry, SurvivesActionsBeforeAnyDescription)
{
    TinyHost tiny;
    for (const char* action :
         {kOfxActionCreateInstance, kOfxActionDestroyInstance,
          kOfxImageEffectActionDescribeInContext, kOfxImageEffectActionRender}) {
        EXPECT_NE(tiny.effect().send(action, nullptr, nullptr, nullptr), kOfxStatOK) << action;
    }
}

TEST(Render, TurnsItsRecordIntoAStatus)
{
    struct Case {
        int aborted;
        int errorCode;
        bool hostAborts;
        OfxStatus status;
    };
    for (const Case& each : {Case{1, 1000, false, 8}, Case{1, 5, false, 1}, Case{1, 0, false, 0},
                             Case{0, 1000, false, 0}, Case{0, 1000, true, 8}, Case{0, 0, true, 0},
                             Case{0, 0, false, 0}}) {
        TinyHost tiny;
        const auto instance = tiny.create();
        instance->connect("Source", tinySource());
        tinyBehaviour().onRender = [&](Orvane::OvOfxHostWrapper& wrapper) {
            wrapper.renderStatus().aborted = each.aborted;
            wrapper.renderStatus().errorCode = each.errorCode;
        };
        tiny.calls().reset();
        tiny.quirks().abortFromPoll = each.hostAborts ? 1 : 0;
        EXPECT_EQ(instance->renderOnly({.window = {0, 0, 8, 4}}, nullptr), each.status)
            << each.aborted << ' ' << each.errorCode << ' ' << each.hostAborts;
        // A known abort is not polled again.
        EXPECT_EQ(tiny.calls().counters().abortPolls, each.aborted != 0 ? 0u : 1u);
    }
}

}  // namespace
}  // namespace Tesseret::Fixtures
