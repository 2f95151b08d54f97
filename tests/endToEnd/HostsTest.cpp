// The built plug-in in hosts that deviate from the standard: under every switch, and in every host
// that has a name.

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <future>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/HandleRegistry.h"
#include "host/HostError.h"
#include "host/Interact.h"
#include "host/imitation/KnownHosts.h"
#include "ofx/ofxMessage.h"
#include "tests/endToEnd/Rig.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {

static std::ostream& operator<<(std::ostream& out, const KnownHost& host)
{
    return out << host.name;
}

}  // namespace Tesseret::Host

namespace Tesseret::Fixtures {
namespace {

using namespace Tesseret::Host;
using EndToEnd::disc;
using EndToEnd::isBlack;
using EndToEnd::kBounds;
using EndToEnd::mattePicture;
using ::testing::IsEmpty;
using HostQuirks = Fixtures::HostQuirks;

constexpr std::array kFrames = {3.0, 42.0};
constexpr double kAspect = 2.0;  ///< shows wherever a ratio is not known

enum class Scene { Quilt, Masked };

/// What becomes of a scene.
enum class Outcome {
    Same,         ///< the picture of a host that keeps the standard
    OtherMasked,  ///< the same quilt; a masked fill has other blocks
    Other,        ///< another picture, with status 0
    StaysBlack,   ///< status 0, and nothing is written
    NoMemory,     ///< status 0 or 8
    HostRefuses,  ///< the host drops the plug-in
};

struct HostCase {
    std::string name;
    std::function<void(HostQuirks&)> apply;
    Outcome outcome = Outcome::Same;
    /// The text of a log message that each instance posts once; empty for none.
    std::string logged{};
};

std::ostream& operator<<(std::ostream& out, const HostCase& host)
{
    return out << host.name;
}

bool offersGeneral(const HostQuirks& quirks)
{
    const auto& contexts = quirks.identity.contexts;
    return std::ranges::find(contexts, kOfxImageEffectContextGeneral) != contexts.end();
}

/// One imitated host with its own copy of the plug-in. Renders scenes as the switches say: in the
/// contexts offered, on an instance per frame, on several threads.
class Stage {
public:
    explicit Stage(const HostQuirks& quirks) : quirky_(quirks) {}

    CallRecorder& calls() { return quirky_.calls; }
    const HostQuirks& quirks() const { return quirky_.quirks; }

    /// The pictures of all frames, the same frame of each instance one after the other.
    std::vector<Picture> render(Scene scene, Depth depth)
    {
        std::vector<std::future<std::vector<Picture>>> threads;
        for (unsigned int i = 0; i < quirks().instancesAtOnce; ++i) {
            threads.push_back(
                std::async(std::launch::async, [=, this] { return renderAlone(scene, depth); }));
        }
        std::vector<Picture> all;
        for (auto& thread : threads) std::ranges::move(thread.get(), std::back_inserter(all));
        return all;
    }

    /// The statuses of renders so far.
    std::set<OfxStatus> renderStatuses() const
    {
        std::set<OfxStatus> statuses;
        for (const ActionRecord& record : quirky_.calls.actions()) {
            if (record.action == kOfxImageEffectActionRender) statuses.insert(record.status);
        }
        return statuses;
    }

private:
    /// Every thread has an effect of its own on the one library, and so loads, describes and
    /// unloads while others render.
    std::vector<Picture> renderAlone(Scene scene, Depth depth)
    {
        Effect effect(host_, library_, library_->plugin());
        effect.start();
        std::vector<Picture> pictures;
        std::unique_ptr<Instance> instance;
        for (const double frame : kFrames) {
            if (!instance || quirks().instancePerFrame) {
                instance.reset();
                instance = create(effect, scene, depth);
            }
            for (unsigned int i = 0; i < quirks().rendersPerFrame; ++i) {
                const ClipFormat format = instance->outputFormat();
                Picture output(kBounds, format.depth, format.components);
                output.setPixelAspectRatio(kAspect);
                instance->render({.time = frame, .window = kBounds}, output);
                pictures.push_back(std::move(output));
            }
        }
        return pictures;
    }

    std::unique_ptr<Instance> create(Effect& effect, Scene scene, Depth depth)
    {
        const bool hasMatte = scene == Scene::Masked && offersGeneral(quirks());
        const char* const context =
            hasMatte ? kOfxImageEffectContextGeneral : kOfxImageEffectContextFilter;
        auto instance = effect.createInstance(context);
        auto source = texturePicture(kBounds, depth, 1);
        source->setPixelAspectRatio(kAspect);
        const auto matte = mattePicture(disc, depth);
        matte->setPixelAspectRatio(kAspect);
        for (int y = kBounds.y1; y < kBounds.y2; ++y) {
            for (int x = kBounds.x1; x < kBounds.x2; ++x) {
                source->setChannel(x, y, 3, matte->channel(x, y, 0));
            }
        }
        const OfxRangeD always{-1000.0, 1000.0};
        instance->connect("Source", std::make_shared<StillSource>(source, always));
        if (hasMatte) instance->connect("Matte", std::make_shared<StillSource>(matte, always));
        const int fillRegion = scene == Scene::Quilt ? 0 : hasMatte ? 3 : 1;
        const std::map<std::string, ParameterValue> values = {
            {"fillRegion", fillRegion}, {"blockSize", 30}, {"overlap", 10},
            {"numSamples", 4},          {"seed", 9},       {"pathWidth", 4.0},
            {"edgeBlend", 1.0},         {"blendSize", 3},  {"luminanceBlur", 10.0}};
        for (const auto& [name, value] : values) {
            EXPECT_TRUE(effect.describeInContext(context).parameter(name) != nullptr) << name;
            instance->set(name, value);
        }
        if (quirks().interactsWithoutContext) {
            Interact overlay(*instance);
            overlay.draw();
        }
        return instance;
    }

    QuirkyHost quirky_;
    EmbeddedHost host_{quirky_.options(3)};
    std::shared_ptr<PluginLibrary> library_ =
        PluginLibrary::load(pluginFile(), PluginLibrary::Copy::Private);
};

/// The picture in a host that keeps the standard, but offers the same contexts and depths.
Picture expectedPicture(const HostQuirks& quirks, Scene scene, Depth depth)
{
    HostQuirks plain;
    plain.identity.contexts = quirks.identity.contexts;
    plain.identity.depths = quirks.identity.depths;
    std::vector<Picture> pictures = Stage(plain).render(scene, depth);
    EXPECT_FALSE(isBlack(pictures.front()));
    return std::move(pictures.front());
}

/// The statuses of all actions but renders.
void expectStatuses(Stage& stage)
{
    const HostQuirks& quirks = stage.quirks();
    const bool isMlt = quirks.identity.name == "MLT";
    const bool hasNoUser = quirks.identity.isBackground && !isMlt;
    const std::map<std::string, OfxStatus> expected = {
        {kOfxActionLoad, isMlt ? kOfxStatOK : kOfxStatReplyDefault},
        {kOfxActionUnload, kOfxStatOK},
        {kOfxActionDescribe, kOfxStatOK},
        {kOfxImageEffectActionDescribeInContext, kOfxStatOK},
        {kOfxActionCreateInstance, kOfxStatOK},
        {kOfxImageEffectActionGetRegionsOfInterest, kOfxStatOK},
        {kOfxInteractActionDraw,
         quirks.interactHasNoProperties ? kOfxStatReplyDefault : kOfxStatOK},
        {kOfxActionInstanceChanged, hasNoUser ? kOfxStatErrFatal : kOfxStatReplyDefault}};
    for (const ActionRecord& record : stage.calls().actions()) {
        if (record.action == kOfxImageEffectActionRender) continue;
        if (record.action == kOfxActionDestroyInstance) {  // also that of an overlay
            EXPECT_TRUE(record.status == kOfxStatOK || record.status == kOfxStatReplyDefault);
            continue;
        }
        const auto found = expected.find(record.action);
        EXPECT_EQ(record.status, found != expected.end() ? found->second : kOfxStatReplyDefault)
            << record.action;
    }
}

void expectNothingLeft(const Stage& stage, const Counters& counters)
{
    EXPECT_GT(counters.imagesFetched, 0u);
    EXPECT_EQ(counters.imagesFetched, counters.imagesReleased);
    EXPECT_EQ(counters.blocksLive, 0u);
    EXPECT_EQ(counters.memoryBlocksLive, 0u);
    EXPECT_FALSE(stage.renderStatuses().empty());
}

void expectMessages(Stage& stage, const std::string& logged)
{
    std::map<const Instance*, int> counts;
    for (const Message& message : stage.calls().messages()) {
        EXPECT_EQ(message.type, kOfxMessageLog);
        EXPECT_EQ(message.text, logged);
        EXPECT_NE(message.instance, nullptr);
        EXPECT_EQ(++counts[message.instance], 1);
    }
    EXPECT_EQ(counts.empty(), logged.empty());
}

void expectScene(const HostCase& host, Scene scene, Depth depth)
{
    SCOPED_TRACE(scene == Scene::Quilt ? "quilt" : "masked");
    HostQuirks quirks;
    host.apply(quirks);
    const Picture expected = expectedPicture(quirks, scene, depth);
    const std::size_t handles = liveHandles();
    {
        Stage stage(quirks);
        if (host.outcome == Outcome::HostRefuses) {
            EXPECT_THROW(stage.render(scene, depth), HostError);
            return;
        }
        const std::vector<Picture> pictures = stage.render(scene, depth);
        const bool isSame = host.outcome == Outcome::Same ||
                            (host.outcome == Outcome::OtherMasked && scene == Scene::Quilt);
        for (const Picture& picture : pictures) {
            if (isSame) {
                EXPECT_TRUE(samePixels(picture, expected));
            }
            if (host.outcome != Outcome::NoMemory) {
                EXPECT_EQ(isBlack(picture), host.outcome == Outcome::StaysBlack);
            }
        }
        const std::set<OfxStatus> statuses = stage.renderStatuses();
        if (host.outcome == Outcome::NoMemory) {
            EXPECT_THAT(statuses, ::testing::Each(::testing::AnyOf(kOfxStatOK, kOfxStatErrMemory)));
        } else {
            EXPECT_THAT(statuses, ::testing::ElementsAre(kOfxStatOK));
        }
        expectStatuses(stage);
        expectMessages(stage, host.logged);
        EXPECT_THAT(stage.calls().badCalls(), IsEmpty());
        if (host.outcome != Outcome::StaysBlack) expectNothingLeft(stage, stage.calls().counters());
    }
    EXPECT_EQ(liveHandles(), handles);
}

class Switches : public ::testing::TestWithParam<HostCase> {};

TEST_P(Switches, LeaveThePictureTheStatusesAndNothingElse)
{
    for (const Scene scene : {Scene::Quilt, Scene::Masked}) {
        expectScene(GetParam(), scene, Depth::Byte);
    }
}

void rangeWithoutTheFrames(HostQuirks& quirks)
{
    quirks.frameRange = FrameRangeQuirk::Wrong;
    quirks.wrongFrameRange = {100.0, 200.0};
}

constexpr const char* kExcluded =
    "Tesseret renders nothing at frame 3: the host reports frames 100 to 200 for the clip Output.";

const std::vector<HostCase>& switchCases()
{
    static const std::vector<HostCase> kCases = {
        // Start and stop
        {"LoadAcceptsOnlyOk",
         [](auto& q) {
             q.load = LoadAnswer::OkOnly;
             q.identity.name = "MLT";
         }},
        {"LoadOfAnUnknownHostAcceptsOnlyOk", [](auto& q) { q.load = LoadAnswer::OkOnly; },
         Outcome::HostRefuses},
        {"LoadAcceptsAnything", [](auto& q) { q.load = LoadAnswer::Any; }},
        {"DescribesTwice", [](auto& q) { q.describeTwice = true; }},
        {"DescribesForEveryInstance", [](auto& q) { q.reloadPerInstance = true; }},
        {"NeverUnloads", [](auto& q) { q.neverUnloads = true; }},
        {"InteractSuiteMissing", [](auto& q) { q.missingSuites = {kOfxInteractSuite}; }},
        // How effects are used
        {"InstancePerFrame", [](auto& q) { q.instancePerFrame = true; }},
        {"ThreeRendersPerFrame", [](auto& q) { q.rendersPerFrame = 3; }},
        {"TwoInstancesOnTwoThreads", [](auto& q) { q.instancesAtOnce = 2; }},
        {"ThreeInstancesPerFrameOnThreads",
         [](auto& q) {
             q.instancesAtOnce = 3;
             q.instancePerFrame = true;
             q.reloadPerInstance = true;
         }},
        {"Background", [](auto& q) { q.identity.isBackground = true; }},
        {"BackgroundThatHidesSecretParameters",
         [](auto& q) {
             q.identity.name = "MLT";
             q.identity.isBackground = true;
             q.showsSecretParameters = false;
             q.choicesNeedDefaults = true;
         }},
        {"NoPages",
         [](auto& q) {
             q.identity.pageRowsAndColumns = OfxPointI{0, 0};
         }},
        {"OneColumn",
         [](auto& q) {
             q.identity.pageRowsAndColumns = OfxPointI{10, 1};
         }},
        {"InteractsWithoutContext", [](auto& q) { q.interactsWithoutContext = true; }},
        {"InteractsWithoutProperties",
         [](auto& q) {
             q.interactsWithoutContext = true;
             q.interactHasNoProperties = true;
         }},
        // Properties
        {"PageOrderRefused",
         [](auto& q) { q.refusedWrites[kOfxPluginPropParamPageOrder] = kOfxStatErrUnknown; }},
        {"PreferenceSlavesRefused",
         [](auto& q) {
             q.refusedWrites[kOfxImageEffectPropClipPreferencesSlaveParam] = kOfxStatErrUnknown;
         }},
        {"WrongTypesUnknown", [](auto& q) { q.wrongType = WrongType::Unknown; }},
        {"WrongTypesConverted", [](auto& q) { q.wrongType = WrongType::Convert; }},
        {"UnknownPropertiesAccepted", [](auto& q) { q.acceptUnknownProperties = true; }},
        {"ProjectAfterFirstRender",
         [](auto& q) { q.projectProperties = ProjectProperties::AfterFirstRender; }},
        {"ProjectOfStandardSizeAtFirst",
         [](auto& q) { q.projectProperties = ProjectProperties::StandardAtFirst; }},
        {"NoProject", [](auto& q) { q.projectProperties = ProjectProperties::Never; }},
        // Clips
        {"FrameRangeMissing", [](auto& q) { q.frameRange = FrameRangeQuirk::Missing; }},
        {"FrameRangeWrong",
         [](auto& q) {
             q.frameRange = FrameRangeQuirk::Wrong;
             q.wrongFrameRange = {3.0, 42.0};
         }},
        {"FrameRangeWithoutTheFrames", rangeWithoutTheFrames, Outcome::StaysBlack, kExcluded},
        {"FrameRangeWithoutTheFramesWhereItSaysNothing",
         [](auto& q) {
             rangeWithoutTheFrames(q);
             q.identity.name = "pyofx";
         }},
        {"EveryClipConnected", [](auto& q) { q.allClipsConnected = true; }},
        {"OutputUnconnected", [](auto& q) { q.outputUnconnected = true; }},
        {"RegionsRefused", [](auto& q) { q.regionOfDefinition = RegionQuirk::Refused; }},
        {"RegionsRefusedWithoutImage",
         [](auto& q) { q.regionOfDefinition = RegionQuirk::RefusedWithoutImage; }},
        {"RegionsRefusedOutsideRender",
         [](auto& q) { q.regionOfDefinition = RegionQuirk::RefusedOutsideRender; }},
        {"UnknownClipsAre3", [](auto& q) { q.unknownClip = UnknownClip::Unknown; }},
        {"UnknownClipsAreNull", [](auto& q) { q.unknownClip = UnknownClip::NullHandleOK; }},
        {"UnknownClipsAreUntouched", [](auto& q) { q.unknownClip = UnknownClip::Untouched; }},
        {"MatteOfFourChannels", [](auto& q) { q.matte = MatteDelivery::Rgba; }},
        {"MatteOfFourChannelsUnannounced",
         [](auto& q) { q.matte = MatteDelivery::RgbaUnannounced; }},
        // Images
        {"OneImageSet", [](auto& q) { q.oneImageSetPerClip = true; }},
        {"PrivateImages", [](auto& q) { q.privateImages = true; }},
        {"TopDownRows", [](auto& q) { q.rowLayout = RowLayout{.topDown = true}; }},
        {"PaddedRows", [](auto& q) { q.rowLayout = RowLayout{.padding = 52}; }},
        {"PaddedTopDownRows",
         [](auto& q) {
             q.rowLayout = RowLayout{true, 12};
         }},
        {"TightRows", [](auto& q) { q.rowLayout = RowLayout{}; }},
        {"LargerBounds",
         [](auto& q) {
             q.boundsChange = OfxRectI{-7, -5, 9, 3};
         },
         Outcome::OtherMasked},
        {"SmallerBounds",
         [](auto& q) {
             q.boundsChange = OfxRectI{10, 8, -9, -6};
         },
         Outcome::Other},
        {"ShiftedBounds",
         [](auto& q) {
             q.boundsChange = OfxRectI{12, 5, 12, 5};
         },
         Outcome::Other},
        {"InfiniteRegion", [](auto& q) { q.infiniteRegion = true; }},
        // Image memory
        {"MemoryNeedsAnEffect", [](auto& q) { q.memoryRefusesNullEffect = true; }},
        {"MemoryMoves", [](auto& q) { q.memoryMoves = true; }},
        {"MemoryIsTight", [](auto& q) { q.memoryLimit = 20000; }, Outcome::NoMemory},
        {"MemoryRunsDry", [](auto& q) { q.memoryLimit = 0; }, Outcome::NoMemory},
        // Threads
        {"OneDirectCall", [](auto& q) { q.threading = Threading::DirectCall; }},
        {"CallsInARow", [](auto& q) { q.threading = Threading::InARow; }},
        {"CallsInARowByTurns", [](auto& q) { q.threading = Threading::Mixed; }},
        {"FewerThreads", [](auto& q) { q.fewerThreads = 1; }},
        {"CpuCountChanges", [](auto& q) { q.cpuCountChanges = true; }},
        {"CpuCountChangesOnThreads",
         [](auto& q) {
             q.cpuCountChanges = true;
             q.instancesAtOnce = 2;
         }},
        {"NoThreadIndex", [](auto& q) { q.threadIndexStatus = kOfxStatFailed; }},
        // Messages, derivatives, aborts
        {"OddMessageAnswers",
         [](auto& q) {
             q.messageStatus = -77;
             rangeWithoutTheFrames(q);
         },
         Outcome::StaysBlack, kExcluded},
        {"OddAnswersWithoutAnEffect",
         [](auto& q) {
             q.nullMessageStatus = kOfxStatErrBadHandle;
             q.nullAbort = 1;
         }},
        {"NullDerivatives", [](auto& q) { q.nullDerivativeMembers = true; }},
        {"DerivativesRefused", [](auto& q) { q.derivativeStatus = kOfxStatErrUnsupported; }},
        {"AbortAtTheFirstPoll", [](auto& q) { q.abortFromPoll = 1; }, Outcome::StaysBlack},
        {"AbortAtTheThirdPoll", [](auto& q) { q.abortFromPoll = 3; }, Outcome::StaysBlack},
    };
    return kCases;
}

/// Of a host, without the characters that names of tests may not have.
constexpr auto kTestName = [](const auto& test) {
    std::string name = test.param.name;
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
};

INSTANTIATE_TEST_SUITE_P(Hosts, Switches, ::testing::ValuesIn(switchCases()), kTestName);

class NamedHosts : public ::testing::TestWithParam<KnownHost> {};

TEST_P(NamedHosts, RenderTheSamePicturesOfEveryDepth)
{
    const HostCase host{GetParam().name, [](auto& q) { q = HostQuirks(GetParam().quirks); }};
    for (const Depth depth : {Depth::Byte, Depth::Short, Depth::Float}) {
        SCOPED_TRACE(depthName(depth));
        for (const Scene scene : {Scene::Quilt, Scene::Masked}) expectScene(host, scene, depth);
    }
}

INSTANTIATE_TEST_SUITE_P(Hosts, NamedHosts,
                         ::testing::ValuesIn(knownHosts().begin(), knownHosts().end()), kTestName);

}  // namespace
}  // namespace Tesseret::Fixtures
