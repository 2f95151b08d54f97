#include "host/command/InstanceSetup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/HostError.h"
#include "host/command/CommandError.h"
#include "host/command/ParameterText.h"

namespace Tesseret::Command {

using Files::PictureInfo;
using Host::ContextDescription;
using Host::ParameterValue;

namespace {

constexpr auto kTextureClips = std::to_array<const char*>({"Texture1", "Texture2", "Texture3"});
constexpr const char* kCorner1 = "sampleCorner1";
constexpr const char* kCorner2 = "sampleCorner2";
constexpr const char* kAvoidFillRegion = "avoidFillRegion";

using Values = std::map<std::string, ParameterValue>;

std::string chooseContext(const RenderSettings& settings, const JobInputs& inputs)
{
    if (!settings.context.empty()) return settings.context;
    const bool isPlain = inputs.infos().size() == 1;
    return isPlain ? "Filter" : "General";
}

void checkClips(const ContextDescription& description, const JobInputs& inputs)
{
    for (const auto& [name, info] : inputs.infos()) {
        if (description.clip(name) != nullptr) continue;
        throw UsageError(info.file.string() + ": the context " +
                         shortContextName(description.context) + " has no clip " + name);
    }
}

/// The picture that the sample box lies over.
const PictureInfo& sampled(const JobInputs& inputs)
{
    for (const char* clip : kTextureClips) {
        if (inputs.has(clip)) return inputs.infos().at(clip);
    }
    return inputs.source();
}

/// Corners of the sample box for whole pixels. The plug-in computes in single precision and drops
/// fractions, so a quarter of a pixel keeps a corner from falling into the pixel before.
void setCorners(const OfxRectD& pixels, const JobInputs& inputs, Values& values)
{
    constexpr double kInsidePixel = 0.25;
    const OfxRectI project = inputs.source().displayWindow;
    const auto normalised = [&](double x, double y) {
        return std::vector<double>{(std::floor(x) + kInsidePixel) / project.x2,
                                   (std::floor(y) + kInsidePixel) / project.y2};
    };
    values[kCorner1] = normalised(pixels.x1, pixels.y1);
    values[kCorner2] = normalised(pixels.x2, pixels.y2);
}

bool hasCorners(const Values& values)
{
    return values.contains(kCorner1) || values.contains(kCorner2);
}

void setSampleBox(const ViewBox& box, const JobInputs& inputs, Values& values)
{
    if (hasCorners(values)) {
        throw UsageError(
            "--sample-box and the parameters sampleCorner1 and sampleCorner2 say the "
            "same thing; give one of them");
    }
    const PictureInfo& picture = sampled(inputs);
    boxInPicture(box, picture);
    const double top = picture.displayWindow.y2;  // the corners count from below
    setCorners({box.x1, top - box.y2, box.x2, top - box.y1}, inputs, values);
}

/// What the files given ask for, unless it was given otherwise.
void setImplied(const ContextDescription& description, const JobInputs& inputs, Values& values)
{
    const auto imply = [&](const std::string& name, const char* value) {
        if (description.parameter(name) == nullptr || values.contains(name)) return;
        values[name] = parseAssignment(name + "=" + value, description).value;
    };
    for (const char* clip : kTextureClips) {
        if (inputs.has(clip)) imply(std::string("use") + clip, "true");
    }
    if (description.clip("Matte") != nullptr) {
        imply("fillRegion", inputs.has("Matte") ? "Matte->Alpha" : "Entire Image");
    }
}

ParameterValue valueOf(const std::string& name, const Values& values,
                       const ContextDescription& description)
{
    const auto set = values.find(name);
    return set != values.end() ? set->second : description.parameter(name)->initial;
}

/// The sample box in pixels, corners in order.
OfxRectI sampleBoxOf(const ContextDescription& description, const JobInputs& inputs,
                     const Values& values)
{
    const auto a = std::get<std::vector<double>>(valueOf(kCorner1, values, description));
    const auto b = std::get<std::vector<double>>(valueOf(kCorner2, values, description));
    const OfxRectI project = inputs.source().displayWindow;
    const auto pixel = [](double part, int size) { return static_cast<int>(part * size); };
    return {pixel(std::min(a[0], b[0]), project.x2), pixel(std::min(a[1], b[1]), project.y2),
            pixel(std::max(a[0], b[0]), project.x2), pixel(std::max(a[1], b[1]), project.y2)};
}

bool covers(const OfxRectI& window, const OfxRectI& box)
{
    return box.x1 >= window.x1 && box.y1 >= window.y1 && box.x2 <= window.x2 && box.y2 <= window.y2;
}

/// The first texture that does not cover the sample box, or null.
const PictureInfo* uncovered(const JobInputs& inputs, const OfxRectI& box)
{
    for (const char* clip : kTextureClips) {
        if (!inputs.has(clip)) continue;
        const PictureInfo& texture = inputs.infos().at(clip);
        if (!covers(texture.dataWindow, box)) return &texture;
    }
    return nullptr;
}

/// The middle of what all textures have, in the proportions of the plug-in's own default.
OfxRectD middleOfTextures(const JobInputs& inputs)
{
    constexpr double kMargin = 0.2;
    OfxRectI common = sampled(inputs).dataWindow;
    for (const char* clip : kTextureClips) {
        if (!inputs.has(clip)) continue;
        common = Host::intersection(common, inputs.infos().at(clip).dataWindow);
    }
    const double width = common.x2 - common.x1;
    const double height = common.y2 - common.y1;
    return {common.x1 + kMargin * width, common.y1 + kMargin * height, common.x2 - kMargin * width,
            common.y2 - kMargin * height};
}

/// Blocks are taken from inside the sample box, so every texture has to cover it. A box that nobody
/// asked for moves into the textures; one that was asked for and does not fit is refused.
void fitSampleBox(const ContextDescription& description, const JobInputs& inputs, Values& values)
{
    for (const char* name : {kCorner1, kCorner2, kAvoidFillRegion}) {
        if (description.parameter(name) == nullptr) return;
    }
    if (valueOf(kAvoidFillRegion, values, description) == ParameterValue(1)) return;
    const OfxRectI box = sampleBoxOf(description, inputs, values);
    const PictureInfo* texture = uncovered(inputs, box);
    if (texture == nullptr) return;
    if (!hasCorners(values)) {
        setCorners(middleOfTextures(inputs), inputs, values);
        return;
    }
    throw UsageError(texture->file.string() + ": the sample box of " +
                     std::to_string(box.x2 - box.x1) + " x " + std::to_string(box.y2 - box.y1) +
                     " pixels reaches beyond this texture; say with --sample-box which part of "
                     "the texture to use");
}

Values collectValues(const RenderSettings& settings, const ContextDescription& description,
                     const JobInputs& inputs)
{
    Values values;
    for (const std::string& text : settings.parameters) {
        NamedValue assignment = parseAssignment(text, description);
        values[assignment.name] = std::move(assignment.value);
    }
    if (settings.sampleBox) setSampleBox(*settings.sampleBox, inputs, values);
    setImplied(description, inputs, values);
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

ReadyInstance setUpInstance(PluginSession& session, const RenderSettings& settings,
                            const JobInputs& inputs, Host::Depth depth)
{
    const std::string context = chooseContext(settings, inputs);
    const ContextDescription& description = session.describe(context);
    checkClips(description, inputs);
    const Values values = collectValues(settings, description, inputs);
    const auto [first, last] = std::ranges::minmax(inputs.frames());
    ReadyInstance ready;
    try {
        ready.instance = session.effect().createInstance(longContextName(context));
        ready.instance->setProject(projectOf(inputs));
        ready.instance->setDepth(depth);
        for (const auto& [name, info] : inputs.infos()) {
            const auto components =
                name == "Matte" ? Host::Components::Alpha : Host::Components::RGBA;
            auto source = std::make_shared<FrameSource>(info, depth, components,
                                                        OfxRangeD{double(first), double(last)});
            ready.clips.emplace(name, source);
            ready.instance->connect(name, source);
        }
        for (const auto& [name, value] : values) ready.instance->set(name, value);
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
    return ready;
}

OfxRectI boxInPicture(const ViewBox& box, const PictureInfo& picture)
{
    const double top = picture.displayWindow.y2;
    const OfxRectI asked =
        Host::toPixels({box.x1, top - box.y2, box.x2, top - box.y1}, {1.0, 1.0}, 1.0);
    const OfxRectI inside = Host::intersection(asked, picture.dataWindow);
    if (!Host::isEmpty(inside)) return inside;
    throw UsageError("the box " + numberText(box.x1) + "," + numberText(box.y1) + "," +
                     numberText(box.x2) + "," + numberText(box.y2) + " lies outside " +
                     picture.file.string() + ", which has " +
                     std::to_string(picture.displayWindow.x2) + " x " +
                     std::to_string(picture.displayWindow.y2) + " pixels");
}

}  // namespace Tesseret::Command
