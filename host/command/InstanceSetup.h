#pragma once

/// From settings and files to an instance that is ready to render.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/command/FrameSource.h"
#include "host/command/JobInputs.h"
#include "host/command/PluginSession.h"
#include "host/command/RenderSettings.h"

namespace Tesseret::Command {

struct ReadyInstance {
    std::unique_ptr<Host::Instance> instance;
    std::map<std::string, std::shared_ptr<FrameSource>> clips;  ///< by name; only the connected
};

/// Makes the instance, connects its clips and sets its parameters: those given, those that the
/// files given ask for (a matte is filled from, a texture is used), and the sample box. Throws
/// `UsageError`.
ReadyInstance setUpInstance(PluginSession& session, const RenderSettings& settings,
                            const JobInputs& inputs, Host::Depth depth);

/// The box in the pixels of a picture, y upwards; whole pixels that cover it, cut at the data
/// window. Throws `UsageError` when nothing is left.
OfxRectI boxInPicture(const ViewBox& box, const Files::PictureInfo& picture);

}  // namespace Tesseret::Command
