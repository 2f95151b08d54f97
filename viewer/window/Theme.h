#pragma once

struct ImVec4;

namespace Tesseret::Viewer {

/// Font, colours and spacing of the user interface, whose context is current. `density` is pixels
/// for one screen unit.
void applyTheme(double density);

/// Of the line that tells what to do next.
ImVec4 adviceColour();

/// The label of a button that resets a value.
const char* resetMark();

}  // namespace Tesseret::Viewer
