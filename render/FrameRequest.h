#pragma once

/// The plug-in's render request for a frame, and the layout of its picture in a file; both depend
/// on the settings only.

#include "files/PictureWriter.h"
#include "host/Instance.h"
#include "render/JobInputs.h"

namespace Tesseret::Render {

/// Throws `UsageError` when the window to render is not in the source.
Host::RenderRequest requestFor(const RenderSettings& settings, bool isSequence, int frame,
                               const Files::PictureInfo& source);

/// For a picture of the request's window, rendered from this source.
Files::WriteOptions writeOptionsFor(const RenderSettings& settings, const JobInputs& inputs,
                                    const std::filesystem::path& file,
                                    const Files::PictureInfo& source, OfxRectI window);

}  // namespace Tesseret::Render
