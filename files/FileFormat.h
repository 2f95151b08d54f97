#pragma once

/// The kinds of picture files that are read and written: one row of a table for each, with what it
/// can hold and what it does differently from the others.

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <OpenImageIO/imageio.h>

namespace Tesseret::Files {

enum class Windows {
    None,      ///< the file is its display window
    FromZero,  ///< the display window begins at (0, 0), the data window lies inside it
    Any,
};

/// The value of a compression setting, understood for a format.
struct Compression {
    std::string method;        ///< of TIFF and EXR; empty where it does not apply
    std::optional<int> level;  ///< PNG 0 to 9, JPEG quality 1 to 100, DWA 0 and up
};

/// Functions may be null unless said otherwise.
struct FileFormat {
    std::string_view name;                         ///< as OpenImageIO calls it
    std::string_view label;                        ///< as users call it
    std::span<const std::string_view> extensions;  ///< in small letters, with the dot
    std::span<const std::string_view> signatures;  ///< what the file's first bytes are one of

    Windows windows;
    bool alpha, greyAlpha, extraChannels;
    bool mixedTypes;      ///< each channel may have a type of its own
    bool orientation;     ///< holds an orientation mark
    bool needsNamedFile;  ///< its library loses metadata where it cannot open what it wrote

    std::string_view attributes;  ///< what the names of its own metadata begin with
    bool keepsAttributes;         ///< from file to file; else they describe one file's bytes

    /// The type that stands for `wanted` in a file. Never null.
    OIIO::TypeDesc (*storedType)(OIIO::TypeDesc wanted);
    std::string_view compressions;  ///< what a compression setting may be, in words
    /// Nothing when the text is none of these. Null: there is no choice.
    std::optional<Compression> (*compressionFrom)(const std::string& text);
    /// Enters a setting, or the default where it is empty.
    void (*setCompression)(OIIO::ImageSpec& spec, const Compression& chosen);
    /// The last touch on what is to be written.
    void (*adaptToWrite)(OIIO::ImageSpec& spec);

    /// Whether a file is whole, for a library that prints lines of its own where it is not.
    bool (*isWhole)(const std::filesystem::path& file);
    /// Corrects what the library made of a header.
    void (*correctRead)(OIIO::ImageSpec& spec);
    /// Whether a message of the library after a read means no loss; null: none does.
    bool (*isHarmless)(const std::string& message);
};

/// All of them.
std::span<const FileFormat> fileFormats();

/// By the name's extension, in any case. Throws `FileError` that lists the known ones.
const FileFormat& formatByName(const std::filesystem::path& file);

/// By the file's first bytes, whatever its name is. Throws `FileError` when it is missing, a
/// folder, not readable, empty or none of the kinds.
const FileFormat& formatByContent(const std::filesystem::path& file);

/// Understands the text ("6" for PNG, "90" for JPEG, "zip" for TIFF, "dwaa:45" for EXR). Throws
/// `std::invalid_argument` with one line that says what the format takes.
Compression parseCompression(const FileFormat& format, const std::string& text);

}  // namespace Tesseret::Files
