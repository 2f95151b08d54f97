#pragma once

/// The fills of an area to pick from.

#include <vector>

#include "fill/Trials.h"

namespace Tesseret::Fill {

struct AreaVariation {
    Scored scored;
    Picture picture;  ///< of the area's window
};

/// The best of the ranked trials that look different from all better ones, at most `count`, the
/// best trial first. Fewer where there are no more, or when the search is ended. A larger `count`
/// adds to the same list. `known`, `lost`: the area's window, as for the scorer; `area`: its
/// pixels, inside that window.
std::vector<AreaVariation> variationsOf(const Trials& trials, const Picture& known,
                                        const Picture& lost, Picture area, std::size_t count);

/// What changed in the window after the area was filled, copied into its pictures: the fills of
/// later areas. All three have the same bounds at least where the pictures do.
void addLaterChanges(std::vector<AreaVariation>& variations, const Picture& before,
                     const Picture& after);

}  // namespace Tesseret::Fill
