#pragma once

#include "overlay/OverlayInteract.h"

namespace Orvane {

/// The effect's overlay: one group that holds the manipulators of all parameters that have one.
class AxisGroupOverlay final : public OverlayInteract {
public:
    explicit AxisGroupOverlay(OfxInteractHandle interact);

private:
    void bindParameters();
    void slaveToMarked();

    ManipulatorGroup group_{"2D Axis Group", ManipulatorGroup::kAllHandles};
};

}  // namespace Orvane
