#pragma once

/// The values that a wedge shows: name=value, where a value may be a list or a range.

#include <cstddef>
#include <string>
#include <vector>

#include "host/Descriptor.h"

namespace Tesseret::Command {

inline constexpr std::size_t kMostAxes = 3;
inline constexpr std::size_t kMostTiles = 200;

struct WedgeAxis {
    std::string name;
    std::vector<std::string> values;  ///< as `Render::parseAssignment` takes them

    std::string assignment(std::size_t value) const { return name + "=" + values[value]; }
};

struct WedgeValues {
    std::vector<std::string> fixed;  ///< "name=value"
    std::vector<WedgeAxis> axes;     ///< with two values and more, in the order given

    std::size_t tiles() const;
};

/// Numbers are written as "30,50,80", "1-4" or "0.5-2x0.5", which counts up in steps of 0.5;
/// choices and switches as lists. A point, which takes a comma itself, and text have one value.
/// Throws `UsageError` that names the parameter and its range: an unknown parameter, a value of
/// another kind or out of range, an empty list, no parameter with several values or more than
/// three, one that is given twice, more than `kMostTiles` tiles.
WedgeValues wedgeValues(const std::vector<std::string>& assignments,
                        const Host::ContextDescription& description);

}  // namespace Tesseret::Command
