#pragma once

#include "overlay/OverlayInteract.h"
#include "overlay/RectManipulator.h"
#include "overlay/RectangleControl.h"

namespace Orvane {

/// A rectangle's two corner parameters and its manipulator. The parameters hold fractions of the
/// project's size, measured from its offset.
class RectBinding final : public ParamBinding {
public:
    /// Makes the overlay redraw whenever a corner changes. Both outlive the binding.
    RectBinding(const RectangleControl& control, OverlayInteract& overlay);

    void attach(ManipulatorGroup& group) override;
    /// Writes both corners in one edit, the lower left one first. Writes nothing for a project
    /// without a size or a position that is not a number.
    void writeParams() override;
    void readParams(double time) override;

private:
    const RectangleControl* control_;
    OverlayInteract* overlay_;
    RectManipulator manipulator_;
};

}  // namespace Orvane
