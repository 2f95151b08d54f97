#include "viewer/window/TrialLayer.h"

namespace Tesseret::Viewer {

void TrialLayer::update()
{
    const SearchState search = session_.search().state();
    const MatteDocument* const matte = session_.matte();
    const std::uint64_t revision = matte != nullptr ? matte->paint().revision() : 0;
    if (!search.isRunning) {
        const bool isRendered =
            !session_.search().isBusy() && !session_.worker().state().isRendering;
        if (isRendered) best_.clear();
        matte_.reset();
        return;
    }
    if (!matte_) {
        best_.clear();
        matte_ = revision;
        frame_ = session_.frame();
    }
    if (*matte_ != revision || frame_ != session_.frame() || session_.isPainting()) {
        return best_.clear();
    }
    for (const auto& [area, picture] : search.best) best_[area].show(picture, {1.0, 1.0});
}

void TrialLayer::draw() const
{
    for (const auto& [area, texture] : best_) texture.draw();
}

}  // namespace Tesseret::Viewer
