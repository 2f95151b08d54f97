#include "products/OFX/Support/Context.h"

#include <array>

#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {
namespace {

/// What a context requires of every effect; null where it requires nothing.
struct ContextNeeds {
    OvContext context;
    std::array<const char*, 2> clips;
    const char* param;
};

constexpr auto kContexts = std::to_array<ContextNeeds>({
    {OvContext::Generator, {}, nullptr},
    {OvContext::Filter, {"Source"}, nullptr},
    {OvContext::General, {}, nullptr},
    {OvContext::Retimer, {"Source"}, "SourceTime"},
    {OvContext::Transition, {"SourceFrom", "SourceTo"}, "Transition"},
    {OvContext::Paint, {"Source", "Brush"}, nullptr},
});

}  // namespace

std::vector<OvOfxContextContainer> makeContainers(OvOfxEffect& effect)
{
    std::vector<OvOfxContextContainer> containers;
    for (const ContextNeeds& needs : kContexts) {
        OvOfxContextContainer& container = containers.emplace_back();
        container.context = needs.context;
        for (const char* name : needs.clips) {
            if (name == nullptr) continue;
            auto& clip = effect.own<OvOfxClip>(name);
            clip.supportedComponents = {"RGBA", "alpha"};
            container.namedClips.push_back({name, &clip});
        }
        if (needs.param != nullptr) {
            container.leadParam = &effect.own<OvOfxDoubleParam>(needs.param);
        }
    }
    return containers;
}

std::vector<OvNamedClip> clipsOf(const OvOfxContextContainer& container)
{
    std::vector<OvNamedClip> clips;
    for (const OvNamedClip& named : container.namedClips) {
        if (!named.clip->excluded) clips.push_back(named);
    }
    const bool all = container.context == OvContext::General;
    for (OvOfxClip* clip : container.clips) {
        if (!clip->excluded && (all || clip->optional)) {
            clips.push_back({clip->clipName.c_str(), clip});
        }
    }
    return clips;
}

OfxStatus defineClips(OvOfxEffect& effect, OfxImageEffectHandle handle)
{
    const int fieldExtraction = effect.descriptor.fieldExtraction;
    if (const OfxStatus status = defineClip(handle, effect.outputClip(),
                                            kOfxImageEffectOutputClipName, fieldExtraction)) {
        return status;
    }
    const OvOfxContextContainer* container = effect.container(effect.context());
    if (container == nullptr) return kOfxStatFailed;
    for (const auto& [name, clip] : clipsOf(*container)) {
        if (const OfxStatus status = defineClip(handle, *clip, name, fieldExtraction)) {
            return status;
        }
    }
    return kOfxStatOK;
}

}  // namespace Orvane
