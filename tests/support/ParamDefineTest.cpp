#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "products/OFX/Support/Page.h"
#include "products/OFX/Support/ParamTypes.h"
#include "tests/support/FrameworkRig.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

const Names kCommon = {kOfxPropLabel, kOfxParamPropHint, kOfxParamPropScriptName,
                       kOfxParamPropSecret, kOfxParamPropEnabled};
const Names kValued = {kOfxParamPropAnimates,          kOfxParamPropCanUndo,
                       kOfxParamPropPluginMayWrite,    kOfxParamPropPersistant,
                       kOfxParamPropCacheInvalidation, kOfxParamPropEvaluateOnChange};

Names operator+(Names names, const Names& more)
{
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

Names repeated(const char* name, std::size_t count)
{
    return Names(count, name);
}

std::vector<std::string> namesOf(const std::vector<OvOfxParam*>& params)
{
    Names names;
    for (const OvOfxParam* param : params) names.push_back(param->name);
    return names;
}

/// One parameter of each type, with nothing but its name.
void oneOfEach(OvOfxEffect& effect, OvOfxContextContainer& container)
{
    auto& choice = effect.own<OvOfxChoiceParam>("choice");
    choice.options = {"first", "second"};
    choice.initial = "second";
    auto& noDefault = effect.own<OvOfxChoiceParam>("noDefault");
    noDefault.options = {"first"};
    noDefault.initial = "third";
    auto& group = effect.own<OvOfxGroup>("group");
    group.children = {&effect.own<OvOfxIntegerParam>("child")};
    container.params = {&effect.own<OvOfxIntegerParam>("integer"),
                        &effect.own<OvOfxDoubleParam>("double"),
                        &effect.own<OvOfxBooleanParam>("boolean"),
                        &choice,
                        &noDefault,
                        &effect.own<OvOfxPushButton>("button"),
                        &effect.own<OvOfxRGBParam>("rgb"),
                        &effect.own<OvOfxRGBAParam>("rgba"),
                        &effect.own<OvOfxStringParam>("string"),
                        &effect.own<OvOfxCustomParam>("custom"),
                        &effect.own<OvOfxDouble2DParam>("position"),
                        &group};
}

TEST(ParamDefine, WritesThePropertiesOfEachTypeInOrder)
{
    FrameworkRig rig(oneOfEach);
    ASSERT_EQ(rig.describe(), kOfxStatOK);
    const Names limits = {kOfxParamPropMin, kOfxParamPropMax, kOfxParamPropDisplayMin,
                          kOfxParamPropDisplayMax};
    const Names steps = {kOfxParamPropIncrement, kOfxParamPropDigits};
    const Names initial = {kOfxParamPropDefault};
    const auto colour = [&](std::size_t count) {
        Names names = repeated(kOfxParamPropDefault, count);
        for (const std::string& limit : limits) names = names + repeated(limit.c_str(), count);
        return names + steps;
    };
    Names pairs = {kOfxParamPropDoubleType};
    for (const char* name : {kOfxParamPropDefault, kOfxParamPropDisplayMin, kOfxParamPropDisplayMax,
                             kOfxParamPropMin, kOfxParamPropMax}) {
        pairs = pairs + repeated(name, 2);
    }
    struct Case {
        const char* name;
        const char* type;
        Names specific;
    };
    for (const Case& each : std::vector<Case>{
             {"integer", kOfxParamTypeInteger, initial + limits},
             {"double", kOfxParamTypeDouble,
              limits + initial + steps + Names{kOfxParamPropDoubleType}},
             {"boolean", kOfxParamTypeBoolean, initial},
             {"choice", kOfxParamTypeChoice, repeated(kOfxParamPropChoiceOption, 2) + initial},
             {"noDefault", kOfxParamTypeChoice, {kOfxParamPropChoiceOption}},
             {"rgb", kOfxParamTypeRGB, colour(3)},
             {"rgba", kOfxParamTypeRGBA, colour(4)},
             {"string", kOfxParamTypeString, {kOfxParamPropDefault, kOfxParamPropStringMode}},
             {"custom", kOfxParamTypeCustom, initial},
             {"position", kOfxParamTypeDouble2D, pairs + steps}}) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(rig.descriptor().parameters().find(each.name)->type(), each.type);
        EXPECT_THAT(
            rig.tiny().writesTo(std::string("param ") + each.name),
            ElementsAreArray(Names{kOfxParamPropParent} + kCommon + kValued + each.specific));
    }
    EXPECT_THAT(rig.tiny().writesTo("param button"),
                ElementsAreArray(Names{kOfxParamPropParent} + kCommon));
    EXPECT_THAT(rig.tiny().writesTo("param group"), ElementsAreArray(kCommon));
    EXPECT_EQ(
        rig.descriptor().parameters().find("child")->properties().stringOr(kOfxParamPropParent, ""),
        "group");
    EXPECT_THAT(rig.calls().badCalls(), IsEmpty());
}

TEST(ParamDefine, ListsWhatWasDefinedAndStopsAtTheHostsLimit)
{
    {
        FrameworkRig rig(oneOfEach);
        ASSERT_EQ(rig.describe(), kOfxStatOK);
        EXPECT_THAT(namesOf(rig.described().parameters()),
                    ElementsAre("integer", "double", "boolean", "choice", "noDefault", "button",
                                "rgb", "rgba", "string", "custom", "position", "group", "child"));
    }
    const auto clipFirst = [](OvOfxEffect& effect, OvOfxContextContainer& container) {
        oneOfEach(effect, container);
        container.params.insert(container.params.begin(), &effect.own<OvOfxClip>("clip"));
        container.params[1]->excluded = true;
    };
    Fixtures::HostQuirks quirks;
    quirks.identity.maxParameters = 3;
    FrameworkRig rig(clipFirst, quirks);
    ASSERT_EQ(rig.describe(), kOfxStatOK);
    EXPECT_THAT(namesOf(rig.described().parameters()), ElementsAre("double", "boolean"));
}

TEST(ParamDefine, ReturnsTheStatusOfTheDefineCallOrOfAnUnknownType)
{
    const auto twice = [](OvOfxEffect& effect, OvOfxContextContainer& container) {
        container.params = {&effect.own<OvOfxIntegerParam>("seed"),
                            &effect.own<OvOfxIntegerParam>("seed"),
                            &effect.own<OvOfxIntegerParam>("size")};
    };
    FrameworkRig same(twice);
    EXPECT_EQ(same.describe(), kOfxStatErrExists);
    EXPECT_THAT(namesOf(same.described().parameters()), ElementsAre("seed"));

    FrameworkRig marker([](OvOfxEffect& effect, OvOfxContextContainer& container) {
        container.params = {&effect.rowEnd()};
    });
    EXPECT_EQ(marker.describe(), kOfxStatFailed);
}

TEST(ParamDefine, IgnoresTheStatusOfSingleProperties)
{
    FrameworkRig rig(oneOfEach);
    for (const char* name : {kOfxParamPropParent, kOfxParamPropHint, kOfxParamPropDefault}) {
        rig.quirks().refusedWrites[name] = kOfxStatErrUnknown;
    }
    EXPECT_EQ(rig.describe(), kOfxStatOK);
    EXPECT_EQ(rig.described().parameters().size(), 13u);
}

TEST(ParamDefine, DefinesTheParameterThatAContextRequiresFirst)
{
    FrameworkRig rig(oneOfEach, {}, OvContext::Transition);
    ASSERT_EQ(rig.describe(), kOfxStatOK);
    EXPECT_EQ(rig.described().parameters().front()->name, "Transition");
    EXPECT_NE(rig.descriptor().clip("SourceFrom"), nullptr);
    EXPECT_NE(rig.descriptor().clip("SourceTo"), nullptr);
    FrameworkRig unknown(oneOfEach, {}, OvContext::None);
    EXPECT_EQ(unknown.describe(), kOfxStatFailed);
    EXPECT_NE(unknown.descriptor().clip("Output"), nullptr);
    EXPECT_THAT(unknown.descriptor().parameters().all(), IsEmpty());
}

TEST(ClipDefine, StopsAtUnknownComponents)
{
    FrameworkRig rig([](OvOfxEffect& effect, OvOfxContextContainer& container) {
        auto& clip = effect.own<OvOfxClip>("Odd");
        clip.supportedComponents = {"alpha", "RGB"};
        container.clips = {&clip};
    });
    EXPECT_EQ(rig.describe(), kOfxStatFailed);
    EXPECT_THAT(
        rig.tiny().writesTo("clip Odd"),
        ElementsAre(kOfxPropLabel, kOfxImageClipPropOptional, kOfxImageClipPropIsMask,
                    kOfxImageEffectPropTemporalClipAccess, kOfxImageEffectPropSupportsTiles,
                    kOfxImageClipPropFieldExtraction, kOfxImageEffectPropSupportedComponents));
}

TEST(Codes, NameTheClassAndItsBases)
{
    const OvOfxRGBAParam colour;
    EXPECT_EQ(colour.typeCode(), 14);
    for (const int code : {8, 10, 13, 14}) EXPECT_TRUE(colour.isA(code)) << code;
    for (const int code : {9, 11, 15}) EXPECT_FALSE(colour.isA(code)) << code;
    EXPECT_TRUE(OvOfxInterfaceToggle("show").isA(16));
    EXPECT_TRUE(Rect2D("region").isA(9));
    EXPECT_TRUE(OvOfxOutputClip().isA(47));
    EXPECT_FALSE(OvOfxPushButton().isA(10));
    EXPECT_EQ(OvOfxPage("page").typeCode(), 49);
}

}  // namespace
}  // namespace Tesseret::Fixtures
