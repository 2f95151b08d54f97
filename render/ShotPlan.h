#pragma once

/// Which frames of a shot a job goes through, and which of them it writes.

#include <set>
#include <vector>

#include "render/JobInputs.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

struct ShotFrame {
    int frame;
    bool isWritten;  ///< else later frames need what it records, or where its areas are
};

/// The frames to render: all, or those without a whole file where these are skipped.
std::set<int> framesToWrite(const RenderSettings& settings, const JobInputs& inputs);

/// Those frames, and where blocks are repeated the frames of the shot before and between them. Of a
/// shot with a saved fill the frame that recorded it is left out, unless it is to be written.
std::vector<ShotFrame> shotFrames(const RenderSettings& settings, const JobInputs& inputs,
                                  const std::set<int>& toWrite, bool repeatsBlocks);

/// A warning where the frames repeat blocks and cannot be those that earlier frames of the shot
/// show; else empty.
std::string jumpWarning(const RenderSettings& settings, const JobInputs& inputs);

}  // namespace Tesseret::Render
