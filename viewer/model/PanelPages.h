#pragma once

#include <string>
#include <vector>

#include "host/Descriptor.h"

namespace Tesseret::Viewer {

/// A page of parameters as the plug-in lays it out.
struct PanelPage {
    std::string label;
    /// From left to right, each with its parameters' names from the top down; an empty name is a
    /// row left free.
    std::vector<std::vector<std::string>> columns;
};

/// The pages in the plug-in's order, without parameters that are secret. What stands on no page
/// comes last, on a page of its own.
std::vector<PanelPage> panelPages(const Host::ContextDescription& description);

}  // namespace Tesseret::Viewer
