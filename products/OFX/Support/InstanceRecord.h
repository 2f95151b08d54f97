#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxInteract.h"
#include "ofx/ofxParam.h"
#include "products/OFX/Support/Names.h"
#include "products/OFX/Support/PropertySet.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {

/// Why and when something changed.
struct OvOfxChangeRecord {
    OvChangeReason reason = OvChangeReason::None;
    double time = 0.0;
};

/// Reads the change record from the in-args of a change action. Without `withTime` the time is 0.
[[nodiscard]] OvOfxChangeRecord readChangeRecord(const OvOfxPropertySet& inArgs, bool withTime);

/// Two doubles as floats; (0, 0) where the property cannot be read.
[[nodiscard]] OvPoint pointOf(const OvOfxPropertySet& properties, const char* name);

/// A pixel aspect ratio; none where it cannot be read or is not a positive number.
[[nodiscard]] std::optional<double> aspectOf(const OvOfxPropertySet& properties, const char* name);

/// Fetches the properties of an effect descriptor or instance. Returns the host's status, or
/// kOfxStatErrBadHandle when the host reports success but gives no property set.
[[nodiscard]] OfxStatus effectProperties(OfxImageEffectHandle effect, OvOfxPropertySet& properties);

/// The actions with a frame. The last value serves both pen release and drawing.
enum class OvActionKind {
    ClipPreferences = 2,
    TimeDomain = 10,
    PenMotion = 12,
    PenDown = 13,
    PenUpOrDraw = 14
};

/// One action that is running on an instance: hooks write to outArgs and set the status.
struct OvOfxActionFrame {
    OvActionKind kind;
    OvOfxPropertySet inArgs;
    OvOfxPropertySet outArgs;
    OfxStatus status = kOfxStatReplyDefault;
};

/// The host's side of one instance; as a property set it is that of the effect.
class OvOfxInstanceRecord final : public OvOfxPropertySet {
public:
    explicit OvOfxInstanceRecord(OfxImageEffectHandle effect);

    [[nodiscard]] OfxImageEffectHandle effectHandle() const { return effect_; }
    [[nodiscard]] OfxParamSetHandle paramSet() const { return paramSet_; }

    /// The host's handle, or null for an unknown name. Request only names of the current context;
    /// some hosts throw for others.
    [[nodiscard]] OfxParamHandle paramHandle(const char* name) const;
    [[nodiscard]] OfxImageClipHandle clipHandle(const char* name) const;

    void pushFrame(OvActionKind kind, const OvOfxPropertySet& inArgs,
                   const OvOfxPropertySet& outArgs);
    /// Removes the newest frame and returns its status; kOfxStatReplyDefault when there is none.
    OfxStatus popFrame();
    /// The newest frame, or null.
    [[nodiscard]] OvOfxActionFrame* frame();

    /// The time of the newest frame, 0 without one.
    [[nodiscard]] double time() const;

    // Canonical units; (0, 0) where the host reports nothing.
    [[nodiscard]] OvPoint projectSize() const;
    [[nodiscard]] OvPoint projectExtent() const;
    [[nodiscard]] OvPoint projectOffset() const;
    /// Width over height of a pixel of the project, or none.
    [[nodiscard]] std::optional<double> pixelAspectRatio() const;

    /// The instance's overlays; removing one that is not there does nothing.
    void addInteract(OfxInteractHandle interact);
    void removeInteract(OfxInteractHandle interact);
    [[nodiscard]] const std::vector<OfxInteractHandle>& interacts() const { return interacts_; }

    /// Sets whether the host has to render frames in order.
    void setSequentialRender(bool sequential) const;

    /// Shows a text to the user and returns the host's status. `type` is one of kOfxMessage...; a
    /// null id is allowed. Per-cent signs in the text are shown as they are.
    OfxStatus postMessage(const char* type, const char* id, const char* text) const;

private:
    OfxImageEffectHandle effect_ = nullptr;
    OfxParamSetHandle paramSet_ = nullptr;
    std::deque<OvOfxActionFrame> actions_;
    std::vector<OfxInteractHandle> interacts_;
};

/// Groups the parameter writes made during its lifetime into one edit, a single undo step. Where
/// the host has no edits, or refuses this one, each write is separate.
class OvOfxParamEdit {
public:
    /// Hosts may show the name to the user.
    OvOfxParamEdit(const OvOfxInstanceRecord& record, const char* name);
    ~OvOfxParamEdit();
    OvOfxParamEdit(const OvOfxParamEdit&) = delete;
    OvOfxParamEdit& operator=(const OvOfxParamEdit&) = delete;

private:
    OfxParamSetHandle begun_ = nullptr;  ///< null when no edit is open
};

}  // namespace Orvane
