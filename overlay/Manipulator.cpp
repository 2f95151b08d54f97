#include "overlay/Manipulator.h"

#include "overlay/OverlayText.h"

namespace Orvane {

void Manipulator::drawHelp(OvPoint position) const
{
    if (helpText_) drawShadowedText(helpText_->c_str(), position.x, position.y);
}

Manipulator* Manipulator::pickIfNear(OvPoint pen, OvPoint tolerance)
{
    if (!shown_ || !active_) return nullptr;
    if (boxTest_ && !boundingBox_.contains(pen, tolerance)) return nullptr;
    pushTransform();
    Manipulator* picked = pick(pen, tolerance);
    popTransform();
    return picked;
}

void Manipulator::notifyListeners(OverlayEventType type, OvPoint position)
{
    for (ManipulatorListener* listener : listeners_) {
        listener->onEvent({.type = type, .position = position});
    }
}

}  // namespace Orvane
