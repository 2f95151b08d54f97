#include "viewer/model/MattePaint.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "render/MatteValue.h"

namespace Tesseret::Viewer {

namespace {

constexpr int kTile = 64;

std::vector<std::uint8_t> bytesOf(const Picture& picture, const OfxRectI& box)
{
    const auto width = static_cast<std::size_t>(box.x2 - box.x1);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(width * static_cast<std::size_t>(box.y2 - box.y1));
    for (int y = box.y1; y < box.y2; ++y) {
        const auto* const row = picture.pixel<std::uint8_t>(box.x1, y);
        bytes.insert(bytes.end(), row, row + width);
    }
    return bytes;
}

bool isMaskedByte(std::uint8_t value)
{
    return Render::isMasked(value);
}

}  // namespace

OfxRectI unionOf(const OfxRectI& a, const OfxRectI& b)
{
    if (isEmpty(a)) return b;
    if (isEmpty(b)) return a;
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

std::size_t MattePatch::bytes() const
{
    std::size_t sum = 0;
    for (const Tile& tile : tiles) sum += tile.bytes.size();
    return sum;
}

MattePaint::MattePaint(const OfxRectI& bounds)
    : picture_(bounds, Depth::Byte, Components::Alpha), touched_(bounds)
{
    picture_.setAlpha(Alpha::Opaque);
}

OfxRectI MattePaint::maskedBox() const
{
    if (masked_) return *masked_;
    const OfxRectI all = bounds();
    OfxRectI box{all.x2, all.y2, all.x1, all.y1};
    for (int y = all.y1; y < all.y2; ++y) {
        const auto* const row = picture_.pixel<std::uint8_t>(all.x1, y);
        const auto* const end = row + picture_.width();
        const auto* const first = std::find_if(row, end, isMaskedByte);
        if (first == end) continue;
        const auto last = std::find_if(std::make_reverse_iterator(end),
                                       std::make_reverse_iterator(first), isMaskedByte);
        box = {std::min(box.x1, all.x1 + static_cast<int>(first - row)), std::min(box.y1, y),
               std::max(box.x2, all.x1 + static_cast<int>(last.base() - row)), y + 1};
    }
    masked_ = isEmpty(box) ? OfxRectI{0, 0, 0, 0} : box;
    return *masked_;
}

void MattePaint::reset(const Picture& matte)
{
    Picture blank(bounds(), Depth::Byte, Components::Alpha);
    blank.setAlpha(Alpha::Opaque);
    blank.paste(matte.converted(Depth::Byte, Components::Alpha));
    picture_ = std::move(blank);
    isOpen_ = false;
    kept_.clear();
    revision_ = 0;
    touch(bounds());
}

void MattePaint::begin()
{
    isOpen_ = true;
    kept_.clear();
}

OfxRectI MattePaint::tileBox(int column, int row) const
{
    const OfxRectI all = bounds();
    const int x = all.x1 + column * kTile, y = all.y1 + row * kTile;
    return {x, y, std::min(x + kTile, all.x2), std::min(y + kTile, all.y2)};
}

/// Keeps the bytes that the tiles of the box had before the step.
void MattePaint::keep(const OfxRectI& box)
{
    const OfxRectI all = bounds();
    for (int row = (box.y1 - all.y1) / kTile; all.y1 + row * kTile < box.y2; ++row) {
        for (int column = (box.x1 - all.x1) / kTile; all.x1 + column * kTile < box.x2; ++column) {
            std::vector<std::uint8_t>& bytes = kept_[{row, column}];
            if (bytes.empty()) bytes = bytesOf(picture_, tileBox(column, row));
        }
    }
}

void MattePaint::touch(const OfxRectI& box)
{
    touched_ = unionOf(touched_, box);
    masked_.reset();
}

void MattePaint::change(const OfxRectI& box,
                        const std::function<void(Picture&, const OfxRectI&)>& work)
{
    const OfxRectI inside = intersection(box, bounds());
    if (isEmpty(inside)) return;
    keep(inside);
    work(picture_, inside);
    touch(inside);
}

MattePatch MattePaint::end()
{
    MattePatch patch;
    for (auto& [place, bytes] : std::exchange(kept_, {})) {
        const OfxRectI box = tileBox(place.second, place.first);
        if (bytesOf(picture_, box) != bytes) patch.tiles.push_back({box, std::move(bytes)});
    }
    isOpen_ = false;
    if (!patch.empty()) patch.revision = std::exchange(revision_, ++lastRevision_);
    return patch;
}

void MattePaint::swap(MattePatch& patch)
{
    for (MattePatch::Tile& tile : patch.tiles) {
        std::uint8_t* bytes = tile.bytes.data();
        const int width = tile.box.x2 - tile.box.x1;
        for (int y = tile.box.y1; y < tile.box.y2; ++y, bytes += width) {
            auto* const row = picture_.pixel<std::uint8_t>(tile.box.x1, y);
            std::swap_ranges(bytes, bytes + width, row);
        }
        touch(tile.box);
    }
    std::swap(patch.revision, revision_);
}

OfxRectI MattePaint::takeTouched()
{
    return std::exchange(touched_, OfxRectI{0, 0, 0, 0});
}

}  // namespace Tesseret::Viewer
