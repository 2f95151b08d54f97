#pragma once

/// Many small areas, such as dust: too many to search settings for each.

#include <vector>

#include "fill/Choice.h"

namespace Tesseret::Fill {

struct Speck {
    std::size_t area;  ///< of the matte
    OfxRectI box;
};

/// Specks close to each other, and what they are filled with.
struct SpeckGroup {
    std::vector<std::size_t> areas;
    OfxRectI box;
    Choice choice;
};

/// Areas up to this many pixels long count as specks where there are several.
inline constexpr int kSpeckSide = 24;
inline constexpr std::size_t kSeveralSpecks = 6;

/// Groups specks by tiles; each tile takes texture from clean squares close by. `lost`, as
/// large as the source, is not 0 where any area is.
std::vector<SpeckGroup> groupSpecks(const std::vector<Speck>& specks, const Picture& source,
                                    const Picture& lost);

}  // namespace Tesseret::Fill
