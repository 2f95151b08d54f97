#pragma once

/// Pictures of all depths as small integers that weigh light as the eye does.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Quality {

/// Three tones for each pixel (one channel is repeated), 0 to 2047; white is 1023. The lower left
/// pixel is the first.
struct Tones {
    int width = 0;
    int height = 0;
    std::unique_ptr<std::int16_t[]> values;

    const std::int16_t* at(int x, int y) const
    {
        return values.get() + 3 * (std::size_t(y) * std::size_t(width) + std::size_t(x));
    }
    std::int16_t* at(int x, int y)
    {
        return values.get() + 3 * (std::size_t(y) * std::size_t(width) + std::size_t(x));
    }
};

/// Compresses light by sqrt(v + m), where m is the median of the picture's known pixels: dark
/// pictures and linear light get more weight in the shadows. Colours are taken as stored. The alpha
/// of RGBA is left out: it often is the matte.
class ToneCurve {
public:
    /// The lost pixels of `source` do not count.
    ToneCurve(const Picture& source, const Picture& lost);

    /// The tones of the pixels of `region`, which must lie in the picture's bounds.
    Tones apply(const Picture& picture, OfxRectI region) const;
    Tones apply(const Picture& picture) const { return apply(picture, picture.bounds()); }

private:
    std::int16_t tone(float value) const;
    template <typename Channel>
    void applyRows(const Picture& picture, OfxRectI region, Tones& tones) const;

    float adaptation_ = 0.25f;
    float black_ = 0;  ///< sqrt(m)
    float scale_ = 1;
    std::vector<std::int16_t> table_;  ///< of every value of a depth of integers
};

}  // namespace Tesseret::Quality
