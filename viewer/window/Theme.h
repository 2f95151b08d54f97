#pragma once

namespace Tesseret::Viewer {

/// Font, colours and spacing of the user interface, whose context is current. `density` is pixels
/// for one screen unit.
void applyTheme(double density);

/// What stands on a button that puts a value back.
const char* resetMark();

}  // namespace Tesseret::Viewer
