#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace Tesseret::Command {

/// The channels of the pixel at (x, y), counted from the upper left.
using Painter = std::function<std::vector<int>(int x, int y)>;

/// Writes an 8-bit picture; its channels are as many as the painter gives.
void paint(const std::filesystem::path& file, int width, int height, const Painter& painter);

/// A fine pattern without repetition, different for every seed.
Painter noise(int seed);

struct LoadedPicture {
    int width = 0, height = 0, channels = 0;
    int x = 0, y = 0;  ///< of the data window
    std::vector<float> samples;

    /// 0 to 255 for 8-bit pictures.
    int at(int x, int y, int channel) const;
    bool operator==(const LoadedPicture&) const = default;
};

LoadedPicture load(const std::filesystem::path& file);

}  // namespace Tesseret::Command
