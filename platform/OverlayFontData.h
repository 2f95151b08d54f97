#pragma once

/// The overlay's font as bitmaps, made from an outline font when the plug-in is built.

#include <array>
#include <cstdint>

#include "platform/OverlayFont.h"

namespace Orvane {

/// One character. Rows are stored from the bottom up, each padded to whole bytes, leftmost pixel
/// first.
struct FontGlyph {
    std::int16_t width, height;  ///< pixels
    std::int16_t left, bottom;   ///< from the pen to the bitmap's lower left corner
    std::int16_t advance;        ///< to the next character
    std::uint16_t offset;        ///< of its first byte
};

extern const std::array<FontGlyph, kFontListCount> kFontGlyphs;
extern const std::uint8_t kFontBits[];

}  // namespace Orvane
