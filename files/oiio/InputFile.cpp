#include "files/oiio/InputFile.h"

#include <cmath>
#include <utility>

#include "files/FileError.h"
#include "files/oiio/FormatHooks.h"

namespace Tesseret::Files {

InputFile::InputFile(std::filesystem::path file, const std::filesystem::path& stored,
                     const FileFormat& format)
    : file_(std::move(file)),
      format_(format),
      input_(OIIO::ImageInput::create(std::string(format.name)))
{
    if (!input_) {
        throw FileError(file_, "this OpenImageIO cannot read " + std::string(format.label));
    }
    OIIO::ImageSpec asStored, spec;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    if (!input_->open(stored.string(), spec, asStored)) {
        input_->geterror();  // in the library's words; an error that is left is printed at its end
        failDamaged(file_);
    }
    if (spec.deep) throw FileError(file_, "is a deep picture, which cannot be rendered");
    if (spec.width < 1 || spec.height < 1 || spec.depth > 1 || spec.nchannels < 1) {
        throw FileError(file_, "holds no flat picture");
    }
    checkSize(file_, spec.width, spec.height);
    if (const auto correct = hooksOf(format).correctRead) correct(spec);
    record_ = std::make_shared<SpecRecord>(format, std::move(spec));
    places_ = record_->places;
    describe();
}

void InputFile::describe()
{
    const OIIO::ImageSpec& spec = record_->spec;
    info_.file = file_;
    info_.displayWindow = {0, 0, spec.full_width, spec.full_height};
    const int left = spec.x - spec.full_x;
    const int top = spec.full_y + spec.full_height - spec.y;
    info_.dataWindow = {left, top - spec.height, left + spec.width, top};
    const float aspect = spec.get_float_attribute("PixelAspectRatio", 1.0f);
    info_.pixelAspectRatio = std::isfinite(aspect) && aspect > 0.0f ? double{aspect} : 1.0;
    info_.depth = record_->depth;
    info_.isColour = places_.isColour();
    info_.hasAlpha = places_.alpha >= 0;
    if (info_.hasAlpha) {
        info_.alpha = spec.get_int_attribute("oiio:UnassociatedAlpha") != 0 ? Alpha::Unpremultiplied
                                                                            : Alpha::Premultiplied;
    }
}

bool InputFile::readChannels(int first, int last, Picture& picture, int target)
{
    const auto channel = static_cast<std::ptrdiff_t>(channelBytes(picture.depth()));
    std::byte* const topRow = picture.row(picture.bounds().y2 - 1);
    return input_->read_image(0, 0, first, last, typeOf(picture.depth()), topRow + target * channel,
                              static_cast<OIIO::stride_t>(picture.pixelBytes()),
                              static_cast<OIIO::stride_t>(-picture.rowBytes()));
}

bool InputFile::readExtra()
{
    const OIIO::ImageSpec& spec = record_->spec;
    for (int c = 0; c < spec.nchannels; ++c) {
        if (c == places_.red || c == places_.green || c == places_.blue || c == places_.alpha) {
            continue;
        }
        ExtraChannel channel{c, spec.channelformat(c), {}};
        channel.samples.resize(spec.image_pixels() * channel.type.size());
        if (!input_->read_image(0, 0, c, c + 1, channel.type, channel.samples.data())) {
            return false;
        }
        record_->extra.push_back(std::move(channel));
    }
    return true;
}

/// For a truncated file a library may fill in pixels and only leave a message.
bool InputFile::finish(bool succeeded, std::vector<std::string>& warnings)
{
    const std::string message = input_->geterror();
    if (!succeeded || !message.empty()) {
        const auto isHarmless = hooksOf(format_).isHarmless;
        if (!succeeded || isHarmless == nullptr || !isHarmless(message)) {
            failDamaged(file_);
        }
        warnings.push_back(shownName(file_) +
                           ": has small faults; its pixels are used as they were read");
    }
    if (input_->seek_subimage(1, 0)) {
        warnings.push_back(shownName(file_) + ": holds several pictures; only the first is used");
    }
    return true;
}

std::shared_ptr<const FileRecord> InputFile::takeRecord()
{
    return std::move(record_);
}

}  // namespace Tesseret::Files
