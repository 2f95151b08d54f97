/// Instances: creation and destruction, clips with their formats, the project. The actions are in
/// InstanceChange, InstanceQueries and InstanceRender.

#include "host/Instance.h"

#include <algorithm>
#include <array>

#include "host/Effect.h"
#include "host/HostError.h"
#include "host/SuiteGuard.h"

namespace Tesseret::Host {

namespace {

constexpr std::array<Depth, 3> kDepths = {Depth::Byte, Depth::Short, Depth::Float};

std::vector<PropertyValue> pair(OfxPointD point)
{
    return {point.x, point.y};
}

bool lists(const std::vector<std::string>& names, const char* name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

Instance::Instance(Effect& effect, const Descriptor& described, InstanceListener* listener)
    : EffectObject(effect.host(), "effect"),
      effect_(effect),
      context_(described.context()),
      supportedDepths_(described.properties().strings(kOfxImageEffectPropSupportedPixelDepths)),
      slaveParameters_(
          described.properties().strings(kOfxImageEffectPropClipPreferencesSlaveParam)),
      listener_(listener)
{
    PropertySet& own = properties();
    own.copyFrom(described.properties());
    own.define(kOfxPropType, {kOfxTypeImageEffectInstance}, Access::ReadOnly);
    own.define(kOfxPropInstanceData, {static_cast<void*>(nullptr)});
    own.define(kOfxPropIsInteractive, {0}, Access::ReadOnly);
    for (const auto& clip : described.clips()) addClip(std::make_unique<Clip>(*this, *clip));
    for (const auto& parameter : described.parameters().all()) {
        parameters().add(std::make_unique<Parameter>(*this, *parameter));
    }
    adoptFormats();
    const OfxStatus status = action(kOfxActionCreateInstance);
    if (status != kOfxStatOK && status != kOfxStatReplyDefault) {
        throw HostError(std::string(effect_.plugin().pluginIdentifier) +
                            " cannot be created, it returns " + statusText(status),
                        status);
    }
    created_ = true;
}

Instance::~Instance()
{
    if (!created_) return;
    if (sequence_) quietly([this] { endSequence(); });
    created_ = false;  // values that the plug-in sets now are not announced
    quietly([this] {
        const OfxStatus status = action(kOfxActionDestroyInstance);
        if (parameters().openEdits() > 0) host().badCall("an edit was begun and not ended", status);
    });
}

RenderListener* Instance::renderListener() const
{
    RenderListener* const own = listener_ ? listener_->renderListener() : nullptr;
    return own ? own : host().listener();
}

void Instance::connect(std::string_view name, std::shared_ptr<ClipSource> source,
                       const char* reason)
{
    Clip* const input = clip(name);
    if (!input || input->isOutput()) {
        throw HostError("there is no input clip " + std::string(name) + " in " + context_);
    }
    input->connect(std::move(source));
    if (firstConnected_ == name && !input->source()) firstConnected_.clear();
    if (firstConnected_.empty() && input->source()) firstConnected_ = name;
    followSource();
    adoptFormats();
    preferencesStale_ = true;
    announce(kOfxTypeClip, name, reason, currentTime_);
}

void Instance::setProject(const Project& project)
{
    projectGiven_ = true;
    project_ = project;
}

/// Takes the project's properties from the first connected source.
void Instance::followSource()
{
    const Clip* const leader = clip(firstConnected_);
    if (projectGiven_ || !leader || !leader->source()) return;
    const ClipFormat format = leader->source()->format();
    const OfxRangeD frames = leader->source()->frameRange();
    const OfxRectD region = leader->source()->regionOfDefinition(frames.min);
    project_.size = {region.x2 - region.x1, region.y2 - region.y1};
    project_.offset = {region.x1, region.y1};
    project_.extent = project_.size;
    project_.pixelAspectRatio = format.pixelAspectRatio;
    project_.frameRate = format.frameRate;
    project_.duration = frames.max - frames.min + 1.0;
}

void Instance::updateProperties()
{
    writeProject();
    const Clip* const leader = clip(firstConnected_);
    const OfxRangeD frames = leader && leader->source() ? leader->source()->frameRange()
                                                        : OfxRangeD{0.0, project_.duration - 1.0};
    for (const auto& each : clips()) each->updateProperties(frames);
    host().behaviour().propertiesUpdated(*this);
}

void Instance::writeProject()
{
    PropertySet& own = properties();
    own.assign(kOfxImageEffectPropProjectSize, pair(project_.size));
    own.assign(kOfxImageEffectPropProjectOffset, pair(project_.offset));
    own.assign(kOfxImageEffectPropProjectExtent, pair(project_.extent));
    own.assign(kOfxImageEffectPropProjectPixelAspectRatio, {project_.pixelAspectRatio});
    own.assign(kOfxImageEffectPropFrameRate, {project_.frameRate});
    own.assign(kOfxImageEffectInstancePropEffectDuration, {project_.duration});
}

bool Instance::supportsDepth(Depth depth) const
{
    return lists(supportedDepths_, depthName(depth)) &&
           host().offers(kOfxImageEffectPropSupportedPixelDepths, depthName(depth));
}

void Instance::setDepth(Depth depth)
{
    if (!supportsDepth(depth)) {
        throw HostError(std::string(effect_.plugin().pluginIdentifier) +
                        " or the host does not support " + depthName(depth));
    }
    depth_ = depth;
    adoptFormats();
    preferencesStale_ = true;
}

/// The wanted depth, else the next better one that is supported, else the best below.
Depth Instance::preferredDepth(Depth wanted) const
{
    for (const Depth depth : kDepths) {
        if (depth >= wanted && supportsDepth(depth)) return depth;
    }
    for (auto depth = kDepths.rbegin(); depth != kDepths.rend(); ++depth) {
        if (supportsDepth(*depth)) return *depth;
    }
    throw HostError(std::string(effect_.plugin().pluginIdentifier) +
                    " and the host have none of the depths byte, short and float in common");
}

/// A format with the components that the clip supports.
ClipFormat Instance::formatFor(const Clip& target, const ClipFormat& wanted) const
{
    const std::vector<std::string> supported =
        target.properties().strings(kOfxImageEffectPropSupportedComponents);
    ClipFormat format = wanted;
    if (lists(supported, componentsName(wanted.components))) return format;
    for (const Components components : {Components::RGBA, Components::RGB, Components::Alpha}) {
        if (lists(supported, componentsName(components))) {
            format.components = components;
            break;
        }
    }
    return format;
}

/// Gives every clip the depth of the render and the components it supports.
void Instance::adoptFormats()
{
    const Clip* const leader = clip(firstConnected_);
    ClipFormat lead = leader && leader->source() ? leader->source()->format() : ClipFormat{};
    lead.depth = depth_ ? *depth_ : preferredDepth(lead.depth);
    for (const auto& each : clips()) {
        ClipFormat wanted = each->source() ? each->source()->format() : lead;
        wanted.depth = lead.depth;
        each->setFormat(formatFor(*each, wanted));
    }
}

void Instance::adoptPreferences(const ClipPreferences& preferences)
{
    for (const auto& each : clips()) {
        ClipFormat format = each->format();
        if (const auto preferred = preferences.components.find(each->name());
            preferred != preferences.components.end()) {
            componentsFromName(preferred->second, format.components);
        }
        if (const auto preferred = preferences.depths.find(each->name());
            preferred != preferences.depths.end()) {
            depthFromName(preferred->second, format.depth);
        }
        if (each->isOutput()) {
            alphaFromName(preferences.premultiplication, format.alpha);
            if (const auto preferred = preferences.pixelAspectRatios.find(each->name());
                preferred != preferences.pixelAspectRatios.end()) {
                format.pixelAspectRatio = preferred->second;
            }
        }
        each->setFormat(format);
    }
}

ClipFormat Instance::outputFormat() const
{
    const Clip* const output = clip(kOfxImageEffectOutputClipName);
    return output ? output->format() : ClipFormat{};
}

OfxRectD Instance::defaultRegionOfDefinition(OfxTime time) const
{
    const Clip* const main = clip(kOfxImageEffectSimpleSourceClipName);
    if (main && main->source()) return main->source()->regionOfDefinition(time);
    std::optional<OfxRectD> all;
    for (const auto& each : clips()) {
        if (!each->source()) continue;
        const OfxRectD region = each->source()->regionOfDefinition(time);
        all = all ? OfxRectD{std::min(all->x1, region.x1), std::min(all->y1, region.y1),
                             std::max(all->x2, region.x2), std::max(all->y2, region.y2)}
                  : region;
    }
    return all.value_or(OfxRectD{project_.offset.x, project_.offset.y,
                                 project_.offset.x + project_.size.x,
                                 project_.offset.y + project_.size.y});
}

}  // namespace Tesseret::Host
