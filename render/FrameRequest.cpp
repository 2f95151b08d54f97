#include "render/FrameRequest.h"

#include <algorithm>

#include "effect/ParameterNames.h"
#include "render/Boxes.h"

namespace Tesseret::Render {

using Files::PictureInfo;

namespace {

OfxRectI scaledRect(const OfxRectI& rect, double scale)
{
    return toPixels({double(rect.x1), double(rect.y1), double(rect.x2), double(rect.y2)},
                    {scale, scale}, 1.0);
}

/// Blocks of a colour texture would lose their colour in a grey picture.
bool hasColourTexture(const JobInputs& inputs)
{
    return std::ranges::any_of(inputs.infos(), [](const auto& input) {
        return input.first != Names::kSource && input.first != Names::kMatte &&
               input.second.isColour;
    });
}

/// A scaled render has a scaled display window. A part of the picture becomes the whole display
/// window where the format cannot store a data window.
std::optional<OfxRectI> changedDisplay(const RenderSettings& settings,
                                       const std::filesystem::path& file, const PictureInfo& source,
                                       OfxRectI window)
{
    if (settings.window && !Files::keepsDataWindow(file)) return window;
    if (settings.renderScale == 1.0) return std::nullopt;
    return scaledRect(source.displayWindow, settings.renderScale);
}

}  // namespace

Host::RenderRequest requestFor(const RenderSettings& settings, bool isSequence, int frame,
                               const PictureInfo& source)
{
    Host::RenderRequest request;
    request.time = frame;
    request.scale = {settings.renderScale, settings.renderScale};
    request.window = scaledRect(windowInSource(settings, source), settings.renderScale);
    request.sequential = isSequence;
    return request;
}

Files::WriteOptions writeOptionsFor(const RenderSettings& settings, const JobInputs& inputs,
                                    const std::filesystem::path& file, const PictureInfo& source,
                                    OfxRectI window)
{
    Files::WriteOptions options;
    options.compression = settings.compression;
    options.asColour = hasColourTexture(inputs);
    options.displayWindow = changedDisplay(settings, file, source, window);
    return options;
}

}  // namespace Tesseret::Render
