#include "files/PictureWriter.h"

#include <new>

#include "files/ConvertedPicture.h"
#include "files/FileError.h"
#include "files/FileFormat.h"
#include "files/PictureLibrary.h"
#include "files/PngEncoder.h"
#include "files/PngHeader.h"
#include "files/StandardStreams.h"
#include "files/WholeFile.h"

namespace Tesseret::Files {

namespace {

Compression compressionFor(const FileFormat& format, const WriteOptions& options)
{
    return options.compression.empty() ? Compression{}
                                       : parseCompression(format, options.compression);
}

void checkPngSize(const std::filesystem::path& file, const OfxRectI& window)
{
    constexpr int kMost = 1'000'000;
    const int width = window.x2 - window.x1;
    const int height = window.y2 - window.y1;
    if (width >= 1 && height >= 1 && width <= kMost && height <= kMost) return;
    throw FileError(file, "cannot be written: a PNG has 1 to " + std::to_string(kMost) +
                              " pixels a side, and this picture " + std::to_string(width) + " x " +
                              std::to_string(height));
}

PngLayout layoutFor(const std::filesystem::path& file, const Picture& picture,
                    const FileRecord& record, const WriteOptions& options)
{
    const PngHeader* const header = record.png();
    if (header == nullptr || !header->metadata) {
        return pictureLibrary(file).pngLayout(file, picture, record, options);
    }
    return pngLayout(picture, *header, *header->metadata, options);
}

EncodedPicture encoded(const std::filesystem::path& file, const FileFormat& format,
                       const Picture& picture, const FileRecord& record,
                       const WriteOptions& options)
{
    if (!isPng(format)) {
        return pictureLibrary(file).encode(file, format, picture, record, options);
    }
    const PngLayout layout = layoutFor(file, picture, record, options);
    checkPngSize(file, layout.window);
    Picture storage;
    const Picture& prepared = converted(picture, layout.window, layout.depth, storage);
    return {encodePng(prepared, layout, compressionFor(format, options)), layout.losses};
}

/// Of a PNG that was made here.
PngHeader newPngHeader(const Picture& picture, bool isColour)
{
    PngHeader header;
    header.width = picture.width();
    header.height = picture.height();
    header.channels = isColour ? 3 : 1;
    header.depth = picture.depth();
    header.metadata.emplace();
    return header;
}

std::vector<std::string> lossTexts(const std::filesystem::path& file, const FileFormat& format,
                                   const std::vector<std::string>& losses)
{
    std::vector<std::string> texts;
    texts.reserve(losses.size());
    for (const std::string& loss : losses) {
        texts.push_back(shownName(file) + ": " + std::string(format.label) +
                        " cannot keep the source's " + loss);
    }
    return texts;
}

}  // namespace

void checkTarget(const std::filesystem::path& file, const std::string& compression)
{
    const FileFormat& format = formatByName(file);
    if (!compression.empty()) parseCompression(format, compression);
    isStandardOutput(file) ? checkStandardOutput(file) : checkPlace(file);
}

bool keepsDataWindow(const std::filesystem::path& file)
{
    return formatByName(file).windows != Windows::None;
}

OfxRectI writtenWindow(const std::filesystem::path& file, const OfxRectI& picture,
                       const OfxRectI& display)
{
    const Windows windows = formatByName(file).windows;
    const bool isInside = picture.x1 >= display.x1 && picture.y1 >= display.y1 &&
                          picture.x2 <= display.x2 && picture.y2 <= display.y2;
    const bool fits = windows == Windows::Any || (windows == Windows::FromZero && isInside);
    return fits ? picture : display;
}

std::vector<std::string> writePicture(const std::filesystem::path& file, const Picture& picture,
                                      const FileRecord& record, const WriteOptions& options)
{
    const FileFormat& format = formatByName(file);
    try {
        const EncodedPicture result = encoded(file, format, picture, record, options);
        if (isStandardOutput(file)) {
            writeStandardOutput(file, result.bytes);
        } else {
            writeWhole(file, result.bytes);
        }
        return lossTexts(file, format, result.losses);
    } catch (const std::bad_alloc&) {
        throw FileError(file, "cannot be written: too large for memory");
    }
}

void writeNewPicture(const std::filesystem::path& file, const Picture& picture, bool isColour,
                     const std::optional<OfxRectI>& page)
{
    const FileFormat& format = formatByName(file);
    WriteOptions options;
    options.displayWindow = picture.bounds();
    if (isPng(format)) {
        PngRecord record;
        record.header = newPngHeader(picture, isColour);
        if (page) {
            record.header.metadata->left = picture.bounds().x1 - page->x1;
            record.header.metadata->top = page->y2 - picture.bounds().y2;
        }
        writePicture(file, picture, record, options);
    } else {
        const auto record = pictureLibrary(file).newRecord(format, picture, isColour);
        writePicture(file, picture, *record, options);
    }
}

}  // namespace Tesseret::Files
