#pragma once

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

/// Hears what happens to a manipulator.
class ManipulatorListener {
public:
    virtual ~ManipulatorListener() = default;
    virtual void onEvent(const OverlayEvent& event) = 0;
};

}  // namespace Orvane
