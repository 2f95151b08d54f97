#pragma once

/// The formats of picture files that are read and written: one row of a table for each, with its
/// capabilities and its differences from the others.

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Tesseret::Files {

enum class Windows {
    None,      ///< the file is its display window
    FromZero,  ///< the display window begins at (0, 0), the data window lies inside it
    Any,
};

/// A compression setting, parsed for a format.
struct Compression {
    std::string method;        ///< of TIFF and EXR; empty where it does not apply
    std::optional<int> level;  ///< PNG 0 to 9, JPEG quality 1 to 100, DWA 0 and up
};

struct FileFormat {
    std::string_view name;                         ///< the name in OpenImageIO
    std::string_view label;                        ///< the name for users
    std::span<const std::string_view> extensions;  ///< in lower case, with the dot
    std::span<const std::string_view> signatures;  ///< possible first bytes of the file

    Windows windows;
    bool alpha, greyAlpha, extraChannels;
    bool mixedTypes;      ///< each channel may have a type of its own
    bool orientation;     ///< can store an orientation
    bool needsNamedFile;  ///< its library loses metadata unless it can reopen the file by name

    std::string_view attributes;  ///< prefix of the names of its own metadata
    bool keepsAttributes;         ///< from file to file; else they describe one file's bytes

    std::string_view compressions;  ///< the valid compression settings, in words
    /// Parses a setting; nullopt when the text is not valid. Null when the format has no settings.
    std::optional<Compression> (*compressionFrom)(const std::string& text);
};

/// All of them.
std::span<const FileFormat> fileFormats();

/// PNG is the one format that is read and written without OpenImageIO.
bool isPng(const FileFormat& format);

/// By the name's extension, in upper or lower case. Throws `FileError` that lists the known ones.
const FileFormat& formatByName(const std::filesystem::path& file);

/// By the file's first bytes, whatever its name is. Throws `FileError` when it is missing, a
/// folder, not readable, empty or of another format.
const FileFormat& formatByContent(const std::filesystem::path& file);

/// Parses the text ("6" for PNG, "90" for JPEG, "zip" for TIFF, "dwaa:45" for EXR). Throws
/// `std::invalid_argument` with one line that lists what the format accepts.
Compression parseCompression(const FileFormat& format, const std::string& text);

}  // namespace Tesseret::Files
