// The score of a fill and the description of its surroundings, on one thread: a round hole of 300 x
// 300 pixels in 1024 x 1024 pixels of spots, filled with copied blocks. The argument is the depth
// (0 byte, 1 short, 2 float).

#include <algorithm>
#include <cstdint>
#include <random>

#include <benchmark/benchmark.h>

#include "picture/Picture.h"
#include "quality/FillScorer.h"
#include "quality/TextureScale.h"

namespace Tesseret::Quality {
namespace {

constexpr int kSide = 1024;
constexpr OfxRectI kArea{362, 362, 662, 662};

struct Job {
    Picture source, lost, filled;

    explicit Job(Depth depth) : lost({0, 0, kSide, kSide}, Depth::Byte, Components::Alpha)
    {
        Picture drawn({0, 0, kSide, kSide}, Depth::Byte);
        std::mt19937 random(7);
        const auto below = [&random](unsigned int n) { return static_cast<int>(random() % n); };
        for (int spot = 0; spot < 12000; ++spot) {
            const int x = below(kSide), y = below(kSide), radius = 3 + below(9);
            const auto tone = static_cast<std::uint8_t>(60 + below(150));
            for (int py = std::max(y - radius, 0); py < std::min(y + radius, kSide); ++py) {
                auto* row = drawn.pixel<std::uint8_t>(0, py);
                for (int px = std::max(x - radius, 0); px < std::min(x + radius, kSide); ++px) {
                    const auto value = static_cast<std::uint8_t>(tone + below(12));
                    std::fill_n(row + 4 * px, 3, value);
                }
            }
        }
        Picture copied = drawn.copied();
        constexpr int kBlock = 60;
        for (int y = kArea.y1; y < kArea.y2; y += kBlock) {
            for (int x = kArea.x1; x < kArea.x2; x += kBlock) {
                const int fromX = below(kSide - kBlock), fromY = below(kArea.y1 - kBlock);
                for (int row = 0; row < kBlock; ++row) {
                    const auto* from = drawn.pixel<std::uint8_t>(fromX, fromY + row);
                    std::copy_n(from, 4 * kBlock, copied.pixel<std::uint8_t>(x, y + row));
                }
            }
        }
        for (int y = kArea.y1; y < kArea.y2; ++y) {
            for (int x = kArea.x1; x < kArea.x2; ++x) {
                const int dx = x - 512, dy = y - 512;
                *lost.pixel<std::uint8_t>(x, y) = dx * dx + dy * dy < 150 * 150 ? 255 : 0;
            }
        }
        source = drawn.converted(depth, Components::RGBA);
        filled = copied.converted(depth, Components::RGBA);
    }
};

void makeScorer(benchmark::State& state)
{
    const Job job(static_cast<Depth>(state.range(0)));
    for (auto _ : state) {
        const FillScorer scorer(job.source, job.lost, kArea);
        benchmark::DoNotOptimize(&scorer);
    }
}
BENCHMARK(makeScorer)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void score(benchmark::State& state)
{
    const Job job(static_cast<Depth>(state.range(0)));
    const FillScorer scorer(job.source, job.lost, kArea);
    for (auto _ : state) benchmark::DoNotOptimize(scorer.score(job.filled).total);
}
BENCHMARK(score)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void describeTexture(benchmark::State& state)
{
    const Job job(static_cast<Depth>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextureScale(job.source, job.lost, kArea).period());
    }
}
BENCHMARK(describeTexture)->Arg(0)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Tesseret::Quality
