#include "tests/fuzz/RenderCase.h"

#include <limits>

namespace Tesseret::Fuzz {
namespace {

constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();

/// Mostly small sizes: faults do not need large ones, and small renders are many.
int size(Choices& choices)
{
    return choices.once(12) ? choices.from(1, 3) : choices.from(4, choices.once(6) ? 150 : 60);
}

/// Where integers, floats and the engine's numbers end.
int extreme(Choices& choices)
{
    const int near = choices.from(-70, 70);
    const int end = choices.oneOf({0, 1 << 24, -(1 << 24), 1 << 26, 1'000'000'000, -1'000'000'000,
                                   kIntMax - 400, kIntMin + 400});
    return end + near;
}

int corner(Choices& choices, bool isFar)
{
    return isFar ? extreme(choices) : choices.oneOf({0, 0, 0, choices.from(-40, 40)});
}

ImageShape shape(Choices& choices, int width, int height, OfxPointI at)
{
    ImageShape made;
    made.isConnected = true;
    made.width = width;
    made.height = height;
    made.corner = at;
    made.layout.topDown = choices.once(3);
    made.layout.padding = choices.once(3) ? 16 * static_cast<std::size_t>(choices.from(1, 4)) : 0;
    return made;
}

OfxRectI boundsOf(const ImageShape& shape)
{
    return {shape.corner.x, shape.corner.y, shape.corner.x + shape.width,
            shape.corner.y + shape.height};
}

int shifted(int value, int by)
{
    const std::int64_t sum = std::int64_t{value} + by;
    return static_cast<int>(std::clamp<std::int64_t>(sum, kIntMin, kIntMax));
}

OfxRectI window(Choices& choices, const OfxRectI& bounds)
{
    if (!choices.once(3)) return bounds;
    if (choices.once(6)) {
        return {extreme(choices), extreme(choices), extreme(choices), extreme(choices)};
    }
    const auto cut = [&] { return choices.from(-12, 40); };
    return {shifted(bounds.x1, cut()), shifted(bounds.y1, cut()), shifted(bounds.x2, -cut()),
            shifted(bounds.y2, -cut())};
}

int integer(Choices& choices, int low, int high)
{
    if (!choices.once(12)) return choices.from(low, high);
    return choices.oneOf({0, -1, kIntMin, kIntMax, 9'000'000, -choices.from(0, 1000), 1 << 24});
}

double real(Choices& choices, double low, double high)
{
    if (!choices.once(12)) return low + (high - low) * choices.from(0, 1000) / 1000.0;
    return choices.oneOf({0.0, -1.0, 1e-30, 9e6, 1e30, -1e30, 1e300, 4e9,
                          std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity()});
}

std::vector<double> sampleCorner(Choices& choices)
{
    return {real(choices, -0.2, 1.2), real(choices, -0.2, 1.2)};
}

void chooseParameters(Choices& choices, RenderCase& made)
{
    const auto set = [&](const char* name, Host::ParameterValue value) {
        made.parameters.emplace_back(name, std::move(value));
    };
    made.fillRegion = choices.from(0, made.isGeneral ? 4 : 2);
    set("fillRegion", made.fillRegion);
    set("sampleCorner1", sampleCorner(choices));
    set("sampleCorner2", sampleCorner(choices));
    set("seed", integer(choices, 0, 100'000));
    set("blockSize", integer(choices, 1, 60));
    set("overlap", integer(choices, 0, 40));
    set("blendSize", choices.once(2) ? 0 : integer(choices, 0, 20));
    set("numSamples", choices.once(8) ? integer(choices, 1, 8) : choices.from(1, 8));
    set("pathWidth", real(choices, 0.0, 12.0));
    set("edgeBlend", real(choices, 0.0, 8.0));
    set("luminanceBlur", real(choices, 0.0, 30.0));
    set("avoidFillRegion", choices.once(4) ? 1 : 0);
    set("luminanceMatch", choices.once(3) ? 1 : 0);
    set("temporalConsistancy", choices.once(3) ? 1 : 0);
    for (int i = 1; made.isGeneral && i <= 3; ++i) {
        set(("useTexture" + std::to_string(i)).c_str(), choices.once(2) ? 1 : 0);
    }
}

}  // namespace

RenderCase makeRenderCase(Choices& choices)
{
    RenderCase made;
    made.isGeneral = !choices.once(4);
    made.depth = choices.oneOf({Depth::Byte, Depth::Short, Depth::Float});
    made.threads = static_cast<unsigned int>(choices.oneOf({1, 1, 2, 3, 4}));
    made.scale = choices.oneOf({1.0, 1.0, 1.0, 0.5, 0.25, 2.0, 0.37, 1e-6});
    made.aspect = choices.oneOf({1.0, 1.0, 1.0, 2.0, 0.5, 1e-9});
    made.noise = choices.bits();
    made.hasWildFloats = choices.once(8);
    const bool isFar = choices.once(4);
    const OfxPointI at{corner(choices, isFar), corner(choices, isFar)};
    const int width = size(choices), height = size(choices);
    made.output = shape(choices, width, height, at);
    for (std::size_t i = 0; i < kInputs.size(); ++i) {
        const bool isSource = i == 0;
        if (!isSource && (!made.isGeneral || choices.once(4))) continue;
        const bool isOther = choices.once(isSource ? 6 : 3);
        const OfxPointI other{corner(choices, choices.once(8)), corner(choices, choices.once(8))};
        made.inputs[i] = isOther ? shape(choices, size(choices), size(choices), other)
                                 : shape(choices, width, height, at);
    }
    chooseParameters(choices, made);
    const int steps = choices.oneOf({1, 2, 2, 3});
    for (int i = 0; i < steps; ++i) {
        RenderStep step;
        step.time = choices.oneOf({0.0, 1.0, double(i), 1e30, -0.4});
        step.window = window(choices, boundsOf(made.output));
        if (choices.once(10)) {
            step.abortFromPoll = static_cast<unsigned int>(choices.from(1, 200));
        }
        if (choices.once(10)) {
            step.refusedAllocation = static_cast<unsigned int>(choices.from(1, 30));
        }
        made.steps.push_back(step);
    }
    return made;
}

}  // namespace Tesseret::Fuzz
