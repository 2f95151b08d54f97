#pragma once

#include <benchmark/benchmark.h>

namespace Orvane::Engine {

/// The size that stages are measured at, pixels.
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

/// Makes items pixels.
inline void countPixels(benchmark::State& state, int width = kWidth, int height = kHeight)
{
    state.SetItemsProcessed(state.iterations() * width * height);
}

}  // namespace Orvane::Engine
