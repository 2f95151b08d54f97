#pragma once

/// Writes pictures into files, which appear whole or not at all. Channels, type, windows and
/// metadata are those of the file that the picture came from, as far as the new file's format can
/// hold them.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Files {

struct FileRecord;

struct WriteOptions {
    std::string compression;  ///< as `parseCompression` accepts it; empty is the default
    bool asColour = false;    ///< a grey file becomes a colour file
    /// Replaces the record's, in the picture's pixels.
    std::optional<OfxRectI> displayWindow;
};

/// Checks before a render that a file of this name could be written. Throws `FileError` for
/// the name and its folder, `std::invalid_argument` for the compression.
void checkTarget(const std::filesystem::path& file, const std::string& compression);

/// Whether the format stores a data window apart from the display window.
bool keepsDataWindow(const std::filesystem::path& file);

/// The part of a picture that a file of this format gets, in the picture's pixels: all of it, or
/// the display window where it has no place for the other.
OfxRectI writtenWindow(const std::filesystem::path& file, const OfxRectI& picture,
                       const OfxRectI& display);

/// Writes an RGBA picture. Values are rounded and clamped to the file's type and not changed
/// otherwise. A picture of the record's depth takes the record's type (half, 10 bits), any other
/// its own, or the nearest type that the format has. Returns a line for each item of the record
/// that the new file cannot hold. Throws `FileError`.
std::vector<std::string> writePicture(const std::filesystem::path& file, const Picture& picture,
                                      const FileRecord& record, const WriteOptions& options = {});

/// Writes R, G and B of a picture that came from no file, or R alone as grey. With a page, the
/// display window of a larger picture in the same pixels, a PNG has its place on it. Throws
/// `FileError`.
void writeNewPicture(const std::filesystem::path& file, const Picture& picture, bool isColour,
                     const std::optional<OfxRectI>& page = std::nullopt);

}  // namespace Tesseret::Files
