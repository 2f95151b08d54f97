/// The rows of the table of file formats, with the parsers of their compression settings.

#include <array>
#include <charconv>

#include "files/FileFormat.h"

namespace Tesseret::Files {

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

constexpr std::string_view kTiffMethods = "none lzw zip packbits";

std::optional<Compression> tiffCompression(const std::string& text)
{
    return methodFrom(text, kTiffMethods);
}

constexpr std::string_view kExrMethods = "none rle zip zips piz pxr24 b44 b44a dwaa dwab";

std::optional<Compression> exrCompression(const std::string& text)
{
    return methodFrom(text, kExrMethods);
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
     .compressions = "a level from 0 to 9",
     .compressionFrom = levelFrom<0, 9>},
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
     .compressions = "a quality from 1 to 100",
     .compressionFrom = levelFrom<1, 100>},
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
     .compressions = kTiffMethods,
     .compressionFrom = tiffCompression},
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
     .compressions = "none",
     .compressionFrom = nullptr},
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
     .compressions = kExrMethods,
     .compressionFrom = exrCompression},
});

}  // namespace

std::span<const FileFormat> fileFormats()
{
    return kFormats;
}

}  // namespace Tesseret::Files
