#include "render/TextureCrops.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "render/Boxes.h"
#include "render/JobError.h"

namespace Tesseret::Render {

namespace {

OfxRectI scaledBox(const OfxRectI& box, OfxPointD scale)
{
    return toPixels({double(box.x1), double(box.y1), double(box.x2), double(box.y2)}, scale, 1.0);
}

ClipPicture cutOut(ClipPicture from, const OfxRectI& box)
{
    const Picture& whole = *from.picture;
    if (isEmpty(intersection(box, from.info.dataWindow))) {
        throw UsageError(Files::shownName(from.info.file) +
                         ": has no pixels where a texture is cut from it");
    }
    Picture part = whole.copied(intersection(scaledBox(box, from.scale), whole.bounds()), {});
    part.setRegionOfDefinition(part.bounds());
    from.info.dataWindow = intersection(box, from.info.dataWindow);
    from.picture = std::make_shared<const Picture>(std::move(part));
    from.warnings.clear();
    return from;
}

}  // namespace

TextureCrops::TextureCrops(const RenderSettings& settings,
                           const std::map<std::string, Files::PictureInfo>& infos)
{
    for (std::size_t i = 0; i < settings.textureCrops.size(); ++i) {
        if (!settings.textureCrops[i]) continue;
        const std::string clip = Names::kTextures.at(i);
        const std::string from = settings.textures[i].empty() ? Names::kSource : clip;
        const std::string option = "--texture" + std::to_string(i + 1) + "-crop";
        crops_.push_back(
            {clip, from, boxInPicture(option, *settings.textureCrops[i], infos.at(from))});
    }
}

void TextureCrops::cut(std::map<std::string, Files::PictureInfo>& infos) const
{
    for (const Crop& crop : crops_) {
        Files::PictureInfo info = infos.at(crop.from);
        info.dataWindow = crop.box;
        infos.insert_or_assign(crop.clip, std::move(info));
    }
}

void TextureCrops::cut(FramePictures& pictures) const
{
    for (const Crop& crop : crops_) {
        pictures.insert_or_assign(crop.clip, cutOut(pictures.at(crop.from), crop.box));
    }
}

bool TextureCrops::isFromSource(const std::string& clip) const
{
    return std::ranges::any_of(
        crops_, [&](const Crop& crop) { return crop.clip == clip && crop.from == Names::kSource; });
}

void TextureCrops::cutFromSource(FramePictures& pictures) const
{
    for (const Crop& crop : crops_) {
        if (crop.from != Names::kSource) continue;
        pictures.insert_or_assign(crop.clip, cutOut(pictures.at(crop.from), crop.box));
    }
}

}  // namespace Tesseret::Render
