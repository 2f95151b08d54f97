#pragma once

#include <optional>
#include <vector>

#include "fill/FirstGuess.h"
#include "fill/Places.h"
#include "fill/Trials.h"

namespace Tesseret::Fill {

/// Looks for the settings that fill an area best: first where its texture comes from, then the
/// blocks, then how they are matched and joined, last the seed. Each round goes on from the best of
/// those before. The number of trials is fixed, so the result is the same on every machine.
class AreaSearch {
public:
    /// All outlive the object.
    AreaSearch(const Surroundings& area, const Edge& edge, const Quality::TextureScale& texture,
               const FixedValues& fixed, int top, Trials& trials);

    void run();

private:
    Choice in(const Place& place) const;
    Choice level(const Place& place, const Edge& edge) const;
    std::vector<Choice> tops(std::size_t count) const;
    std::vector<Choice> withPlaces() const;
    std::vector<Choice> withTwoGrounds() const;
    std::vector<Choice> withEdges(const Choice& choice) const;
    std::vector<Choice> withBlocks(const Choice& choice) const;
    std::vector<Choice> withVariants(const Choice& choice) const;
    bool fixesEdge() const;
    void tryAtMost(std::size_t count, std::vector<Choice> choices);
    void trySeeds();

    const Surroundings& area_;
    Edge edge_;
    std::vector<Edge> tighter_;
    const Quality::TextureScale& texture_;
    const FixedValues& fixed_;
    int top_;
    Trials& trials_;
    Choice guess_;
    std::vector<int> blocks_;
    int lastSeed_ = 1;
};

}  // namespace Tesseret::Fill
