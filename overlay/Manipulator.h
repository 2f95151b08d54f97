#pragma once

#include <optional>
#include <string>
#include <vector>

#include "overlay/Draw.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {

enum class OverlayEventType {
    // From the overlay to its manipulators.
    PenMotion = 101,
    PenDown = 102,
    PenUp = 103,
    // From a manipulator to its listeners.
    ManipulationStarted = 200,
    ValueChanged = 201,
    ManipulationEnded = 202
};

inline constexpr int kPenEvent = 6;  ///< the kind of an event that carries a position

struct OverlayEvent {
    OverlayEventType type;
    int kind = kPenEvent;
    OvPoint position;  ///< canonical
};

/// Receives the events of a manipulator.
class ManipulatorListener {
public:
    virtual ~ManipulatorListener() = default;
    virtual void onEvent(const OverlayEvent& event) = 0;
};

/// A rectangle: its lower left corner and its size.
struct BoundingBox {
    float x = 0.0f, y = 0.0f, width = 0.0f, height = 0.0f;

    /// Whether a point lies inside when the box is grown on every side.
    bool contains(OvPoint point, OvPoint tolerance) const
    {
        return point.x >= x - tolerance.x && point.x <= x + width + tolerance.x &&
               point.y >= y - tolerance.y && point.y <= y + height + tolerance.y;
    }
};

/// An object on screen that the pen can grab. Positions are in the coordinates of its group,
/// canonical at the top.
class Manipulator {
public:
    explicit Manipulator(std::string name) : name_(std::move(name)) {}
    Manipulator(const Manipulator&) = delete;
    Manipulator& operator=(const Manipulator&) = delete;
    virtual ~Manipulator() = default;

    // Virtual operations, in slot order.
    /// The manipulator under the pen: itself, a child, or null. It remembers the part under the
    /// pen.
    virtual Manipulator* pick(OvPoint pen, OvPoint tolerance) = 0;
    virtual void draw() = 0;
    /// Moves the grabbed part; returns whether anything changed.
    virtual bool drag(OvPoint pen) = 0;
    virtual void pushTransform() {}
    virtual void popTransform() {}
    /// Handles pen down; returns whether the pen grabs it.
    virtual bool press(OvPoint pen) = 0;
    virtual bool release() = 0;
    virtual void enterHover() { hovered_ = true; }
    virtual void leaveHover() { hovered_ = false; }
    /// Draws the help text, if there is one.
    virtual void drawHelp(OvPoint position) const;

    const std::string& name() const { return name_; }
    void setHelpText(std::string text) { helpText_ = std::move(text); }
    void addListener(ManipulatorListener& listener) { listeners_.push_back(&listener); }
    const BoundingBox& boundingBox() const { return boundingBox_; }
    void setColour(const OverlayColour& colour) { colour_ = colour; }
    void setShown(bool shown) { shown_ = shown; }
    void setActive(bool active) { active_ = active; }
    /// Whether the pen must be near the bounding box before `pick` is called.
    void setBoxTest(bool on) { boxTest_ = on; }
    bool isShown() const { return shown_; }
    bool isActive() const { return active_; }
    bool isPressed() const { return pressed_; }
    bool isHovered() const { return hovered_; }
    /// The child that the pen has grabbed, or the manipulator itself; null when there is none.
    Manipulator* grabbedChild() const { return grabbedChild_; }

    /// Calls `pick` if the manipulator is shown, active and near the pen; else returns null.
    Manipulator* pickIfNear(OvPoint pen, OvPoint tolerance);

protected:
    void notifyListeners(OverlayEventType type, OvPoint position);
    void setGrabbedChild(Manipulator* child) { grabbedChild_ = child; }
    void setPressed(bool pressed) { pressed_ = pressed; }
    void setBoundingBox(const BoundingBox& box) { boundingBox_ = box; }
    const OverlayColour& colour() const { return colour_; }

private:
    std::string name_;
    std::optional<std::string> helpText_;
    std::vector<ManipulatorListener*> listeners_;
    Manipulator* grabbedChild_ = nullptr;
    OverlayColour colour_ = kManipulatorColour;
    BoundingBox boundingBox_;
    bool shown_ = true;
    bool active_ = true;
    bool boxTest_ = true;
    bool pressed_ = false;
    bool hovered_ = false;
};

}  // namespace Orvane
