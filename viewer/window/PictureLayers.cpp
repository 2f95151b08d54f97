#include "viewer/window/PictureLayers.h"

#include <array>
#include <cmath>
#include <utility>

#include "viewer/window/Gl.h"

namespace Tesseret::Viewer {

namespace {

struct LayerRow {
    const char* label;
    std::string_view map;
};

/// In the order of the layers.
constexpr std::array<LayerRow, kLayerCount> kLayers{{
    {"Source", ""},
    {"Result", ""},
    {"Split", ""},
    {"Fill mask", "fill-mask"},
    {"Path band", "path-band"},
    {"Blocks", "blocks"},
    {"Boundary path", "boundary-path"},
    {"Composite mask", "composite-mask"},
    {"Luminance gain", "luminance-gain"},
}};

void drawWipe(const View& view, double x)
{
    const OfxRectD seen = view.visible();
    const double pixel = 1.0 / view.scale();
    const double handle = 7.0 * pixel, middle = (seen.y1 + seen.y2) / 2.0;
    glColor3d(0.96, 0.71, 0.33);
    glBegin(GL_QUADS);
    glVertex2d(x - pixel, seen.y1);
    glVertex2d(x + pixel, seen.y1);
    glVertex2d(x + pixel, seen.y2);
    glVertex2d(x - pixel, seen.y2);
    glVertex2d(x - handle, middle);
    glVertex2d(x, middle - 2.0 * handle);
    glVertex2d(x + handle, middle);
    glVertex2d(x, middle + 2.0 * handle);
    glEnd();
}

}  // namespace

const char* layerLabel(Layer layer)
{
    return kLayers[static_cast<std::size_t>(layer)].label;
}

std::string_view mapName(Layer layer)
{
    return kLayers[static_cast<std::size_t>(layer)].map;
}

void PictureLayers::showSource(std::shared_ptr<const Picture> source)
{
    source_.show(std::move(source), {1.0, 1.0});
}

void PictureLayers::showResult(std::shared_ptr<const RenderResult> result)
{
    if (!result || result == result_ || !result->error.empty()) return;
    result_ = std::move(result);
    const double scale = result_->request.scale;
    // Shares ownership with the result that holds the picture.
    resultTexture_.show({result_, &result_->picture}, {scale, scale});
    updateMap();
}

void PictureLayers::choose(Layer layer)
{
    if (layer == layer_) return;
    layer_ = layer;
    updateMap();
}

void PictureLayers::updateMap()
{
    const std::string name(mapName(layer_));
    const bool hasMap = result_ && result_->maps.contains(name);
    if (!hasMap) return map_.show(nullptr, {1.0, 1.0});
    const double scale = result_->request.scale;
    map_.show({result_, &result_->maps.at(name)}, {scale, scale});
}

void PictureLayers::draw(const View& view, double density) const
{
    if (layer_ == Layer::Split) return drawSplit(view, density);
    const bool showsSource =
        layer_ == Layer::Source || (layer_ == Layer::Result && resultTexture_.isEmpty());
    if (showsSource) return source_.draw();
    if (layer_ == Layer::Result) return resultTexture_.draw();
    map_.draw();
}

void PictureLayers::drawSplit(const View& view, double density) const
{
    source_.draw();
    const ScreenArea& area = view.area();
    const double x = std::clamp(view.toScreen({wipe_, 0.0}).x - area.x, 0.0, area.width);
    std::array<GLint, 4> port{};
    glGetIntegerv(GL_VIEWPORT, port.data());
    const int left = static_cast<int>(std::lround(x * density));
    glPushAttrib(GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(port[0] + left, port[1], port[2] - left, port[3]);
    resultTexture_.draw();
    glPopAttrib();
    drawWipe(view, wipe_);
}

}  // namespace Tesseret::Viewer
