// The whole render action of the built plug-in in the embedded host: "Entire Image" with default
// parameters. Arguments are width, height, depth (0 byte, 1 short, 2 float) and threads.

#include <memory>
#include <random>

#include <benchmark/benchmark.h>

#include "host/Effect.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/Plugin.h"

namespace Tesseret::Host {
namespace {

std::shared_ptr<Picture> noisePicture(OfxRectI bounds, Depth depth)
{
    Picture picture(bounds, Depth::Byte);
    std::mt19937 random(7);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        auto* row = picture.pixel<std::uint8_t>(bounds.x1, y);
        for (int i = 0; i < 4 * picture.width(); ++i) row[i] = static_cast<std::uint8_t>(random());
    }
    return std::make_shared<Picture>(picture.converted(depth, Components::RGBA));
}

void renderEntireImage(benchmark::State& state)
{
    const OfxRectI window{0, 0, static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    const auto depth = static_cast<Depth>(state.range(2));
    HostOptions options;
    options.threads = static_cast<unsigned int>(state.range(3));
    EmbeddedHost host(options);
    const auto library = PluginLibrary::load(TESSERET_PLUGIN_FILE);
    Effect effect(host, library, library->plugin());
    effect.start();
    const auto instance = effect.createInstance(kOfxImageEffectContextFilter);
    instance->connect("Source", std::make_shared<StillSource>(noisePicture(window, depth)));
    Picture output(window, depth);
    RenderRequest request;
    request.window = window;
    for (auto _ : state) {
        if (instance->renderOnly(request, &output) != kOfxStatOK) state.SkipWithError("failed");
    }
    state.SetItemsProcessed(state.iterations() * output.width() * output.height());
    state.counters["image memory MB"] = static_cast<double>(host.counters().bytesPeak) / 1e6;
}
BENCHMARK(renderEntireImage)
    ->ArgsProduct({{1920}, {1080}, {0, 1, 2}, {1, 2}})
    ->Args({3840, 2160, 0, 2})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace
}  // namespace Tesseret::Host
