#pragma once

#include <memory>

#include "engine/RecordExchange.h"
#include "ofx/ofxImageEffect.h"

namespace Orvane {

/// The exchange of recorded blocks through the host's "TesseretRecordSuite", or null when the host
/// has none. Make it at the start of a render and keep it until its end.
[[nodiscard]] std::unique_ptr<Engine::RecordExchange> makeHostRecords(OfxImageEffectHandle effect);

}  // namespace Orvane
