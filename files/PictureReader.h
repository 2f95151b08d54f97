#pragma once

/// Picture files into the host's memory. Nothing is changed on the way: no colour conversion, and
/// colours are never multiplied with alpha or divided by it. Pixels are turned over so that y grows
/// upwards, with the lower left corner of the display window at (0, 0).

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Files {

struct FileRecord;

/// What a file says of its picture, in pixels with y upwards.
struct PictureInfo {
    std::filesystem::path file;
    OfxRectI displayWindow{0, 0, 0, 0};
    OfxRectI dataWindow{0, 0, 0, 0};
    double pixelAspectRatio = 1.0;
    Depth depth = Depth::Byte;  ///< the one that holds the file's values
    bool isColour = false;      ///< else grey, or alpha alone
    bool hasAlpha = false;
    Alpha alpha = Alpha::Opaque;
};

/// What a matte was made of.
enum class MatteFrom { Alpha, Grey, Luminance };

struct PictureFile {
    PictureInfo info;
    Picture picture;
    std::optional<MatteFrom> matteFrom;        ///< nothing when it was not read as a matte
    std::shared_ptr<const FileRecord> record;  ///< for `writePicture`
    std::vector<std::string> warnings;         ///< each a line for a person
};

enum class ReadAs {
    Picture,  ///< RGBA; grey three times, without alpha opaque
    /// Alpha alone: the file's alpha, else its grey, else the luminance of its colours. An alpha
    /// that is full everywhere masks nothing off and counts as none where there is anything else.
    Matte,
};

/// Only the file's header. Throws `FileError`.
PictureInfo readInfo(const std::filesystem::path& file);

/// The whole file at a depth, or at the file's own: 8-bit as byte, whole numbers of 9 to 16 bits as
/// short, everything else as float. Throws `FileError` for a file that is missing, of no known
/// kind, damaged or cut short.
PictureFile readPicture(const std::filesystem::path& file, ReadAs as = ReadAs::Picture,
                        std::optional<Depth> depth = std::nullopt);

}  // namespace Tesseret::Files
