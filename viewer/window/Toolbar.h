#pragma once

#include <optional>

#include "viewer/model/ViewSession.h"
#include "viewer/window/PictureLayers.h"
#include "viewer/window/UserCommand.h"

namespace Tesseret::Viewer {

/// The menus, and the row of layers below them; each draws at the user interface's cursor and
/// returns the user's choice.
std::optional<UserCommand> drawMenus(ViewSession& session);
void drawLayerButtons(PictureLayers& layers);

}  // namespace Tesseret::Viewer
