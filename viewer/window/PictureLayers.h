#pragma once

/// What of a frame can be shown: its source, its result, both with a wipe between them, and the
/// maps that the result was made with.

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

/// For people.
const char* layerLabel(Layer layer);
/// The name of the result's map that a layer shows; empty when it shows none.
std::string_view mapName(Layer layer);

class PictureLayers {
public:
    void showSource(std::shared_ptr<const Picture> source);
    /// Null, or one without a picture, leaves the result as it was.
    void showResult(std::shared_ptr<const RenderResult> result);

    Layer layer() const { return layer_; }
    void choose(Layer layer);
    /// Of the split: canonical, source to the left and result to the right.
    double wipe() const { return wipe_; }
    void setWipe(double x) { wipe_ = x; }

    /// Draws the layer; projection and viewport are the view's. Nothing where there is no such map.
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
