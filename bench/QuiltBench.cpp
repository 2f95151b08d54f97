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

}  // namespace
}  // namespace Orvane::Engine
