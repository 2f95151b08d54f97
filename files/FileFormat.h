#pragma once

/// The kinds of picture files that are read and written, and what each can hold.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Tesseret::Files {

enum class Windows {
    None,      ///< the file is its display window
    FromZero,  ///< the display window begins at (0, 0), the data window lies inside it
    Any,
};

struct FileFormat {
    std::string_view name;        ///< as OpenImageIO calls it
    std::string_view label;       ///< as people call it
    std::string_view extensions;  ///< with dots, each followed by a blank
    Windows windows;
    bool alpha, greyAlpha, extraChannels, orientation;
    bool needsNamedFile = false;  ///< its library loses metadata where it cannot open what it wrote
};

/// By the name's extension, in any case. Throws `FileError` that lists the known ones.
const FileFormat& formatByName(const std::filesystem::path& file);

/// By the file's first bytes, whatever its name is. Throws `FileError` when it is missing, a
/// folder, not readable, empty or none of the kinds.
const FileFormat& formatByContent(const std::filesystem::path& file);

/// The value of a compression setting, understood for a format.
struct Compression {
    std::string method;        ///< of TIFF and EXR; empty where it does not apply
    std::optional<int> level;  ///< PNG 0 to 9, JPEG quality 1 to 100, DWA 0 and up
};

/// Understands the text ("6" for PNG, "90" for JPEG, "zip" for TIFF, "dwaa:45" for EXR). Throws
/// `std::invalid_argument` with one line that says what the format takes.
Compression parseCompression(const FileFormat& format, const std::string& text);

}  // namespace Tesseret::Files
