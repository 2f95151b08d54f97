#pragma once

#include <cstddef>
#include <vector>

#include "files/FileFormat.h"
#include "files/PngLayout.h"
#include "picture/Picture.h"

namespace Tesseret::Files {

/// Encodes a PNG file in memory, of a picture with the depth and the bounds of `layout`. Bands of
/// rows are compressed on all threads and joined into one stream; the bytes do not depend on the
/// number of threads. Throws `std::bad_alloc`.
std::vector<std::byte> encodePng(const Picture& picture, const PngLayout& layout,
                                 const Compression& compression);

}  // namespace Tesseret::Files
