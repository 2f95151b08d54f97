#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "render/JobInputs.h"

namespace Tesseret::Viewer {

/// The settings for a painted matte, whatever these fill from.
Render::RenderSettings paintedSettings(const Render::RenderSettings& settings);

/// The files being viewed, with the pictures of the last frame read.
/// A frame's pictures with a painted matte, as if it was read from a file. Throws `UsageError` for
/// a matte of another size.
Render::FramePictures paintedPictures(const Render::FramePictures& read,
                                      std::shared_ptr<const Picture> matte,
                                      const Render::RenderSettings& settings);

class PictureCache {
public:
    /// Throws as `JobInputs` does.
    explicit PictureCache(const Render::RenderSettings& settings);

    const Render::JobInputs& inputs() const { return inputs_; }
    /// The same with a painted matte in place of the matte's file.
    const Render::JobInputs& paintedInputs();
    Depth depth() const { return depth_; }

    /// The pictures by clip, at full size. From any thread. Throws `FileError` or `UsageError`.
    std::shared_ptr<const Render::FramePictures> read(int frame);

private:
    Render::RenderSettings settings_;
    Render::JobInputs inputs_;
    Depth depth_;
    std::mutex mutex_;  ///< guards reading and the members below
    std::unique_ptr<Render::JobInputs> painted_;
    std::optional<int> frame_;
    std::shared_ptr<const Render::FramePictures> pictures_;
};

}  // namespace Tesseret::Viewer
