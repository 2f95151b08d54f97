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

/// A line whose dashes, four pixels long, alternate between two colours. Stipple settings are
/// restored.
void drawDashedLine(float x1, float y1, float x2, float y2, const OverlayColour& a,
                    const OverlayColour& b);

// Around a centre, in the current colour. Nothing is drawn for a radius of 0 or less, or without
// GLU.
void drawCircle(float x, float y, float radius);
void drawDisk(float x, float y, float radius);
void drawDiskOutlined(float x, float y, float radius, const OverlayColour& fill,
                      const OverlayColour& outline);

/// Enables alpha blending and line smoothing during its lifetime, then restores the state.
class BlendedLines {
public:
    BlendedLines();
    ~BlendedLines();
    BlendedLines(const BlendedLines&) = delete;
    BlendedLines& operator=(const BlendedLines&) = delete;

private:
    bool blends_ = false, smooths_ = false;  ///< state to restore
    int sourceFactor_ = 0, destinationFactor_ = 0;
};

/// Saves and restores the host's colour, raster position and matrix mode; in between, the
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

/// Moves the origin during its lifetime.
class Translated {
public:
    Translated(float x, float y);
    ~Translated();
    Translated(const Translated&) = delete;
    Translated& operator=(const Translated&) = delete;
};

}  // namespace Orvane
