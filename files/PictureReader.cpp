#include "files/PictureReader.h"

#include <algorithm>
#include <new>

#include "files/FileError.h"
#include "files/FileFormat.h"
#include "files/OpenPicture.h"
#include "files/PictureLibrary.h"
#include "files/PngCheck.h"
#include "files/PngReader.h"
#include "files/StandardStreams.h"

namespace Tesseret::Files {

namespace {

/// Grey goes to all three colours; a missing alpha becomes opaque.
template <typename Channel>
void complete(Picture& picture, bool grey, bool opaque, Channel full)
{
    const OfxRectI bounds = picture.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        auto* pixel = reinterpret_cast<Channel*>(picture.row(y));
        for (int x = bounds.x1; x < bounds.x2; ++x, pixel += 4) {
            if (grey) pixel[1] = pixel[2] = pixel[0];
            if (opaque) pixel[3] = full;
        }
    }
}

void complete(Picture& picture, bool grey, bool opaque)
{
    switch (picture.depth()) {
        case Depth::Byte:
            return complete<std::uint8_t>(picture, grey, opaque, 255);
        case Depth::Short:
            return complete<std::uint16_t>(picture, grey, opaque, 65535);
        case Depth::Float:
            return complete<float>(picture, grey, opaque, 1.0f);
    }
}

bool readColours(OpenPicture& opened, Picture& picture)
{
    const auto [red, green, blue, alpha] = opened.places();
    if (opened.places().isColour() && green == red + 1 && blue == red + 2) {
        const bool alphaNext = alpha == red + 3;
        if (!opened.readChannels(red, red + (alphaNext ? 4 : 3), picture, 0)) return false;
        return alphaNext || alpha < 0 || opened.readChannels(alpha, alpha + 1, picture, 3);
    }
    if (red >= 0 && !opened.readChannels(red, red + 1, picture, 0)) return false;
    if (opened.places().isColour() && !(opened.readChannels(green, green + 1, picture, 1) &&
                                        opened.readChannels(blue, blue + 1, picture, 2))) {
        return false;
    }
    return alpha < 0 || opened.readChannels(alpha, alpha + 1, picture, 3);
}

template <typename Channel>
void luminance(const Picture& colours, Picture& matte, double rounding)
{
    const OfxRectI bounds = matte.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        const auto* from = reinterpret_cast<const Channel*>(colours.row(y));
        auto* to = reinterpret_cast<Channel*>(matte.row(y));
        for (int x = bounds.x1; x < bounds.x2; ++x, from += 4, ++to) {
            // ITU-R BT.709
            const double luma = 0.2126 * from[0] + 0.7152 * from[1] + 0.0722 * from[2];
            *to = static_cast<Channel>(luma + rounding);
        }
    }
}

Picture luminance(const Picture& colours)
{
    Picture matte(colours.bounds(), colours.depth(), Components::Alpha);
    switch (colours.depth()) {
        case Depth::Byte:
            luminance<std::uint8_t>(colours, matte, 0.5);
            break;
        case Depth::Short:
            luminance<std::uint16_t>(colours, matte, 0.5);
            break;
        case Depth::Float:
            luminance<float>(colours, matte, 0.0);
            break;
    }
    return matte;
}

template <typename Channel>
bool isFull(const Picture& matte, Channel full)
{
    const OfxRectI bounds = matte.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        const auto* const row = matte.pixel<Channel>(bounds.x1, y);
        const auto isLess = [full](Channel value) { return !(value >= full); };
        if (std::any_of(row, row + matte.width(), isLess)) return false;
    }
    return true;
}

/// Whether a matte fully masks every pixel of the display window.
bool isFullEverywhere(const Picture& matte, const OfxRectI& displayWindow)
{
    const OfxRectI inside = intersection(matte.bounds(), displayWindow);
    if (inside.x2 - inside.x1 != displayWindow.x2 || inside.y2 - inside.y1 != displayWindow.y2) {
        return false;
    }
    switch (matte.depth()) {
        case Depth::Byte:
            return isFull<std::uint8_t>(matte, 255);
        case Depth::Short:
            return isFull<std::uint16_t>(matte, 65535);
        case Depth::Float:
            break;
    }
    return isFull<float>(matte, 1.0f);
}

bool readMatte(OpenPicture& opened, PictureFile& result)
{
    const PictureInfo& info = result.info;
    const ChannelPlaces& places = opened.places();
    const auto take = [&](int place, MatteFrom from) {
        result.picture = Picture(info.dataWindow, info.depth, Components::Alpha);
        result.matteFrom = from;
        return opened.readChannels(place, place + 1, result.picture, 0);
    };
    if (info.hasAlpha) {
        if (!take(places.alpha, MatteFrom::Alpha)) return false;
        const bool hasOther = places.red >= 0;
        if (!hasOther || !isFullEverywhere(result.picture, info.displayWindow)) return true;
    }
    if (!info.isColour) return take(places.red, MatteFrom::Grey);
    Picture colours(info.dataWindow, info.depth);
    if (!readColours(opened, colours)) return false;
    result.picture = luminance(colours);
    result.matteFrom = MatteFrom::Luminance;
    return true;
}

/// nullopt when another reader has to read the file.
std::optional<PictureFile> readOpened(OpenPicture& opened, ReadAs as, std::optional<Depth> depth)
{
    PictureFile result;
    result.info = opened.info();
    bool read = false;
    if (as == ReadAs::Matte) {
        read = readMatte(opened, result);
    } else {
        result.picture = Picture(result.info.dataWindow, result.info.depth);
        read = readColours(opened, result.picture) && opened.readExtra();
        complete(result.picture, !result.info.isColour, !result.info.hasAlpha);
    }
    if (!opened.finish(read, result.warnings)) return std::nullopt;
    if (depth && *depth != result.picture.depth()) {
        result.picture = result.picture.converted(*depth, result.picture.components());
    }
    result.picture.setPixelAspectRatio(result.info.pixelAspectRatio);
    result.picture.setAlpha(result.info.alpha);
    result.record = opened.takeRecord();
    return result;
}

/// Null for every other format, and for a PNG that only OpenImageIO reads. Throws `FileError`.
std::unique_ptr<OpenPicture> openPng(const std::filesystem::path& file, const FileFormat& format)
{
    if (!isPng(format)) return nullptr;
    // libpng would print a line of its own.
    if (!isWholePng(storedFile(file))) failDamaged(file);
    return PngReader::open(file);
}

}  // namespace

PictureInfo readInfo(const std::filesystem::path& file)
{
    const FileFormat& format = formatByContent(file);
    if (const auto png = openPng(file, format)) return png->info();
    return pictureLibrary(file).open(file, storedFile(file), format)->info();
}

PictureFile readPicture(const std::filesystem::path& file, ReadAs as, std::optional<Depth> depth)
{
    const FileFormat& format = formatByContent(file);
    try {
        if (const auto png = openPng(file, format)) {
            if (auto read = readOpened(*png, as, depth)) return *std::move(read);
        }
        return *readOpened(*pictureLibrary(file).open(file, storedFile(file), format), as, depth);
    } catch (const std::bad_alloc&) {
        throw FileError(file, "is too large for memory");
    } catch (const PictureError&) {
        throw FileError(file, "is too large for memory");
    }
}

}  // namespace Tesseret::Files
