#include "engine/quilt/TextureView.h"

namespace Orvane::Engine {

template <typename Pixel>
void TextureView<Pixel>::unfold(const Region& box, std::int64_t maxPixels)
{
    const int width = box.x1 - box.x0, height = box.y1 - box.y0;
    if (box.isEmpty() || std::int64_t{width} * height > maxPixels) return;
    if (texture_->interiorPixels(box.x0, box.y0, width, height) != nullptr) return;
    unfolded_.setSize(width, height);
    unfolded_.placeAt(box.x0, box.y0);
    unfolded_.allocate();
    if (!unfolded_.isUsable()) return;
    for (int y = box.y0; y < box.y1; ++y) {
        RowWriter to(unfolded_, y);
        copyRow(RowReader(*texture_, y), to, box.x0, box.x1);
    }
}

template <typename Pixel>
Rows<Pixel> TextureView<Pixel>::rows(int x, int y, int width, int height,
                                     std::vector<Pixel>& scratch) const
{
    if (const Pixel* first = unfolded_.interiorPixels(x, y, width, height)) {
        return {first, unfolded_.stride()};
    }
    return rowsOf(*texture_, x, y, width, height, scratch);
}

template class TextureView<PixelRGBA8>;
template class TextureView<PixelRGBA16>;
template class TextureView<PixelRGBAf>;

}  // namespace Orvane::Engine
