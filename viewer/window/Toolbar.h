#pragma once

#include <optional>

#include "viewer/model/ViewSession.h"
#include "viewer/window/PictureLayers.h"
#include "viewer/window/UserCommand.h"

namespace Tesseret::Viewer {

/// The menus, and the row of layers below them; each fills the user interface's current place and
/// returns what the person asks for.
std::optional<UserCommand> drawMenus(ViewSession& session);
void drawLayerButtons(PictureLayers& layers);

}  // namespace Tesseret::Viewer
