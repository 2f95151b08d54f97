#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "engine/TemporalState.h"

namespace Orvane::Engine {

/// A recorded state as bytes, the same on every machine: numbers of four bytes, the lowest first. A
/// replay from them places what the state itself would.
std::vector<std::byte> recordBytes(const TemporalState& state);

/// The state, valid, with maps in the host's image memory. Returns nullopt for bytes that are not a
/// whole record of this version or hold impossible numbers, and without memory.
std::optional<TemporalState> stateFrom(std::span<const std::byte> record);

}  // namespace Orvane::Engine
