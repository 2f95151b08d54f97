#include "render/FillPictures.h"

#include <utility>

namespace Tesseret::Render {

namespace {

std::shared_ptr<const Picture> shared(Picture picture)
{
    return std::make_shared<const Picture>(std::move(picture));
}

/// A map that was not reported gives an empty picture.
const Picture& orEmpty(const std::shared_ptr<const Picture>& picture)
{
    static const Picture kEmpty;
    return picture ? *picture : kEmpty;
}

}  // namespace

std::optional<FillPicture> FillPictures::make(const TesseretMapV1& map)
{
    const std::string_view name = map.name;
    if (name == "fillMask") return FillPicture{kFillMask, region_ = shared(greyPicture(map))};
    if (name == "pathBand") return FillPicture{kPathBand, band_ = shared(bandPicture(map))};
    if (name == "blocks") return FillPicture{kBlocks, shared(blockPicture(map)), true};
    if (name == "compositeMask")
        return FillPicture{kCompositeMask, used_ = shared(greyPicture(map))};
    if (name == "luminanceGain") {
        return FillPicture{kGain, shared(gainPicture(map, orEmpty(used_))), true};
    }
    return std::nullopt;
}

FillPicture FillPictures::make(const TesseretPathV1& path) const
{
    Picture picture = dimmed(orEmpty(region_), orEmpty(band_));
    drawPath(path, picture);
    return {kPath, shared(std::move(picture)), true};
}

MapRange FillPictures::usedRange(const TesseretMapV1& gain) const
{
    return rangeOf(gain, orEmpty(used_));
}

}  // namespace Tesseret::Render
