#include <array>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Effect.h"
#include "host/HostError.h"
#include "host/Instance.h"
#include "host/Interact.h"
#include "host/Suites.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Host {
namespace {

using Fixtures::ActionRecord;
using Fixtures::FrameRangeQuirk;
using Fixtures::HostQuirks;
using Fixtures::MatteDelivery;
using Fixtures::ProjectProperties;
using Fixtures::samePixels;
using Fixtures::texturePicture;
using Fixtures::UnknownClip;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The small test filter, with its source connected.
class InvertTest : public ::testing::Test {
protected:
    InvertTest()
    {
        effect.start();
        instance = effect.createInstance(kOfxImageEffectContextFilter);
        instance->connect("Source", std::make_shared<StillSource>(source, OfxRangeD{-10, 10}));
    }

    ~InvertTest() override
    {
        instance.reset();
        EXPECT_EQ(quirky.calls.counters().imagesFetched, quirky.calls.counters().imagesReleased);
    }

    static Picture inverted(const Picture& from)
    {
        Picture result = from.copied();
        for (int y = from.bounds().y1; y < from.bounds().y2; ++y) {
            for (int x = from.bounds().x1; x < from.bounds().x2; ++x) {
                for (int c = 0; c < 4; ++c) {
                    result.setChannel(x, y, c, 255.0 - from.channel(x, y, c));
                }
            }
        }
        return result;
    }

    std::vector<std::string> actionNames() const
    {
        std::vector<std::string> names;
        for (const ActionRecord& record : quirky.calls.actions()) {
            std::string name = record.action;
            for (const std::string_view start : {"OfxImageEffectAction", "OfxAction"}) {
                if (name.compare(0, start.size(), start) == 0) name.erase(0, start.size());
            }
            names.push_back(name);
        }
        return names;
    }

    const OfxRectI bounds{-4, 2, 13, 11};
    const RenderRequest whole{.window = bounds};
    std::shared_ptr<Picture> source = texturePicture(bounds, Depth::Byte, 9);
    Fixtures::QuirkyHost quirky;
    EmbeddedHost host{quirky.options(3)};
    std::shared_ptr<PluginLibrary> library = PluginLibrary::load(INVERT_PLUGIN);
    Effect effect{host, library, library->plugin()};
    std::unique_ptr<Instance> instance;
    Picture output{bounds, Depth::Byte};
};

TEST_F(InvertTest, RendersWithTheActionsInTheirOrder)
{
    quirky.calls.reset();
    ASSERT_EQ(instance->render(whole, output), kOfxStatOK);
    EXPECT_TRUE(samePixels(output, inverted(*source)));
    EXPECT_THAT(actionNames(),
                ElementsAre("GetClipPreferences", "BeginSequenceRender", "IsIdentity",
                            "GetRegionsOfInterest", "Render", "EndSequenceRender"));
    EXPECT_EQ(instance->outputFormat().alpha, Alpha::Premultiplied);

    quirky.calls.reset();
    instance->beginSequence({0.0, 1.0}, 1.0, whole);
    instance->render(whole, output);
    instance->render({.time = 1.0, .window = bounds}, output);
    instance->endSequence();
    EXPECT_THAT(actionNames(),
                ElementsAre("BeginSequenceRender", "IsIdentity", "GetRegionsOfInterest", "Render",
                            "IsIdentity", "GetRegionsOfInterest", "Render", "EndSequenceRender"));
    EXPECT_THAT(quirky.calls.badCalls(), IsEmpty());
}

TEST_F(InvertTest, GivesTheSamePictureInEveryMemoryLayout)
{
    const Picture expected = inverted(*source);
    HostQuirks& quirks = quirky.quirks;
    for (const bool oneSet : {false, true}) {
        quirks.oneImageSetPerClip = oneSet;
        for (const RowLayout layout :
             {RowLayout{true, 0}, RowLayout{false, 24}, RowLayout{true, 8}}) {
            quirks.rowLayout = layout;
            Picture result(bounds, Depth::Byte);
            EXPECT_EQ(instance->render(whole, result), kOfxStatOK);
            EXPECT_TRUE(samePixels(result, expected));
            EXPECT_FALSE(result.layout().topDown);  // the caller's picture keeps its layout
        }
    }
    quirks.rowLayout.reset();
    quirks.boundsChange = OfxRectI{-3, -1, 5, 2};
    quirks.privateImages = true;
    EXPECT_EQ(instance->render(whole, output), kOfxStatOK);
    EXPECT_TRUE(samePixels(output, expected));
}

TEST_F(InvertTest, RendersOnlyTheWindow)
{
    const OfxRectI window{0, 4, 5, 6};
    quirky.quirks.deliverRegionsOnly = true;  // it supports tiles, and its region is the window
    ASSERT_EQ(instance->render({.window = window}, output), kOfxStatOK);
    const Picture expected = inverted(*source);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            const bool inside = x >= window.x1 && x < window.x2 && y >= window.y1 && y < window.y2;
            EXPECT_EQ(output.channel(x, y, 0), inside ? expected.channel(x, y, 0) : 0.0);
        }
    }
}

TEST_F(InvertTest, CopiesThePictureThatTheEffectIsIdenticalTo)
{
    instance->set("amount", 0);
    quirky.calls.reset();
    ASSERT_EQ(instance->render(whole, output), kOfxStatOK);
    EXPECT_TRUE(samePixels(output, *source));
    EXPECT_THAT(actionNames(), ::testing::Not(::testing::Contains("Render")));
}

TEST_F(InvertTest, ConvertsWhatTheClipDoesNotSupport)
{
    const auto shorts = texturePicture(bounds, Depth::Short, 4, Components::RGB);
    instance->connect("Source", std::make_shared<StillSource>(shorts));
    ASSERT_EQ(instance->render(whole, output), kOfxStatOK);
    EXPECT_TRUE(samePixels(output, inverted(shorts->converted(Depth::Byte, Components::RGBA))));
    EXPECT_THROW(instance->setDepth(Depth::Float), HostError);
    Picture wrong(bounds, Depth::Float);
    EXPECT_THROW(instance->render(whole, wrong), HostError);
    instance->connect("Source", nullptr);
    EXPECT_THROW(instance->render(whole, output), HostError);
}

TEST_F(InvertTest, FailsTheChosenFetch)
{
    for (unsigned int k = 1; k <= 2; ++k) {
        quirky.calls.reset();
        quirky.quirks.failFetch = k;
        EXPECT_EQ(instance->render(whole, output), kOfxStatFailed);
        EXPECT_EQ(quirky.calls.counters().imagesFetched, k - 1);
    }
    quirky.quirks.failFetch = 0;
    EXPECT_EQ(instance->render({.time = 99.0, .window = bounds}, output), kOfxStatFailed);
}

TEST_F(InvertTest, TakesBackWhatAnActionLeftBehind)
{
    // No fetch is allowed between actions; an image fetched nevertheless is released with the next
    // action.
    const OfxImageEffectSuiteV1& suite = imageEffectSuite();
    OfxPropertySetHandle image = nullptr;
    OfxImageClipHandle clip = nullptr;
    ASSERT_EQ(suite.clipGetHandle(instance->handle(), "Source", &clip, nullptr), kOfxStatOK);
    ASSERT_EQ(suite.clipGetImage(clip, 0.0, nullptr, &image), kOfxStatOK);
    instance->purgeCaches();
    EXPECT_THAT(quirky.calls.badCalls(), ElementsAre(HasSubstr("1 images of Source unreleased")));
    EXPECT_EQ(suite.clipReleaseImage(image), kOfxStatErrBadHandle);

    ASSERT_EQ(suite.clipGetImage(clip, 0.0, nullptr, &image), kOfxStatOK);
    EXPECT_EQ(suite.clipReleaseImage(image), kOfxStatOK);
    EXPECT_EQ(suite.clipReleaseImage(image), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.clipReleaseImage(instance->properties().handle()), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.clipGetImage(clip, 0.0, nullptr, nullptr), kOfxStatErrValue);
    quirky.calls.reset();
}

TEST_F(InvertTest, RefusesWrongCallsOnClipsAndEffects)
{
    const OfxImageEffectSuiteV1& suite = imageEffectSuite();
    OfxImageClipHandle clip = nullptr;
    OfxPropertySetHandle set = nullptr;
    Descriptor described(host);
    described.setDescribing(true);
    EXPECT_EQ(suite.clipGetHandle(described.handle(), "Source", &clip, nullptr),
              kOfxStatErrBadHandle);
    EXPECT_EQ(suite.clipDefine(described.handle(), "Source", nullptr), kOfxStatOK);
    EXPECT_EQ(suite.clipDefine(described.handle(), "Source", &set), kOfxStatErrExists);
    EXPECT_EQ(suite.clipDefine(described.handle(), nullptr, &set), kOfxStatErrValue);
    EXPECT_EQ(suite.clipDefine(instance->handle(), "More", &set), kOfxStatFailed);
    EXPECT_EQ(suite.clipGetHandle(instance->handle(), "More", &clip, nullptr),
              kOfxStatErrBadHandle);
    quirky.quirks.unknownClip = UnknownClip::NullHandleOK;
    EXPECT_EQ(suite.clipGetHandle(instance->handle(), "More", &clip, nullptr), kOfxStatOK);
    EXPECT_EQ(clip, nullptr);
    OfxRectD region{};
    EXPECT_EQ(suite.clipGetRegionOfDefinition(nullptr, 0.0, &region), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.clipGetPropertySet(nullptr, &set), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.getPropertySet(nullptr, &set), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.getParamSet(instance->handle(), nullptr), kOfxStatErrValue);
    EXPECT_EQ(suite.abort(nullptr), kOfxStatErrBadHandle);
}

TEST_F(InvertTest, SeesAnAbortFromAnotherThreadOrAtTheChosenPoll)
{
    const OfxImageEffectSuiteV1& suite = imageEffectSuite();
    EXPECT_EQ(suite.abort(instance->handle()), 0);
    std::thread([&] { instance->abort(); }).join();
    EXPECT_EQ(suite.abort(instance->handle()), 1);
    instance->clearAbort();
    quirky.calls.reset();
    quirky.quirks.abortFromPoll = 3;
    std::array<int, 4> returned{};
    for (int& status : returned) status = suite.abort(instance->handle());
    EXPECT_THAT(returned, ElementsAre(0, 0, 1, 1));
}

TEST_F(InvertTest, AnnouncesWhatThePluginItselfSets)
{
    OfxParamHandle amount = nullptr;
    const OfxParameterSuiteV1& suite = parameterSuite();
    ASSERT_EQ(suite.paramGetHandle(instance->parameters().handle(), "amount", &amount, nullptr),
              kOfxStatOK);
    quirky.calls.reset();
    EXPECT_EQ(suite.paramSetValue(amount, 0.5), kOfxStatOK);
    EXPECT_THAT(actionNames(),
                ElementsAre("BeginInstanceChanged", "InstanceChanged", "EndInstanceChanged"));
    EXPECT_EQ(instance->value("amount"), ParameterValue(0.5));
    EXPECT_THROW(instance->set("amount", std::string("much")), HostError);
    EXPECT_THROW(instance->set("nothing", 1), HostError);
    EXPECT_THROW(instance->press("amount"), HostError);
}

TEST_F(InvertTest, CarriesPenAndChangesBetweenOverlayAndInstance)
{
    Interact overlay(*instance);
    EXPECT_THAT(overlay.slaveParameters(), ElementsAre("amount"));
    EXPECT_EQ(overlay.draw(), kOfxStatReplyDefault);
    quirky.calls.reset();
    EXPECT_EQ(overlay.penDown({.position = {0.75, 3.0}}), kOfxStatOK);
    EXPECT_EQ(instance->value("amount"), ParameterValue(0.75));
    EXPECT_EQ(overlay.redraws(), 1u);
    // The change is announced at once, inside the pen's action, which ends last.
    EXPECT_THAT(actionNames(), ElementsAre("BeginInstanceChanged", "InstanceChanged",
                                           "EndInstanceChanged", "OfxInteractActionPenDown"));
    quirky.quirks.interactHasNoProperties = true;
    EXPECT_EQ(overlay.keyDown({.symbol = 65, .text = "a"}), kOfxStatFailed);
    EXPECT_THROW(Interact{*instance}, HostError);
    EXPECT_EQ(interactSuite().interactRedraw(nullptr), kOfxStatErrBadHandle);
}

/// Records the changes of an instance.
class Diary final : public InstanceListener {
public:
    void parameterChanged(Instance&, const ParameterChange& change) override
    {
        const auto text = [](const ParameterValue& value) {
            return std::to_string(std::get<double>(value)).substr(0, 4);
        };
        lines.push_back(change.parameter.name() + " " + text(change.before) + " " +
                        text(change.after) + " " + change.reason);
    }
    void editBegan(Instance&, std::string_view label) override
    {
        lines.push_back("began " + std::string(label));
    }
    void editEnded(Instance&) override { lines.emplace_back("ended"); }

    std::vector<std::string> lines;
};

TEST_F(InvertTest, NotifiesItsListenerOfValuesAndEdits)
{
    Diary diary;
    instance->setListener(&diary);
    instance->set("amount", 0.5);
    instance->set("amount", 0.5);  // nothing new
    EXPECT_THROW(instance->set("amount", std::string("much")), HostError);
    Interact(*instance).penDown({.position = {0.75, 3.0}});
    const OfxParameterSuiteV1& suite = parameterSuite();
    const OfxParamSetHandle set = instance->parameters().handle();
    EXPECT_EQ(suite.paramEditBegin(set, "drag"), kOfxStatOK);
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatOK);
    EXPECT_THAT(quirky.calls.badCalls(), IsEmpty());
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatFailed);
    EXPECT_THAT(quirky.calls.badCalls(), ElementsAre(HasSubstr("no edit was begun")));
    EXPECT_THAT(diary.lines,
                ElementsAre("amount 1.00 0.50 OfxChangeUserEdited",
                            "amount 0.50 0.75 OfxChangePluginEdited", "began drag", "ended"));
}

/// Records the notes and messages of instances.
class Listener final : public InstanceListener, public RenderListener {
public:
    std::optional<OfxStatus> messagePosted(const Message& message) override
    {
        lines.push_back(message.text);
        return kOfxStatReplyNo;
    }
    RenderListener* renderListener() override { return this; }
    void note(Instance&, std::string_view text) override { lines.emplace_back(text); }

    std::vector<std::string> lines;
};

TEST_F(InvertTest, NotifiesTheListenerOfEachInstance)
{
    Listener ofHost, ofSecond;
    host.setListener(&ofHost);
    const auto second = effect.createInstance(kOfxImageEffectContextFilter, &ofSecond);
    const auto message = messageSuite().message;
    observerSuite().note(instance->handle(), "a");
    observerSuite().note(second->handle(), "b");
    EXPECT_EQ(message(instance->handle(), kOfxMessageQuestion, "", "c"), kOfxStatReplyDefault);
    EXPECT_EQ(message(second->handle(), kOfxMessageQuestion, "", "d"), kOfxStatReplyNo);
    EXPECT_THAT(ofHost.lines, ElementsAre("a"));
    EXPECT_THAT(ofSecond.lines, ElementsAre("b", "d"));
}

TEST_F(InvertTest, ShowsTheProjectAsTheSwitchesHaveIt)
{
    const PropertySet& own = instance->properties();
    instance->purgeCaches();
    EXPECT_THAT(own.doubles(kOfxImageEffectPropProjectSize), ElementsAre(17.0, 9.0));
    EXPECT_THAT(own.doubles(kOfxImageEffectPropProjectOffset), ElementsAre(-4.0, 2.0));
    quirky.quirks.projectProperties = ProjectProperties::AfterFirstRender;
    instance->render(whole, output);
    instance->purgeCaches();
    EXPECT_TRUE(own.has(kOfxImageEffectPropProjectSize));
    quirky.quirks.projectProperties = ProjectProperties::Never;
    quirky.quirks.frameRange = FrameRangeQuirk::Missing;
    instance->purgeCaches();
    EXPECT_FALSE(own.has(kOfxImageEffectPropProjectSize));
    EXPECT_FALSE(instance->clip("Source")->properties().has(kOfxImageEffectPropFrameRange));
}

/// What an instance of the built plug-in sees of its matte: connected or not, the clip's
/// components, the image's.
std::string seenMatte(const HostQuirks& quirks, bool connect)
{
    Fixtures::TestHost test(quirks);
    Instance& instance = test.create(kOfxImageEffectContextGeneral);
    if (connect) test.connect("Matte", texturePicture({0, 0, 8, 8}, Depth::Short, 1));
    instance.purgeCaches();
    Clip& matte = *instance.clip("Matte");
    std::string seen = std::to_string(matte.properties().intOr(kOfxImageClipPropConnected, -1)) +
                       " " + matte.properties().stringOr(kOfxImageEffectPropComponents, "");
    OfxPropertySetHandle image = nullptr;
    if (matte.fetch(0.0, image) != kOfxStatOK) return seen;
    char* components = nullptr;
    propertySuite().propGetString(image, kOfxImageEffectPropComponents, 0, &components);
    seen += std::string(" ") + components;
    imageEffectSuite().clipReleaseImage(image);
    return seen;
}

TEST(BuiltPluginTest, SeesTheMatteAsTheSwitchesHaveIt)
{
    const std::string alpha = kOfxImageComponentAlpha;
    const std::string rgba = kOfxImageComponentRGBA;
    HostQuirks quirks;
    EXPECT_EQ(seenMatte(quirks, false), std::string("0 ") + kOfxImageComponentNone);
    EXPECT_EQ(seenMatte(quirks, true), "1 " + alpha + " " + alpha);
    quirks.matte = MatteDelivery::Rgba;
    EXPECT_EQ(seenMatte(quirks, true), "1 " + rgba + " " + rgba);
    quirks.matte = MatteDelivery::RgbaUnannounced;
    EXPECT_EQ(seenMatte(quirks, true), "1 " + alpha + " " + rgba);
    quirks.allClipsConnected = true;
    EXPECT_EQ(seenMatte(quirks, false), "1 " + alpha);
}

/// The actions sent until the first instance is created.
std::vector<std::string> startingActions(const HostQuirks& quirks)
{
    Fixtures::TestHost test(quirks);
    test.create();
    std::vector<std::string> names;
    for (const ActionRecord& record : test.calls().actions()) {
        if (record.action == kOfxActionCreateInstance) break;
        names.push_back(record.action);
    }
    return names;
}

TEST(BuiltPluginTest, StartsAsTheSwitchesHaveIt)
{
    const std::string context = kOfxImageEffectActionDescribeInContext;
    HostQuirks twice;
    twice.describeTwice = true;
    EXPECT_THAT(startingActions(twice),
                ElementsAre(kOfxActionLoad, kOfxActionDescribe, kOfxActionUnload, kOfxActionLoad,
                            kOfxActionDescribe, context));
    HostQuirks again;
    again.reloadPerInstance = true;
    EXPECT_THAT(startingActions(again), ElementsAre(kOfxActionLoad, kOfxActionDescribe,
                                                    kOfxActionLoad, kOfxActionDescribe, context));
    HostQuirks strict;
    strict.load = LoadAnswer::OkOnly;
    // The built plug-in returns 14 to a host of this name.
    EXPECT_THROW(startingActions(strict), HostError);
}

TEST(BuiltPluginTest, RendersInBothContextsAndLeavesNothingBehind)
{
    for (const char* context : {kOfxImageEffectContextFilter, kOfxImageEffectContextGeneral}) {
        Fixtures::TestHost test;
        Instance& instance = test.create(context, Depth::Byte, {0, 0, 120, 90});
        instance.set("fillRegion", 0);
        const Picture output = test.render();
        EXPECT_FALSE(samePixels(output, Picture(output.bounds(), Depth::Byte)));
        EXPECT_GT(test.calls().counters().allocations, 0u);
        test.destroyInstance();
        test.expectClean();
    }
}

TEST(BuiltPluginTest, RendersTwoInstancesOnTwoThreads)
{
    Fixtures::TestHost test;
    test.effect().start();
    std::array<Picture, 2> outputs;
    for (Picture& output : outputs) output = Picture({0, 0, 150, 100}, Depth::Byte);
    std::vector<std::unique_ptr<Instance>> instances;
    const auto source = texturePicture({0, 0, 150, 100}, Depth::Byte, 1);
    for (int i = 0; i < 2; ++i) {
        instances.push_back(test.effect().createInstance(kOfxImageEffectContextFilter));
        instances.back()->connect("Source", std::make_shared<StillSource>(source));
    }
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] {
            for (int repeat = 0; repeat < 3; ++repeat) {
                EXPECT_EQ(instances[i]->render({.window = {0, 0, 150, 100}}, outputs[i]),
                          kOfxStatOK);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    instances.clear();
    EXPECT_TRUE(samePixels(outputs[0], outputs[1]));
    test.expectClean();
}

}  // namespace
}  // namespace Tesseret::Host
