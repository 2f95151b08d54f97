#pragma once

/// Hosts that can be imitated, by name. How each behaves was found by running a plug-in that logs
/// its host's calls, or by reading the host's published source.

#include <span>
#include <string>
#include <string_view>

#include "host/imitation/HostQuirks.h"

namespace Tesseret::Host {

struct KnownHost {
    std::string name;
    std::string line;  ///< what it is and where it differs most, in a line
    HostQuirks quirks;
};

/// In alphabetical order.
std::span<const KnownHost> knownHosts();
/// Null for an unknown name.
const KnownHost* findKnownHost(std::string_view name);

}  // namespace Tesseret::Host
