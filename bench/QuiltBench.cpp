// Each stage of quilting by itself, on one thread and fixed seeds; items are pixels.

#include <vector>

#include <benchmark/benchmark.h>

#include "bench/BenchSize.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/quilt/BestFitPath.h"
#include "engine/quilt/BlockPaste.h"
#include "engine/quilt/OverlapError.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::noise;
using Testing::TestMap;

/// Strips of the shapes that occur in quilting, from positions all over two images; the third
/// argument selects the exact sum.
template <typename Pixel>
void overlapError(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const auto a = noise<Pixel>(512, 512, 7), b = noise<Pixel>(512, 512, 8);
    OverlapError<Pixel> error(1);
    std::vector<Pixel> copy;
    int at = 0;
    for (auto _ : state) {
        at = (at + 37) % 400;
        const Strip<Pixel> strip = {.a = rowsOf(*a, at, 400 - at, width, height, copy),
                                    .b = rowsOf(*b, 400 - at, at, width, height, copy),
                                    .weights = {},
                                    .width = width,
                                    .height = height};
        benchmark::DoNotOptimize(state.range(2) != 0 ? error.exact(strip)
                                                     : error.rough(strip, 1e30f));
    }
    countPixels(state, width, height);
}

void strips(benchmark::internal::Benchmark* bench)
{
    for (const int exact : {0, 1}) {
        bench->Args({25, 100, exact})->Args({100, 25, exact})->Args({7, 30, exact});
    }
    bench->ArgNames({"width", "height", "exact"})->Unit(benchmark::kMicrosecond);
}
BENCHMARK(overlapError<PixelRGBA8>)->Apply(strips);
BENCHMARK(overlapError<PixelRGBA16>)->Apply(strips);
BENCHMARK(overlapError<PixelRGBAf>)->Apply(strips);

void bestFitPath(benchmark::State& state)
{
    const int lines = static_cast<int>(state.range(0)), across = static_cast<int>(state.range(1));
    SeamStrip strip;
    strip.shape(lines, across);
    std::mt19937 random(7);
    for (int t = 0; t < lines; ++t) {
        std::generate_n(strip.errors(t), across,
                        [&random] { return static_cast<float>(random() % 1000); });
    }
    std::vector<int> path(static_cast<std::size_t>(lines));
    for (auto _ : state) Engine::bestFitPath({2, 0}, strip, path);
    countPixels(state, across, lines);
}
BENCHMARK(bestFitPath)->Args({100, 25})->Args({1920, 25})->Unit(benchmark::kMicrosecond);

template <typename Pixel>
void blockPaste(benchmark::State& state)
{
    const FakeServices services(1, Testing::FakeThreads::Mode::InARow);
    const auto image = noise<Pixel>(kWidth, kHeight, 7);
    auto target = noise<Pixel>(kWidth, kHeight, 8);
    const std::vector<PixelVec2f> horizontal(kWidth, {0.0f, 12.0f});
    const std::vector<PixelVec2f> vertical(kHeight, {12.0f, 0.0f});
    const int blend = static_cast<int>(state.range(0));
    BlockPaste<Pixel> paste({blend, blend});
    for (auto _ : state) {
        paste.run(*image,
                  {.region = {0, 0, kWidth, kHeight},
                   .srcX = 0,
                   .srcY = 0,
                   .seams = {horizontal, vertical}},
                  {0, kHeight}, *target);
    }
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

}  // namespace
}  // namespace Orvane::Engine
