#pragma once

#include "engine/map/Rows.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// A texture as blocks are read from it. Where the sample box leaves the texture, every candidate
/// would have its edges handled anew; so that part is copied once, edges and all.
template <typename Pixel>
class TextureView {
public:
    explicit TextureView(const Map<Pixel>& texture) : texture_(&texture) {}

    /// Copies the box out of the texture when it does not lie inside, is not larger than `most`
    /// pixels, and image memory can be had.
    void unfold(const Region& box, std::int64_t most);

    const Map<Pixel>& texture() const { return *texture_; }
    /// The pixels that the texture reads at [x, x + width) x [y, y + height), edges handled;
    /// `scratch` is for those that do not lie in memory so.
    Rows<Pixel> window(int x, int y, int width, int height, std::vector<Pixel>& scratch) const;

private:
    const Map<Pixel>* texture_;
    Map<Pixel> unfolded_;
};

}  // namespace Orvane::Engine
