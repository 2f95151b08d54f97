#include "files/FileFormat.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "files/FileError.h"

namespace Tesseret::Files {

namespace {

constexpr auto kFormats = std::to_array<FileFormat>({
    {.name = "png",
     .label = "PNG",
     .extensions = ".png ",
     .windows = Windows::None,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = false,
     .orientation = false},
    {.name = "jpeg",
     .label = "JPEG",
     .extensions = ".jpg .jpeg ",
     .windows = Windows::None,
     .alpha = false,
     .greyAlpha = false,
     .extraChannels = false,
     .orientation = true},
    {.name = "tiff",
     .label = "TIFF",
     .extensions = ".tif .tiff ",
     .windows = Windows::FromZero,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = true,
     .orientation = true,
     .needsNamedFile = true},
    {.name = "dpx",
     .label = "DPX",
     .extensions = ".dpx ",
     .windows = Windows::FromZero,
     .alpha = true,
     .greyAlpha = false,
     .extraChannels = false,
     .orientation = false},
    {.name = "openexr",
     .label = "OpenEXR",
     .extensions = ".exr ",
     .windows = Windows::Any,
     .alpha = true,
     .greyAlpha = true,
     .extraChannels = true,
     .orientation = true},
});

struct Signature {
    std::string_view bytes, format;
};

constexpr auto kSignatures = std::to_array<Signature>({
    {std::string_view("\x89PNG\r\n\x1a\n", 8), "png"},
    {std::string_view("\xff\xd8\xff", 3), "jpeg"},
    {std::string_view("II*\0", 4), "tiff"},
    {std::string_view("MM\0*", 4), "tiff"},
    {std::string_view("II+\0", 4), "tiff"},
    {std::string_view("MM\0+", 4), "tiff"},
    {std::string_view("SDPX", 4), "dpx"},
    {std::string_view("XPDS", 4), "dpx"},
    {std::string_view("\x76\x2f\x31\x01", 4), "openexr"},
});

const FileFormat& formatNamed(std::string_view name)
{
    return *std::ranges::find(kFormats, name, &FileFormat::name);
}

std::optional<int> wholeNumber(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

[[noreturn]] void refuseCompression(const FileFormat& format, const std::string& text,
                                    const std::string& taken)
{
    throw std::invalid_argument("compression \"" + text + "\": " + std::string(format.label) +
                                " takes " + taken);
}

Compression parseLevel(const FileFormat& format, const std::string& text, int least, int most,
                       const std::string& taken)
{
    const std::optional<int> level = wholeNumber(text);
    if (!level || *level < least || *level > most) refuseCompression(format, text, taken);
    return {.method = {}, .level = level};
}

/// `methods` has a blank after each; those that begin with "dwa" take a level after a colon.
Compression parseMethod(const FileFormat& format, const std::string& text,
                        const std::string& methods)
{
    const std::size_t colon = text.find(':');
    Compression result{.method = text.substr(0, colon), .level = std::nullopt};
    const bool known = !result.method.empty() &&
                       (" " + methods).find(" " + result.method + " ") != std::string::npos;
    if (colon != std::string::npos) result.level = wholeNumber(text.substr(colon + 1));
    const bool levelFits = colon == std::string::npos ||
                           (result.method.starts_with("dwa") && result.level.value_or(-1) >= 0);
    if (!known || !levelFits)
        refuseCompression(format, text, methods.substr(0, methods.size() - 1));
    return result;
}

}  // namespace

const FileFormat& formatByName(const std::filesystem::path& file)
{
    std::string extension = file.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string known;
    for (const FileFormat& format : kFormats) {
        known += format.extensions;
        if (!extension.empty() && format.extensions.find(extension + " ") != std::string::npos) {
            return format;
        }
    }
    known.pop_back();
    throw FileError(
        file, (extension.empty() ? "the name has no extension" : "unknown extension " + extension) +
                  "; known are " + known);
}

const FileFormat& formatByContent(const std::filesystem::path& file)
{
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) throw FileError(file, "no such file");
    if (std::filesystem::is_directory(file, ignored)) throw FileError(file, "is a folder");
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw FileError(file, std::string("cannot be read: ") + std::strerror(errno));
    std::array<char, 8> start{};
    stream.read(start.data(), start.size());
    const std::string_view bytes(start.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.empty()) throw FileError(file, "is empty");
    for (const Signature& signature : kSignatures) {
        if (bytes.starts_with(signature.bytes)) return formatNamed(signature.format);
    }
    throw FileError(file, "is not a PNG, JPEG, TIFF, DPX or OpenEXR picture");
}

Compression parseCompression(const FileFormat& format, const std::string& text)
{
    if (format.name == "png") return parseLevel(format, text, 0, 9, "a level from 0 to 9");
    if (format.name == "jpeg") return parseLevel(format, text, 1, 100, "a quality from 1 to 100");
    if (format.name == "tiff") return parseMethod(format, text, "none lzw zip packbits ");
    if (format.name == "openexr") {
        return parseMethod(format, text, "none rle zip zips piz pxr24 b44 b44a dwaa dwab ");
    }
    refuseCompression(format, text, "none");
}

}  // namespace Tesseret::Files
