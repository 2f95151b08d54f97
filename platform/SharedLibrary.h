#pragma once

#include <span>

namespace Orvane {

/// Looks up a function by name: first in what the process has loaded, then in the given libraries
/// by file name, in order. Opened libraries stay open. Null when it is not found.
void* findFunction(const char* name, std::span<const char* const> libraries);

}  // namespace Orvane
