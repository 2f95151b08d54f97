#pragma once

/// What one input of the render fuzzer asks for: pictures, parameters, geometry and a host's
/// faults, inside and far outside of what a plug-in may expect.

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "host/Instance.h"
#include "tests/fuzz/Choices.h"

namespace Tesseret::Fuzz {

/// An image as the plug-in sees it.
struct ImageShape {
    bool isConnected = false;
    int width = 1, height = 1;
    RowLayout layout;
    OfxPointI corner{0, 0};  ///< of its bounds, anywhere in the integers
};

/// One of the renders of a case, on the same instance.
struct RenderStep {
    double time = 0.0;
    OfxRectI window{0, 0, 0, 0};  ///< absolute, as passed to the plug-in
    unsigned int abortFromPoll = 0;
    unsigned int refusedAllocation = 0;  ///< 0: none
};

struct RenderCase {
    bool isGeneral = false;
    Depth depth = Depth::Byte;
    unsigned int threads = 1;
    double scale = 1.0;
    double aspect = 1.0;
    unsigned int noise = 0;  ///< of the pictures
    bool hasWildFloats = false;
    ImageShape output;
    std::array<ImageShape, 5> inputs;  ///< Source, the textures, the matte
    std::vector<std::pair<std::string, Host::ParameterValue>> parameters;
    int fillRegion = 0;
    std::vector<RenderStep> steps;
};

inline constexpr std::array<const char*, 5> kInputs = {"Source", "Texture1", "Texture2", "Texture3",
                                                       "Matte"};

RenderCase makeRenderCase(Choices& choices);

}  // namespace Tesseret::Fuzz
