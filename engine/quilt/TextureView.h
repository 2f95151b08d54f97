#pragma once

#include "engine/map/Region.h"
#include "engine/map/Rows.h"

namespace Orvane::Engine {

/// Reads blocks from a texture. Where the sample box extends beyond the texture, every candidate
/// would need edge handling; so the box is copied once, with its edges handled.
template <typename Pixel>
class TextureView {
public:
    explicit TextureView(const Map<Pixel>& texture) : texture_(&texture) {}

    /// Copies the box when it extends beyond the texture, has at most `maxPixels` pixels, and image
    /// memory is available.
    void unfold(const Region& box, std::int64_t maxPixels);

    const Map<Pixel>& texture() const { return *texture_; }
    /// The pixels that the texture reads at [x, x + width) x [y, y + height), edges handled: in
    /// place where possible, else copied to `scratch`.
    Rows<Pixel> rows(int x, int y, int width, int height, std::vector<Pixel>& scratch) const;

private:
    const Map<Pixel>* texture_;
    Map<Pixel> unfolded_;
};

}  // namespace Orvane::Engine
