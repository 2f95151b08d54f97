#include "render/InstanceSetup.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "host/HostError.h"
#include "render/Boxes.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"

namespace Tesseret::Render {

using Files::PictureInfo;
using Host::ContextDescription;

namespace {

std::string chooseContext(const RenderSettings& settings, const JobInputs& inputs)
{
    if (!settings.context.empty()) return settings.context;
    const bool isPlain = inputs.infos().size() == 1 && settings.mask == MaskOption::None;
    if (!isPlain) return "General";
    const std::filesystem::path& file = settings.parameterFile;
    const std::string saved = file.empty() ? "" : contextOfParameters(file);
    return saved.empty() ? "Filter" : saved;
}

void checkClips(const ContextDescription& description, const JobInputs& inputs)
{
    for (const auto& [name, info] : inputs.infos()) {
        if (description.clip(name) != nullptr) continue;
        throw UsageError(Files::shownName(info.file) + ": the context " +
                         shortContextName(description.context) + " has no clip " + name);
    }
}

/// Turns on the given textures, unless their switches were set.
void useTextures(const ContextDescription& description, const JobInputs& inputs,
                 ParameterValues& values)
{
    for (std::size_t i = 0; i < Names::kTextures.size(); ++i) {
        const std::string toggle = Names::kUseTextures[i];
        if (!inputs.has(Names::kTextures[i]) || description.parameter(toggle) == nullptr) continue;
        values.try_emplace(toggle, parseAssignment(toggle + "=true", description).value);
    }
}

/// The command line, by name or by option, overrides the file's values.
ParameterValues collectValues(const RenderSettings& settings, const ContextDescription& description,
                              const JobInputs& inputs, ParameterValues filed)
{
    ParameterValues values;
    for (const std::string& text : settings.parameters) {
        NamedValue assignment = parseAssignment(text, description);
        values[assignment.name] = std::move(assignment.value);
    }
    if (settings.sampleBox) setSampleBox(*settings.sampleBox, inputs, values);
    useTextures(description, inputs, values);
    if (!allowsFillRegion(settings, description, filed)) filed.erase(Names::kFillRegion);
    if (const auto region = filed.find(Names::kFillRegion); region != filed.end()) {
        values.insert(*region);
    }
    setFillRegion(settings, description, inputs, values);
    values.merge(filed);
    const bool hasMask = fillRegionOf(description, inputs, values).source != MaskSource::None;
    if (settings.keepsClear && hasMask) {
        avoidRegionByDefault(description, inputs, values);
    }
    fitSampleBox(description, inputs, values);
    return values;
}

Host::Project projectOf(const JobInputs& inputs)
{
    const PictureInfo& source = inputs.source();
    Host::Project project;
    project.size = {source.displayWindow.x2 * source.pixelAspectRatio,
                    double(source.displayWindow.y2)};
    project.extent = project.size;
    project.pixelAspectRatio = source.pixelAspectRatio;
    project.duration = static_cast<double>(inputs.frames().size());
    return project;
}

}  // namespace

InstanceSetup::InstanceSetup(PluginSession& session, const RenderSettings& settings,
                             const JobInputs& inputs, Depth depth, Host::InstanceListener* listener)
    : session_(session),
      inputs_(inputs),
      depth_(depth),
      listener_(listener),
      context_(chooseContext(settings, inputs))
{
    const ContextDescription& description = session.describe(context_);
    checkClips(description, inputs);
    ParameterValues filed;
    if (!settings.parameterFile.empty()) {
        const std::string plugin = session.effect().description().identifier;
        filed = loadParameters(settings.parameterFile, plugin, description, settings.step);
    }
    adopt(collectValues(settings, description, inputs, std::move(filed)));
}

void InstanceSetup::adopt(ParameterValues values)
{
    const ContextDescription& description = session_.describe(context_);
    values_ = std::move(values);
    fillRegion_ = fillRegionOf(description, inputs_, values_);
    repeatsBlocks_ =
        description.parameter(Names::kTemporalConsistency) != nullptr &&
        valueOf(Names::kTemporalConsistency, values_, description) == Host::ParameterValue(1);
    boxInSource_ = Render::boxInSource(description, inputs_, values_);
}

InstanceSetup InstanceSetup::with(ParameterValues values) const
{
    const ContextDescription& description = session_.describe(context_);
    fitSampleBox(description, inputs_, values);
    std::erase_if(values, [&](const auto& value) {
        const Host::ParameterDescription* const parameter = description.parameter(value.first);
        return parameter == nullptr || parameter->initial == value.second;
    });
    InstanceSetup other = *this;
    other.adopt(std::move(values));
    return other;
}

ParameterValues InstanceSetup::values() const
{
    const ContextDescription& description = session_.describe(context_);
    ParameterValues all;
    for (const Host::ParameterDescription& parameter : description.parameters) {
        if (parameter.shape.dimension == 0) continue;
        all.emplace(parameter.name, valueOf(parameter.name, values_, description));
    }
    return all;
}

/// Known for this plug-in only, which fills a rectangle with a margin of five times path and blend.
/// The luminance match searches the fill from the corner of the render window on, so that window
/// must not change.
std::optional<double> InstanceSetup::fillReach() const
{
    constexpr double kTimes = 5.0;
    const Host::EffectDescription& effect = session_.effect().description();
    if (effect.identifier != kTesseretIdentifier) return std::nullopt;
    const ContextDescription& description = session_.describe(context_);
    if (valueOf(Names::kLuminanceMatch, values_, description) != Host::ParameterValue(0)) {
        return std::nullopt;
    }
    const auto length = [&](const char* name) {
        return std::get<double>(valueOf(name, values_, description));
    };
    return kTimes * (length(Names::kPathWidth) + length(Names::kEdgeBlend));
}

ReadyInstance InstanceSetup::make() const
{
    ReadyInstance ready;
    try {
        ready.instance = session_.effect().createInstance(longContextName(context_), listener_);
        ready.instance->setProject(projectOf(inputs_));
        ready.instance->setDepth(depth_);
        for (const auto& [name, info] : inputs_.infos()) {
            const auto components = name == Names::kMatte ? Components::Alpha : Components::RGBA;
            auto source = std::make_shared<FrameSource>(info, depth_, components, inputs_.range());
            ready.clips.emplace(name, source);
            ready.instance->connect(name, source);
        }
        for (const auto& [name, value] : values_) ready.instance->set(name, value);
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
    return ready;
}

}  // namespace Tesseret::Render
