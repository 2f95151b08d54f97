#include "files/PngHeader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string_view>

namespace Tesseret::Files {

namespace {

constexpr const char* kColourSpaceKey = "oiio:ColorSpace";
constexpr std::uint32_t kMostResolution = 1 << 30;  // far from where its number wraps
constexpr float kInchesPerCentimetre = 2.54f / 100.0f;

/// Names of texts that OpenImageIO keeps as they are. It knows others, such as "Orientation".
constexpr auto kPlainTexts = std::to_array<std::string_view>(
    {"Title", "Author", "Description", "Copyright", "Creation Time", "Software", "Disclaimer",
     "Warning", "Source", "Comment", "date:create", "date:modify", "date:timestamp"});

/// OpenImageIO reads a gamma to the nearest hundredth, names it with two digits, and writes what
/// the name says. False for a gamma that it would not understand again.
bool takeGamma(double fileGamma, PngMetadata& metadata)
{
    const float gamma = std::round(100.0f * static_cast<float>(1.0 / fileGamma)) / 100.0f;
    if (gamma == 1.0f) {
        metadata.colourSpace = "linear";
        metadata.fileGamma = 1.0;
        return true;
    }
    constexpr float kLeast = 0.1f, kMost = 9.9f;
    if (!(gamma >= kLeast && gamma <= kMost)) return false;
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%.2g", double{gamma});
    metadata.colourSpace = std::string("Gamma") + digits.data();
    metadata.fileGamma = double{1.0f / std::strtof(digits.data(), nullptr)};
    return true;
}

bool takeColourSpace(png_structp png, png_infop info, PngMetadata& metadata)
{
    if (png_get_valid(png, info, PNG_INFO_iCCP) != 0) return false;
    int intent = 0;
    double fileGamma = 0.0;
    const bool hasGamma = png_get_sRGB(png, info, &intent) == 0 &&
                          png_get_gAMA(png, info, &fileGamma) != 0 && fileGamma > 0.0;
    if (hasGamma) return takeGamma(fileGamma, metadata);
    metadata.colourSpace = "sRGB";
    return true;
}

/// False for a time that a calendar does not have.
bool takeTime(png_structp png, png_infop info, PngMetadata& metadata)
{
    png_timep time = nullptr;
    if (png_get_tIME(png, info, &time) == 0) return true;
    metadata.time = *time;
    return time->year >= 1000 && time->year <= 9999 && time->month >= 1 && time->month <= 12 &&
           time->day >= 1 && time->day <= 28 && time->hour < 24 && time->minute < 60 &&
           time->second < 60;
}

bool takeTexts(png_structp png, png_infop info, PngMetadata& metadata)
{
    png_textp texts = nullptr;
    const int count = png_get_text(png, info, &texts, nullptr);
    for (int i = 0; i < count; ++i) {
        const std::string key = texts[i].key;
        const std::string text = texts[i].text == nullptr ? "" : texts[i].text;
        if (key == kColourSpaceKey && text == metadata.colourSpace) continue;
        const bool isPlain = std::ranges::find(kPlainTexts, key) != kPlainTexts.end();
        const bool isAgain = std::ranges::any_of(
            metadata.texts, [&key](const auto& other) { return other.first == key; });
        if (!isPlain || isAgain || text.empty()) return false;
        metadata.texts.emplace_back(key, text);
    }
    return true;
}

std::optional<PngMetadata> metadataOf(png_structp png, png_infop info)
{
    PngMetadata metadata;
    if (png_get_valid(png, info, PNG_INFO_eXIf) != 0) return std::nullopt;
    if (!takeColourSpace(png, info, metadata)) return std::nullopt;
    PngResolution resolution{};
    if (png_get_pHYs(png, info, &resolution.x, &resolution.y, &resolution.unit) != 0) {
        if (std::max(resolution.x, resolution.y) > kMostResolution) return std::nullopt;
        metadata.resolution = resolution;
    }
    if (!takeTime(png, info, metadata) || !takeTexts(png, info, metadata)) return std::nullopt;
    return metadata;
}

/// OpenImageIO keeps resolutions as floats in pixels an inch, and the vertical one as the ratio
/// to the horizontal one where pixels are not square.
PngResolution writtenResolution(const PngResolution& read, float aspect)
{
    const bool hasUnit = read.unit == PNG_RESOLUTION_METER;
    const float inward = hasUnit ? kInchesPerCentimetre : 1.0f;
    const float outward = hasUnit ? static_cast<float>(100.0 / 2.54) : 1.0f;
    float x = static_cast<float>(read.x) * inward;
    float y = static_cast<float>(read.y) * inward;
    const bool isSquare = aspect == 0.0f || aspect == 1.0f;
    const float ratio = isSquare ? 1.0f : aspect;
    if (!isSquare) (x != 0.0f ? y : x) = 0.0f;
    constexpr float kUnknown = 100.0f;
    if (x == 0.0f && y == 0.0f) x = kUnknown;
    if (x == 0.0f) x = y / ratio;
    if (y == 0.0f) y = x * ratio;
    return {static_cast<std::uint32_t>(x * outward), static_cast<std::uint32_t>(y * outward),
            hasUnit ? PNG_RESOLUTION_METER : PNG_RESOLUTION_UNKNOWN};
}

/// The metadata as libpng takes it.
struct ChunkWriter {
    const PngLayout& layout;
    const PngHeader& header;
    const PngMetadata& metadata;
    std::vector<png_text> texts;
    std::vector<std::byte> bytes;
    bool isShort = false;
};

void takeBytes(png_structp png, png_bytep data, std::size_t count)
{
    auto& writer = *static_cast<ChunkWriter*>(png_get_io_ptr(png));
    const auto* const bytes = reinterpret_cast<const std::byte*>(data);
    try {
        writer.bytes.insert(writer.bytes.end(), bytes, bytes + count);
    } catch (const std::bad_alloc&) {
        writer.isShort = true;
    }
}

void writeChunks(png_structp png, png_infop info, ChunkWriter& writer)
{
    constexpr std::array<int, 4> kColourTypes{PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA,
                                              PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};
    const PngMetadata& metadata = writer.metadata;
    png_set_IHDR(png, info, 1, 1, 8, kColourTypes[writer.layout.channels.size() - 1],
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_oFFs(png, info, metadata.left, metadata.top, PNG_OFFSET_PIXEL);
    if (metadata.fileGamma > 0.0) {
        png_set_gAMA(png, info, metadata.fileGamma);
    } else if (!metadata.colourSpace.empty()) {
        png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_ABSOLUTE);
    }
    if (metadata.resolution) {
        const auto [x, y, unit] = writtenResolution(
            *metadata.resolution, static_cast<float>(writer.header.pixelAspectRatio));
        png_set_pHYs(png, info, x, y, unit);
    }
    if (metadata.time) png_set_tIME(png, info, &*metadata.time);
    if (!writer.texts.empty()) {
        png_set_text(png, info, writer.texts.data(), static_cast<int>(writer.texts.size()));
    }
    png_write_info(png, info);
}

void keepQuiet(png_structp /*png*/, png_const_charp /*text*/) {}

[[noreturn]] void leave(png_structp png, png_const_charp /*text*/)
{
    png_longjmp(png, 1);
}

bool succeeds(png_structp png, png_infop info, ChunkWriter& writer)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    writeChunks(png, info, writer);
    return true;
}

/// `texts` point into the strings of `metadata` and of the caller.
void addText(ChunkWriter& writer, const std::string& key, const std::string& text)
{
    png_text entry{};
    entry.compression = PNG_TEXT_COMPRESSION_NONE;
    entry.key = const_cast<char*>(key.c_str());
    entry.text = const_cast<char*>(text.c_str());
    writer.texts.push_back(entry);
}

std::vector<std::byte> chunksFor(const PngLayout& layout, const PngHeader& header,
                                 const PngMetadata& metadata)
{
    ChunkWriter writer{layout, header, metadata, {}, {}};
    const std::string colourSpaceKey = kColourSpaceKey;
    if (!metadata.colourSpace.empty()) addText(writer, colourSpaceKey, metadata.colourSpace);
    for (const auto& [key, text] : metadata.texts) addText(writer, key, text);

    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, keepQuiet);
    png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
    if (info != nullptr) png_set_write_fn(png, &writer, takeBytes, nullptr);
    writer.isShort = info == nullptr;
    const bool isWritten = !writer.isShort && succeeds(png, info, writer);
    png_destroy_write_struct(&png, &info);
    if (writer.isShort) throw std::bad_alloc();
    if (!isWritten) throw std::runtime_error("libpng refuses the metadata");
    constexpr std::ptrdiff_t kFirst = 8 + 12 + 13;  // signature and IHDR
    return {writer.bytes.begin() + kFirst, writer.bytes.end()};
}

}  // namespace

PngHeader headerOf(png_structp png, png_infop info)
{
    PngHeader header;
    header.width = static_cast<int>(png_get_image_width(png, info));
    header.height = static_cast<int>(png_get_image_height(png, info));
    header.channels = png_get_channels(png, info);
    header.depth = png_get_bit_depth(png, info) == 16 ? Depth::Short : Depth::Byte;
    const float aspect = png_get_pixel_aspect_ratio(png, info);
    header.pixelAspectRatio = std::isfinite(aspect) && aspect > 0.0f ? double{aspect} : 1.0;
    header.metadata = metadataOf(png, info);
    return header;
}

PngLayout pngLayout(const Picture& picture, const PngHeader& header, const PngMetadata& metadata,
                    const WriteOptions& options)
{
    const OfxRectI bounds = picture.bounds();
    PngLayout layout;
    layout.depth = picture.depth() == Depth::Byte ? Depth::Byte : Depth::Short;
    layout.window = options.displayWindow.value_or(OfxRectI{0, 0, header.width, header.height});
    const OfxRectI& window = layout.window;
    if (bounds.x1 != window.x1 || bounds.y1 != window.y1 || bounds.x2 != window.x2 ||
        bounds.y2 != window.y2) {
        layout.losses.emplace_back("data window");
    }
    layout.channels = {0};
    if (header.channels >= 3 || options.asColour) layout.channels = {0, 1, 2};
    if (header.channels % 2 == 0) layout.channels.push_back(3);
    layout.chunks = chunksFor(layout, header, metadata);
    return layout;
}

}  // namespace Tesseret::Files
