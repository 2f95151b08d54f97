#include "files/PictureReader.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include <OpenImageIO/imageio.h>

#include "files/FileError.h"
#include "files/FileRecord.h"

namespace Tesseret::Files {

namespace {

constexpr int kMaxPixelsAcross = 1 << 17;

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

[[noreturn]] void failDamaged(const std::filesystem::path& file, const std::string& reason)
{
    throw FileError(file, "is damaged or truncated" + (reason.empty() ? "" : ": " + reason));
}

/// An open file with its header.
struct OpenFile {
    std::filesystem::path file;
    const FileFormat* format;
    std::unique_ptr<OIIO::ImageInput> input;
    OIIO::ImageSpec spec;
};

OpenFile open(const std::filesystem::path& file)
{
    OpenFile opened{file, &formatByContent(file), nullptr, {}};
    const FileFormat& format = *opened.format;
    if (format.isWhole != nullptr && !format.isWhole(file)) failDamaged(file, "");
    opened.input = OIIO::ImageInput::create(std::string(format.name));
    if (!opened.input) {
        throw FileError(file, "this OpenImageIO cannot read " + std::string(format.label));
    }
    OIIO::ImageSpec asStored;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    if (!opened.input->open(file.string(), opened.spec, asStored)) {
        failDamaged(file, firstLine(opened.input->geterror()));
    }
    const OIIO::ImageSpec& spec = opened.spec;
    if (spec.deep) throw FileError(file, "is a deep picture, which cannot be rendered");
    if (spec.width < 1 || spec.height < 1 || spec.depth > 1 || spec.nchannels < 1) {
        throw FileError(file, "holds no flat picture");
    }
    if (spec.width > kMaxPixelsAcross || spec.height > kMaxPixelsAcross) {
        throw FileError(file, "is too large: " + std::to_string(spec.width) + " x " +
                                  std::to_string(spec.height) + " pixels");
    }
    if (format.correctRead != nullptr) format.correctRead(opened.spec);
    return opened;
}

Depth colourDepth(const OIIO::ImageSpec& spec, const ChannelPlaces& places)
{
    return depthOf(spec.channelformat(places.red >= 0 ? places.red : places.alpha));
}

PictureInfo describe(const OpenFile& opened)
{
    const OIIO::ImageSpec& spec = opened.spec;
    const ChannelPlaces places = findChannels(spec);
    PictureInfo info;
    info.file = opened.file;
    info.displayWindow = {0, 0, spec.full_width, spec.full_height};
    const int left = spec.x - spec.full_x;
    const int top = spec.full_y + spec.full_height - spec.y;
    info.dataWindow = {left, top - spec.height, left + spec.width, top};
    const float aspect = spec.get_float_attribute("PixelAspectRatio", 1.0f);
    info.pixelAspectRatio = std::isfinite(aspect) && aspect > 0.0f ? double{aspect} : 1.0;
    info.depth = colourDepth(spec, places);
    info.isColour = places.isColour();
    info.hasAlpha = places.alpha >= 0;
    if (info.hasAlpha) {
        info.alpha = spec.get_int_attribute("oiio:UnassociatedAlpha") != 0 ? Alpha::Unpremultiplied
                                                                           : Alpha::Premultiplied;
    }
    return info;
}

/// Reads channels [first, last) of the file into those of the picture from `target` on.
bool readChannels(OpenFile& opened, int first, int last, Picture& picture, int target)
{
    const auto channel = static_cast<std::ptrdiff_t>(channelBytes(picture.depth()));
    std::byte* const topRow = picture.row(picture.bounds().y2 - 1);
    return opened.input->read_image(0, 0, first, last, typeOf(picture.depth()),
                                    topRow + target * channel,
                                    static_cast<OIIO::stride_t>(picture.pixelBytes()),
                                    static_cast<OIIO::stride_t>(-picture.rowBytes()));
}

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

bool readColours(OpenFile& opened, const ChannelPlaces& places, Picture& picture)
{
    const auto [red, green, blue, alpha] = places;
    if (places.isColour() && green == red + 1 && blue == red + 2) {
        const bool alphaNext = alpha == red + 3;
        if (!readChannels(opened, red, red + (alphaNext ? 4 : 3), picture, 0)) return false;
        return alphaNext || alpha < 0 || readChannels(opened, alpha, alpha + 1, picture, 3);
    }
    if (red >= 0 && !readChannels(opened, red, red + 1, picture, 0)) return false;
    if (places.isColour() && !(readChannels(opened, green, green + 1, picture, 1) &&
                               readChannels(opened, blue, blue + 1, picture, 2))) {
        return false;
    }
    return alpha < 0 || readChannels(opened, alpha, alpha + 1, picture, 3);
}

bool readExtra(OpenFile& opened, const ChannelPlaces& places, std::vector<ExtraChannel>& extra)
{
    for (int c = 0; c < opened.spec.nchannels; ++c) {
        if (c == places.red || c == places.green || c == places.blue || c == places.alpha) continue;
        ExtraChannel channel{c, opened.spec.channelformat(c), {}};
        channel.samples.resize(opened.spec.image_pixels() * channel.type.size());
        if (!opened.input->read_image(0, 0, c, c + 1, channel.type, channel.samples.data())) {
            return false;
        }
        extra.push_back(std::move(channel));
    }
    return true;
}

/// Ends the reading. For a truncated file a library may fill in pixels and only leave a message.
void checkRead(OpenFile& opened, bool read, std::vector<std::string>& warnings)
{
    const std::string message = firstLine(opened.input->geterror());
    if (read && message.empty()) return;
    const auto isHarmless = opened.format->isHarmless;
    if (!read || isHarmless == nullptr || !isHarmless(message)) failDamaged(opened.file, message);
    warnings.push_back(opened.file.string() + ": " + message);
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

bool readMatte(OpenFile& opened, const ChannelPlaces& places, PictureFile& result)
{
    const PictureInfo& info = result.info;
    const auto take = [&](int place, MatteFrom from) {
        result.picture = Picture(info.dataWindow, info.depth, Components::Alpha);
        result.matteFrom = from;
        return readChannels(opened, place, place + 1, result.picture, 0);
    };
    if (info.hasAlpha) {
        if (!take(places.alpha, MatteFrom::Alpha)) return false;
        const bool hasOther = places.red >= 0;
        if (!hasOther || !isFullEverywhere(result.picture, info.displayWindow)) return true;
    }
    if (!info.isColour) return take(places.red, MatteFrom::Grey);
    Picture colours(info.dataWindow, info.depth);
    if (!readColours(opened, places, colours)) return false;
    result.picture = luminance(colours);
    result.matteFrom = MatteFrom::Luminance;
    return true;
}

PictureFile readOpened(OpenFile& opened, ReadAs as, std::optional<Depth> depth)
{
    PictureFile result;
    result.info = describe(opened);
    FileRecord record{opened.format, opened.spec, findChannels(opened.spec), result.info.depth, {}};
    bool read = false;
    if (as == ReadAs::Matte) {
        read = readMatte(opened, record.places, result);
    } else {
        result.picture = Picture(result.info.dataWindow, result.info.depth);
        read = readColours(opened, record.places, result.picture) &&
               readExtra(opened, record.places, record.extra);
        complete(result.picture, !result.info.isColour, !result.info.hasAlpha);
    }
    checkRead(opened, read, result.warnings);
    if (opened.input->seek_subimage(1, 0)) {
        result.warnings.push_back(opened.file.string() +
                                  ": holds several pictures; only the first is used");
    }
    if (depth && *depth != result.picture.depth()) {
        result.picture = result.picture.converted(*depth, result.picture.components());
    }
    result.picture.setPixelAspectRatio(result.info.pixelAspectRatio);
    result.picture.setAlpha(result.info.alpha);
    result.record = std::make_shared<const FileRecord>(std::move(record));
    return result;
}

}  // namespace

PictureInfo readInfo(const std::filesystem::path& file)
{
    return describe(open(file));
}

PictureFile readPicture(const std::filesystem::path& file, ReadAs as, std::optional<Depth> depth)
{
    OpenFile opened = open(file);
    try {
        return readOpened(opened, as, depth);
    } catch (const std::bad_alloc&) {
        throw FileError(file, "is too large for memory");
    } catch (const PictureError&) {
        throw FileError(file, "is too large for memory");
    }
}

}  // namespace Tesseret::Files
