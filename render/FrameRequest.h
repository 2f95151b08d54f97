#pragma once

/// What is asked of the plug-in for a frame, and how its picture lies in a file; the same for
/// everyone who renders the same settings.

#include "files/PictureWriter.h"
#include "host/Instance.h"
#include "render/JobInputs.h"

namespace Tesseret::Render {

/// Throws `UsageError` when the window to render is not in the source.
Host::RenderRequest requestFor(const RenderSettings& settings, bool isSequence, int frame,
                               const Files::PictureInfo& source);

/// For the picture of the request's window, which came from this source.
Files::WriteOptions writeOptionsFor(const RenderSettings& settings, const JobInputs& inputs,
                                    const std::filesystem::path& file,
                                    const Files::PictureInfo& source, OfxRectI window);

}  // namespace Tesseret::Render
