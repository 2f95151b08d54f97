#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "products/OFX/Support/Host.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using Fixtures::HostQuirks;
using Orvane::hostDescription;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> fetched(const TinyHost& tiny)
{
    std::vector<std::string> names;
    for (const Fixtures::SuiteFetch& fetch : tiny.calls().suiteFetches()) {
        names.push_back(fetch.name + " " + std::to_string(fetch.version));
    }
    return names;
}

TEST(HostDescription, IsReadOncePerLoad)
{
    TinyHost tiny;
    EXPECT_EQ(tiny.effect().sendLoad(), kOfxStatReplyDefault);
    tiny.calls().reset();
    EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatOK);
    EXPECT_THAT(fetched(tiny),
                ElementsAre("OfxImageEffectSuite 1", "OfxPropertySuite 1", "OfxParameterSuite 1",
                            "OfxMemorySuite 1", "OfxMultiThreadSuite 1", "OfxMessageSuite 1",
                            "OfxInteractSuite 1"));
    tiny.calls().reset();
    EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatOK);
    EXPECT_THAT(fetched(tiny), IsEmpty());
    EXPECT_EQ(tiny.effect().sendUnload(), kOfxStatOK);
    EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatOK);
    EXPECT_EQ(fetched(tiny).size(), 7u);
}

TEST(HostDescription, NeedsEverySuiteButTheInteractSuite)
{
    for (const char* name :
         {"OfxImageEffectSuite", "OfxPropertySuite", "OfxParameterSuite", "OfxMemorySuite",
          "OfxMultiThreadSuite", "OfxMessageSuite", "OfxInteractSuite"}) {
        SCOPED_TRACE(name);
        TinyHost tiny;
        tiny.quirks().missingSuites = {name};
        const bool optional = std::string(name) == "OfxInteractSuite";
        EXPECT_EQ(tiny.effect().sendLoad(), kOfxStatReplyDefault);
        EXPECT_EQ(tiny.effect().sendDescribe(), optional ? 0 : kOfxStatErrMissingHostFeature);
        tiny.quirks().missingSuites.clear();  // the next describe tries again
        EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatOK);
    }
}

TEST(HostDescription, NeedsAHostRecordAndAnEffect)
{
    TinyHost tiny;
    const auto describe = [&](OfxHost* host, OfxImageEffectHandle effect) {
        OfxPlugin* plugin = OfxGetPlugin(0);
        plugin->setHost(host);
        const OfxStatus status = plugin->mainEntry(kOfxActionDescribe, effect, nullptr, nullptr);
        plugin->setHost(tiny.host().record());
        return status;
    };
    OfxHost withoutSet = *tiny.host().record();
    withoutSet.host = nullptr;
    OfxHost withoutFetch = *tiny.host().record();
    withoutFetch.fetchSuite = nullptr;
    const OfxImageEffectHandle effect = tiny.effect().descriptor().handle();
    for (OfxHost* host : {static_cast<OfxHost*>(nullptr), &withoutSet, &withoutFetch}) {
        EXPECT_EQ(describe(host, effect), kOfxStatErrMissingHostFeature);
        EXPECT_EQ(Orvane::loadStatus(host), kOfxStatReplyDefault);
    }
    EXPECT_EQ(describe(tiny.host().record(), nullptr), kOfxStatErrBadHandle);
}

std::vector<int> limits()
{
    return {hostDescription().maxParameters, hostDescription().maxPages, hostDescription().pageRows,
            hostDescription().pageColumns};
}

TEST(HostDescription, KeepsWhatTheHostReportsAndDefaultsElsewhere)
{
    HostQuirks silent;
    silent.identity.maxParameters.reset();
    silent.identity.maxPages.reset();
    silent.identity.pageRowsAndColumns.reset();
    silent.identity.missingProperties = {kOfxPropName, kOfxImageEffectHostPropIsBackground};
    TinyHost(silent).start();
    EXPECT_EQ(hostDescription().name, "");
    EXPECT_FALSE(hostDescription().isBackground);
    EXPECT_THAT(limits(), ElementsAre(-1, -1, -1, -1));

    HostQuirks talking;
    talking.identity.name = "a host";
    talking.identity.isBackground = true;
    talking.identity.maxParameters = 3;
    talking.identity.maxPages = 4;
    talking.identity.pageRowsAndColumns = OfxPointI{5, 6};
    TinyHost(talking).start();
    EXPECT_EQ(hostDescription().name, "a host");
    EXPECT_TRUE(hostDescription().isBackground);
    EXPECT_THAT(limits(), ElementsAre(3, 4, 5, 6));
}

TEST(HostDescription, RefusesToDescribeWhatTheHostCannotDo)
{
    HostQuirks quirks;
    quirks.identity.temporalClipAccess = false;
    TinyHost tiny(quirks);
    tinyBehaviour().needsTemporalAccess = true;
    EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatErrMissingHostFeature);
    EXPECT_THAT(tiny.calls().messages(), IsEmpty());  // there is no instance to post through
    tinyBehaviour().needsTemporalAccess = false;
    EXPECT_EQ(tiny.effect().sendDescribe(), kOfxStatOK);
}

TEST(Load, ReturnsOKOnlyWhereNothingElseIsAccepted)
{
    HostQuirks quirks;
    quirks.load = LoadAnswer::OkOnly;
    quirks.identity.name = "MLT";
    TinyHost tiny(quirks);
    EXPECT_EQ(tiny.effect().sendLoad(), kOfxStatOK);
    quirks.identity.name = "MLT 2";
    TinyHost other(quirks);
    EXPECT_EQ(other.effect().sendLoad(), kOfxStatReplyDefault);
}

TEST(HostState, StaysValidForInstancesThatOutliveAnUnload)
{
    HostQuirks quirks;
    quirks.identity.name = "a host with a name that is too long to be kept without an allocation";
    TinyHost tiny(quirks);
    const auto instance = tiny.create();
    EXPECT_EQ(tiny.effect().sendUnload(), kOfxStatOK);
    EXPECT_EQ(hostDescription().name, quirks.identity.name);
    EXPECT_EQ(instance->action(kOfxActionDestroyInstance), kOfxStatOK);
}

TEST(HostState, SurvivesActionsOnSeveralThreads)
{
    TinyHost tiny;
    tiny.start();
    tiny.effect().describeInContext(kOfxImageEffectContextFilter);
    std::atomic<int> failures = 0;
    const auto live = [&] {
        for (int i = 0; i < 20; ++i) {
            const auto instance = tiny.effect().createInstance(kOfxImageEffectContextFilter);
            instance->connect("Source", tinySource());
            if (instance->renderOnly({.window = {0, 0, 8, 4}}, nullptr) != kOfxStatOK) ++failures;
        }
    };
    std::thread first(live);
    std::thread second(live);
    const OfxImageEffectHandle descriptor = tiny.effect().descriptor().handle();
    for (int i = 0; i < 50; ++i) {
        OfxPlugin* plugin = OfxGetPlugin(0);
        plugin->setHost(tiny.host().record());
        for (const char* action : {kOfxActionUnload, kOfxActionLoad, kOfxActionDescribe}) {
            const OfxStatus status = plugin->mainEntry(action, descriptor, nullptr, nullptr);
            if (status != kOfxStatOK && status != kOfxStatReplyDefault) ++failures;
        }
    }
    first.join();
    second.join();
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace Tesseret::Fixtures
