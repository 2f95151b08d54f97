#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {
namespace {

using Host::ClipDescription;
using Host::ContextDescription;
using Host::ParameterDescription;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Field;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

constexpr const char* kFilter = kOfxImageEffectContextFilter;
constexpr const char* kGeneral = kOfxImageEffectContextGeneral;

const ContextDescription& described(TestHost& test, const char* context)
{
    test.effect().start();
    return test.effect().describeInContext(context);
}

/// The names of what is no page, in order of definition.
Names parametersOf(const ContextDescription& context)
{
    Names names;
    for (const ParameterDescription& parameter : context.parameters) {
        if (!parameter.isPage()) names.push_back(parameter.name);
    }
    return names;
}

Names clipsOf(const ContextDescription& context)
{
    Names names;
    for (const ClipDescription& clip : context.clips) names.push_back(clip.name);
    return names;
}

/// What was written to one of the host's sets, as "property[index]".
Names writesTo(TestHost& test, std::string_view set)
{
    Names writes;
    for (const Fixtures::PropertyWrite& write : test.calls().propertyWrites()) {
        if (write.set == set) {
            writes.push_back(write.property + "[" + std::to_string(write.index) + "]");
        }
    }
    return writes;
}

/// The pages of a host, x rows and y columns.
Fixtures::HostQuirks pages(int rows, int columns)
{
    Fixtures::HostQuirks quirks;
    quirks.identity.pageRowsAndColumns = OfxPointI{rows, columns};
    return quirks;
}

TEST(Description, TellsTheEffectInOrder)
{
    TestHost test;
    ASSERT_EQ(test.effect().sendDescribe(), kOfxStatOK);
    EXPECT_THAT(
        writesTo(test, "effect"),
        ElementsAre(
            "OfxPropLabel[0]", "OfxImageEffectPluginPropGrouping[0]",
            "OfxImageEffectPropSupportedContexts[0]", "OfxImageEffectPropSupportedContexts[1]",
            "OfxImageEffectPropSupportedPixelDepths[0]",
            "OfxImageEffectPropSupportedPixelDepths[1]",
            "OfxImageEffectPropSupportedPixelDepths[2]", "OfxImageEffectPropSupportsTiles[0]",
            "OfxImageEffectPropSupportsMultiResolution[0]",
            "OfxImageEffectPropSupportsMultipleClipPARs[0]",
            "OfxImageEffectPropMultipleClipDepths[0]", "OfxImageEffectPropTemporalClipAccess[0]",
            "OfxImageEffectPluginPropSingleInstance[0]",
            "OfxImageEffectPluginRenderThreadSafety[0]",
            "OfxImageEffectPluginPropHostFrameThreading[0]",
            "OfxImageEffectPluginPropFieldRenderTwiceAlways[0]",
            "OfxImageEffectPluginPropOverlayInteractV1[0]"));
    const Host::EffectDescription effect = test.effect().descriptor().describeEffect();
    EXPECT_EQ(effect.label, "Tesseret");
    EXPECT_EQ(effect.grouping, "Brisant");
    EXPECT_THAT(effect.contexts, ElementsAre(kFilter, kGeneral));
    EXPECT_THAT(effect.depths, ElementsAre(kOfxBitDepthByte, kOfxBitDepthShort, kOfxBitDepthFloat));
    EXPECT_FALSE(effect.supportsTiles);
    EXPECT_EQ(effect.threadSafety, kOfxImageEffectRenderInstanceSafe);
    EXPECT_STREQ(test.effect().plugin().pluginIdentifier, "com.orvane.brisant.tesseret");
    EXPECT_EQ(test.effect().plugin().pluginVersionMinor, 1030000u);
}

TEST(Description, OfAFilterHasOneInputAndSixteenParameters)
{
    TestHost test;
    const ContextDescription& filter = described(test, kFilter);
    EXPECT_THAT(clipsOf(filter), ElementsAre("Output", "Source"));
    EXPECT_THAT(parametersOf(filter),
                ElementsAre("sampleCorner1", "sampleCorner2", "avoidFillRegion", "fillRegion",
                            "seed", "blockSize", "overlap", "blendSize", "numSamples", "pathWidth",
                            "edgeBlend", "temporalConsistancy", "luminanceMatch", "luminanceBlur",
                            "showWidget", "about"));
    const ParameterDescription& fillRegion = *filter.parameter("fillRegion");
    EXPECT_THAT(fillRegion.options,
                ElementsAre("Entire Image", "Source->Alpha", "Source->Inverted Alpha"));
    EXPECT_FALSE(test.effect()
                     .contextDescriptor(kFilter)
                     ->parameters()
                     .find("fillRegion")
                     ->properties()
                     .wasWritten(kOfxParamPropDefault));
    test.expectClean();
}

TEST(Description, OfTheGeneralContextAddsTexturesAndAMatte)
{
    TestHost test;
    const ContextDescription& general = described(test, kGeneral);
    EXPECT_THAT(clipsOf(general),
                ElementsAre("Output", "Source", "Texture1", "Texture2", "Texture3", "Matte"));
    const Names parameters = parametersOf(general);
    ASSERT_EQ(parameters.size(), 19u);
    EXPECT_THAT(Names(parameters.begin() + 13, parameters.end()),
                ElementsAre("luminanceBlur", "useTexture1", "useTexture2", "useTexture3",
                            "showWidget", "about"));
    const ParameterDescription& fillRegion = *general.parameter("fillRegion");
    EXPECT_EQ(fillRegion.options.size(), 5u);
    EXPECT_EQ(std::get<int>(fillRegion.initial), 3);
    EXPECT_EQ(general.parameter("useTexture1")->hint,
              "Whether to use Texture 2 as a texture source.");

    const ClipDescription& source = *general.clip("Source");
    EXPECT_FALSE(source.optional || source.isMask || source.temporalAccess || source.supportsTiles);
    const ClipDescription& matte = *general.clip("Matte");
    EXPECT_TRUE(matte.optional && matte.isMask && matte.temporalAccess);
    EXPECT_EQ(matte.label, "Fill Matte");
    EXPECT_THAT(matte.components, ElementsAre(kOfxImageComponentAlpha));
    EXPECT_EQ(general.clip("Output")->label, "output");
    EXPECT_TRUE(general.clip("Output")->supportsTiles);
    EXPECT_TRUE(general.clip("Texture2")->optional && !general.clip("Texture2")->isMask);
    EXPECT_THAT(general.clips,
                Each(Field(&ClipDescription::fieldExtraction, kOfxImageFieldSingle)));
    test.expectClean();
}

TEST(Description, OfSingleParametersIsExact)
{
    TestHost test;
    const ContextDescription& filter = described(test, kFilter);

    const ParameterDescription& corner = *filter.parameter("sampleCorner2");
    EXPECT_EQ(corner.type, kOfxParamTypeDouble2D);
    EXPECT_EQ(corner.scriptName, "Point2");
    EXPECT_EQ(corner.label, "Sample Corner 2");
    EXPECT_EQ(corner.doubleType, kOfxParamDoubleTypeNormalisedXYAbsolute);
    EXPECT_THAT(std::get<std::vector<double>>(corner.initial),
                ElementsAre(double{0.8f}, double{0.8f}));  // single precision, as it was ever told
    EXPECT_THAT(corner.min, ElementsAre(-9000000.0, -9000000.0));
    EXPECT_THAT(corner.displayMax, ElementsAre(1.0, 1.0));
    EXPECT_TRUE(corner.animates);

    const ParameterDescription& blur = *filter.parameter("luminanceBlur");
    EXPECT_EQ(std::get<double>(blur.initial), 40.0);
    EXPECT_THAT(blur.min, ElementsAre(5.0));
    EXPECT_THAT(blur.displayMax, ElementsAre(100.0));
    EXPECT_EQ(blur.increment, 1.0);
    EXPECT_EQ(blur.doubleType, kOfxParamDoubleTypePlain);
    EXPECT_TRUE(blur.animates);
    EXPECT_EQ(filter.parameter("pathWidth")->increment, 2.0);

    const ParameterDescription& blockSize = *filter.parameter("blockSize");
    EXPECT_EQ(std::get<int>(blockSize.initial), 100);
    EXPECT_THAT(blockSize.min, ElementsAre(30.0));
    EXPECT_THAT(blockSize.max, ElementsAre(9000000.0));
    EXPECT_FALSE(blockSize.animates);
    EXPECT_FALSE(blockSize.secret);

    const ParameterDescription& widget = *filter.parameter("showWidget");
    EXPECT_EQ(widget.type, kOfxParamTypeBoolean);
    EXPECT_EQ(std::get<int>(widget.initial), 1);
    EXPECT_FALSE(widget.evaluateOnChange);
    EXPECT_FALSE(widget.animates);
    EXPECT_TRUE(filter.parameter("seed")->evaluateOnChange);
    EXPECT_TRUE(filter.parameter("about")->isButton());
    EXPECT_EQ(filter.parameter("about")->label, "Help...");
    EXPECT_THAT(
        writesTo(test, "clip Source"),
        ElementsAre("OfxPropLabel[0]", "OfxImageClipPropOptional[0]", "OfxImageClipPropIsMask[0]",
                    "OfxImageEffectPropTemporalClipAccess[0]", "OfxImageEffectPropSupportsTiles[0]",
                    "OfxImageClipPropFieldExtraction[0]",
                    "OfxImageEffectPropSupportedComponents[0]"));
}

TEST(Description, LaysOutItsPagesForEachContext)
{
    const std::string skip = kOfxParamPageSkipColumn;
    const Names begin = {
        "avoidFillRegion", "fillRegion",    skip, "seed",      "blockSize", "overlap",
        "blendSize",       "numSamples",    skip, "pathWidth", "edgeBlend", "temporalConsistancy",
        "luminanceMatch",  "luminanceBlur", skip};
    for (const char* name : {kFilter, kGeneral}) {
        SCOPED_TRACE(name);
        TestHost test;
        const ContextDescription& context = described(test, name);
        EXPECT_THAT(context.pageOrder, ElementsAre("Texture", "Sample Box"));
        Names children = begin;
        if (name == kGeneral) {
            for (const char* toggle : {"useTexture1", "useTexture2", "useTexture3"}) {
                children.emplace_back(toggle);
            }
            children.push_back(skip);
        }
        for (const char* last : {"about", "showWidget"}) children.emplace_back(last);
        children.push_back(skip);
        EXPECT_THAT(context.parameter("Texture")->pageChildren, ElementsAreArray(children));
        const ParameterDescription& box = *context.parameter("Sample Box");
        EXPECT_THAT(box.pageChildren, ElementsAre("sampleCorner1", skip, "sampleCorner2", skip));
        EXPECT_EQ(box.scriptName, "parameter");
        EXPECT_EQ(context.parameter("Texture")->scriptName, "Texture");
    }
}

TEST(Description, HasPagesOnlyWhereTheHostHasRoomForAll)
{
    struct Case {
        const char* context;
        std::optional<OfxPointI> room;
        bool admitted;
    };
    for (const Case& each :
         {Case{kFilter, OfxPointI{5, 4}, true}, Case{kFilter, OfxPointI{4, 4}, false},
          Case{kFilter, OfxPointI{5, 3}, false}, Case{kGeneral, OfxPointI{5, 4}, false},
          Case{kGeneral, OfxPointI{5, 5}, true}, Case{kFilter, OfxPointI{0, 0}, false},
          Case{kFilter, {}, false}}) {
        Fixtures::HostQuirks quirks;
        quirks.identity.pageRowsAndColumns = each.room;
        TestHost test(quirks);
        const ContextDescription& context = described(test, each.context);
        EXPECT_EQ(context.pageOrder.size(), each.admitted ? 2u : 0u);
        EXPECT_EQ(context.parameter("Texture") != nullptr, each.admitted);
        EXPECT_EQ(parametersOf(context).size(), each.context == kFilter ? 16u : 19u);
    }
}

TEST(Description, StopsSilentlyAtTheHostsNumberOfParameters)
{
    Fixtures::HostQuirks quirks = pages(4, 4);
    for (const int limit : {3, 0}) {
        quirks.identity.maxParameters = limit;
        TestHost test(quirks);
        const Names names = parametersOf(described(test, kGeneral));
        EXPECT_EQ(names.size(), limit == 3 ? 3u : 19u);
        EXPECT_EQ(names[2], "avoidFillRegion");
    }
}

TEST(Description, OnABackgroundHostIsForRenderingOnly)
{
    Fixtures::HostQuirks quirks;
    quirks.identity.isBackground = true;
    TestHost test(quirks);
    const ContextDescription& context = described(test, kGeneral);
    EXPECT_THAT(context.parameters, Each(AllOf(Field(&ParameterDescription::label, "Render Only"),
                                               Field(&ParameterDescription::hint, "Render Only"),
                                               Field(&ParameterDescription::secret, true))));
    EXPECT_EQ(context.parameter("seed")->scriptName, "seed");
    EXPECT_EQ(context.clip("Source")->label, "Source");
}

TEST(Description, StandsAHostThatRefusesSingleProperties)
{
    Fixtures::HostQuirks quirks;
    quirks.refusedWrites[kOfxPluginPropParamPageOrder] = kOfxStatErrUnknown;
    quirks.refusedWrites[kOfxParamPropHint] = kOfxStatErrUnsupported;
    quirks.refusedWrites[kOfxImageEffectPropSupportsTiles] = kOfxStatErrUnknown;
    TestHost test(quirks);
    const ContextDescription& context = described(test, kGeneral);
    EXPECT_EQ(parametersOf(context).size(), 19u);
    EXPECT_NE(context.parameter("Sample Box"), nullptr);
    EXPECT_THAT(context.pageOrder, IsEmpty());
}

TEST(Description, IsTheSameEachTime)
{
    Fixtures::HostQuirks quirks;
    quirks.describeTwice = true;
    TestHost test(quirks);
    test.effect().start();
    EXPECT_EQ(test.effect().sendDescribe(), kOfxStatOK);
    const Names first = parametersOf(test.effect().describeInContext(kFilter));
    EXPECT_EQ(test.effect().sendDescribeInContext(kFilter), kOfxStatOK);
    EXPECT_EQ(parametersOf(test.effect().contextDescriptor(kFilter)->describeContext()), first);
    EXPECT_EQ(test.effect().sendDescribeInContext("OfxImageEffectContextUnheardOf"),
              kOfxStatFailed);
}

}  // namespace
}  // namespace Tesseret::Fixtures
