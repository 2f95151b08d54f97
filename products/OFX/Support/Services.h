#pragma once

#include "ofx/ofxImageEffect.h"

namespace Orvane {

/// Has the threads and the image memory of the described host serve the engine, process-wide.
void useHostServices();

/// Says, as long as it lives, on whose behalf the calling thread runs: an effect instance or
/// descriptor, possibly null. Nests. Hosts that refuse image memory to nobody give it to that
/// effect.
class RunningEffect {
public:
    explicit RunningEffect(OfxImageEffectHandle effect);
    ~RunningEffect();
    RunningEffect(const RunningEffect&) = delete;
    RunningEffect& operator=(const RunningEffect&) = delete;

private:
    OfxImageEffectHandle outer_;
};

}  // namespace Orvane
