#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Files {

/// What a PNG file becomes.
struct PngLayout {
    Depth depth = Depth::Byte;        ///< the picture is converted to it; byte or short
    OfxRectI window{0, 0, 0, 0};      ///< the part to write, in the picture's pixels
    std::vector<int> channels;        ///< of the picture, in file order: 1 to 4
    std::vector<std::byte> chunks;    ///< with the metadata: all between IHDR and IDAT
    std::vector<std::string> losses;  ///< data that the file cannot hold, one phrase each
};

}  // namespace Tesseret::Files
