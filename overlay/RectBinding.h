#pragma once

#include "overlay/OverlayInteract.h"
#include "overlay/RectManipulator.h"
#include "overlay/RectangleControl.h"

namespace Orvane {

/// A rectangle's two corner parameters and its manipulator. The parameters hold parts of the
/// project's size, measured from its offset.
class RectBinding final : public ParamBinding {
public:
    /// Has the overlay redrawn whenever a corner changes. Both outlive the binding.
    RectBinding(const RectangleControl& control, OverlayInteract& overlay);

    void attach(ManipulatorGroup& group) override;
    /// Writes both corners in one edit, the lower left one first. A project without a size, and
    /// positions that are no numbers, write nothing.
    void writeParams() override;
    void readParams(double time) override;

private:
    const RectangleControl* control_;
    OverlayInteract* overlay_;
    RectManipulator manipulator_;
};

}  // namespace Orvane
