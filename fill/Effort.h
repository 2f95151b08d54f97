#pragma once

/// How long to search for settings, and how the search is followed.

#include <cstddef>
#include <memory>
#include <string>

#include "picture/Picture.h"

namespace Tesseret::Fill {

enum class Effort { Quick, Normal, Best };

/// Trial renders for one area; several small areas share them.
constexpr std::size_t trialsOf(Effort effort)
{
    switch (effort) {
        case Effort::Quick:
            return 8;
        case Effort::Normal:
            return 40;
        case Effort::Best:
            break;
    }
    return 200;
}

struct SearchProgress {
    std::size_t area = 0, areas = 1;         ///< of those searched for
    std::size_t done = 0, trials = 0;        ///< of this area
    double best = 0.0;                       ///< the best score so far; 1 is invisible
    std::string caption;                     ///< its settings
    std::shared_ptr<const Picture> picture;  ///< its fill of the area, with the surroundings
};

/// Follows a search.
class SearchListener {
public:
    virtual ~SearchListener() = default;
    /// One call at a time.
    virtual void searched(const SearchProgress& /*progress*/) {}
    /// Whether to end the search with the best so far. From any thread.
    virtual bool wantsEnd() { return false; }
};

}  // namespace Tesseret::Fill
