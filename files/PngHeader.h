#pragma once

/// The header of a PNG file and its metadata, which become those of a PNG that is made from it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <png.h>

#include "files/FileRecord.h"
#include "files/PictureWriter.h"
#include "files/PngLayout.h"

namespace Tesseret::Files {

struct PngResolution {
    std::uint32_t x, y;  ///< in pixels
    int unit;            ///< of PNG
};

/// The metadata that is written again.
struct PngMetadata {
    /// As OpenImageIO names it: "sRGB", "linear" or "Gamma" and a number; empty for a picture that
    /// came from no file.
    std::string colourSpace;
    double fileGamma = 0.0;  ///< 1 / gamma; 0 where the colour space is not one with a gamma
    std::optional<PngResolution> resolution;
    std::optional<png_time> time;
    int left = 0, top = 0;  ///< the place on a page; written for pictures made here only
    std::vector<std::pair<std::string, std::string>> texts;
};

struct PngHeader {
    int width = 0, height = 0;
    int channels = 0;  ///< with palettes and transparent colours resolved
    Depth depth = Depth::Byte;
    double pixelAspectRatio = 1.0;
    std::vector<std::byte> bytes;  ///< the file up to the first pixels
    /// nullopt when only OpenImageIO understands all of it: Exif, XMP, colour profiles and texts
    /// with names that mean something to it.
    std::optional<PngMetadata> metadata;
};

struct PngRecord final : FileRecord {
    PngHeader header;

    const PngHeader* png() const override { return &header; }
};

/// What libpng has read up to the pixels; all but the bytes. The places of the pixels on a page
/// (oFFs) are not part of it.
PngHeader headerOf(png_structp png, png_infop info);

/// The layout of a PNG file that is made of a picture with this header and metadata. Throws
/// `std::bad_alloc`, or `std::runtime_error` for metadata that libpng refuses.
PngLayout pngLayout(const Picture& picture, const PngHeader& header, const PngMetadata& metadata,
                    const WriteOptions& options);

}  // namespace Tesseret::Files
