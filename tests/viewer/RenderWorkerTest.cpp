#include <atomic>

#include "host/HostError.h"
#include "tests/viewer/SessionFixture.h"
#include "viewer/model/RenderWorker.h"

namespace Tesseret::Viewer {
namespace {

using testing::HasSubstr;
using testing::Key;
using testing::UnorderedElementsAre;

class RenderWorkerTest : public SessionFixture {
protected:
    /// The initial values of a session.
    static Render::ParameterValues valuesOf(const Render::RenderSettings& settings)
    {
        ViewSession session(settings);
        session.request(1.0);
        session.worker().wait();
        return session.worker().latest()->request.values;
    }
    static std::shared_ptr<const RenderResult> rendered(RenderWorker& worker, ViewRequest request)
    {
        const std::uint64_t serial = worker.request(std::move(request));
        worker.wait();
        EXPECT_EQ(worker.latest()->serial, serial);
        EXPECT_EQ(worker.latest()->error, "");
        return worker.latest();
    }
    /// A worker with a session of its own.
    struct OwnWorker {
        explicit OwnWorker(const Render::RenderSettings& given)
            : pictures(given),
              session(given.plugin, messages.hostOptions(given.threads)),
              worker(session, given, pictures)
        {}

        PictureCache pictures;
        MessageList messages;
        Render::PluginSession session;
        RenderWorker worker;
    };
    /// Against a file that `tesseret render` wrote.
    void expectSame(const Picture& picture, const std::string& file) const
    {
        const Fixtures::LoadedPicture wanted = load(in(file));
        ASSERT_EQ(picture.width(), wanted.width);
        ASSERT_EQ(picture.height(), wanted.height);
        int differing = 0;
        for (int y = 0; y < wanted.height; ++y) {
            for (int x = 0; x < wanted.width; ++x) {
                const auto* const pixel = picture.pixel<std::uint8_t>(x, wanted.height - 1 - y);
                if (pixel[0] != wanted.at(x, y, 0)) ++differing;
            }
        }
        EXPECT_EQ(differing, 0) << file;
    }
};

TEST_F(RenderWorkerTest, RendersWhatTheCommandRenders)
{
    const Render::RenderSettings given = settings("m.png");
    const Render::ParameterValues values = valuesOf(given);
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    for (const char* scale : {"1", "0.5"}) {
        fill("a.png", "o.png", {"--matte", in("m.png"), "--render-scale", scale});
        const auto result = rendered(worker, {.scale = std::stod(scale), .values = values});
        expectSame(result->picture, "o.png");
        EXPECT_THAT(result->maps, testing::IsEmpty());
    }
    const auto result = rendered(worker, {.scale = 1.0, .values = values, .wantsMaps = true});
    EXPECT_THAT(result->maps,
                UnorderedElementsAre(Key("fill-mask"), Key("path-band"), Key("blocks"),
                                     Key("boundary-path"), Key("composite-mask")));
    const Picture& mask = result->maps.at("fill-mask");
    EXPECT_EQ(mask.channel(40, 70, 0), 255.0) << "in the middle area, y upwards";
    EXPECT_EQ(mask.channel(160, 30, 0), 255.0) << "in the low area";
    EXPECT_EQ(mask.channel(100, 100, 0), 0.0);
    EXPECT_FALSE(worker.state().isRendering);
}

TEST_F(RenderWorkerTest, RepeatsTheBlocksOfTheFirstFrame)
{
    for (const int frame : {5, 6, 7}) {
        paint(in(Fixtures::numbered("s.%04d.png", frame)), Fixtures::kWidth, Fixtures::kHeight,
              Fixtures::noise(frame));
    }
    Render::RenderSettings given = settings("m.png");
    given.source = in("s.####.png");
    given.frames = {5, 6, 7};
    given.parameters.emplace_back("temporalConsistancy=on");
    fill("s.####.png", "o.####.png",
         {"--matte", in("m.png"), "--frames", "5-7", "temporalConsistancy=on"});
    const Render::ParameterValues values = valuesOf(given);
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    for (const int frame : {7, 6, 5, 6}) {
        const auto result = rendered(worker, {.frame = frame, .values = values});
        expectSame(result->picture, Fixtures::numbered("o.%04d.png", frame));
    }
}

TEST_F(RenderWorkerTest, TheNewestRequestWins)
{
    const Render::RenderSettings given = settings();
    Render::ParameterValues values = valuesOf(given);
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    std::atomic<int> done{0};
    worker.setOnDone([&] { ++done; });
    values["numSamples"] = 100000;  // takes minutes, unless it is aborted
    worker.request({.values = values});
    while (worker.state().stage.empty()) std::this_thread::yield();
    EXPECT_TRUE(worker.state().isRendering);
    values["numSamples"] = 2;
    rendered(worker, {.values = values});
    EXPECT_EQ(done, 1) << "an aborted render is no result";
}

TEST_F(RenderWorkerTest, EndsWhileARenderRuns)
{
    const Render::RenderSettings given = settings();
    Render::ParameterValues values = valuesOf(given);
    values["numSamples"] = 100000;
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    worker.request({.values = values});
    while (worker.state().stage.empty()) std::this_thread::yield();
}

TEST_F(RenderWorkerTest, GetsOverFailures)
{
    const Render::RenderSettings given = settings();
    const Render::ParameterValues values = valuesOf(given);
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    Render::ParameterValues wrong = values;
    wrong["blockSize"] = std::string("many");
    worker.request({.values = wrong});
    worker.wait();
    EXPECT_THAT(worker.latest()->error, HasSubstr("does not fit the parameter blockSize"));
    std::filesystem::resize_file(in("a.png"), 100);
    worker.request({.values = values});
    worker.wait();
    EXPECT_THAT(worker.latest()->error, HasSubstr("a.png"));
    paint(in("a.png"), Fixtures::kWidth, Fixtures::kHeight, Fixtures::noise(1));
    rendered(worker, {.values = values});
}

TEST_F(RenderWorkerTest, ManyRequestsInARow)
{
    const Render::RenderSettings given = settings("m.png");
    Render::ParameterValues values = valuesOf(given);
    OwnWorker own(given);
    RenderWorker& worker = own.worker;
    for (int i = 0; i < 200; ++i) {
        values["seed"] = i;
        worker.request(
            {.scale = i % 2 == 0 ? 1.0 : 0.5, .values = values, .wantsMaps = i % 3 == 0});
        if (i % 20 == 0) worker.wait();
        (void)worker.state();
    }
    worker.wait();
    EXPECT_EQ(worker.latest()->request.values.at("seed"), Host::ParameterValue(199));
    fill("a.png", "o.png", {"--matte", in("m.png"), "--render-scale", "0.5", "seed=199"});
    expectSame(worker.latest()->picture, "o.png");
}

}  // namespace
}  // namespace Tesseret::Viewer
