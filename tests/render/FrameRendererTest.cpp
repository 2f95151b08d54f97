#include <cstring>

#include <gtest/gtest.h>

#include "render/FrameRenderer.h"
#include "render/FrameRequest.h"
#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Render {
namespace {

using namespace Fixtures;

/// One job on a matte with three areas, step by step.
class Areas {
public:
    explicit Areas(const RenderSettings& settings)
        : settings_(settings),
          inputs_(settings),
          session_(settings.plugin),
          setup_(session_, settings, inputs_, Depth::Byte),
          pictures_(inputs_.read(0, Depth::Byte)),
          matte_(MattePreparation(settings, Polarity::White).prepare(pictures_.at("Matte"))),
          request_(requestFor(settings, false, 0, inputs_.source()))
    {}

    std::size_t count() const { return matte_->areas.count(); }

    Picture rendered()
    {
        JobListener listener;
        WarningFilter warnings(listener);
        return FrameRenderer(settings_, setup_, listener, warnings)
            .render(request_, pictures_, matte_.get());
    }

    /// The same with the whole picture for every area.
    Picture renderedPlainly()
    {
        ReadyInstance ready = setup_.make();
        FrameSource& source = *ready.clips.at("Source");
        source.show(0, pictures_.at("Source").picture);
        auto filled = std::make_shared<Picture>(source.picture(0, request_.scale)->copied());
        Picture output = filled->copied(request_.window, {});
        output.setRegionOfDefinition(request_.window);
        for (std::size_t area = 0; area < count(); ++area) {
            source.show(0, filled, request_.scale);
            const MatteAreas& areas = matte_->areas;
            ready.clips.at("Matte")->show(
                0, std::make_shared<const Picture>(areas.alone(area, areas.box(area))),
                request_.scale);
            EXPECT_EQ(ready.instance->render(request_, output), kOfxStatOK);
            filled->paste(output);
        }
        return output;
    }

private:
    RenderSettings settings_;
    JobInputs inputs_;
    PluginSession session_;
    InstanceSetup setup_;
    FramePictures pictures_;
    std::shared_ptr<const PreparedMatte> matte_;
    Host::RenderRequest request_;
};

struct Case {
    std::vector<std::string> parameters;
    std::optional<ViewBox> window;
    double scale = 1.0;
};

using FrameRendererTest = MatteFixture;

// Only the part of the picture that an area's fill reaches is rendered for it.
TEST_F(FrameRendererTest, PartsGiveWhatWholePicturesGive)
{
    const Spot corner{0, 150, 12, 160};
    paint(in("a.png"), kWidth, kHeight,
          withAlpha(noise(1), [](int x, int y) { return std::vector{(3 * x + y) % 256}; }));
    paintMatte("m.png", masks({corner, kLow, kMiddle}));
    const std::vector<std::string> small{"blockSize=30", "overlap=8", "pathWidth=2", "edgeBlend=1"};
    const std::vector<Case> cases{
        {small, {}},
        {{"blockSize=40", "blendSize=6", "pathWidth=3.7", "edgeBlend=2.3"}, {}},
        {{"blockSize=30", "overlap=8", "pathWidth=20"}, {}},
        {{"luminanceMatch=on", "pathWidth=2", "edgeBlend=1"}, ViewBox{20, 30, 190, 150}},
        {small, ViewBox{40, 50, 180, 130}},
        {small, ViewBox{90, 5, 130, 15}},  // beside all of them
        {small, {}, 0.5},
        {small, ViewBox{10, 60, 170, 150}, 1.7},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.parameters) + " " + std::to_string(each.scale));
        RenderSettings settings;
        settings.source = in("a.png");
        settings.matte = in("m.png");
        settings.plugin = TESSERET_PLUGIN_FILE;
        settings.threads = 2;
        settings.parameters = each.parameters;
        settings.window = each.window;
        settings.renderScale = each.scale;
        Areas areas(settings);
        ASSERT_EQ(areas.count(), 3u);
        const Picture parts = areas.rendered();
        const Picture whole = areas.renderedPlainly();
        ASSERT_EQ(parts.storageBytes(), whole.storageBytes());
        EXPECT_EQ(std::memcmp(parts.data(), whole.data(), parts.storageBytes()), 0);
    }
}

}  // namespace
}  // namespace Tesseret::Render
