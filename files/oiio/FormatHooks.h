#pragma once

#include <string>

#include <OpenImageIO/imageio.h>

#include "files/FileFormat.h"

namespace Tesseret::Files {

/// Where OpenImageIO needs help with a format. Functions may be null unless said otherwise.
struct FormatHooks {
    std::string_view format;  ///< its name

    /// The type that stores `wanted` in a file. Never null.
    OIIO::TypeDesc (*storedType)(const OIIO::TypeDesc& wanted);
    /// Applies a compression setting, or the default where it is empty.
    void (*setCompression)(OIIO::ImageSpec& spec, const Compression& chosen);
    /// Final changes to the header before writing.
    void (*adaptToWrite)(OIIO::ImageSpec& spec);
    /// Corrects the header as the library read it.
    void (*correctRead)(OIIO::ImageSpec& spec);
    /// Whether a message of the library after a read is harmless; null: none is.
    bool (*isHarmless)(const std::string& message);
};

/// The hooks of a format of the table.
const FormatHooks& hooksOf(const FileFormat& format);

}  // namespace Tesseret::Files
