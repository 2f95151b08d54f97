#pragma once

namespace Orvane {

/// RGB, 0 to 1.
struct OverlayColour {
    float r, g, b;
};

inline constexpr OverlayColour kManipulatorColour{1.0f, 1.0f, 1.0f};
inline constexpr OverlayColour kHighlightColour{1.0f, 1.0f, 1.0f};
inline constexpr OverlayColour kRectangleColour{0.7f, 0.0f, 0.0f};
inline constexpr OverlayColour kTextShadowColour{0.1f, 0.1f, 0.1f};
inline constexpr OverlayColour kTextColour{1.0f, 1.0f, 0.0f};

}  // namespace Orvane
