#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/imitation/KnownHosts.h"
#include "tests/fixtures/RenderFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::HasSubstr;

using HostsTest = RenderFixture;

TEST_F(HostsTest, AreListedWithALineEach)
{
    const Outcome list = run({"hosts"});
    EXPECT_EQ(list.code, 0) << list.err;
    for (const Host::KnownHost& host : Host::knownHosts()) {
        EXPECT_THAT(list.out, HasSubstr(host.name + " "));
        EXPECT_THAT(list.out, HasSubstr(host.line + "\n"));
    }
}

TEST_F(HostsTest, GiveTheSamePicture)
{
    paint(in("a.png"), 96, 64, noise(1));
    ASSERT_EQ(render("a.png", "plain.png", {"seed=5", "blockSize=30"}).code, 0);
    for (const Host::KnownHost& host : Host::knownHosts()) {
        SCOPED_TRACE(host.name);
        hasOtherHost_ = true;
        const Outcome like = render(
            "a.png", "like.png", {"--verbose", "--host-like", host.name, "seed=5", "blockSize=30"});
        EXPECT_EQ(like.code, 0) << like.err;
        EXPECT_THAT(like.out, HasSubstr("like " + host.name));
        if (host.quirks.identity.depths.front() == Depth::Byte) {
            EXPECT_EQ(load(in("like.png")), load(in("plain.png")));
        }
    }
}

TEST_F(HostsTest, ForgetTheBlocksWithAnInstancePerFrame)
{
    for (const int frame : {1, 2}) paint(in(numbered("a.%04d.png", frame)), 96, 64, noise(frame));
    const CommandRun::Arguments frames = {"--frames", "1-2", "blockSize=30"};
    const auto second = [&](CommandRun::Arguments more) {
        more.insert(more.end(), frames.begin(), frames.end());
        hasOtherHost_ = true;
        EXPECT_EQ(render("a.####.png", "o.####.png", more).code, 0);
        return load(in("o.0002.png"));
    };
    const LoadedPicture kept = second({"temporalConsistancy=on"});
    const LoadedPicture fresh = second({});
    EXPECT_NE(kept, fresh);
    EXPECT_EQ(second({"temporalConsistancy=on", "--host-like", "mlt"}), fresh);
    EXPECT_EQ(second({"temporalConsistancy=on", "--host-like", "example-1.5"}), kept);
}

TEST_F(HostsTest, RenderOnlyWhatTheyOffer)
{
    paint(in("a.png"), 32, 32, noise(1));
    paint(in("m.png"), 32, 32, [](int x, int) { return std::vector{x > 20 ? 255 : 0}; });
    hasOtherHost_ = true;
    const Outcome unknown = render("a.png", "o.png", {"--host-like", "elsewhere"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_THAT(unknown.err, AllOf(HasSubstr("elsewhere"), HasSubstr("mlt, natron, pyofx")));
    const Outcome depth = render("a.png", "o.png", {"--host-like", "mlt", "--depth", "float"});
    EXPECT_EQ(depth.code, 2);
    EXPECT_THAT(depth.err, HasSubstr("a host like mlt renders in byte, short"));
    const Outcome matte = render("a.png", "o.png", {"--host-like", "mlt", "--matte", in("m.png")});
    EXPECT_EQ(matte.code, 2);
    EXPECT_THAT(matte.err, HasSubstr("does not offer the context OfxImageEffectContextGeneral"));
    ASSERT_EQ(render("a.png", "deep.exr", {"--depth", "float"}).code, 0);
    const Outcome deep = render("deep.exr", "o.tif", {"--host-like", "mlt", "--verbose"});
    EXPECT_EQ(deep.code, 0) << deep.err;
    EXPECT_THAT(deep.out, HasSubstr("Filter, short"));
    EXPECT_THAT(deep.err, HasSubstr("has no depth float, so this renders in short"));
}

}  // namespace
}  // namespace Tesseret::Command
