#include "farm/Chunks.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Tesseret::Farm {

std::vector<Chunk> chunksOf(std::vector<int> frames, int size)
{
    std::ranges::sort(frames);
    std::vector<Chunk> chunks;
    const auto step = static_cast<std::size_t>(std::max(size, 1));
    for (std::size_t i = 0; i < frames.size(); i += step) {
        const auto begin = frames.begin() + static_cast<std::ptrdiff_t>(i);
        const auto end =
            frames.begin() + static_cast<std::ptrdiff_t>(std::min(i + step, frames.size()));
        chunks.push_back({static_cast<int>(chunks.size()), {begin, end}});
    }
    return chunks;
}

std::string chunkName(int number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d", number);
    return text.data();
}

}  // namespace Tesseret::Farm
