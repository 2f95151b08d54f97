#pragma once

/// The layout of a picture in a file: type, channels, windows, metadata and compression.

#include <optional>
#include <string>
#include <vector>

#include "files/oiio/SpecRecord.h"

namespace Tesseret::Files {

struct OutputSpec {
    OIIO::ImageSpec spec;
    Depth depth = Depth::Byte;        ///< the picture is converted to it before it is written
    OfxRectI window{0, 0, 0, 0};      ///< the part to write, in the picture's pixels
    std::vector<int> channels;        ///< of the picture, in file order
    bool keepsExtra = false;          ///< the record's extra channels keep their places
    std::vector<std::string> losses;  ///< data that the file cannot hold, one phrase each
};

/// For a picture of these bounds and this depth that came from `record`.
OutputSpec makeOutputSpec(const FileFormat& format, const SpecRecord& record, Depth depth,
                          OfxRectI bounds, std::optional<OfxRectI> displayWindow, bool asColour,
                          const std::string& compression);

}  // namespace Tesseret::Files
