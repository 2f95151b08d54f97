// Each stage of a masked fill by itself, on one thread and fixed seeds; items are pixels.

#include <limits>
#include <optional>

#include "bench/BenchSize.h"
#include "engine/boundary/BoundaryPath.h"
#include "engine/boundary/WeightedPointPicker.h"
#include "engine/filter/BandNodes.h"
#include "engine/filter/BoxBlur.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/filter/LumaOf.h"
#include "engine/filter/LuminanceMatch.h"
#include "engine/mask/AlphaMask.h"
#include "engine/mask/FillMask.h"
#include "engine/mask/FloodFill.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::noise;
using Testing::TestMap;

/// A mask of 0 to 255 with a filled ellipse in the middle.
TestMap<Pixel32f> ellipse()
{
    TestMap<Pixel32f> mask(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int u = x - kWidth / 2, v = y - kHeight / 2;
            mask.at(x, y) = u * u / 9 + v * v / 4 < 200 * 200 ? 255.0f : 0.0f;
        }
    }
    return mask;
}

template <BoxBlur::Variant kVariant>
void boxBlur(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto mask = ellipse();
    TestMap<Pixel32f> out(kWidth, kHeight);
    BoxBlur blur(kVariant, static_cast<float>(state.range(0)) + 0.5f);
    for (auto _ : state) blur.process(*mask, *out);
    countPixels(state);
}
BENCHMARK(boxBlur<BoxBlur::ThreeApplications>)
    ->Arg(2)
    ->Arg(20)
    ->Arg(200)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(boxBlur<BoxBlur::OneApplication>)
    ->Arg(2)
    ->Arg(20)
    ->Arg(200)
    ->Unit(benchmark::kMillisecond);

void floodFill(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto mask = ellipse();
    TestMap<Pixel32f> out(kWidth, kHeight);
    FloodFill<Pixel32f> fill(255.0f);
    for (auto _ : state) fill.process(*mask, *out);
    countPixels(state);
}
BENCHMARK(floodFill)->Unit(benchmark::kMillisecond);

/// A node that turns one map into another, entered with the images that `In` and `Out` hold.
template <typename Node, typename In, typename Out>
void perPixelNode(benchmark::State& state, Node& node, const TestMap<In>& in)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    TestMap<Out> out(kWidth, kHeight);
    for (auto _ : state) node.process(*in, *out);
    countPixels(state);
}

void maskGradient(benchmark::State& state)
{
    MaskGradient node;
    perPixelNode<MaskGradient, Pixel32f, PixelVec2f>(state, node, ellipse());
}
BENCHMARK(maskGradient)->Unit(benchmark::kMillisecond);

void bandCut(benchmark::State& state)
{
    BandCut node(255.0f);
    perPixelNode<BandCut, Pixel32f, Pixel32f>(state, node, ellipse());
}
BENCHMARK(bandCut)->Unit(benchmark::kMillisecond);

void mapCopy(benchmark::State& state)
{
    MapCopy<Pixel32f> node;
    perPixelNode<MapCopy<Pixel32f>, Pixel32f, Pixel32f>(state, node, ellipse());
}
BENCHMARK(mapCopy)->Unit(benchmark::kMillisecond);

template <typename Pixel>
void lumaOf(benchmark::State& state)
{
    const auto image = noise<Pixel>(kWidth, kHeight, 7);
    std::vector<float> luma(kWidth);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y) readLuma(*image, y, 0, kWidth, luma.data());
        benchmark::DoNotOptimize(luma.data());
    }
    countPixels(state);
}
BENCHMARK(lumaOf<PixelRGBA8>)->Unit(benchmark::kMillisecond);
BENCHMARK(lumaOf<PixelRGBAf>)->Unit(benchmark::kMillisecond);

template <typename Pixel>
void extractAlpha(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto image = noise<Pixel>(kWidth, kHeight, 7);
    for (auto _ : state) {
        Map<typename PixelTraits<Pixel>::Mask> mask;
        extractMask(*image, Polarity::White, nullptr, mask);
    }
    countPixels(state);
}
BENCHMARK(extractAlpha<PixelRGBA8>)->Unit(benchmark::kMillisecond);
BENCHMARK(extractAlpha<PixelRGBAf>)->Unit(benchmark::kMillisecond);

void fillMask(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    auto mask = ellipse();
    for (Pixel32f& value : mask.pixels()) value /= 255.0f;
    for (auto _ : state) benchmark::DoNotOptimize(prepareFillMask(*mask, 1, nullptr));
    countPixels(state);
}
BENCHMARK(fillMask)->Unit(benchmark::kMillisecond);

void weightedPointPicker(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto mask = ellipse();
    WeightedPointPicker picker(255);
    picker.setNumPoints(1);
    picker.setRange(0.0f, 255.0f);
    for (auto _ : state) picker.process(*mask);
    countPixels(state);
}
BENCHMARK(weightedPointPicker)->Unit(benchmark::kMillisecond);

/// The band round the ellipse, and the gradient of the blurred mask.
struct Band {
    explicit Band(float pathWidth)
    {
        BoxBlur(BoxBlur::ThreeApplications, pathWidth).process(*mask, *band);
        MaskGradient().process(*band, *gradient);
        BandCut(255.0f).process(*mask, *band);
    }

    TestMap<Pixel32f> mask = ellipse();
    TestMap<Pixel32f> band{kWidth, kHeight};
    TestMap<PixelVec2f> gradient{kWidth, kHeight};
};

template <typename Pixel>
void boundaryPath(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const Band fixture(10.0f);
    const auto source = noise<Pixel>(kWidth, kHeight, 7),
               texture = noise<Pixel>(kWidth, kHeight, 8);
    BoundaryInputs<Pixel> inputs;
    inputs.search = {
        {0, 0, kWidth, kHeight}, &*fixture.band, &*fixture.gradient, &*texture, &*source};
    inputs.fillMask = &*fixture.mask;
    inputs.edgeBlend = 5.0f;
    for (auto _ : state) {
        Map<Pixel32f> composite;
        if (fitBoundaryPath(inputs, composite) == BoundaryOutcome::NoPath) {
            state.SkipWithError("no path");
        }
    }
    countPixels(state);
}
BENCHMARK(boundaryPath<PixelRGBA8>)->Unit(benchmark::kMillisecond);

/// The argument is "luminanceBlur".
template <typename Pixel>
void luminanceMatch(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const Band fixture(10.0f);
    const auto source = noise<Pixel>(kWidth, kHeight, 7),
               texture = noise<Pixel>(kWidth, kHeight, 8);
    TestMap<Pixel32f> gain(kWidth, kHeight);
    for (auto _ : state) {
        LuminanceMatch<Pixel> match(*fixture.band, *source, *gain);
        match.setLuminanceBlur(static_cast<float>(state.range(0)));
        match.process(*texture);
    }
    countPixels(state);
}
BENCHMARK(luminanceMatch<PixelRGBA8>)->Arg(5)->Arg(40)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Orvane::Engine
