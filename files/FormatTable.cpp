/// The rows of the table of file formats, with the functions that they name.

#include <array>
#include <charconv>

#include "files/FileFormat.h"
#include "files/FileRecord.h"
#include "files/PngCheck.h"

namespace Tesseret::Files {

using OIIO::ImageSpec;
using OIIO::TypeDesc;

namespace {

std::optional<int> integerFrom(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

template <int kMin, int kMax>
std::optional<Compression> levelFrom(const std::string& text)
{
    const std::optional<int> level = integerFrom(text);
    if (!level || *level < kMin || *level > kMax) return std::nullopt;
    return Compression{.method = {}, .level = level};
}

/// `methods` has a blank between them; those that begin with "dwa" take a level after a colon.
std::optional<Compression> methodFrom(const std::string& text, std::string_view methods)
{
    const std::size_t colon = text.find(':');
    Compression result{.method = text.substr(0, colon), .level = std::nullopt};
    const auto inBlanks = [](std::string_view word) {
        return std::string(" ").append(word).append(" ");
    };
    const bool isKnown = !result.method.empty() &&
                         inBlanks(methods).find(inBlanks(result.method)) != std::string::npos;
    if (!isKnown) return std::nullopt;
    if (colon == std::string::npos) return result;
    result.level = integerFrom(text.substr(colon + 1));
    const bool hasLevel = result.method.starts_with("dwa") && result.level.value_or(-1) >= 0;
    return hasLevel ? std::optional(result) : std::nullopt;
}

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

void setPngCompression(ImageSpec& spec, const Compression& chosen)
{
    if (chosen.level) {
        spec.attribute("png:compressionLevel", *chosen.level);
        return;
    }
    // Run lengths over the average filter: on photographs a sixth of the time of zlib's default
    // level, for a file 7 % larger than that and smaller than level 1.
    constexpr int kAverageFilter = 0x40;
    spec.attribute("png:compressionLevel", 1);
    spec.attribute("png:filter", kAverageFilter);
    spec.attribute("compression", "rle");
}

void adaptPng(ImageSpec& spec)
{
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

constexpr std::string_view kTiffMethods = "none lzw zip packbits";

TypeDesc tiffType(const TypeDesc& wanted)
{
    return wanted == OIIO::TypeHalf ? OIIO::TypeFloat : wanted;
}

std::optional<Compression> tiffCompression(const std::string& text)
{
    return methodFrom(text, kTiffMethods);
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

constexpr std::string_view kExrMethods = "none rle zip zips piz pxr24 b44 b44a dwaa dwab";

TypeDesc exrType(const TypeDesc& wanted)
{
    return wanted == OIIO::TypeFloat ? wanted : OIIO::TypeHalf;
}

std::optional<Compression> exrCompression(const std::string& text)
{
    return methodFrom(text, kExrMethods);
}

void setExrCompression(ImageSpec& spec, const Compression& chosen)
{
    setMethod(spec, chosen, "zip");
}

void adaptExr(ImageSpec& spec)
{
    spec.erase_attribute("oiio:UnassociatedAlpha");
}

using Texts = std::string_view;

constexpr std::array<Texts, 1> kPngExtensions{".png"};
constexpr std::array<Texts, 1> kPngSignatures{Texts("\x89PNG\r\n\x1a\n", 8)};
constexpr std::array<Texts, 2> kJpegExtensions{".jpg", ".jpeg"};
constexpr std::array<Texts, 1> kJpegSignatures{Texts("\xff\xd8\xff", 3)};
constexpr std::array<Texts, 2> kTiffExtensions{".tif", ".tiff"};
constexpr std::array<Texts, 4> kTiffSignatures{Texts("II*\0", 4), Texts("MM\0*", 4),
                                               Texts("II+\0", 4), Texts("MM\0+", 4)};
constexpr std::array<Texts, 1> kDpxExtensions{".dpx"};
constexpr std::array<Texts, 2> kDpxSignatures{"SDPX", "XPDS"};
constexpr std::array<Texts, 1> kExrExtensions{".exr"};
constexpr std::array<Texts, 1> kExrSignatures{Texts("\x76\x2f\x31\x01", 4)};

constexpr auto kFormats = std::to_array<FileFormat>({
    {.name = "png",
     .label = "PNG",
     .extensions = kPngExtensions,
     .signatures = kPngSignatures,
     .windows = Windows::None,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = false,
     .mixedTypes = false,
     .orientation = false,
     .needsNamedFile = false,
     .attributes = "png:",
     .keepsAttributes = true,
     .storedType = integerType,
     .compressions = "a level from 0 to 9",
     .compressionFrom = levelFrom<0, 9>,
     .setCompression = setPngCompression,
     .adaptToWrite = adaptPng,
     .isWhole = isWholePng,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.name = "jpeg",
     .label = "JPEG",
     .extensions = kJpegExtensions,
     .signatures = kJpegSignatures,
     .windows = Windows::None,
     .alpha = false,
     .greyAlpha = false,
     .extraChannels = false,
     .mixedTypes = false,
     .orientation = true,
     .needsNamedFile = false,
     .attributes = "jpeg:",
     .keepsAttributes = true,
     .storedType = byteType,
     .compressions = "a quality from 1 to 100",
     .compressionFrom = levelFrom<1, 100>,
     .setCompression = setJpegCompression,
     .adaptToWrite = adaptJpeg,
     .isWhole = nullptr,
     .correctRead = correctJpeg,
     .isHarmless = isHarmlessJpeg},
    {.name = "tiff",
     .label = "TIFF",
     .extensions = kTiffExtensions,
     .signatures = kTiffSignatures,
     .windows = Windows::FromZero,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = true,
     .mixedTypes = false,
     .orientation = true,
     .needsNamedFile = true,
     .attributes = "tiff:",
     .keepsAttributes = false,
     .storedType = tiffType,
     .compressions = kTiffMethods,
     .compressionFrom = tiffCompression,
     .setCompression = setTiffCompression,
     .adaptToWrite = adaptTiff,
     .isWhole = nullptr,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.name = "dpx",
     .label = "DPX",
     .extensions = kDpxExtensions,
     .signatures = kDpxSignatures,
     .windows = Windows::FromZero,
     .alpha = true,
     .greyAlpha = false,
     .extraChannels = false,
     .mixedTypes = false,
     .orientation = false,
     .needsNamedFile = false,
     .attributes = "dpx:",
     .keepsAttributes = true,
     .storedType = integerType,
     .compressions = "none",
     .compressionFrom = nullptr,
     .setCompression = nullptr,
     .adaptToWrite = nullptr,
     .isWhole = nullptr,
     .correctRead = nullptr,
     .isHarmless = nullptr},
    {.name = "openexr",
     .label = "OpenEXR",
     .extensions = kExrExtensions,
     .signatures = kExrSignatures,
     .windows = Windows::Any,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = true,
     .mixedTypes = true,
     .orientation = true,
     .needsNamedFile = false,
     .attributes = "openexr:",
     .keepsAttributes = true,
     .storedType = exrType,
     .compressions = kExrMethods,
     .compressionFrom = exrCompression,
     .setCompression = setExrCompression,
     .adaptToWrite = adaptExr,
     .isWhole = nullptr,
     .correctRead = nullptr,
     .isHarmless = nullptr},
});

}  // namespace

std::span<const FileFormat> fileFormats()
{
    return kFormats;
}

}  // namespace Tesseret::Files
