#pragma once

#include <string>

namespace Tesseret::Viewer {

/// A note or an error of a render in the words of the window: what the command line would name by
/// its options is named by the window's controls.
std::string inWindowWords(std::string text);

}  // namespace Tesseret::Viewer
