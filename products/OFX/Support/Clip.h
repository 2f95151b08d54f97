#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/map/ClipImage.h"
#include "ofx/ofxImageEffect.h"
#include "products/OFX/Support/Names.h"
#include "products/OFX/Support/Param.h"
#include "products/OFX/Support/PropertySet.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {

class OvOfxClip;

/// What lies outside an image: the edge colour, or the image clamped, mirrored or repeated.
enum class OvEdgeMethod { Colour = 0, Repeat = 1, Reflect = 2, Wrap = 3 };

/// First and last frame, both included. In single precision, as times are that are compared with
/// it.
struct OvFrameRange {
    float first = 0.0f;
    float last = 0.0f;
};

/// The host's side of one clip of an instance. The record outlives it.
class OvOfxClipHandle {
public:
    /// Asks the host for the clip and, when it has one, for its property set.
    OvOfxClipHandle(const OvOfxInstanceRecord& record, std::string name, bool isOutput);

    /// Null when the host has no such clip.
    [[nodiscard]] OfxImageClipHandle clip() const { return clip_; }
    [[nodiscard]] const OvOfxPropertySet& properties() const { return properties_; }
    [[nodiscard]] const OvOfxInstanceRecord& record() const { return *record_; }
    [[nodiscard]] bool isOutput() const { return isOutput_; }

private:
    OvOfxPropertySet properties_;
    std::string name_;
    OfxImageClipHandle clip_ = nullptr;
    const OvOfxInstanceRecord* record_;
    bool isOutput_;
};

/// The part of a clip that effect code uses.
class OvOfxClipAccessor {
public:
    explicit OvOfxClipAccessor(const OvOfxClip& clip) : clip_(clip) {}

    /// The image at that time, or null outside the clip's frame range. `region` is canonical and
    /// may be null. `aspect` may be null too; else it receives the pixel aspect ratio of an image
    /// that reports one, and none otherwise.
    [[nodiscard]] std::unique_ptr<Engine::ClipImage> image(
        double time, const OvRect* region, std::optional<double>* aspect = nullptr) const;
    /// The clip's frame range when the time is outside it. Without a range from the host no time
    /// is outside, nor in hosts whose ranges say nothing about the images to be had.
    [[nodiscard]] std::optional<OvFrameRange> excludingRange(double time) const;
    /// The region of definition with x divided by a pixel aspect ratio.
    [[nodiscard]] OvRect pixelRegionOfDefinition(double time, double aspect) const;
    [[nodiscard]] bool isConnected() const;

private:
    const OvOfxClip& clip_;
};

/// A clip. Every query returns zeros, false or null on a clip that is unbound or not in use.
class OvOfxClip : public OvOfxCoded<OvOfxParam, 47> {
public:
    explicit OvOfxClip(const std::string& objectName);

    [[nodiscard]] bool isConnected() const;
    /// Canonical units.
    [[nodiscard]] OvRect regionOfDefinition(double time) const;
    /// None when the host does not report it.
    [[nodiscard]] std::optional<OvFrameRange> frameRange() const;
    [[nodiscard]] double frameRate() const;
    [[nodiscard]] OvComponents components() const;
    [[nodiscard]] OvDepth pixelDepth() const;
    /// Width over height of a pixel, or none.
    [[nodiscard]] std::optional<double> pixelAspectRatio() const;
    /// The image at that time as a view of the host's memory, or null. The arguments are those of
    /// `OvOfxClipAccessor::image`.
    [[nodiscard]] std::unique_ptr<Engine::ClipImage> imageAsMap(
        double time, const OvRect* region, std::optional<double>* aspect = nullptr) const;
    [[nodiscard]] const OvOfxClipAccessor& accessor() const { return accessor_; }

    /// Creates the handle object under the given name.
    void bind(const OvOfxInstanceRecord& record, const char* boundName);
    /// The handle object while the clip is bound and in use, else null.
    [[nodiscard]] const OvOfxClipHandle* boundHandle() const;

    std::unique_ptr<OvOfxClipHandle> clipHandle;  ///< null until bound
    std::string clipName;
    bool optional = false;
    std::vector<std::string> supportedComponents;  ///< "RGBA" and "alpha"
    bool temporalAccess = false;
    bool isMask = false;
    bool supportsTiles = true;

    // How images of the clip become maps.
    OvEdgeMethod edgeMethodX = OvEdgeMethod::Reflect;
    OvEdgeMethod edgeMethodY = OvEdgeMethod::Reflect;
    std::array<float, 4> edgeColour{};   ///< 0 to 1
    OvPoint cropBottomLeft{0.0f, 0.0f};  ///< parts of the image's width and height
    OvPoint cropTopRight{1.0f, 1.0f};

private:
    OvOfxClipAccessor accessor_{*this};
};

/// The clip that the effect renders to.
class OvOfxOutputClip final : public OvOfxCoded<OvOfxClip, 48> {
public:
    OvOfxOutputClip();
};

/// Defines a clip to the host under the given name. `fieldExtraction` is the effect's setting.
/// Returns the host's status, or kOfxStatFailed for an unknown component name.
[[nodiscard]] OfxStatus defineClip(OfxImageEffectHandle effect, const OvOfxClip& clip,
                                   const char* name, int fieldExtraction);

}  // namespace Orvane
