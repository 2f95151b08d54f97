#pragma once

/// Cells sorted by what they look like.

#include <optional>
#include <vector>

#include "quality/RimLook.h"
#include "quality/TextureScale.h"

namespace Tesseret::Quality {

/// Two grounds and the line between them, when the cells look like that; empty when they are of one
/// ground, of more than two, or mixed.
std::optional<TwoGrounds> divide(const std::vector<PlacedLook>& cells);

/// How unlike a cell usually is to the most similar other one at least two cells away, in tones.
double usualUnlikeness(const std::vector<PlacedLook>& cells);

/// How alike two sets of cells are, 0 to 1: each cell of one has to be like some cell of the other,
/// and the other way round (Simakov, Caspi, Shechtman and Irani, "Summarizing Visual Data Using
/// Bidirectional Similarity", 2008). `usual` is the usual unlikeness of the first set.
double alike(const std::vector<PlacedLook>& here, const std::vector<PlacedLook>& there,
             double usual);

}  // namespace Tesseret::Quality
