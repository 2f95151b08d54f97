#pragma once

#include <memory>

#include "engine/RenderObserver.h"
#include "engine/map/ClipImage.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

struct Vec2 {
    float x, y;
};

/// A window in pixels, half-open: x1 <= x < x2, y1 <= y < y2.
struct Window {
    int x1, y1, x2, y2;
};

/// Everything one render may ask of its host: when, where, at which scale, values by name, images
/// by clip name. Nothing here fails; what the host does not have answers zero, false or null.
class RenderContext {
public:
    virtual ~RenderContext() = default;

    virtual double time() = 0;
    virtual Vec2 renderScale() = 0;
    virtual double pixelAspectRatio() = 0;
    virtual Window renderWindow() = 0;
    virtual RenderStatus& renderStatus() = 0;

    virtual bool hasParam(const char* name) = 0;
    virtual double doubleAt(const char* name, double time) = 0;
    /// An integer, the index of a choice, or 0 and 1 for a boolean.
    virtual int intAt(const char* name, double time) = 0;
    virtual bool boolAt(const char* name, double time) = 0;
    /// Positions arrive in pixels of the image being rendered.
    virtual Vec2 double2DAt(const char* name, double time) = 0;

    /// Whether the context has a clip of that name and something is connected to it.
    virtual bool isClipConnected(const char* name) = 0;
    /// The clip's image at that time, or null.
    virtual std::unique_ptr<ClipImage> clipImage(const char* name, double time) = 0;

    /// Null when nobody watches.
    virtual RenderObserver* observer() = 0;
};

}  // namespace Orvane::Engine
