#include "files/PictureWriter.h"

#include <algorithm>
#include <memory>

#include "files/FileError.h"
#include "files/OutputSpec.h"
#include "files/PartFile.h"

namespace Tesseret::Files {

namespace {

/// The first of the picture's channels in the file's top left pixel.
const std::byte* topLeft(const Picture& picture, int channel)
{
    return picture.row(picture.bounds().y2 - 1) +
           channel * static_cast<std::ptrdiff_t>(channelBytes(picture.depth()));
}

bool areNeighbours(const std::vector<int>& channels)
{
    return channels.back() - channels.front() + 1 == static_cast<int>(channels.size());
}

/// Which of the picture's channels stands at a place of the file.
int channelAt(int place, const OutputSpec& out, const ChannelPlaces& places)
{
    if (!out.keepsExtra) return out.channels[static_cast<std::size_t>(place)];
    if (place == places.alpha) return 3;
    if (place == places.red) return 0;
    return place == places.green ? 1 : 2;
}

/// All of the file's channels, each in its own type, pixel by pixel from the top.
std::vector<std::byte> interleave(const OutputSpec& out, const Picture& picture,
                                  const FileRecord& record)
{
    const OIIO::ImageSpec& spec = out.spec;
    const auto pixelBytes = static_cast<OIIO::stride_t>(spec.pixel_bytes(true));
    const OIIO::stride_t rowBytes = pixelBytes * spec.width;
    std::vector<std::byte> pixels(static_cast<std::size_t>(rowBytes) *
                                  static_cast<std::size_t>(spec.height));
    std::byte* to = pixels.data();
    for (int c = 0; c < spec.nchannels; ++c) {
        const OIIO::TypeDesc type = spec.channelformat(c);
        const auto size = static_cast<OIIO::stride_t>(type.size());
        const auto extra = std::ranges::find(record.extra, c, &ExtraChannel::index);
        if (out.keepsExtra && extra != record.extra.end()) {
            OIIO::convert_image(1, spec.width, spec.height, 1, extra->samples.data(), type, size,
                                size * spec.width, OIIO::AutoStride, to, type, pixelBytes, rowBytes,
                                OIIO::AutoStride);
        } else {
            OIIO::convert_image(
                1, spec.width, spec.height, 1, topLeft(picture, channelAt(c, out, record.places)),
                typeOf(picture.depth()), static_cast<OIIO::stride_t>(picture.pixelBytes()),
                static_cast<OIIO::stride_t>(-picture.rowBytes()), OIIO::AutoStride, to, type,
                pixelBytes, rowBytes, OIIO::AutoStride);
        }
        to += size;
    }
    return pixels;
}

bool writePixels(OIIO::ImageOutput& file, const OutputSpec& out, const Picture& picture,
                 const FileRecord& record)
{
    if (!out.keepsExtra && areNeighbours(out.channels)) {
        return file.write_image(typeOf(picture.depth()), topLeft(picture, out.channels.front()),
                                static_cast<OIIO::stride_t>(picture.pixelBytes()),
                                static_cast<OIIO::stride_t>(-picture.rowBytes()));
    }
    const std::vector<std::byte> pixels = interleave(out, picture, record);
    const bool mixed = !out.spec.channelformats.empty();
    return file.write_image(mixed ? OIIO::TypeDesc() : out.spec.format, pixels.data());
}

/// The picture's pixels as they are to be written; the picture itself when it is right already.
const Picture& prepared(const Picture& picture, const OutputSpec& out, Picture& storage)
{
    const OfxRectI a = picture.bounds();
    const OfxRectI& b = out.window;
    const Picture* result = &picture;
    if (a.x1 != b.x1 || a.y1 != b.y1 || a.x2 != b.x2 || a.y2 != b.y2) {
        storage = picture.copied(out.window, {});
        result = &storage;
    }
    if (out.depth != picture.depth()) {
        storage = result->converted(out.depth, Components::RGBA);
        result = &storage;
    }
    return *result;
}

std::vector<std::string> lossTexts(const std::filesystem::path& file, const FileFormat& format,
                                   const std::vector<std::string>& losses)
{
    std::vector<std::string> texts;
    texts.reserve(losses.size());
    for (const std::string& loss : losses) {
        texts.push_back(file.string() + ": " + std::string(format.label) +
                        " cannot keep the source's " + loss);
    }
    return texts;
}

}  // namespace

void checkTarget(const std::filesystem::path& file, const std::string& compression)
{
    const FileFormat& format = formatByName(file);
    if (!compression.empty()) parseCompression(format, compression);
    const PartFile probe(file);
}

bool keepsDataWindow(const std::filesystem::path& file)
{
    return formatByName(file).windows != Windows::None;
}

std::vector<std::string> writePicture(const std::filesystem::path& file, const Picture& picture,
                                      const FileRecord& record, const WriteOptions& options)
{
    const FileFormat& format = formatByName(file);
    const OutputSpec out =
        makeOutputSpec(format, record, picture.depth(), picture.bounds(), options.displayWindow,
                       options.asColour, options.compression);
    PartFile part(file);
    Picture storage;
    const Picture& pixels = prepared(picture, out, storage);

    const std::unique_ptr<OIIO::ImageOutput> output =
        OIIO::ImageOutput::create(std::string(format.name));
    if (!output) {
        throw FileError(file, "this OpenImageIO cannot write " + std::string(format.label));
    }
    if (!output->open(part.path().string(), out.spec) ||
        !writePixels(*output, out, pixels, record) || !output->close()) {
        const std::string reason = output->geterror();
        throw FileError(file, "cannot be written: " + reason.substr(0, reason.find('\n')));
    }
    part.keep();
    return lossTexts(file, format, out.losses);
}

void writeNewPicture(const std::filesystem::path& file, const Picture& picture, bool isColour)
{
    const OIIO::ImageSpec spec(picture.width(), picture.height(), isColour ? 3 : 1,
                               typeOf(picture.depth()));
    const ChannelPlaces places = isColour ? ChannelPlaces{0, 1, 2, -1} : ChannelPlaces{0, 0, 0, -1};
    const FileRecord record{&formatByName(file), spec, places, picture.depth(), {}};
    WriteOptions options;
    options.displayWindow = picture.bounds();
    writePicture(file, picture, record, options);
}

}  // namespace Tesseret::Files
