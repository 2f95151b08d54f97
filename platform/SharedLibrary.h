#pragma once

#include <span>

namespace Orvane {

/// A function's address by name: first among what the process holds already, then in the system's
/// libraries by file name, in order. A library that is opened stays open. Null when there is none.
void* findFunction(const char* name, std::span<const char* const> libraries);

}  // namespace Orvane
