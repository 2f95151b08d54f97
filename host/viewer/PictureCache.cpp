#include "host/viewer/PictureCache.h"

namespace Tesseret::Viewer {

PictureCache::PictureCache(const Command::RenderSettings& settings)
    : inputs_(settings), depth_(settings.depth.value_or(inputs_.source().depth))
{}

std::shared_ptr<const Command::FramePictures> PictureCache::read(int frame)
{
    const std::lock_guard lock(mutex_);
    if (frame_ != frame) {
        auto pictures = std::make_shared<Command::FramePictures>(inputs_.read(frame, depth_));
        pictures_ = std::move(pictures);
        frame_ = frame;
    }
    return pictures_;
}

}  // namespace Tesseret::Viewer
