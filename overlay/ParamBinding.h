#pragma once

#include "overlay/Manipulator.h"
#include "overlay/ManipulatorGroup.h"

namespace Orvane {

/// Joins a parameter to its manipulator: the manipulator shows the parameter's value, and a change
/// on screen is written to the parameter at once.
class ParamBinding : public ManipulatorListener {
public:
    // Virtual operations, in slot order.
    ~ParamBinding() override = default;
    /// Writes the parameter whenever the manipulator's value changed and when the pen lets go.
    void onEvent(const OverlayEvent& event) override
    {
        if (event.type == OverlayEventType::ValueChanged ||
            event.type == OverlayEventType::ManipulationEnded) {
            writeParams();
        }
    }
    virtual void attach(ManipulatorGroup& group) = 0;
    virtual void writeParams() = 0;
    /// Shows the values, and whether the manipulator is shown at all.
    virtual void readParams(double time) = 0;
};

}  // namespace Orvane
