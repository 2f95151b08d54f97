// The whole render action of the built plug-in in the embedded host with default parameters:
// "Entire Image", and a masked hole. Arguments are width, height, depth (0 byte, 1 short, 2 float)
// and threads, or whether luminance is matched, whether the matte is cropped to the hole, and the
// hole's side.

#include <algorithm>
#include <memory>
#include <mutex>
#include <random>

#include <benchmark/benchmark.h>

#include "host/Effect.h"
#include "host/EmbeddedHost.h"
#include "host/ImageMemory.h"
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

/// Keeps the most image memory that was alive at once, in bytes.
class PeakMemory final : public HostBehaviour {
public:
    std::size_t peak() const { return peak_; }

    void memoryAllocated(ImageBytes& bytes) override
    {
        const std::lock_guard lock(mutex_);
        live_ += bytes.size();
        peak_ = std::max(peak_, live_);
    }
    void memoryFreed(std::size_t bytes) override
    {
        const std::lock_guard lock(mutex_);
        live_ -= bytes;
    }

private:
    std::mutex mutex_;
    std::size_t live_ = 0, peak_ = 0;
};

/// The plug-in in a host, with an instance that renders a picture of noise whole.
struct Rig {
    Rig(const char* context, int width, int height, Depth depth, unsigned int threads)
        : window{0, 0, width, height},
          output(window, depth),
          host({.threads = threads, .behaviour = &memory})
    {
        const auto library = PluginLibrary::load(TESSERET_PLUGIN_FILE);
        effect = std::make_unique<Effect>(host, library, library->plugin());
        effect->start();
        instance = effect->createInstance(context);
        instance->connect("Source", std::make_shared<StillSource>(noisePicture(window, depth)));
    }
    void run(benchmark::State& state)
    {
        RenderRequest request;
        request.window = window;
        for (auto _ : state) {
            if (instance->renderOnly(request, &output) != kOfxStatOK) state.SkipWithError("failed");
        }
        state.SetItemsProcessed(state.iterations() * output.width() * output.height());
        state.counters["image memory MB"] = static_cast<double>(memory.peak()) / 1e6;
    }

    OfxRectI window;
    Picture output;
    PeakMemory memory;
    EmbeddedHost host;
    std::unique_ptr<Effect> effect;
    std::unique_ptr<Instance> instance;
};

void renderEntireImage(benchmark::State& state)
{
    Rig rig(kOfxImageEffectContextFilter, static_cast<int>(state.range(0)),
            static_cast<int>(state.range(1)), static_cast<Depth>(state.range(2)),
            static_cast<unsigned int>(state.range(3)));
    rig.run(state);
}
BENCHMARK(renderEntireImage)
    ->ArgsProduct({{1920}, {1080}, {0, 1, 2}, {1, 2}})
    ->Args({3840, 2160, 0, 2})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/// A matte with a square hole in the middle of the picture: as large as the picture, or cropped to
/// the hole.
std::shared_ptr<Picture> holeMatte(OfxRectI picture, Depth depth, bool cropped, int side)
{
    const int x = (picture.x2 - side) / 2, y = (picture.y2 - side) / 2;
    const OfxRectI hole{x, y, x + side, y + side};
    Picture matte(cropped ? hole : picture, Depth::Byte, Components::Alpha);
    for (int row = hole.y1; row < hole.y2; ++row) {
        std::fill_n(matte.pixel<std::uint8_t>(hole.x1, row), side, std::uint8_t{255});
    }
    return std::make_shared<Picture>(matte.converted(depth, Components::Alpha));
}

void renderMasked(benchmark::State& state)
{
    const auto depth = static_cast<Depth>(state.range(2));
    const bool cropped = state.range(4) != 0;
    const int side = static_cast<int>(state.range(5));
    Rig rig(kOfxImageEffectContextGeneral, static_cast<int>(state.range(0)),
            static_cast<int>(state.range(1)), depth, 2);
    rig.instance->connect(
        "Matte", std::make_shared<StillSource>(holeMatte(rig.window, depth, cropped, side)));
    rig.instance->set("luminanceMatch", static_cast<int>(state.range(3)));
    rig.run(state);
    // The margin is five times pathWidth and edgeBlend, which are 10 and 5, on every side of the
    // mask and its border of one pixel.
    constexpr double kMargins = 2 * 5 * (10 + 5) + 2;
    const double width = cropped ? side : static_cast<double>(state.range(0));
    const double height = cropped ? side : static_cast<double>(state.range(1));
    state.counters["bytes per filled pixel"] =
        static_cast<double>(rig.memory.peak()) / ((width + kMargins) * (height + kMargins));
}
BENCHMARK(renderMasked)
    ->ArgNames({"width", "height", "depth", "luminance", "cropped", "hole"})
    ->ArgsProduct({{1920}, {1080}, {0, 1, 2}, {0, 1}, {0, 1}, {300}})
    ->ArgsProduct({{3840}, {2160}, {0, 1, 2}, {0, 1}, {0, 1}, {300}})
    ->ArgsProduct({{1920}, {1080}, {0, 1, 2}, {0, 1}, {1}, {12}})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace
}  // namespace Tesseret::Host
