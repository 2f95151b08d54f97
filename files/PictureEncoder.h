#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "files/OutputSpec.h"

namespace Tesseret::Files {

/// The bytes of a picture file, made in memory. The picture has the depth and the bounds of `out`;
/// extra channels come from `record`. The name is `file`'s where a format keeps it. Throws
/// `FileError`.
std::vector<std::byte> encodePicture(const std::filesystem::path& file, const FileFormat& format,
                                     const OutputSpec& out, const Picture& picture,
                                     const FileRecord& record);

}  // namespace Tesseret::Files
