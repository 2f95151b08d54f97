#include "viewer/model/PictureCache.h"

#include <utility>

#include "effect/ParameterNames.h"

namespace Tesseret::Viewer {

Render::RenderSettings paintedSettings(const Render::RenderSettings& settings)
{
    Render::RenderSettings painted = settings;
    painted.paintsMatte = true;
    if (painted.matte.empty()) painted.matte = "the painted matte";
    painted.mask = Render::MaskOption::None;
    std::erase_if(painted.parameters, [](const std::string& text) {
        return text.starts_with(std::string(Names::kFillRegion) + "=");
    });
    return painted;
}

Render::FramePictures paintedPictures(const Render::FramePictures& read,
                                      std::shared_ptr<const Picture> matte,
                                      const Render::RenderSettings& settings)
{
    Render::ClipPicture painted;
    painted.info = Render::paintedMatteInfo(paintedSettings(settings).matte, matte->bounds());
    painted.picture = std::move(matte);
    Render::checkMatte(painted.info, read.at(Names::kSource).info);
    Render::FramePictures pictures = read;
    pictures.insert_or_assign(Names::kMatte, std::move(painted));
    return pictures;
}

PictureCache::PictureCache(const Render::RenderSettings& settings)
    : settings_(settings),
      inputs_(settings),
      depth_(settings.depth.value_or(inputs_.source().depth))
{}

const Render::JobInputs& PictureCache::paintedInputs()
{
    if (settings_.paintsMatte) return inputs_;
    const std::lock_guard lock(mutex_);
    if (!painted_) painted_ = std::make_unique<Render::JobInputs>(paintedSettings(settings_));
    return *painted_;
}

std::shared_ptr<const Render::FramePictures> PictureCache::read(int frame)
{
    const std::lock_guard lock(mutex_);
    if (frame_ != frame) {
        auto pictures = std::make_shared<Render::FramePictures>(inputs_.read(frame, depth_));
        pictures_ = std::move(pictures);
        frame_ = frame;
    }
    return pictures_;
}

}  // namespace Tesseret::Viewer
