#pragma once

#include <string>
#include <vector>

#include "host/Descriptor.h"

namespace Tesseret::Viewer {

/// A page of parameters in the plug-in's layout.
struct PanelPage {
    std::string label;
    /// From left to right, each with its parameters' names from the top down; an empty name is an
    /// empty row.
    std::vector<std::vector<std::string>> columns;
};

/// The pages in the plug-in's order, without secret parameters. Parameters without a page come
/// last, on a page of their own.
std::vector<PanelPage> panelPages(const Host::ContextDescription& description);

}  // namespace Tesseret::Viewer
