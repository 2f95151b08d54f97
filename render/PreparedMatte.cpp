#include "render/PreparedMatte.h"

#include "files/PictureScale.h"
#include "render/MatteGrow.h"

namespace Tesseret::Render {

MattePreparation::MattePreparation(const RenderSettings& settings, Polarity polarity)
    : polarity_(polarity), grow_(settings.matteGrow), renderScale_(settings.renderScale)
{}

std::shared_ptr<const PreparedMatte> MattePreparation::prepare(const ClipPicture& matte)
{
    if (prepared_ && matte.picture == last_) return prepared_;
    std::shared_ptr<const Picture> whole = matte.picture;
    if (grow_ > 0.0) {
        whole = std::make_shared<const Picture>(
            grownMatte(*whole, grow_, polarity_, matte.info.displayWindow));
    }
    std::shared_ptr<const Picture> scaled = whole;
    if (renderScale_ != 1.0) {
        scaled = std::make_shared<const Picture>(
            Files::scaled(*whole, OfxPointD{renderScale_, renderScale_}));
    }
    last_ = matte.picture;
    prepared_ = std::make_shared<const PreparedMatte>(
        PreparedMatte{matte.info.file, std::move(whole), MatteAreas(std::move(scaled), polarity_)});
    return prepared_;
}

}  // namespace Tesseret::Render
