/// The module's entry.

#include <array>
#include <cstring>

#include <OpenImageIO/filesystem.h>

#include "files/ConvertedPicture.h"
#include "files/FileError.h"
#include "files/PictureLibrary.h"
#include "files/PngChunk.h"
#include "files/PngHeader.h"
#include "files/oiio/InputFile.h"
#include "files/oiio/OutputSpec.h"
#include "files/oiio/PictureEncoder.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

/// The record of a PNG as OpenImageIO would have read it.
SpecRecord recordOf(const fs::path& file, const PngHeader& header)
{
    OIIO::Filesystem::IOMemReader bytes(header.bytes.data(), header.bytes.size());
    const auto input = OIIO::ImageInput::create("png");
    OIIO::ImageSpec asStored, spec;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    if (!input || !input->set_ioproxy(&bytes) || !input->open("a.png", spec, asStored)) {
        throw FileError(file, "cannot be written: the source's metadata cannot be read");
    }
    return {formatByName("a.png"), std::move(spec)};
}

/// The chunks of a PNG between the header and the pixels.
std::vector<std::byte> chunksOf(const std::vector<std::byte>& png)
{
    constexpr std::size_t kFirst = 8 + 12 + 13;  // signature and IHDR
    constexpr std::size_t kFrame = 12;           // length, type and checksum
    std::size_t end = kFirst;
    while (end + kFrame <= png.size() && std::memcmp(&png[end + 4], "IDAT", 4) != 0) {
        end += kFrame + bigEndian(&png[end]);
    }
    return {png.begin() + kFirst, png.begin() + static_cast<std::ptrdiff_t>(end)};
}

class OiioLibrary final : public PictureLibrary {
public:
    void useThreads(unsigned count) override
    {
        OIIO::attribute("threads", static_cast<int>(count));
        OIIO::attribute("exr_threads", static_cast<int>(count));
    }

    std::unique_ptr<OpenPicture> open(const fs::path& file, const fs::path& stored,
                                      const FileFormat& format) override
    {
        return std::make_unique<InputFile>(file, stored, format);
    }

    std::shared_ptr<const FileRecord> newRecord(const FileFormat& format, const Picture& picture,
                                                bool isColour) override
    {
        return std::make_shared<SpecRecord>(
            format, OIIO::ImageSpec(picture.width(), picture.height(), isColour ? 3 : 1,
                                    typeOf(picture.depth())));
    }

    EncodedPicture encode(const fs::path& file, const FileFormat& format, const Picture& picture,
                          const FileRecord& record, const WriteOptions& options) override
    {
        if (const PngHeader* const header = record.png()) {
            return encode(file, format, picture, recordOf(file, *header), options);
        }
        return encode(file, format, picture, static_cast<const SpecRecord&>(record), options);
    }

    PngLayout pngLayout(const fs::path& file, const Picture& picture, const FileRecord& record,
                        const WriteOptions& options) override
    {
        if (const PngHeader* const header = record.png()) {
            return pngLayout(file, picture, recordOf(file, *header), options);
        }
        return pngLayout(file, picture, static_cast<const SpecRecord&>(record), options);
    }

private:
    static OutputSpec specFor(const FileFormat& format, const Picture& picture,
                              const SpecRecord& record, const WriteOptions& options)
    {
        return makeOutputSpec(format, record, picture.depth(), picture.bounds(),
                              options.displayWindow, options.asColour, options.compression);
    }

    static EncodedPicture encode(const fs::path& file, const FileFormat& format,
                                 const Picture& picture, const SpecRecord& record,
                                 const WriteOptions& options)
    {
        const OutputSpec out = specFor(format, picture, record, options);
        Picture storage;
        const Picture& prepared = converted(picture, out.window, out.depth, storage);
        return {encodePicture(file, format, out, prepared, record), out.losses};
    }

    /// A file of one pixel has the same metadata.
    static PngLayout pngLayout(const fs::path& file, const Picture& picture,
                               const SpecRecord& record, const WriteOptions& options)
    {
        const FileFormat& format = formatByName("a.png");
        OutputSpec out = specFor(format, picture, record, options);
        PngLayout layout{out.depth, out.window, out.channels, {}, out.losses};
        out.spec.width = out.spec.height = 1;
        const Picture pixel({0, 0, 1, 1}, out.depth);
        layout.chunks = chunksOf(encodePicture(file, format, out, pixel, record));
        return layout;
    }
};

}  // namespace

}  // namespace Tesseret::Files

extern "C" __attribute__((visibility("default"))) Tesseret::Files::PictureLibrary*
tesseretPictureLibrary()
{
    static Tesseret::Files::OiioLibrary library;
    return &library;
}
