#include "quality/CopyIndex.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace Tesseret::Quality {
namespace {

constexpr std::uint32_t kColumn = 0x9E3779B1u, kRow = 0x85EBCA6Bu, kMix = 0xC2B2AE35u;
constexpr int kApart = (CopyIndex::kSpan - 1) / 2;

/// Three pixels of a row, kApart from each other.
std::uint32_t rowHash(const std::int16_t* p)
{
    const auto pixel = [p](int i) {
        return std::uint32_t(p[i]) + (std::uint32_t(p[i + 1]) << 11) +
               (std::uint32_t(p[i + 2]) << 21);
    };
    return (pixel(0) * kColumn + pixel(3 * kApart)) * kColumn + pixel(6 * kApart);
}

std::uint32_t squareHash(std::uint32_t low, std::uint32_t middle, std::uint32_t high)
{
    const std::uint32_t hash = (low * kRow + middle) * kRow + high;
    return (hash ^ (hash >> 15)) * kMix;
}

}  // namespace

CopyIndex::CopyIndex(const PatchPyramid& picture, const std::vector<std::uint8_t>& allowed)
    : width_(picture.width())
{
    const auto pixels = std::size_t(width_) * std::size_t(picture.height());
    const int bits = std::clamp(int(std::bit_width(pixels)) - 1, 10, 22);
    shift_ = 32 - bits;
    places_.resize(std::size_t{1} << bits);
    const int columns = width_ - kSpan + 1;
    if (columns <= 0) return;

    // The hashes of the last rows, each once.
    std::array<std::vector<std::uint32_t>, kSpan> rows;
    for (int y = 0; y < picture.height(); ++y) {
        std::vector<std::uint32_t>& row = rows[std::size_t(y % kSpan)];
        row.resize(std::size_t(columns));
        for (int x = 0; x < columns; ++x) row[std::size_t(x)] = rowHash(picture.sample(x, y, 0));
        const int bottom = y - kSpan + 1;
        if (bottom < 0) continue;
        const std::uint32_t* low = rows[std::size_t(bottom % kSpan)].data();
        const std::uint32_t* middle = rows[std::size_t((bottom + kApart) % kSpan)].data();
        const std::size_t first = std::size_t(bottom) * std::size_t(width_);
        for (std::size_t x = 0; x < std::size_t(columns); ++x) {
            if (allowed[first + x] == 0) continue;
            places_[squareHash(low[x], middle[x], row[x]) >> shift_] = std::uint32_t(first + x + 1);
        }
    }
}

std::optional<CopyIndex::Place> CopyIndex::find(const PatchPyramid& picture, int x, int y) const
{
    const std::uint32_t hash =
        squareHash(rowHash(picture.sample(x, y, 0)), rowHash(picture.sample(x, y + kApart, 0)),
                   rowHash(picture.sample(x, y + 2 * kApart, 0)));
    const std::uint32_t place = places_[hash >> shift_];
    if (place == 0) return std::nullopt;
    return Place{int((place - 1) % std::uint32_t(width_)),
                 int((place - 1) / std::uint32_t(width_))};
}

}  // namespace Tesseret::Quality
