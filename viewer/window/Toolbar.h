#pragma once

#include <optional>

#include "viewer/model/Playback.h"
#include "viewer/model/ViewSession.h"
#include "viewer/window/PictureLayers.h"
#include "viewer/window/ToolBox.h"
#include "viewer/window/UserCommand.h"

namespace Tesseret::Viewer {

/// The menus; the session is null while there is no picture. Draws at the user interface's cursor
/// and returns the user's choice.
std::optional<UserCommand> drawMenus(ViewSession* session, bool isPlaying);

/// The layers, the tools and what belongs to them, in as many rows as they need.
std::optional<UserCommand> drawToolbar(ViewSession& session, PictureLayers& layers, ToolBox& tools);

}  // namespace Tesseret::Viewer
