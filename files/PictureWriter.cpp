#include "files/PictureWriter.h"

#include <new>

#include "files/FileError.h"
#include "files/OutputSpec.h"
#include "files/PictureEncoder.h"
#include "files/WholeFile.h"

namespace Tesseret::Files {

namespace {

/// The picture converted for writing; the picture itself when no conversion is needed.
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
    checkPlace(file);
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
    try {
        Picture storage;
        writeWhole(file, encodePicture(file, format, out, prepared(picture, out, storage), record));
    } catch (const std::bad_alloc&) {
        throw FileError(file, "cannot be written: too large for memory");
    }
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
