#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "files/oiio/OutputSpec.h"

namespace Tesseret::Files {

/// Encodes a picture file in memory. The picture has the depth and the bounds of `out`; extra
/// channels come from `record`. A format that stores the file's name takes it from `file`. Throws
/// `FileError`.
std::vector<std::byte> encodePicture(const std::filesystem::path& file, const FileFormat& format,
                                     const OutputSpec& out, const Picture& picture,
                                     const SpecRecord& record);

}  // namespace Tesseret::Files
