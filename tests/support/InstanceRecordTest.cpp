#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "products/OFX/Support/InstanceRecord.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using Orvane::OvOfxInstanceRecord;
using Orvane::OvPoint;

void withRecord(TinyHost& tiny, const std::function<void(OvOfxInstanceRecord&)>& look)
{
    const auto instance = tiny.create();
    instance->connect("Source", tinySource());
    Host::Project project;
    project.size = {1920.0, 1080.0};
    project.offset = {-10.0, 20.0};
    project.extent = {1910.0, 1100.0};
    project.pixelAspectRatio = 1.5;
    instance->setProject(project);
    instance->beginEdit();  // the host brings the properties up to date before an action
    OvOfxInstanceRecord record(instance->handle());
    look(record);
}

TEST(InstanceRecord, ReadsTheProjectOrReturnsDefaults)
{
    TinyHost tiny;
    withRecord(tiny, [](const OvOfxInstanceRecord& record) {
        EXPECT_EQ(record.projectSize(), (OvPoint{1920.0f, 1080.0f}));
        EXPECT_EQ(record.projectOffset(), (OvPoint{-10.0f, 20.0f}));
        EXPECT_EQ(record.projectExtent(), (OvPoint{1910.0f, 1100.0f}));
        EXPECT_EQ(record.pixelAspectRatio(), 1.5);
    });
    for (const char* name :
         {kOfxImageEffectPropProjectSize, kOfxImageEffectPropProjectOffset,
          kOfxImageEffectPropProjectExtent, kOfxImageEffectPropProjectPixelAspectRatio}) {
        tiny.quirks().refusedReads[name] = kOfxStatErrUnknown;
    }
    withRecord(tiny, [](const OvOfxInstanceRecord& record) {
        EXPECT_EQ(record.projectSize(), OvPoint());
        EXPECT_EQ(record.projectOffset(), OvPoint());
        EXPECT_EQ(record.projectExtent(), OvPoint());
        EXPECT_EQ(record.pixelAspectRatio(), std::nullopt);
    });
}

TEST(InstanceRecord, ReturnsHandlesOnlyForWhatTheHostHas)
{
    for (const Fixtures::UnknownClip reply :
         {Fixtures::UnknownClip::BadHandle, Fixtures::UnknownClip::NullHandleOK}) {
        Fixtures::HostQuirks quirks;
        quirks.unknownClip = reply;
        TinyHost tiny(quirks);
        withRecord(tiny, [](const OvOfxInstanceRecord& record) {
            EXPECT_NE(record.clipHandle("Source"), nullptr);
            EXPECT_EQ(record.clipHandle("Matte"), nullptr);
            EXPECT_NE(record.paramHandle("size"), nullptr);
            EXPECT_EQ(record.paramHandle("Source"), nullptr);
        });
    }
    const OvOfxInstanceRecord none(nullptr);
    EXPECT_EQ(none.clipHandle("Source"), nullptr);
    EXPECT_EQ(none.paramHandle("size"), nullptr);
    EXPECT_EQ(none.projectSize(), OvPoint());
}

TEST(InstanceRecord, TakesItsTimeFromTheNewestFrame)
{
    TinyHost tiny;
    withRecord(tiny, [&](OvOfxInstanceRecord& record) {
        Host::PropertySet timed(tiny.host(), "timed");
        timed.define(kOfxPropTime, {12.0});
        const Orvane::OvOfxPropertySet none;
        EXPECT_EQ(record.time(), 0.0);
        record.pushFrame(Orvane::OvActionKind::TimeDomain, Orvane::OvOfxPropertySet(timed.handle()),
                         none);
        EXPECT_EQ(record.time(), 12.0);
        record.pushFrame(Orvane::OvActionKind::ClipPreferences, none, none);
        EXPECT_EQ(record.time(), 0.0);
        EXPECT_EQ(record.popFrame(), kOfxStatReplyDefault);
        EXPECT_EQ(record.time(), 12.0);
    });
}

TEST(InstanceRecord, KeepsTheOverlaysThatRegister)
{
    OvOfxInstanceRecord record(nullptr);
    int marks[2];
    const auto overlay = [&](int i) { return reinterpret_cast<OfxInteractHandle>(&marks[i]); };
    for (const int i : {0, 1, 0}) record.addInteract(overlay(i));
    record.removeInteract(overlay(0));
    EXPECT_EQ(record.interacts(), std::vector{overlay(1)}) << "every entry of the one removed";
    record.removeInteract(overlay(0));
    EXPECT_EQ(record.interacts().size(), 1u);
}

}  // namespace
}  // namespace Tesseret::Fixtures
