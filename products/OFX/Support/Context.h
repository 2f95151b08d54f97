#pragma once

#include <string>
#include <vector>

#include "ofx/ofxImageEffect.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Names.h"

namespace Orvane {

class OvOfxEffect;
class OvOfxPage;

/// A clip that a context requires under a fixed name, such as "Source" in a filter.
struct OvNamedClip {
    const char* name;
    OvOfxClip* clip;  ///< the effect may redirect it to one of its own clips
};

/// The objects of an effect in one context. The effect owns all of them.
struct OvOfxContextContainer {
    OvContext context = OvContext::None;
    std::vector<OvNamedClip> namedClips;
    OvOfxParam* leadParam = nullptr;  ///< the parameter that the context requires
    std::vector<OvOfxClip*> clips;
    std::vector<OvOfxParam*> params;
    std::vector<OvOfxPage*> pages;
};

/// One container per context, with the named clips and the parameters that the contexts require.
[[nodiscard]] std::vector<OvOfxContextContainer> makeContainers(OvOfxEffect& effect);

/// The clips of a context besides the output, in the order of their definition: the named clips,
/// then the effect's own. Of these, only General includes clips that are not optional.
[[nodiscard]] std::vector<OvNamedClip> clipsOf(const OvOfxContextContainer& container);

/// Defines the output clip, then the clips of the context that the effect is bound to. Returns the
/// first status that is not 0, or kOfxStatFailed for an unknown context.
[[nodiscard]] OfxStatus defineClips(OvOfxEffect& effect, OfxImageEffectHandle handle);

}  // namespace Orvane
