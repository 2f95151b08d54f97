#pragma once

#include <array>
#include <vector>

#include "engine/filter/KnownSpread.h"
#include "engine/filter/TileBlur.h"

namespace Orvane::Engine {

/// Spreads measured ratios over a region, pass by pass: a pixel becomes known when enough known
/// pixels are near, and its ratio is the mean of those in reach. The ratio of known pixels is
/// blurred again in every pass. Stands behind `LuminanceMatch`, which measures.
///
/// Which pixels are known in which pass does not depend on ratios, so it is found out first. Ratios
/// are then worked out only where one that is needed comes from.
class LuminanceSpread {
public:
    struct Settings {
        Region area, needed;   ///< `needed` lies inside
        int reach, halfReach;  ///< blur radii, pixels
        int maxPasses;
    };

    LuminanceSpread(SharedWork& work, TileBlur& blur, const Settings& settings);

    /// Allocates; false without memory.
    bool makeRoom();
    /// The measured ratios and the pixels that have one, both over the area.
    Map<Pixel32f>& ratio() { return ratio_; }
    Map<Pixel8>& measured() { return known_[0]; }
    /// Writes the gains that are needed. The two maps hold measurements inside `written`; the known
    /// ones among these lie inside `bounds`.
    void run(const Region& written, const Region& bounds, Map<Pixel32f>& gain);

private:
    class Planes;

    /// What a pass changed: over some rows, or over all.
    struct Outcome {
        bool allKnown = true;      ///< every pixel that needs a gain is known
        bool becameKnown = false;  ///< some pixel is known that was not one pass ago
        bool leftEarlier = false;  ///< some pixel differs from two passes ago
        Region known;              ///< holds every known pixel
        Region gained;             ///< holds every needed pixel that became known

        void add(const Outcome& other);
    };
    struct Pass {
        Region active;  ///< nothing is known outside
        Region part;    ///< where ratios are worked out
        Region gained;
    };

    bool plan(const Region& written, const Region& bounds);
    bool tryPass(int pass, const Region& active, Outcome& outcome);
    void judgeRow(int pass, const Region& active, int y, Outcome& outcome, Pixel8* became) const;
    void findParts();
    bool spread(const Region& written, Map<Pixel32f>& gain);
    void stepTiles(int pass, int task, int worker, Tiles& tiles);

    Map<Pixel8>& knownAfter(int pass) { return known_[indexAfter(pass)]; }
    const Map<Pixel8>& knownAfter(int pass) const { return known_[indexAfter(pass)]; }
    static std::size_t indexAfter(int pass);
    const Region& partOf(int pass) const { return passes_[static_cast<std::size_t>(pass)].part; }
    int rowsInTask() const;
    int tasksFor(const Region& part) const;

    SharedWork& work_;
    TileBlur& blur_;
    Settings settings_;
    Map<Pixel32f> ratio_;
    /// What is known after the measurement, which stays, and after the last three passes.
    std::array<Map<Pixel8>, 4> known_;
    std::vector<KnownSpread> steps_;  ///< one for each worker
    std::vector<Pass> passes_;        ///< by number; 0 is the measurement
};

}  // namespace Orvane::Engine
