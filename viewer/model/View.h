#pragma once

/// The position of the picture in the window: zoom and visible part.

#include "ofx/ofxCore.h"

namespace Tesseret::Viewer {

/// The part of the window that shows the picture: screen units from the window's upper left corner,
/// y downwards.
struct ScreenArea {
    double x = 0.0, y = 0.0, width = 1.0, height = 1.0;
    bool contains(OfxPointD screen) const
    {
        return screen.x >= x && screen.x < x + width && screen.y >= y && screen.y < y + height;
    }
};

/// Maps canonical units (y upwards) to the screen (y downwards) and back. A new view fits its
/// picture, and keeps fitting it until it is zoomed or panned.
class View {
public:
    static constexpr double kMinScale = 1.0 / 256.0, kMaxScale = 128.0;

    void setArea(const ScreenArea& area);
    /// The picture's rectangle, canonical. An empty picture counts as one unit wide and high.
    void setPicture(const OfxRectD& picture);

    /// As large as fits in the area, centred.
    void fit();
    /// A part of the picture in the middle, with some of its surroundings, at most pixel by pixel
    /// and at least as large as fitted.
    void show(const OfxRectD& part);
    /// One screen unit for a canonical unit; what is in the middle stays there.
    void showActualSize();
    /// Whether the picture is larger than the area at one screen unit for a canonical unit.
    bool isLarge() const { return fittedScale() < 1.0; }
    /// Keeps the canonical point at the screen position fixed. The scale is clamped to its limits.
    void zoomAbout(OfxPointD screen, double factor);
    /// Moves the picture by screen units.
    void pan(double x, double y);

    const ScreenArea& area() const { return area_; }
    const OfxRectD& picture() const { return picture_; }
    /// Screen units for one canonical unit.
    double scale() const { return scale_; }
    OfxPointD toCanonical(OfxPointD screen) const;
    OfxPointD toScreen(OfxPointD canonical) const;
    /// The visible rectangle, canonical; it may reach beyond the picture.
    OfxRectD visible() const;

private:
    OfxPointD areaCentre() const;
    double fittedScale() const;

    ScreenArea area_;
    OfxRectD picture_{0.0, 0.0, 1.0, 1.0};
    OfxPointD centre_{0.5, 0.5};  ///< canonical, at the middle of the area
    double scale_ = 1.0;
    bool isFitted_ = true;
};

}  // namespace Tesseret::Viewer
