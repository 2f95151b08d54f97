#include "render/PreparedMatte.h"

#include <utility>

#include "files/PictureScale.h"
#include "render/MatteGrow.h"
#include "render/MattePart.h"

namespace Tesseret::Render {

const MatteAreas& PaintedAreas::of(const std::shared_ptr<const Picture>& matte, Polarity polarity)
{
    if (!areas_ || matte_ != matte) {
        matte_ = matte;
        areas_.emplace(matte, polarity);
    }
    return *areas_;
}

MattePreparation::MattePreparation(const RenderSettings& settings, Polarity polarity,
                                   std::shared_ptr<PaintedAreas> painted)
    : polarity_(polarity),
      grow_(settings.matteGrow),
      renderScale_(settings.renderScale),
      areas_(settings.areas),
      side_(settings.matteSide),
      painted_(std::move(painted))
{}

std::shared_ptr<const PreparedMatte> MattePreparation::prepare(const ClipPicture& matte)
{
    if (prepared_ && matte.picture == last_) return prepared_;
    const OfxRectI& display = matte.info.displayWindow;
    std::shared_ptr<const Picture> whole = matte.picture;
    std::size_t paintedAreas = 0;
    if (!areas_.empty() || side_) {
        const MatteAreas& painted = painted_->of(matte.picture, polarity_);
        whole = std::make_shared<const Picture>(
            partOfMatte(painted, polarity_, areas_, side_, display.y2));
        paintedAreas = painted.count();
    }
    if (grow_ > 0.0) {
        whole = std::make_shared<const Picture>(grownMatte(*whole, grow_, polarity_, display));
    }
    std::shared_ptr<const Picture> scaled = whole;
    if (renderScale_ != 1.0) {
        scaled = std::make_shared<const Picture>(
            Files::scaled(*whole, OfxPointD{renderScale_, renderScale_}));
    }
    last_ = matte.picture;
    prepared_ = std::make_shared<const PreparedMatte>(PreparedMatte{
        matte.info.file, paintedAreas, std::move(whole), MatteAreas(std::move(scaled), polarity_)});
    return prepared_;
}

}  // namespace Tesseret::Render
