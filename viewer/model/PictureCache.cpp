#include "viewer/model/PictureCache.h"

namespace Tesseret::Viewer {

PictureCache::PictureCache(const Render::RenderSettings& settings)
    : inputs_(settings), depth_(settings.depth.value_or(inputs_.source().depth))
{}

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
