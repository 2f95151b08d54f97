#pragma once

#include <memory>

#include "engine/RenderObserver.h"
#include "ofx/ofxImageEffect.h"

namespace Orvane {

/// An observer that forwards every call to the host's "TesseretObserverSuite", or null when the
/// host has none, which is the usual case. Make it at the start of a render and keep it until its
/// end.
[[nodiscard]] std::unique_ptr<Engine::RenderObserver> makeHostObserver(OfxImageEffectHandle effect);

}  // namespace Orvane
