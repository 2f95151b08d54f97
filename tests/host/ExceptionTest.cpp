// Exceptions of a listener, a source of pictures or the host itself in a call that a plug-in makes:
// each is held back in the suite and rethrown by the host once the plug-in has returned.

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Interact.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Host {
namespace {

using Fixtures::samePixels;
using ::testing::Contains;
using ::testing::HasSubstr;

class Full : public std::runtime_error {
public:
    Full() : std::runtime_error("the disk is full") {}
};

/// Throws at every block.
class ThrowingListener final : public RenderListener {
public:
    void blockLaid(Instance&, const TesseretBlockV1&) override
    {
        ++blocks;
        throw Full();
    }

    int blocks = 0;
};

TEST(ExceptionTest, OfAListenerComesOutOfTheRender)
{
    Fixtures::TestHost test;
    test.create();
    const Picture expected = test.render();
    ThrowingListener listener;
    test.host().setListener(&listener);
    Picture output;
    EXPECT_THROW(test.render(0.0, {0, 0, 64, 48}, output), Full);
    EXPECT_GT(listener.blocks, 0);
    EXPECT_TRUE(samePixels(output, expected)) << "the plug-in has not met it";
    test.host().setListener(nullptr);
    EXPECT_TRUE(samePixels(test.render(), expected));
    test.destroyInstance();
    test.expectClean();
}

class ThrowingHost final : public HostBehaviour {
public:
    OfxStatus checkRead(std::string_view property) override
    {
        if (property == unreadable) throw Full();
        return kOfxStatOK;
    }

    std::string unreadable;
};

class ThrowingSource final : public ClipSource {
public:
    ClipFormat format() const override { return {}; }
    OfxRangeD frameRange() const override { return {0.0, 0.0}; }
    OfxRectD regionOfDefinition(OfxTime) const override { return {0.0, 0.0, 8.0, 8.0}; }
    std::shared_ptr<const Picture> picture(OfxTime, OfxPointD) override { throw Full(); }
};

/// A plug-in that handles no exceptions.
class ForeignPluginTest : public ::testing::Test {
protected:
    ForeignPluginTest()
    {
        effect.start();
        instance = effect.createInstance(kOfxImageEffectContextFilter);
        connect();
    }
    void connect() { instance->connect("Source", std::make_shared<StillSource>(source)); }
    HostOptions options()
    {
        return {.threads = 4, .behaviour = &behaviour, .onReport = [this](const Report& report) {
                    reports.push_back(report.text);
                }};
    }

    ThrowingHost behaviour;
    std::vector<std::string> reports;
    EmbeddedHost host{options()};
    std::shared_ptr<PluginLibrary> library = PluginLibrary::load(INVERT_PLUGIN);
    Effect effect{host, library, library->plugin()};
    std::shared_ptr<Picture> source = Fixtures::texturePicture({0, 0, 8, 8}, Depth::Byte, 1);
    const RenderRequest whole{.window = source->bounds()};
    Picture output{source->bounds(), Depth::Byte};
    std::unique_ptr<Instance> instance;
};

TEST_F(ForeignPluginTest, IsPassedByWhatASuiteThrows)
{
    for (const char* property : {kOfxPropTime, kOfxImagePropBounds}) {
        behaviour.unreadable = property;
        EXPECT_THROW(instance->render(whole, output), Full) << property;
    }
    behaviour.unreadable = kOfxInteractPropPenPosition;
    Interact overlay(*instance);
    EXPECT_THROW(overlay.penDown({.position = {0.5, 0.5}}), Full);
    behaviour.unreadable.clear();
    instance->connect("Source", std::make_shared<ThrowingSource>());
    EXPECT_THROW(instance->render(whole, output), Full);
    EXPECT_THAT(reports, Contains(HasSubstr("the disk is full")));
    EXPECT_THAT(reports, Not(Contains(HasSubstr("left the plug-in"))));

    connect();
    reports.clear();
    EXPECT_EQ(instance->render(whole, output), kOfxStatOK);
    EXPECT_THAT(reports, ::testing::IsEmpty());
}

TEST_F(ForeignPluginTest, MayBeAtWorkOnSeveralThreads)
{
    behaviour.unreadable = "number";
    PropertySet set(host, "set");
    set.define("number", {1});
    const auto readOnLast = [](unsigned int index, unsigned int count, void* argument) {
        int number = 0;
        if (index + 1 < count) return;
        propertySuite().propGetInt(static_cast<PropertySet*>(argument)->handle(), "number", 0,
                                   &number);
    };
    const EmbeddedHost::Scope scope(host);
    HeldException held;
    EXPECT_EQ(multiThreadSuite().multiThread(readOnLast, 4, &set), kOfxStatOK);
    EXPECT_THROW(held.rethrow(), Full);
}

}  // namespace
}  // namespace Tesseret::Host
