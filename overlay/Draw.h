#pragma once

/// Colours, lines, outlines, circles and disks in the OpenGL context that is current, in its
/// coordinates. Without OpenGL nothing is drawn.

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

void setColour(const OverlayColour& colour);

// In the current colour.
void drawLine(float x1, float y1, float x2, float y2);
void drawRectOutline(float x1, float y1, float x2, float y2);

/// A line whose dashes, four pixels long, alternate between two colours. Stipple settings are put
/// back.
void drawDashedLine(float x1, float y1, float x2, float y2, const OverlayColour& a,
                    const OverlayColour& b);

// Round a centre, in the current colour; a radius of 0 or less draws nothing, and so does a system
// without GLU.
void drawCircle(float x, float y, float radius);
void drawDisk(float x, float y, float radius);
void drawDiskOutlined(float x, float y, float radius, const OverlayColour& fill,
                      const OverlayColour& outline);

/// Blends by alpha and smooths lines for as long as it lives; then everything is as before.
class BlendedLines {
public:
    BlendedLines();
    ~BlendedLines();
    BlendedLines(const BlendedLines&) = delete;
    BlendedLines& operator=(const BlendedLines&) = delete;

private:
    bool blends_ = false, smooths_ = false;  ///< before
    int sourceFactor_ = 0, destinationFactor_ = 0;
};

/// Keeps colour, raster position and matrix mode of whoever draws around an overlay; inside, the
/// model-view matrix is the current one.
class DrawingState {
public:
    DrawingState();
    ~DrawingState();
    DrawingState(const DrawingState&) = delete;
    DrawingState& operator=(const DrawingState&) = delete;

private:
    int matrixMode_ = 0;
};

/// Moves the origin for as long as it lives.
class Translated {
public:
    Translated(float x, float y);
    ~Translated();
    Translated(const Translated&) = delete;
    Translated& operator=(const Translated&) = delete;
};

}  // namespace Orvane
