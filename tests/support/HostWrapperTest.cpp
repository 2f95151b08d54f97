#include <array>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "products/OFX/Support/HostWrapper.h"
#include "products/OFX/Support/ParamTypes.h"
#include "tests/support/FrameworkRig.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A parameter of every kind with a value, one of which the host will not know.
void fill(OvOfxEffect& effect, OvOfxContextContainer& container)
{
    auto& integer = effect.own<OvOfxIntegerParam>("integer");
    integer.initial = 7;
    auto& width = effect.own<OvOfxDoubleParam>("width");
    width.doubleType = OvDoubleType::NormalisedXAbsolute;
    width.initial = 0.25f;
    auto& amount = effect.own<OvOfxDoubleParam>("amount");
    amount.initial = 3.0f;
    auto& toggle = effect.own<OvOfxBooleanParam>("toggle");
    toggle.initial = true;
    auto& choice = effect.own<OvOfxChoiceParam>("choice");
    choice.options = {"a", "b", "c"};
    choice.initial = "b";
    auto& rgb = effect.own<OvOfxRGBParam>("rgb");
    rgb.initial = {0.25f, 0.5f, 0.75f, 0.0f};
    auto& rgba = effect.own<OvOfxRGBAParam>("rgba");
    rgba.initial = {0.25f, 0.5f, 0.75f, 1.0f};
    auto& clip = effect.own<OvOfxClip>("Source");
    clip.supportedComponents = {"RGBA"};
    container.clips = {&clip};
    container.params = {&integer, &width, &amount, &toggle,
                        &choice,  &rgb,   &rgba,   &effect.own<OvOfxDouble2DParam>("position")};
}

/// The rig's instance on a project of 1920 x 1080 at offset (-10, 20), and an action on it.
class HostWrapper : public ::testing::Test {
protected:
    OvOfxHostWrapper& start(const Fixtures::HostQuirks& quirks = {})
    {
        wrapper_.reset();
        rig_.reset();  // unloads, so that the next host is described anew
        rig_ = std::make_unique<FrameworkRig>(fill, quirks);
        EXPECT_EQ(rig_->describe(), kOfxStatOK);
        effect_ = &rig_->bind();
        Host::Project project;
        project.size = {1920.0, 1080.0};
        project.offset = {-10.0, 20.0};
        project.extent = {1910.0, 1100.0};
        project.pixelAspectRatio = 2.0;
        rig_->instance().setProject(project);
        rig_->instance().beginEdit();  // properties follow at the next action
        arguments_ = std::make_unique<Host::PropertySet>(rig_->host(), "args");
        arguments_->define(kOfxPropTime, {12.0});
        arguments_->define(kOfxImageEffectPropRenderScale, {0.5, 0.25});
        arguments_->define(kOfxImageEffectPropRenderWindow, {1, 2, 30, 40});
        arguments_->define(kOfxImageEffectPropFieldToRender, {std::string(kOfxImageFieldLower)});
        inArgs_ = OvOfxPropertySet(arguments_->handle());
        return restart();
    }
    OvOfxHostWrapper& restart()
    {
        wrapper_ = effect_->makeHostWrapper(&inArgs_, &inArgs_);
        return *wrapper_;
    }
    Host::Instance& instance() { return rig_->instance(); }

    std::unique_ptr<FrameworkRig> rig_;
    OvOfxEffect* effect_ = nullptr;
    std::unique_ptr<Host::PropertySet> arguments_;
    OvOfxPropertySet inArgs_;
    std::unique_ptr<OvOfxHostWrapper> wrapper_;
};

TEST_F(HostWrapper, ReadsValuesFromTheHostAtATime)
{
    OvOfxHostWrapper& wrapper = start();
    instance().setAt("integer", 3.0, 40);
    instance().setAt("integer", 5.0, 60);
    EXPECT_EQ(wrapper.intAt("integer", 3.5f), 40);
    EXPECT_EQ(wrapper.intAt("integer", 5.0f), 60);
    instance().set("choice", 2);
    EXPECT_EQ(wrapper.intAt("choice", 0.0f), 2);
    EXPECT_EQ(wrapper.intAt("toggle", 0.0f), 1);
    EXPECT_TRUE(wrapper.boolAt("toggle", 0.0f));
    EXPECT_THAT(wrapper.rgbAt("rgb", 0.0f), ElementsAre(0.25f, 0.5f, 0.75f));
    EXPECT_THAT(wrapper.rgbaAt("rgba", 0.0f), ElementsAre(0.25f, 0.5f, 0.75f, 1.0f));
    EXPECT_THAT(wrapper.rgbAt("rgba", 0.0f), ElementsAre(0.25f, 0.5f, 0.75f));
    EXPECT_EQ(wrapper.doubleAt("amount", 0.0f), 3.0);
    EXPECT_EQ(wrapper.doubleAt("width", 0.0f), 0.25 * 1920.0 - 10.0);
    // (0.5, 0.5) of the project, at scale (0.5, 0.25) and an aspect ratio of 2.
    EXPECT_EQ(wrapper.double2DAt("position", 0.0f), (OvPoint{237.5f, 140.0f}));
    effect_->descriptor.fieldExtraction = 1;
    EXPECT_EQ(wrapper.double2DAt("position", 0.0f), (OvPoint{237.5f, 70.0f}));
}

TEST_F(HostWrapper, PassesTimesInSinglePrecision)
{
    OvOfxHostWrapper& wrapper = start();
    const float time = 0.1f;
    instance().setAt("integer", 0.1, 1);  // 0.1f lies just behind 0.1 ...
    instance().setAt("integer", static_cast<double>(time),
                     2);  // ... and reaches the host unchanged
    EXPECT_EQ(wrapper.intAt("integer", time), 2);
}

TEST_F(HostWrapper, ReturnsZerosForAbsentNamesAndOtherTypes)
{
    OvOfxHostWrapper& wrapper = start();
    testing::internal::CaptureStdout();
    EXPECT_EQ(wrapper.intAt("rgb", 0.0f), 0);
    EXPECT_EQ(wrapper.doubleAt("integer", 0.0f), 0.0);
    EXPECT_EQ(wrapper.double2DAt("amount", 0.0f), OvPoint());
    EXPECT_FALSE(wrapper.boolAt("integer", 0.0f));
    EXPECT_FALSE(wrapper.hasParam("nothing"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    EXPECT_EQ(wrapper.intAt("nothing", 0.0f), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OvOfxHostWrapper::findParam, failed to find parameter nothing\n");
    EXPECT_EQ(wrapper.clip("Nothing"), nullptr);
    EXPECT_NE(wrapper.clip("Source"), nullptr);
    EXPECT_TRUE(wrapper.hasClip("Output"));
}

TEST_F(HostWrapper, SetsValuesInTheUnitsOfTheParameter)
{
    OvOfxHostWrapper& wrapper = start();
    wrapper.setDouble("width", 950.0);
    wrapper.setDouble2D("position", 237.5f, 275.0f);
    wrapper.setInt("choice", 2);
    wrapper.setInt("integer", 11);
    wrapper.setBool("toggle", false);
    wrapper.setRGB("rgb", 1.0f, 0.5f, 0.0f);
    wrapper.setRGBA("rgba", 1.0f, 0.5f, 0.0f, 0.25f);
    EXPECT_EQ(std::get<double>(instance().value("width")), 0.5);
    EXPECT_EQ(std::get<int>(instance().value("choice")), 2);
    EXPECT_EQ(std::get<int>(instance().value("integer")), 11);
    EXPECT_EQ(std::get<int>(instance().value("toggle")), 0);
    EXPECT_THAT(std::get<std::vector<double>>(instance().value("position")), ElementsAre(0.5, 1.0));
    EXPECT_THAT(std::get<std::vector<double>>(instance().value("rgb")), ElementsAre(1.0, 0.5, 0.0));
    EXPECT_THAT(std::get<std::vector<double>>(instance().value("rgba")),
                ElementsAre(1.0, 0.5, 0.0, 0.25));
    EXPECT_THAT(rig_->calls().badCalls(), IsEmpty());
}

TEST_F(HostWrapper, HasFallbacksInAHostWithoutDerivatives)
{
    for (const bool missing : {false, true}) {
        Fixtures::HostQuirks quirks;
        quirks.nullDerivativeMembers = missing;
        OvOfxHostWrapper& wrapper = start(quirks);
        instance().setAt("amount", 0.0, 0.0);
        instance().setAt("amount", 4.0, 8.0);
        EXPECT_EQ(wrapper.doubleDerivative("amount", 1.0f), missing ? 0.0 : 2.0);
        EXPECT_EQ(wrapper.doubleIntegral("amount", 0.0f, 4.0f), missing ? 4.0 * 3.0 : 16.0);
        if (missing) {
            EXPECT_EQ(wrapper.double2DDerivative("position", 0.0f), (OvPoint{-2.5f, 5.0f}));
            EXPECT_EQ(wrapper.double2DIntegral("position", 0.0f, 2.0f), (OvPoint{477.5f, 275.0f}));
        }
    }
}

TEST_F(HostWrapper, ReadsZerosWhereAHostRefusesAndDefaultsWhereItHasNoParameter)
{
    OvOfxHostWrapper& wrapper = start();
    OvOfxEffect unbound;
    fill(unbound, *unbound.container(OvContext::General));
    auto& absent = *unbound.container(OvContext::General)->params[0];
    absent.name = "unknown to the host";
    absent.handle = std::make_unique<OvOfxParamHandle>(*effect_->instance(), absent.name);
    EXPECT_FALSE(absent.handle->isKnown());
    EXPECT_EQ(paramCast<OvOfxIntegerParam>(&absent)->valueAt(1.0), 7);
    EXPECT_EQ(wrapper.intAt("integer", 0.0f), 7);
    // A choice whose handle leads to another type: the host refuses and nothing is left of it.
    effect_->findParam("choice")->handle =
        std::make_unique<OvOfxParamHandle>(*effect_->instance(), "integer");
    EXPECT_EQ(wrapper.intAt("choice", 0.0f), 7);
}

TEST_F(HostWrapper, ReadsTheActionFromItsArguments)
{
    OvOfxHostWrapper& wrapper = start();
    EXPECT_EQ(wrapper.time(), 12.0);
    arguments_->assign(kOfxPropTime, {13.0});
    EXPECT_EQ(wrapper.time(), 12.0);  // read once
    EXPECT_EQ(wrapper.renderScale(), (OvPoint{0.5f, 0.25f}));
    EXPECT_EQ(wrapper.renderWindow().y2, 40);
    EXPECT_EQ(wrapper.fieldToRender(), OvField::Lower);
    EXPECT_EQ(wrapper.pixelAspectRatio(), 2.0);
    EXPECT_EQ(wrapper.fieldScale(), 1.0);
    effect_->descriptor.fieldExtraction = 1;
    EXPECT_EQ(wrapper.fieldScale(), 0.5);
    EXPECT_EQ(wrapper.contextKind(), 3);
    EXPECT_EQ(wrapper.projectExtentPixels(), (OvPoint{477.5f, 275.0f}));
    EXPECT_EQ(wrapper.projectRectPixels(),
              (OvRect{.xMin = -2.5f, .xMax = 477.5f, .yMin = 5.0f, .yMax = 275.0f}));
    EXPECT_EQ(wrapper.renderStatus().abortHandle, instance().handle());
    EXPECT_EQ(wrapper.renderStatus().pollAbort(), false);
    instance().abort();
    EXPECT_EQ(wrapper.renderStatus().pollAbort(), true);
    wrapper.setCounter(5);
    EXPECT_EQ(restart().counter(), 5);
}

TEST_F(HostWrapper, HasDefaultsWithoutArguments)
{
    start();
    OvOfxHostWrapper wrapper(*effect_, nullptr, nullptr);
    EXPECT_EQ(wrapper.renderScale(), (OvPoint{1.0f, 1.0f}));
    EXPECT_EQ(wrapper.renderWindow().x2, 0);
    EXPECT_EQ(wrapper.fieldToRender(), OvField::None);
    EXPECT_EQ(wrapper.time(), 0.0);
    effect_->instance()->pushFrame(OvActionKind::TimeDomain, inArgs_, OvOfxPropertySet());
    EXPECT_EQ(wrapper.time(), 12.0);
    effect_->instance()->popFrame();
    EXPECT_EQ(wrapper.time(), 0.0);  // the frame's time was not kept
    wrapper.addFrameRange("Source", 1.0, 2.0);

    OvOfxEffect descriptor;
    OvOfxHostWrapper describing(descriptor, nullptr, nullptr);
    EXPECT_EQ(describing.renderStatus().abortHandle, nullptr);
    EXPECT_FALSE(describing.renderStatus().pollAbort());  // no host to poll
    EXPECT_EQ(describing.pixelAspectRatio(), 1.0);
}

TEST_F(HostWrapper, WritesFrameRangesOneAfterTheOther)
{
    OvOfxHostWrapper& wrapper = start();
    for (const char* property :
         {"OfxImageClipPropFrameRange_Source", "OfxImageClipPropFrameRange_Matte"}) {
        arguments_->define(property, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
    }
    wrapper.addFrameRange("Source", 1.0, 2.0);
    wrapper.addFrameRange("Source", 3.0, 4.0);
    wrapper.addFrameRange("Matte", 5.0, 6.0);
    EXPECT_THAT(arguments_->doubles("OfxImageClipPropFrameRange_Source"),
                ElementsAre(1.0, 2.0, 3.0, 4.0, 0.0, 0.0));
    EXPECT_THAT(arguments_->doubles("OfxImageClipPropFrameRange_Matte"),
                ElementsAre(0.0, 0.0, 0.0, 0.0, 5.0, 6.0));
}

TEST_F(HostWrapper, UsesTheSourcesRegionWhereTheProjectHasNoSize)
{
    Fixtures::HostQuirks quirks;
    quirks.projectProperties = Fixtures::ProjectProperties::Never;
    OvOfxHostWrapper& wrapper = start(quirks);
    instance().connect("Source", std::make_shared<Host::StillSource>(std::make_shared<Picture>(
                                     OfxRectI{4, 10, 24, 50}, Depth::Byte)));
    // Canonical (14, 30), at scale (0.5, 0.25); the aspect ratio cannot be read either.
    EXPECT_EQ(wrapper.double2DAt("position", 0.0f), (OvPoint{7.0f, 7.5f}));
}

TEST_F(HostWrapper, UsesTheSourcesAspectWhereTheProjectHasNone)
{
    for (const double unusable : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        OvOfxHostWrapper& wrapper = start();
        EXPECT_TRUE(wrapper.hasProjectAspect());
        auto picture = std::make_shared<Picture>(OfxRectI{4, 10, 24, 50}, Depth::Byte);
        picture->setPixelAspectRatio(1.5);
        instance().connect("Source", std::make_shared<Host::StillSource>(picture));
        Host::Project project = instance().project();
        project.pixelAspectRatio = unusable;
        instance().setProject(project);
        instance().beginEdit();
        EXPECT_FALSE(wrapper.hasProjectAspect());
        EXPECT_EQ(wrapper.pixelAspectRatio(), 1.5);  // the clip's
        wrapper.setSourceAspect(1.25);
        EXPECT_EQ(wrapper.pixelAspectRatio(), 1.25);  // the image's
        wrapper.setSourceAspect(std::nullopt);
        rig_->quirks().refusedReads[kOfxImagePropPixelAspectRatio] = kOfxStatErrUnknown;
        EXPECT_EQ(wrapper.pixelAspectRatio(), 1.0);
    }
}

}  // namespace
}  // namespace Tesseret::Fixtures
