#pragma once

#include <array>
#include <optional>

#include "libraries/Processor/RenderStatus.h"
#include "ofx/ofxImageEffect.h"
#include "products/OFX/Support/Coordinates.h"
#include "products/OFX/Support/Names.h"
#include "products/OFX/Support/PropertySet.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {

class OvOfxClipAccessor;
class OvOfxEffect;
class OvOfxParam;

/// Gives effect code access to the current action: its time, scale and window, values by name,
/// clips by name, and the render status. One per action, on the action's thread.
///
/// Queries by name return zeros for a parameter of another type. For an unknown name they return
/// zeros and write a line to standard output. Only std::bad_alloc is thrown.
class OvOfxHostWrapper final {
public:
    /// The argument sets may be null or hold null handles; effect and sets outlive the wrapper.
    OvOfxHostWrapper(OvOfxEffect& effect, const OvOfxPropertySet* inArgs,
                     const OvOfxPropertySet* outArgs);
    OvOfxHostWrapper(const OvOfxHostWrapper&) = delete;
    OvOfxHostWrapper& operator=(const OvOfxHostWrapper&) = delete;

    // Operations, in slot order. Parameter times are single precision, whatever the host's are.
    [[nodiscard]] bool hasParam(const char* name) const;
    /// Normalised values are converted to canonical units.
    [[nodiscard]] double doubleAt(const char* name, float time);
    /// An integer, the index of a choice, or 0 and 1 for a boolean.
    [[nodiscard]] int intAt(const char* name, float time);
    [[nodiscard]] bool boolAt(const char* name, float time);
    [[nodiscard]] std::array<float, 3> rgbAt(const char* name, float time);
    [[nodiscard]] std::array<float, 4> rgbaAt(const char* name, float time);
    /// Normalised positions are converted to pixels of the action.
    [[nodiscard]] OvPoint double2DAt(const char* name, float time);
    [[nodiscard]] double doubleIntegral(const char* name, float from, float to);
    [[nodiscard]] double doubleDerivative(const char* name, float time);
    [[nodiscard]] OvPoint double2DIntegral(const char* name, float from, float to);
    [[nodiscard]] OvPoint double2DDerivative(const char* name, float time);
    /// Null when the bound context has no clip of that name.
    [[nodiscard]] const OvOfxClipAccessor* clip(const char* name) const;
    [[nodiscard]] bool hasClip(const char* name) const;
    void setDouble(const char* name, double canonical);
    void setDouble2D(const char* name, float x, float y);  ///< pixels of the action
    void setBool(const char* name, bool value);
    void setRGB(const char* name, float r, float g, float b);
    void setRGBA(const char* name, float r, float g, float b, float a);
    void setInt(const char* name, int value);  ///< an integer or the index of a choice
    [[nodiscard]] double time();
    [[nodiscard]] double frameRate() const;
    /// Width over height of a pixel of the project. Where the host reports none, that of the
    /// source's image once it is known, else of the source clip, else 1.
    [[nodiscard]] double pixelAspectRatio() const;
    [[nodiscard]] bool hasProjectAspect() const;
    /// The source's image of this action has that pixel aspect ratio.
    void setSourceAspect(std::optional<double> aspect) { sourceAspect_ = aspect; }
    /// 0.5 while a single field is rendered from single-field images, else 1.
    [[nodiscard]] double fieldScale() const;
    [[nodiscard]] OvPoint renderScale() const;
    [[nodiscard]] OfxRectI renderWindow() const;
    [[nodiscard]] OvField fieldToRender() const;
    [[nodiscard]] RenderStatus& renderStatus() { return status_; }
    [[nodiscard]] bool fieldRenderTwiceAlways() const;
    [[nodiscard]] OvPoint projectExtentPixels() const;
    [[nodiscard]] OvRect projectRectPixels() const;
    /// 0 generator, 2 retimer, 3 general, 1 any other context.
    [[nodiscard]] int contextKind() const;
    int message(const char* text, int kind, const char* id);
    void setCounter(int value);
    [[nodiscard]] int counter() const;
    /// The n-th call writes the values 2n and 2n + 1 of the clip's frame range argument.
    void addFrameRange(const char* clipName, double first, double last);

    /// Converts a rectangle from pixels of the action to canonical units.
    [[nodiscard]] OvRect toCanonical(const OvRect& pixels) const;

    [[nodiscard]] OvOfxEffect& effect() const { return effect_; }

private:
    /// The effect's parameter when it is a `T`, else null.
    template <typename T>
    [[nodiscard]] T* find(const char* name) const;
    [[nodiscard]] OvOfxParam* findParam(const char* name) const;
    [[nodiscard]] OvProject project();
    [[nodiscard]] OvPoint positionScale() const;

    RenderStatus status_;
    OvOfxEffect& effect_;
    const OvOfxPropertySet* inArgs_;
    const OvOfxPropertySet* outArgs_;
    int frameRangeCount_ = 0;
    std::optional<double> sourceAspect_;
    bool timeKnown_ = false;
    double time_ = 0.0;
};

}  // namespace Orvane
