#include "viewer/model/MatteDocument.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "files/PictureWriter.h"
#include "render/JobError.h"

namespace Tesseret::Viewer {

namespace {

/// RGBA, since only that is written.
Picture asGrey(const Picture& matte)
{
    const OfxRectI box = matte.bounds();
    Picture grey(box, Depth::Byte);
    for (int y = box.y1; y < box.y2; ++y) {
        const auto* from = matte.pixel<std::uint8_t>(box.x1, y);
        auto* to = grey.pixel<std::uint8_t>(box.x1, y);
        for (int x = box.x1; x < box.x2; ++x, ++from, to += 4) {
            std::fill_n(to, 3, *from);
            to[3] = 255;
        }
    }
    return grey;
}

}  // namespace

void MatteDocument::follow(const Render::ClipPicture& matte, const std::filesystem::path& file)
{
    paint_.reset(*matte.picture);
    follows_ = true;
    painted_.reset();
    setFile(file);
}

std::shared_ptr<const Picture> MatteDocument::painted()
{
    if (follows_ && paint_.revision() == 0) return nullptr;
    const bool isCurrent = painted_ && paintedRevision_ == paint_.revision();
    if (!isCurrent && !(paint_.isOpen() && painted_)) {
        painted_ =
            std::make_shared<const Picture>(paint_.picture().converted(depth_, Components::Alpha));
        paintedRevision_ = paint_.revision();
    }
    return painted_;
}

void MatteDocument::load(const std::filesystem::path& file, const Files::PictureInfo& source)
{
    Render::checkMatte(Files::readInfo(file), source);
    const Files::PictureFile read = Files::readPicture(file, Files::ReadAs::Matte, Depth::Byte);
    paint_.change(paint_.bounds(), [&](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            std::fill_n(picture.pixel<std::uint8_t>(box.x1, y), picture.width(), std::uint8_t{0});
        }
        picture.paste(read.picture);
    });
}

void MatteDocument::setFile(const std::filesystem::path& file)
{
    file_ = file;
    savedRevision_ = paint_.revision();
    markKept();
}

void checkMatteName(const std::filesystem::path& file)
{
    std::string extension = file.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char letter) { return char(std::tolower(letter)); });
    if (extension != ".png") {
        throw Render::UsageError(file.string() + ": a matte is saved as a PNG, name.png");
    }
}

void MatteDocument::save(const std::filesystem::path& file)
{
    checkMatteName(file);
    Files::checkTarget(file, "");
    Files::writeNewPicture(file, asGrey(paint_.picture()), /*isColour=*/false);
    follows_ = false;  // the file may be the one that was followed, and now has 8 bits
    setFile(file);
}

}  // namespace Tesseret::Viewer
