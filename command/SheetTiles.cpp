#include "command/SheetTiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "files/PictureScale.h"
#include "files/PictureWriter.h"
#include "render/JobError.h"
#include "viewer/model/DisplayPixels.h"

namespace Tesseret::Command {

namespace {

/// The part as shown, its lower left corner at (0, 0).
Picture shownPart(const Picture& picture, const OfxRectI& part)
{
    const std::vector<std::uint8_t> pixels = Viewer::displayPixels(picture, part);
    Picture shown({0, 0, part.x2 - part.x1, part.y2 - part.y1}, Depth::Byte);
    const std::size_t row = 4 * std::size_t(shown.width());
    for (int y = 0; y < shown.height(); ++y) {
        std::memcpy(shown.row(y), pixels.data() + std::size_t(y) * row, row);
    }
    return shown;
}

}  // namespace

CLI::Option* addSheetOptions(CLI::App& command, std::filesystem::path& sheet, int& tileSize)
{
    auto* const option =
        command.add_option("--sheet", sheet, "Contact sheet to write")->type_name("FILE");
    command
        .add_option("--tile-size", tileSize,
                    "Longest side of the sheet's pictures, 64 to 4096 pixels; larger ones are "
                    "scaled down (default: 400)")
        ->check(CLI::Range(64, 4096))
        ->needs(option)
        ->type_name("PIXELS");
    return option;
}

void checkSheet(const std::filesystem::path& sheet, const Render::JobInputs& inputs)
{
    Files::checkTarget(sheet, "");
    if (inputs.reads(sheet)) {
        throw Render::UsageError(sheet.string() +
                                 ": is one of the input files and is not overwritten");
    }
    for (const int frame : inputs.frames()) {
        if (inputs.outputFile(frame).lexically_normal() == sheet.lexically_normal()) {
            throw Render::UsageError(sheet.string() + ": is the output too");
        }
    }
}

void writeSheet(const std::filesystem::path& file, const Sheet::ContactSheet& sheet)
{
    Files::writeNewPicture(file, Sheet::drawn(sheet), /*isColour=*/true);
}

OfxRectI surroundingsOf(const OfxRectI& box, const OfxRectI& picture)
{
    constexpr double kShare = 0.4;
    constexpr int kLeast = 40;
    const int side = std::max(box.x2 - box.x1, box.y2 - box.y1);
    const int margin = std::max(kLeast, static_cast<int>(kShare * side));
    return intersection({box.x1 - margin, box.y1 - margin, box.x2 + margin, box.y2 + margin},
                        picture);
}

TileCutter::TileCutter(const OfxRectI& part, double pixelAspectRatio, int longest) : part_(part)
{
    const double width = (part.x2 - part.x1) * pixelAspectRatio;
    const double height = part.y2 - part.y1;
    const double scale = std::min(1.0, longest / std::max(width, height));
    factor_ = {scale * pixelAspectRatio, scale};
    width_ = std::max(1, static_cast<int>(std::ceil(width * scale)));
    height_ = std::max(1, static_cast<int>(std::ceil(height * scale)));
}

Picture TileCutter::cut(const Picture& picture) const
{
    return scaled(shownPart(picture, part_));
}

Picture TileCutter::cutMarked(const Picture& picture, const Picture& mask) const
{
    constexpr std::array<int, 3> kTint{240, 0, 190};
    Picture shown = shownPart(picture, part_);
    const OfxRectI marked = intersection(mask.bounds(), part_);
    for (int y = marked.y1; y < marked.y2; ++y) {
        for (int x = marked.x1; x < marked.x2; ++x) {
            if (*mask.pixel<std::uint8_t>(x, y) == 0) continue;
            auto* const pixel = shown.pixel<std::uint8_t>(x - part_.x1, y - part_.y1);
            for (std::size_t c = 0; c < 3; ++c) {
                pixel[c] = static_cast<std::uint8_t>((pixel[c] + kTint.at(c)) / 2);
            }
        }
    }
    return scaled(std::move(shown));
}

Picture TileCutter::scaled(Picture shown) const
{
    if (factor_.x == 1.0 && factor_.y == 1.0) return shown;
    return Files::scaled(shown, factor_);
}

}  // namespace Tesseret::Command
