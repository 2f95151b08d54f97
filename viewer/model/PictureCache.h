#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "render/JobInputs.h"

namespace Tesseret::Viewer {

/// The files being viewed, with the pictures of the last frame read.
class PictureCache {
public:
    /// Throws as `JobInputs` does.
    explicit PictureCache(const Render::RenderSettings& settings);

    const Render::JobInputs& inputs() const { return inputs_; }
    Depth depth() const { return depth_; }

    /// The pictures by clip, at full size. From any thread. Throws `FileError` or `UsageError`.
    std::shared_ptr<const Render::FramePictures> read(int frame);

private:
    Render::JobInputs inputs_;
    Depth depth_;
    std::mutex mutex_;  ///< guards reading and the members below
    std::optional<int> frame_;
    std::shared_ptr<const Render::FramePictures> pictures_;
};

}  // namespace Tesseret::Viewer
