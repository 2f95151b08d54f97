#pragma once

#include <deque>
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

/// The record that in-args of a change action hold. Without `withTime` the time is 0.
[[nodiscard]] OvOfxChangeRecord readChangeRecord(const OvOfxPropertySet& inArgs, bool withTime);

/// Two doubles as floats; (0, 0) where the property cannot be read.
[[nodiscard]] OvPoint pointOf(const OvOfxPropertySet& properties, const char* name);

/// The properties of an effect, descriptor or instance. Answers the host's status, or
/// kOfxStatErrBadHandle when that is 0 and there are none all the same.
[[nodiscard]] OfxStatus effectProperties(OfxImageEffectHandle effect, OvOfxPropertySet& properties);

/// The actions that keep a frame. The last number serves both the pen's release and drawing.
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

/// The host's side of one instance; the property set it is, is the effect's own.
class OvOfxInstanceRecord final : public OvOfxPropertySet {
public:
    explicit OvOfxInstanceRecord(OfxImageEffectHandle effect);

    [[nodiscard]] OfxImageEffectHandle effectHandle() const { return effect_; }
    [[nodiscard]] OfxParamSetHandle paramSet() const { return paramSet_; }

    /// The host's handle, or null when it has nothing of that name. Only names of the current
    /// context should be asked for; some hosts throw at others.
    [[nodiscard]] OfxParamHandle paramHandle(const char* name) const;
    [[nodiscard]] OfxImageClipHandle clipHandle(const char* name) const;

    void pushFrame(OvActionKind kind, const OvOfxPropertySet& inArgs,
                   const OvOfxPropertySet& outArgs);
    /// Removes the newest frame and answers its status; kOfxStatReplyDefault when there is none.
    OfxStatus popFrame();
    /// The newest frame, or null.
    [[nodiscard]] OvOfxActionFrame* frame();

    /// The time of the newest frame, 0 without one.
    [[nodiscard]] double time() const;

    // Canonical units; (0, 0) where the host does not say.
    [[nodiscard]] OvPoint projectSize() const;
    [[nodiscard]] OvPoint projectExtent() const;
    [[nodiscard]] OvPoint projectOffset() const;
    /// Width over height of a pixel; 1 where the host does not say.
    [[nodiscard]] double pixelAspectRatio() const;

    /// The instance's overlays; removing one that is not there does nothing.
    void addInteract(OfxInteractHandle interact);
    void removeInteract(OfxInteractHandle interact);
    [[nodiscard]] const std::vector<OfxInteractHandle>& interacts() const { return interacts_; }

    /// Tells the host whether frames have to be rendered in order.
    void setSequentialRender(bool sequential) const;

    /// Shows a text to the user and answers the host's status. `type` is one of kOfxMessage...; a
    /// null id is allowed. Per-cent signs in the text are shown as they are.
    OfxStatus postMessage(const char* type, const char* id, const char* text) const;

private:
    OfxImageEffectHandle effect_ = nullptr;
    OfxParamSetHandle paramSet_ = nullptr;
    std::deque<OvOfxActionFrame> actions_;
    std::vector<OfxInteractHandle> interacts_;
};

/// What is written to parameters as long as this lives is one edit, a single step to undo. Where
/// the host has no edits, or refuses this one, each write stands for itself.
class OvOfxParamEdit {
public:
    /// The user may be shown the name.
    OvOfxParamEdit(const OvOfxInstanceRecord& record, const char* name);
    ~OvOfxParamEdit();
    OvOfxParamEdit(const OvOfxParamEdit&) = delete;
    OvOfxParamEdit& operator=(const OvOfxParamEdit&) = delete;

private:
    OfxParamSetHandle begun_ = nullptr;  ///< null when there is nothing to end
};

}  // namespace Orvane
