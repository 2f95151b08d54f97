#pragma once

/// The layers of a frame: source, result, both with a wipe between them, and the maps of the
/// render.

#include <memory>
#include <string_view>

#include "viewer/model/RenderWorker.h"
#include "viewer/model/View.h"
#include "viewer/window/PictureTexture.h"

namespace Tesseret::Viewer {

enum class Layer {
    Source,
    Result,
    Split,
    FillMask,
    PathBand,
    Blocks,
    BoundaryPath,
    CompositeMask,
    LuminanceGain,
};
inline constexpr int kLayerCount = 9;

/// The label for the user.
const char* layerLabel(Layer layer);
/// The name of the map that a layer shows; empty when it shows none.
std::string_view mapName(Layer layer);

class PictureLayers {
public:
    void showSource(std::shared_ptr<const Picture> source);
    /// Null, or a result without picture, keeps the previous one.
    void showResult(std::shared_ptr<const RenderResult> result);

    Layer layer() const { return layer_; }
    void choose(Layer layer);
    /// Position of the split: canonical x, source to the left and result to the right.
    double wipe() const { return wipe_; }
    void setWipe(double x) { wipe_ = x; }

    /// Draws the layer; projection and viewport are those of the view. Draws nothing when there is
    /// no such map.
    void draw(const View& view, double density) const;

private:
    void drawSplit(const View& view, double density) const;
    void updateMap();

    Layer layer_ = Layer::Result;
    double wipe_ = 0.0;
    std::shared_ptr<const RenderResult> result_;
    PictureTexture source_, resultTexture_, map_;
};

}  // namespace Tesseret::Viewer
