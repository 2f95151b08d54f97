#include "render/Boxes.h"

#include <algorithm>
#include <cmath>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "render/JobError.h"

namespace Tesseret::Render {

using Files::PictureInfo;
using Host::ContextDescription;

namespace {

constexpr const char* kWindowOption = "--window";
constexpr const char* kSampleBoxOption = "--sample-box";

std::string boxText(const ViewBox& box)
{
    return numberText(box.x1) + "," + numberText(box.y1) + "," + numberText(box.x2) + "," +
           numberText(box.y2);
}

/// The part of a box that lies in the picture.
ViewBox clipped(const ViewBox& box, const PictureInfo& picture)
{
    const double top = picture.displayWindow.y2;
    const OfxRectI& window = picture.dataWindow;
    return {std::max(box.x1, double(window.x1)), std::max(box.y1, top - window.y2),
            std::min(box.x2, double(window.x2)), std::min(box.y2, top - window.y1)};
}

void noteClipped(const char* option, const ViewBox& box, const PictureInfo& picture,
                 std::vector<std::string>& notes)
{
    boxInPicture(option, box, picture);
    const std::string given = boxText(box);
    const std::string used = boxText(clipped(box, picture));
    if (used == given) return;
    notes.push_back(std::string(option) + ": the box " + given + " reaches beyond the pixels of " +
                    Files::shownName(picture.file) + "; " + used + " is used");
}

bool hasTexture(const JobInputs& inputs)
{
    return std::ranges::any_of(Names::kTextures,
                               [&](const char* clip) { return inputs.has(clip); });
}

bool hasCorners(const ParameterValues& values)
{
    return values.contains(Names::kSampleCorner1) || values.contains(Names::kSampleCorner2);
}

bool covers(const OfxRectI& window, const OfxRectI& box)
{
    return box.x1 >= window.x1 && box.y1 >= window.y1 && box.x2 <= window.x2 && box.y2 <= window.y2;
}

/// The first texture that does not cover the sample box, or null.
const PictureInfo* uncovered(const JobInputs& inputs, const OfxRectI& box)
{
    for (const char* clip : Names::kTextures) {
        if (!inputs.has(clip)) continue;
        const PictureInfo& texture = inputs.infos().at(clip);
        if (!covers(texture.dataWindow, box)) return &texture;
    }
    return nullptr;
}

/// The middle of the area common to all textures, in the proportions of the plug-in's default.
OfxRectD middleOfTextures(const JobInputs& inputs)
{
    constexpr double kMargin = 0.2;
    OfxRectI common = sampledPicture(inputs).dataWindow;
    for (const char* clip : Names::kTextures) {
        if (!inputs.has(clip)) continue;
        common = intersection(common, inputs.infos().at(clip).dataWindow);
    }
    const double width = common.x2 - common.x1;
    const double height = common.y2 - common.y1;
    return {common.x1 + kMargin * width, common.y1 + kMargin * height, common.x2 - kMargin * width,
            common.y2 - kMargin * height};
}

bool isOn(const std::string& name, const ContextDescription& description,
          const ParameterValues& values)
{
    return valueOf(name, values, description) == Host::ParameterValue(1);
}

/// Whether the plug-in has a sample box.
bool hasBox(const ContextDescription& description)
{
    return description.parameter(Names::kSampleCorner1) != nullptr &&
           description.parameter(Names::kSampleCorner2) != nullptr &&
           description.parameter(Names::kAvoidFillRegion) != nullptr;
}

}  // namespace

OfxRectI boxInPicture(const std::string& option, const ViewBox& box, const PictureInfo& picture)
{
    const double top = picture.displayWindow.y2;
    const OfxRectI asked = toPixels({box.x1, top - box.y2, box.x2, top - box.y1}, {1.0, 1.0}, 1.0);
    const OfxRectI inside = intersection(asked, picture.dataWindow);
    if (!isEmpty(inside)) return inside;
    throw UsageError(option + ": the box " + boxText(box) + " lies outside " +
                     Files::shownName(picture.file) + ", which has " +
                     std::to_string(picture.displayWindow.x2) + " x " +
                     std::to_string(picture.displayWindow.y2) + " pixels");
}

const PictureInfo& sampledPicture(const JobInputs& inputs)
{
    for (const char* clip : Names::kTextures) {
        if (inputs.has(clip)) return inputs.infos().at(clip);
    }
    return inputs.source();
}

/// The plug-in computes in single precision and truncates, so a quarter of a pixel is added to keep
/// a corner out of the pixel before it.
void setCorners(const OfxRectD& pixels, const JobInputs& inputs, ParameterValues& values)
{
    constexpr double kInsidePixel = 0.25;
    const OfxRectI project = inputs.source().displayWindow;
    const auto normalised = [&](double x, double y) {
        return std::vector<double>{(std::floor(x) + kInsidePixel) / project.x2,
                                   (std::floor(y) + kInsidePixel) / project.y2};
    };
    values[Names::kSampleCorner1] = normalised(pixels.x1, pixels.y1);
    values[Names::kSampleCorner2] = normalised(pixels.x2, pixels.y2);
}

OfxRectI sampleBoxOf(const ContextDescription& description, const JobInputs& inputs,
                     const ParameterValues& values)
{
    const auto a =
        std::get<std::vector<double>>(valueOf(Names::kSampleCorner1, values, description));
    const auto b =
        std::get<std::vector<double>>(valueOf(Names::kSampleCorner2, values, description));
    const OfxRectI project = inputs.source().displayWindow;
    const auto pixel = [](double part, int size) { return static_cast<int>(part * size); };
    return {pixel(std::min(a[0], b[0]), project.x2), pixel(std::min(a[1], b[1]), project.y2),
            pixel(std::max(a[0], b[0]), project.x2), pixel(std::max(a[1], b[1]), project.y2)};
}

OfxRectI windowInSource(const RenderSettings& settings, const PictureInfo& source)
{
    return settings.window ? boxInPicture(kWindowOption, *settings.window, source)
                           : source.dataWindow;
}

std::vector<std::string> clippedBoxes(const RenderSettings& settings, const JobInputs& inputs)
{
    std::vector<std::string> notes;
    if (settings.window) noteClipped(kWindowOption, *settings.window, inputs.source(), notes);
    if (settings.sampleBox && !hasTexture(inputs)) {
        noteClipped(kSampleBoxOption, *settings.sampleBox, inputs.source(), notes);
    }
    return notes;
}

void setSampleBox(const ViewBox& box, const JobInputs& inputs, ParameterValues& values)
{
    if (hasCorners(values)) {
        throw UsageError(
            "--sample-box and the parameters sampleCorner1 and sampleCorner2 set the "
            "same box; give only one of them");
    }
    const PictureInfo& picture = sampledPicture(inputs);
    boxInPicture(kSampleBoxOption, box, picture);
    // A texture has to cover the box; that is checked once all values are known.
    const ViewBox used = hasTexture(inputs) ? box : clipped(box, picture);
    const double top = picture.displayWindow.y2;  // the corners count from below
    setCorners({used.x1, top - used.y2, used.x2, top - used.y1}, inputs, values);
}

void avoidRegionByDefault(const ContextDescription& description, const JobInputs& inputs,
                          ParameterValues& values)
{
    const bool hasForeignTexture = std::ranges::any_of(Names::kTextures, [&](const char* clip) {
        return inputs.has(clip) && !inputs.crops().isFromSource(clip);
    });
    if (!hasBox(description) || hasForeignTexture || hasCorners(values)) return;
    values.try_emplace(Names::kAvoidFillRegion, Host::ParameterValue(1));
}

void fitSampleBox(const ContextDescription& description, const JobInputs& inputs,
                  ParameterValues& values)
{
    if (!hasBox(description) || isOn(Names::kAvoidFillRegion, description, values)) return;
    const OfxRectI box = sampleBoxOf(description, inputs, values);
    const PictureInfo* texture = uncovered(inputs, box);
    if (texture == nullptr) return;
    if (!hasCorners(values)) {
        setCorners(middleOfTextures(inputs), inputs, values);
        return;
    }
    throw UsageError(Files::shownName(texture->file) + ": the sample box of " +
                     std::to_string(box.x2 - box.x1) + " x " + std::to_string(box.y2 - box.y1) +
                     " pixels reaches beyond this texture; choose a part of the texture with "
                     "--sample-box");
}

std::optional<OfxRectI> boxInSource(const ContextDescription& description, const JobInputs& inputs,
                                    const ParameterValues& values)
{
    if (!hasBox(description) || isOn(Names::kAvoidFillRegion, description, values)) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < Names::kTextures.size(); ++i) {
        const char* const toggle = Names::kUseTextures[i];
        const bool hasToggle = description.parameter(toggle) != nullptr;
        if (hasToggle && inputs.has(Names::kTextures[i]) && isOn(toggle, description, values)) {
            return std::nullopt;
        }
    }
    return sampleBoxOf(description, inputs, values);
}

}  // namespace Tesseret::Render
