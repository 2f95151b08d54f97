#pragma once

/// Reads picture files into memory. Values are not changed: no colour conversion, and colours are
/// never multiplied or divided by alpha. Rows are flipped so that y grows upwards, with the lower
/// left corner of the display window at (0, 0).

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Files {

struct FileRecord;

/// The header data of a picture, in pixels with y upwards.
struct PictureInfo {
    std::filesystem::path file;
    OfxRectI displayWindow{0, 0, 0, 0};
    OfxRectI dataWindow{0, 0, 0, 0};
    double pixelAspectRatio = 1.0;
    Depth depth = Depth::Byte;  ///< holds the file's values
    bool isColour = false;      ///< else grey, or alpha alone
    bool hasAlpha = false;
    Alpha alpha = Alpha::Opaque;
};

/// The channels that a matte was made from.
enum class MatteFrom { Alpha, Grey, Luminance };

struct PictureFile {
    PictureInfo info;
    Picture picture;
    std::optional<MatteFrom> matteFrom;        ///< nullopt when it was not read as a matte
    std::shared_ptr<const FileRecord> record;  ///< for `writePicture`
    std::vector<std::string> warnings;         ///< each a line for the user
};

enum class ReadAs {
    Picture,  ///< RGBA; grey three times, without alpha opaque
    /// Alpha alone: the file's alpha, else its grey, else the luminance of its colours. An alpha
    /// that is full everywhere excludes no pixel and is ignored where there are other channels.
    Matte,
};

/// Reads only the file's header. Throws `FileError`.
PictureInfo readInfo(const std::filesystem::path& file);

/// Reads the whole file at a depth, or at the file's own: 8-bit as byte, integers of 9 to 16 bits
/// as short, everything else as float. Throws `FileError` for a file that is missing, of an unknown
/// format, damaged or truncated.
PictureFile readPicture(const std::filesystem::path& file, ReadAs as = ReadAs::Picture,
                        std::optional<Depth> depth = std::nullopt);

}  // namespace Tesseret::Files
