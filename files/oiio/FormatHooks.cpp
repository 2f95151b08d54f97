#include "files/oiio/FormatHooks.h"

#include <algorithm>
#include <array>

#include "files/oiio/SpecRecord.h"

namespace Tesseret::Files {

using OIIO::ImageSpec;
using OIIO::TypeDesc;

namespace {

/// The method in OpenImageIO's spelling; without one the source's, or else the default.
void setMethod(ImageSpec& spec, const Compression& chosen, const char* byDefault)
{
    std::string method = chosen.method;
    if (chosen.level) method.append(1, ':').append(std::to_string(*chosen.level));
    if (!method.empty()) {
        spec.attribute("compression", method);
    } else if (!spec.find_attribute("compression")) {
        spec.attribute("compression", byDefault);
    }
}

TypeDesc integerType(const TypeDesc& wanted)
{
    return depthOf(wanted) == Depth::Float ? OIIO::TypeUInt16 : wanted;
}

// PNG

/// Texts of the source with the names of settings would be taken for settings.
void adaptPng(ImageSpec& spec)
{
    spec.erase_attribute("png:compressionLevel");
    spec.erase_attribute("png:filter");
    spec.attribute("oiio:UnassociatedAlpha", 1);
}

// JPEG

TypeDesc byteType(const TypeDesc& /*wanted*/)
{
    return OIIO::TypeUInt8;
}

void setJpegCompression(ImageSpec& spec, const Compression& chosen)
{
    constexpr int kQuality = 95;
    spec.erase_attribute("compression");
    spec.attribute("CompressionQuality", chosen.level.value_or(kQuality));
    if (!spec.find_attribute("jpeg:subsampling")) spec.attribute("jpeg:subsampling", "4:4:4");
}

/// Two resolutions, of which the vertical one follows from the aspect ratio.
void setResolution(ImageSpec& spec)
{
    constexpr float kDotsPerInch = 72.0f;
    const float given = spec.get_float_attribute("XResolution");
    const float x = given > 0.0f ? given : kDotsPerInch;
    spec.attribute("XResolution", x);
    spec.attribute("YResolution", x * spec.get_float_attribute("PixelAspectRatio", 1.0f));
}

/// JPEG stores the aspect ratio as two resolutions, which OpenImageIO swaps.
void adaptJpeg(ImageSpec& spec)
{
    setResolution(spec);
    spec.attribute("PixelAspectRatio", 1.0f / spec.get_float_attribute("PixelAspectRatio", 1.0f));
}

/// Densities are dots per unit, so a low density means wide pixels; OpenImageIO has it inverted.
void correctJpeg(ImageSpec& spec)
{
    const float x = spec.get_float_attribute("XResolution");
    const float y = spec.get_float_attribute("YResolution");
    if (x > 0.0f && y > 0.0f) spec.attribute("PixelAspectRatio", y / x);
}

/// For a truncated file the library fills in grey and only leaves a message; but it has messages
/// for harmless faults too.
bool isHarmlessJpeg(const std::string& message)
{
    return message.find("Premature end") == std::string::npos;
}

// TIFF

TypeDesc tiffType(const TypeDesc& wanted)
{
    return wanted == OIIO::TypeHalf ? OIIO::TypeFloat : wanted;
}

void setTiffCompression(ImageSpec& spec, const Compression& chosen)
{
    setMethod(spec, chosen, "lzw");
}

/// TIFF stores windows in units of the resolution, which has to be fine enough.
void adaptTiff(ImageSpec& spec)
{
    if (!(spec.get_float_attribute("XResolution") > 0.0f)) setResolution(spec);
}

// OpenEXR

TypeDesc exrType(const TypeDesc& wanted)
{
    return wanted == OIIO::TypeFloat ? wanted : OIIO::TypeHalf;
}

void setExrCompression(ImageSpec& spec, const Compression& chosen)
{
    setMethod(spec, chosen, "zip");
}

void adaptExr(ImageSpec& spec)
{
    spec.erase_attribute("oiio:UnassociatedAlpha");
}

constexpr auto kHooks = std::to_array<FormatHooks>({
    {.format = "png",
     .storedType = integerType,
     .setCompression = nullptr,
     .adaptToWrite = adaptPng,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.format = "jpeg",
     .storedType = byteType,
     .setCompression = setJpegCompression,
     .adaptToWrite = adaptJpeg,
     .correctRead = correctJpeg,
     .isHarmless = isHarmlessJpeg},
    {.format = "tiff",
     .storedType = tiffType,
     .setCompression = setTiffCompression,
     .adaptToWrite = adaptTiff,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.format = "dpx",
     .storedType = integerType,
     .setCompression = nullptr,
     .adaptToWrite = nullptr,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.format = "openexr",
     .storedType = exrType,
     .setCompression = setExrCompression,
     .adaptToWrite = adaptExr,
     .correctRead = nullptr,
     .isHarmless = nullptr},
});

}  // namespace

const FormatHooks& hooksOf(const FileFormat& format)
{
    return *std::ranges::find(kHooks, format.name, &FormatHooks::format);
}

}  // namespace Tesseret::Files
