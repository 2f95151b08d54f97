#pragma once

/// Contact sheets of the commands: tiles cut out of pictures, and the file.

#include <filesystem>
#include <optional>

#include <CLI/CLI.hpp>

#include "render/JobInputs.h"
#include "sheet/ContactSheet.h"

namespace Tesseret::Command {

/// The longest side of a tile, in pixels.
inline constexpr int kUsualTile = 400;

/// Adds `--sheet` and `--tile-size`.
CLI::Option* addSheetOptions(CLI::App& command, std::filesystem::path& sheet, int& tileSize);

/// Throws `UsageError` or `FileError` unless a sheet of this name can be written: not over an input
/// of the job or its output.
void checkSheet(const std::filesystem::path& sheet, const Render::JobInputs& inputs);

/// Throws `FileError`.
void writeSheet(const std::filesystem::path& file, const Sheet::ContactSheet& sheet);

/// A part of a picture round what is to be seen, wide enough to judge it.
OfxRectI surroundingsOf(const OfxRectI& box, const OfxRectI& picture);

/// Cuts the same part out of pictures as the viewer shows them, scaled down to a tile.
class TileCutter {
public:
    /// Pixels of another aspect ratio become square; `longest` is the longest side of a tile.
    TileCutter(const OfxRectI& part, double pixelAspectRatio, int longest);

    const OfxRectI& part() const { return part_; }
    int width() const { return width_; }
    int height() const { return height_; }
    /// The part must lie in the picture.
    Picture cut(const Picture& picture) const;
    /// Tinted where the mask (Components::Alpha, Byte) is not 0.
    Picture cutMarked(const Picture& picture, const Picture& mask) const;

private:
    Picture scaled(Picture shown) const;

    OfxRectI part_;
    OfxPointD factor_;
    int width_, height_;
};

}  // namespace Tesseret::Command
