#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "host/command/JobInputs.h"

namespace Tesseret::Viewer {

/// The files that are viewed, with the pictures of the frame that was asked for last.
class PictureCache {
public:
    /// Throws as `JobInputs` does.
    explicit PictureCache(const Command::RenderSettings& settings);

    const Command::JobInputs& inputs() const { return inputs_; }
    Host::Depth depth() const { return depth_; }

    /// The pictures by clip, at full size. From any thread. Throws `FileError` or `UsageError`.
    std::shared_ptr<const Command::FramePictures> read(int frame);

private:
    Command::JobInputs inputs_;
    Host::Depth depth_;
    std::mutex mutex_;  ///< guards reading, and what follows
    std::optional<int> frame_;
    std::shared_ptr<const Command::FramePictures> pictures_;
};

}  // namespace Tesseret::Viewer
