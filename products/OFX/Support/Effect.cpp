#include "products/OFX/Support/Effect.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "products/OFX/Support/Message.h"
#include "products/OFX/Support/Page.h"
#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {
namespace {

/// A name as descriptors and as hosts spell it.
struct HostName {
    std::string_view name;
    const char* hostName;
};

constexpr auto kContextNames = std::to_array<HostName>({
    {"Generator", kOfxImageEffectContextGenerator},
    {"Filter", kOfxImageEffectContextFilter},
    {"General", kOfxImageEffectContextGeneral},
    {"Retimer", kOfxImageEffectContextRetimer},
    {"Transition", kOfxImageEffectContextTransition},
    {"Paint", kOfxImageEffectContextPaint},
});

constexpr auto kDepthNames = std::to_array<HostName>({
    {"byte", kOfxBitDepthByte},
    {"short", kOfxBitDepthShort},
    {"float", kOfxBitDepthFloat},
});

constexpr std::array kThreadSafetyNames = {
    kOfxImageEffectRenderUnsafe, kOfxImageEffectRenderInstanceSafe, kOfxImageEffectRenderFullySafe};

/// Writes a list of names, up to the first unknown one. Returns whether all were written.
bool writeNames(const OvOfxPropertySet& properties, const char* property,
                const std::vector<std::string>& names, std::span<const HostName> known)
{
    int index = 0;
    for (const std::string& name : names) {
        const auto found = std::ranges::find(known, name, &HostName::name);
        if (found == known.end()) return false;
        properties.setString(property, found->hostName, index++);
    }
    return true;
}

void writeFlag(const OvOfxPropertySet& properties, const char* property, bool value)
{
    properties.setInt(property, value ? 1 : 0);
}

void setInUse(OvOfxParam& param, bool inUse)
{
    param.inUse = inUse;
    if (auto* group = paramCast<OvOfxGroup>(&param)) {
        for (OvOfxParam* child : group->children) setInUse(*child, inUse);
    }
}

/// The parameters of a context in binding order.
std::vector<OvOfxParam*> paramsOf(const OvOfxContextContainer& container)
{
    std::vector<OvOfxParam*> params;
    if (container.leadParam != nullptr) params.push_back(container.leadParam);
    params.insert(params.end(), container.params.begin(), container.params.end());
    return params;
}

}  // namespace

OvOfxEffect* findInstance(OfxImageEffectHandle effect, OvOfxPropertySet& properties)
{
    // The handle decides whether there is one; some hosts' statuses are meaningless.
    static_cast<void>(effectProperties(effect, properties));
    void* instance = nullptr;
    static_cast<void>(properties.getPointer(kOfxPropInstanceData, instance));
    return static_cast<OvOfxEffect*>(instance);
}

OvOfxEffect::OvOfxEffect()
    : outputClip_(&own<OvOfxOutputClip>()),
      rowEnd_(&own<OvOfxParam>(kRowEndName)),
      emptyCell_(&own<OvOfxParam>(kEmptyCellName)),
      containers_(makeContainers(*this))
{}

OvOfxEffect::~OvOfxEffect() = default;

std::unique_ptr<OvOfxEffectInterface> OvOfxEffect::makeInterface(OvOfxHostWrapper& wrapper)
{
    return std::make_unique<OvOfxEffectInterface>(wrapper);
}

std::unique_ptr<OvOfxHostWrapper> OvOfxEffect::makeHostWrapper(const OvOfxPropertySet* inArgs,
                                                               const OvOfxPropertySet* outArgs)
{
    return std::make_unique<OvOfxHostWrapper>(*this, inArgs, outArgs);
}

OvOfxClip* OvOfxEffect::findClip(const char* name)
{
    const auto found = clipTable_.find(name);
    return found != clipTable_.end() ? found->second : nullptr;
}

OvOfxParam* OvOfxEffect::findParam(const char* name)
{
    const auto found = paramTable_.find(name);
    return found != paramTable_.end() ? found->second : nullptr;
}

OfxStatus OvOfxEffect::writePluginProperties(const OvOfxPropertySet& properties) const
{
    properties.setString(kOfxPropLabel, descriptor.label.c_str());
    properties.setString(kOfxImageEffectPluginPropGrouping, descriptor.grouping.c_str());
    if (!writeNames(properties, kOfxImageEffectPropSupportedContexts, descriptor.contexts,
                    kContextNames) ||
        !writeNames(properties, kOfxImageEffectPropSupportedPixelDepths, descriptor.pixelDepths,
                    kDepthNames)) {
        return kOfxStatFailed;
    }
    writeFlag(properties, kOfxImageEffectPropSupportsTiles, descriptor.supportsTiles);
    writeFlag(properties, kOfxImageEffectPropSupportsMultiResolution, true);
    writeFlag(properties, kOfxImageEffectPropSupportsMultipleClipPARs, false);
    writeFlag(properties, kOfxImageEffectPropSupportsMultipleClipDepths,
              descriptor.multipleClipDepths);
    writeFlag(properties, kOfxImageEffectPropTemporalClipAccess, descriptor.temporalClipAccess);
    writeFlag(properties, kOfxImageEffectPluginPropSingleInstance, false);
    const auto safety = static_cast<std::size_t>(descriptor.renderThreadSafety);
    if (safety < kThreadSafetyNames.size()) {
        properties.setString(kOfxImageEffectPluginRenderThreadSafety, kThreadSafetyNames[safety]);
    }
    writeFlag(properties, kOfxImageEffectPluginPropHostFrameThreading, false);
    writeFlag(properties, kOfxImageEffectPluginPropFieldRenderTwiceAlways,
              descriptor.fieldRenderTwiceAlways);
    if (descriptor.overlayEntry != nullptr) {
        properties.setPointer(kOfxImageEffectPluginPropOverlayInteractV1,
                              reinterpret_cast<void*>(descriptor.overlayEntry));
    }
    return kOfxStatOK;
}

void OvOfxEffect::bind(OvContext context, std::unique_ptr<OvOfxInstanceRecord> record)
{
    context_ = context;
    record_ = std::move(record);
    for (const auto& object : objects_) setInUse(*object, false);
    outputClip_->inUse = true;

    std::vector<OvNamedClip> clips = {{kOfxImageEffectOutputClipName, outputClip_}};
    std::vector<OvOfxParam*> params;
    if (const OvOfxContextContainer* used = container(context)) {
        std::ranges::copy(clipsOf(*used), std::back_inserter(clips));
        params = paramsOf(*used);
        for (OvOfxPage* page : used->pages) page->inUse = true;
    }
    for (const OvNamedClip& named : clips) named.clip->inUse = true;
    for (OvOfxParam* param : params) setInUse(*param, true);
    if (record_ == nullptr) return;

    for (const auto& [name, clip] : clips) bindClip(*clip, name);
    for (OvOfxParam* param : params) bindParam(*param);
}

void OvOfxEffect::bindClip(OvOfxClip& clip, const char* name)
{
    if (clip.excluded) return;
    clip.bind(*record_, name);
    clipTable_[name] = &clip;
}

void OvOfxEffect::bindParam(OvOfxParam& param)
{
    if (param.excluded || param.isA(OvOfxClip::kCode)) return;
    if (auto* group = paramCast<OvOfxGroup>(&param)) {
        for (OvOfxParam* child : group->children) bindParam(*child);
        return;
    }
    param.handle = std::make_unique<OvOfxParamHandle>(*record_, param.name);
    parameters_.push_back(&param);
    paramTable_[param.name] = &param;
}

void OvOfxEffect::deleteInstanceRecord()
{
    record_.reset();
}

void OvOfxEffect::deleteHandles()
{
    for (const auto& [name, clip] : clipTable_) clip->clipHandle.reset();
    for (OvOfxParam* param : parameters_) param->handle.reset();
}

OvOfxContextContainer* OvOfxEffect::container(OvContext context)
{
    const auto found = std::ranges::find(containers_, context, &OvOfxContextContainer::context);
    return found != containers_.end() ? &*found : nullptr;
}

int OvOfxEffect::message(const char* text, int kind, const char* id) const
{
    return postEffectMessage(record_.get(), text, kind, id);
}

}  // namespace Orvane
