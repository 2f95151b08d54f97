#pragma once

#include <optional>

#include "host/viewer/PictureLayers.h"
#include "host/viewer/UserCommand.h"
#include "host/viewer/ViewSession.h"

namespace Tesseret::Viewer {

/// The menus, and the row of layers below them; each fills the user interface's current place and
/// returns what the person asks for.
std::optional<UserCommand> drawMenus(ViewSession& session);
void drawLayerButtons(PictureLayers& layers);

}  // namespace Tesseret::Viewer
