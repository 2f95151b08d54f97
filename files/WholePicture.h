#pragma once

#include <filesystem>

namespace Tesseret::Files {

/// Whether a file holds a whole picture of the format that its name says and of this many pixels:
/// its structure is followed to its end, but nothing is decoded, so damaged pixels are not found.
/// False for a file that is missing or cannot be read. Of a PNG all chunks up to IEND are followed;
/// of a JPEG the header and the last bytes are read; a TIFF's strips or tiles, an EXR's chunks and
/// the pixels of a DPX have to lie in the file.
bool isWholePicture(const std::filesystem::path& file, int width, int height);

}  // namespace Tesseret::Files
