#pragma once

#include "ofx/ofxImageEffect.h"

namespace Orvane {

/// Makes the engine use the threads and the image memory of the described host, process-wide.
void useHostServices();

/// Sets, during its lifetime, the effect that the calling thread works for: an instance or
/// descriptor, possibly null. Nests. Hosts that refuse image memory without an effect are asked for
/// it with this one.
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
