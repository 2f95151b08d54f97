#include "viewer/model/PictureCache.h"

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
