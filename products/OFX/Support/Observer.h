#pragma once

#include <memory>

#include "engine/RenderObserver.h"
#include "ofx/ofxImageEffect.h"

namespace Orvane {

/// An observer that passes everything on to the host's "TesseretObserverSuite", or null when the
/// host offers none, as nearly all do. To be asked for at the start of a render and kept until its
/// end.
[[nodiscard]] std::unique_ptr<Engine::RenderObserver> makeHostObserver(OfxImageEffectHandle effect);

}  // namespace Orvane
