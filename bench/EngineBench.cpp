// Each stage of the engine by itself, on one thread and fixed seeds; items are pixels.

#include <vector>

#include <benchmark/benchmark.h>

#include "engine/BandCut.h"
#include "engine/BandWeight.h"
#include "engine/BestFitPath.h"
#include "engine/BlockPaste.h"
#include "engine/BoxBlur.h"
#include "engine/FloodFill.h"
#include "engine/LumaOf.h"
#include "engine/MapCopy.h"
#include "engine/MaskGradient.h"
#include "engine/OverlapError.h"
#include "engine/RowCopy.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::noise;
using Testing::TestMap;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

void countPixels(benchmark::State& state, int width, int height)
{
    state.SetItemsProcessed(state.iterations() * width * height);
}

template <typename Pixel>
void overlapError(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto a = noise<Pixel>(kWidth, kHeight, 7), b = noise<Pixel>(kWidth, kHeight, 8);
    TestMap<Pixel32f> error(kWidth, kHeight);
    OverlapError<Pixel> node;
    node.setImages({&*a, 0, 0}, {&*b, 0, 0});
    for (auto _ : state) benchmark::DoNotOptimize(node.measure(*error));
    countPixels(state, kWidth, kHeight);
}
BENCHMARK(overlapError<PixelRGBA8>)->Unit(benchmark::kMillisecond);
BENCHMARK(overlapError<PixelRGBA16>)->Unit(benchmark::kMillisecond);
BENCHMARK(overlapError<PixelRGBAf>)->Unit(benchmark::kMillisecond);

void bestFitPath(benchmark::State& state)
{
    const FakeServices services;
    const bool vertical = state.range(0) != 0;
    const int width = vertical ? 25 : kWidth, height = vertical ? kHeight : 25;
    TestMap<Pixel32f> error(width, height);
    std::mt19937 random(7);
    for (float& e : error.pixels()) e = static_cast<float>(random() % 1000);
    Map<Pixel32f> cost;
    std::vector<PixelVec2f> path(static_cast<std::size_t>(vertical ? height : width));
    for (auto _ : state) {
        Engine::bestFitPath({2, 0}, *error, cost, path,
                            vertical ? SeamMode::Vertical : SeamMode::Horizontal);
    }
    countPixels(state, width, height);
}
BENCHMARK(bestFitPath)->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);

template <typename Pixel>
void blockPaste(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto image = noise<Pixel>(kWidth, kHeight, 7);
    auto target = noise<Pixel>(kWidth, kHeight, 8);
    const std::vector<PixelVec2f> horizontal(kWidth, {0.0f, 12.0f});
    const std::vector<PixelVec2f> vertical(kHeight, {12.0f, 0.0f});
    const int blend = static_cast<int>(state.range(0));
    BlockPaste<Pixel> paste;
    paste.setSeams({horizontal, vertical});
    paste.setBlend({blend, blend});
    for (auto _ : state) paste.process(*image, *target);
    countPixels(state, kWidth, kHeight);
}
BENCHMARK(blockPaste<PixelRGBA8>)->Arg(0)->Arg(10)->Unit(benchmark::kMillisecond);
BENCHMARK(blockPaste<PixelRGBA16>)->Arg(0)->Arg(10)->Unit(benchmark::kMillisecond);
BENCHMARK(blockPaste<PixelRGBAf>)->Arg(0)->Arg(10)->Unit(benchmark::kMillisecond);

template <typename Pixel>
void rowCopy(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto image = noise<Pixel>(kWidth, kHeight, 7);
    auto target = noise<Pixel>(kWidth, kHeight, 8);
    RowCopy<Pixel> copy;
    for (auto _ : state) copy.process(&*image, &*target);
    countPixels(state, kWidth, kHeight);
}
BENCHMARK(rowCopy<PixelRGBA8>)->Unit(benchmark::kMillisecond);
BENCHMARK(rowCopy<PixelRGBAf>)->Unit(benchmark::kMillisecond);

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
    countPixels(state, kWidth, kHeight);
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
    countPixels(state, kWidth, kHeight);
}
BENCHMARK(floodFill)->Unit(benchmark::kMillisecond);

/// A node that turns one map into another, entered with the images that `In` and `Out` hold.
template <typename Node, typename In, typename Out>
void perPixelNode(benchmark::State& state, Node& node, const TestMap<In>& in)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    TestMap<Out> out(kWidth, kHeight);
    for (auto _ : state) node.process(*in, *out);
    countPixels(state, kWidth, kHeight);
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

void bandWeight(benchmark::State& state)
{
    BandWeight node(255.0f);
    perPixelNode<BandWeight, Pixel32f, Pixel32f>(state, node, ellipse());
}
BENCHMARK(bandWeight)->Unit(benchmark::kMillisecond);

void mapCopy(benchmark::State& state)
{
    MapCopy<Pixel32f> node;
    perPixelNode<MapCopy<Pixel32f>, Pixel32f, Pixel32f>(state, node, ellipse());
}
BENCHMARK(mapCopy)->Unit(benchmark::kMillisecond);

template <typename Pixel>
void lumaOf(benchmark::State& state)
{
    LumaOf<Pixel> node;
    perPixelNode<LumaOf<Pixel>, Pixel, Pixel32f>(state, node, noise<Pixel>(kWidth, kHeight, 7));
}
BENCHMARK(lumaOf<PixelRGBA8>)->Unit(benchmark::kMillisecond);
BENCHMARK(lumaOf<PixelRGBAf>)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Orvane::Engine
