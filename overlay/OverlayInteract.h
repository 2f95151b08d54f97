#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "ofx/ofxInteract.h"
#include "overlay/ManipulatorGroup.h"
#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/InstanceRecord.h"

namespace Orvane {

/// The arguments of a draw action. Members that the host leaves out are 0.
struct DrawArguments {
    OvPoint viewport;    ///< screen pixels
    OvPoint pixelScale;  ///< canonical units for each screen pixel
    float background[3] = {0.0f, 0.0f, 0.0f};
    double time = 0.0;
};

struct PenArguments : DrawArguments {
    OvPoint position;  ///< canonical
    double pressure = 0.0;
};

DrawArguments readDrawArguments(const OvOfxPropertySet& inArgs);
PenArguments readPenArguments(const OvOfxPropertySet& inArgs);

/// The properties of an interact; a null set where the host has none.
OvOfxPropertySet interactProperties(OfxInteractHandle interact);

/// Connects a parameter to its manipulator: the manipulator shows the parameter's value, and a
/// change on screen is written to the parameter at once.
class ParamBinding : public ManipulatorListener {
public:
    // Virtual operations, in slot order.
    ~ParamBinding() override = default;
    /// Writes the parameter whenever the manipulator's value changes and when the drag ends.
    void onEvent(const OverlayEvent& event) override
    {
        if (event.type == OverlayEventType::ValueChanged ||
            event.type == OverlayEventType::ManipulationEnded) {
            writeParams();
        }
    }
    virtual void attach(ManipulatorGroup& group) = 0;
    virtual void writeParams() = 0;
    /// Updates the manipulator's values and visibility.
    virtual void readParams(double time) = 0;
};

/// One overlay of one instance: a tree of manipulators that the host's actions are routed to. Lives
/// from the interact's creation to its destruction; the host keeps its address as the interact's
/// instance data. A host may destroy the effect first: the overlay then has no effect any more.
class OverlayInteract {
public:
    /// Finds the effect behind the interact and registers with it. Without one the overlay exists
    /// but shows nothing.
    explicit OverlayInteract(OfxInteractHandle interact);
    OverlayInteract(const OverlayInteract&) = delete;
    OverlayInteract& operator=(const OverlayInteract&) = delete;

    // Virtual operations, in slot order. Those with inArgs carry out an action and return its
    // status.
    virtual ~OverlayInteract();
    /// Routes one pen event. An event that arrives while another is routed is ignored.
    virtual void handleEvent(const OverlayEvent& event);
    virtual OvPoint penPosition() const { return penPosition_; }
    virtual OvPoint penDelta() const { return penDelta_; }
    virtual bool isPenDown() const { return penDown_; }
    virtual void drawContents();
    virtual OfxStatus penMotion(const OvOfxPropertySet& inArgs);
    virtual OfxStatus penDown(const OvOfxPropertySet& inArgs);
    virtual OfxStatus penUp(const OvOfxPropertySet& inArgs);
    virtual OfxStatus key(const OvOfxPropertySet&) { return kOfxStatReplyDefault; }
    virtual OfxStatus gainFocus(const OvOfxPropertySet& inArgs);
    virtual OfxStatus loseFocus(const OvOfxPropertySet& inArgs);
    virtual OfxStatus draw(const OvOfxPropertySet& inArgs);

    /// Makes the host redraw the overlay when a parameter changes.
    void slaveTo(const std::string& parameter);
    /// Null without an effect.
    OvOfxInstanceRecord* instance() const { return instance_.lock().get(); }
    /// Whether there was an effect and the host destroyed it. No action may be passed on then: the
    /// parameters of the manipulators are gone too.
    bool hasLostEffect() const { return effect_ != nullptr && instance_.expired(); }
    /// Whether the host keeps this overlay's address.
    bool isKept() const { return kept_; }

protected:
    /// Null without an effect.
    OvOfxEffect* effect() const { return instance_.expired() ? nullptr : effect_; }
    /// Top-level manipulators are borrowed and drawn in the order they were added.
    void add(Manipulator& child) { children_.push_back(&child); }
    void addBinding(std::unique_ptr<ParamBinding> binding);

private:
    class Frame;

    OfxStatus handlePen(OverlayEventType type, OvActionKind kind, const OvOfxPropertySet& inArgs);
    OfxStatus readFocus(const OvOfxPropertySet& inArgs);
    void routeDown(OvPoint pen);
    void routeMotion(OvPoint pen);
    void routeUp(OvPoint pen);
    void pickUnder(OvPoint pen);
    void leaveHover();
    bool enterHover();
    void requestRedraw() const;

    OfxInteractHandle interact_;
    OvOfxPropertySet properties_;
    std::deque<OvOfxActionFrame> frames_;
    OvOfxEffect* effect_ = nullptr;                ///< not owned; valid while `instance_` is
    std::weak_ptr<OvOfxInstanceRecord> instance_;  ///< expires with the effect
    std::vector<std::unique_ptr<ParamBinding>> bindings_;
    int slaveCount_ = 0;
    std::vector<Manipulator*> children_;
    OvPoint penPosition_, penDelta_;
    bool penDown_ = false;
    Manipulator* hovered_ = nullptr;
    Picked picked_;  ///< the result of the last pick
    OvPoint pickTolerance_{3.0f, 3.0f};
    bool tooltips_ = true;
    bool changed_ = false;
    bool routing_ = false;
    bool kept_ = false;
};

}  // namespace Orvane
