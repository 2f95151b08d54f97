#include "engine/filter/LuminanceSpread.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// Rows that a worker takes at once, at least.
constexpr int kTaskRows = 64;

Region united(const Region& a, const Region& b)
{
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
}

Region grown(const Region& region, int margin, const Region& limit)
{
    if (region.isEmpty()) return region;
    return Region{region.x0 - margin, region.y0 - margin, region.x1 + margin, region.y1 + margin}
        .within(limit);
}

bool contains(const Region& outer, const Region& inner)
{
    return inner.isEmpty() || (inner.x0 >= outer.x0 && inner.y0 >= outer.y0 &&
                               inner.x1 <= outer.x1 && inner.y1 <= outer.y1);
}

template <typename Value>
Value* rowAt(Map<Value>& map, int x, int y)
{
    return map.pixelAt(x - map.xAxis().origin, y - map.yAxis().origin);
}

template <typename Value>
const Value* rowAt(const Map<Value>& map, int x, int y)
{
    return map.pixelAt(x - map.xAxis().origin, y - map.yAxis().origin);
}

/// Clears the pixels of `outer` that are not in `inner`.
void clearAround(Map<Pixel8>& map, const Region& inner, const Region& outer)
{
    const Region both = inner.within(outer);
    for (int y = outer.y0; y < outer.y1; ++y) {
        Pixel8* row = rowAt(map, outer.x0, y);
        if (both.isEmpty() || y < both.y0 || y >= both.y1) {
            std::fill_n(row, outer.x1 - outer.x0, Pixel8{0});
        } else {
            std::fill(row, row + (both.x0 - outer.x0), Pixel8{0});
            std::fill(row + (both.x1 - outer.x0), row + (outer.x1 - outer.x0), Pixel8{0});
        }
    }
}

/// The first and the end of the ones among `count` bytes of 0 and 1, relative to the first byte; an
/// empty range without any.
RowRange onesOf(const Pixel8* bytes, int count)
{
    const void* first =
        count > 0 ? std::memchr(bytes, 1, static_cast<std::size_t>(count)) : nullptr;
    if (first == nullptr) return {0, 0};
    int end = count;
    constexpr int kWord = sizeof(std::uint64_t);
    for (; end >= kWord; end -= kWord) {
        std::uint64_t word;
        std::memcpy(&word, bytes + end - kWord, kWord);
        if (word != 0) break;
    }
    while (bytes[end - 1] == 0) --end;
    return {static_cast<int>(static_cast<const Pixel8*>(first) - bytes), end};
}

bool isSame(const Pixel8* a, const Pixel8* b, int count)
{
    return std::memcmp(a, b, static_cast<std::size_t>(count)) == 0;
}

/// became = 1 where `now` is and `before` is not; `before` may be null. Returns whether any is.
bool findNew(const Pixel8* now, const Pixel8* before, Pixel8* became, int count)
{
    unsigned int any = 0;
    for (int i = 0; i < count; ++i) {
        const auto isNew = static_cast<Pixel8>(before == nullptr ? now[i] : now[i] & ~before[i]);
        became[i] = isNew;
        any |= isNew;
    }
    return any != 0;
}

// Tiles are mostly whole, and a fixed count lets compilers work on several pixels at once.

/// ratio[i] = first[i] / second[i]
void divide(const float* __restrict first, const float* __restrict second, float* __restrict ratio,
            int count)
{
    if (count == Tiles::kSide) {
        for (int i = 0; i < Tiles::kSide; ++i) ratio[i] = first[i] / second[i];
    } else {
        for (int i = 0; i < count; ++i) ratio[i] = first[i] / second[i];
    }
}

/// The gains of a tile's row become the ratios where `now` is 1 and `before` is 0.
void takeNew(const Pixel8* __restrict now, const Pixel8* __restrict before,
             const float* __restrict ratio, float* __restrict gain)
{
    for (int i = 0; i < Tiles::kSide; ++i) gain[i] = now[i] > before[i] ? ratio[i] : gain[i];
}

}  // namespace

/// The ratios of known pixels, 0 elsewhere, and how much is known; gives known pixels their mean.
class LuminanceSpread::Planes final : public BlurPlanes {
public:
    Planes(LuminanceSpread& spread, int pass, const Region& readable, Map<Pixel32f>& gain)
        : spread_(spread),
          pass_(pass),
          readable_(readable),
          before_(spread.knownAfter(pass - 1)),
          now_(spread.knownAfter(pass)),
          gain_(gain),
          stored_(gain.storedExtent()),
          gained_(gain.isUsable() ? spread.settings_.needed.within(stored_) : Region{})
    {}

    bool read(int y, int x0, int x1, float* first, float* second) const override
    {
        const int begin = std::clamp(readable_.x0, x0, x1),
                  end = std::clamp(readable_.x1, begin, x1);
        const int count = end - begin;
        const Pixel8* known = rowAt(before_, begin, y);
        if (count == 0 || std::memchr(known, 1, static_cast<std::size_t>(count)) == nullptr) {
            return false;
        }
        const float* ratio = rowAt(spread_.ratio_, begin, y);
        for (float* plane : {first, second}) {
            std::fill(plane, plane + (begin - x0), 0.0f);
            std::fill(plane + (end - x0), plane + (x1 - x0), 0.0f);
        }
        first += begin - x0;
        second += begin - x0;
        for (int i = 0; i < count; ++i) {
            const std::uint32_t ones = 0u - known[i];
            first[i] = std::bit_cast<float>(std::bit_cast<std::uint32_t>(ratio[i]) & ones);
            second[i] = std::bit_cast<float>(std::bit_cast<std::uint32_t>(1.0f) & ones);
        }
        return true;
    }

    void write(int x, int y, int width, int height, const float* first,
               const float* second) override
    {
        for (int j = 0; j < height; ++j, first += Tiles::kSide, second += Tiles::kSide) {
            // Unknown pixels get something as well, which nobody reads.
            float* ratio = rowAt(spread_.ratio_, x, y + j);
            divide(first, second, ratio, width);
            writeGains(x, y + j, width, ratio);
        }
    }

private:
    /// Writes the gains of needed pixels that became known.
    void writeGains(int x, int y, int width, const float* ratio)
    {
        if (y < gained_.y0 || y >= gained_.y1) return;
        const Pixel8* now = rowAt(now_, x, y);
        const bool isReadable = y >= readable_.y0 && y < readable_.y1;
        const Pixel8* before = pass_ > 1 && isReadable ? rowAt(before_, x, y) : nullptr;
        const bool isWhole = width == Tiles::kSide && x >= readable_.x0 &&
                             x + width <= readable_.x1 && before != nullptr;
        if (isWhole && std::memcmp(now, before, Tiles::kSide) == 0) return;
        const int begin = std::max(gained_.x0 - x, 0), end = std::min(width, gained_.x1 - x);
        if (begin >= end) return;
        float* const gain = gain_.pixelAt(x + begin - stored_.x0, y - stored_.y0) - begin;
        if (isWhole && end - begin == Tiles::kSide) {
            takeNew(now, before, ratio, gain);
            return;
        }
        for (int i = begin; i < end; ++i) {
            const bool wasRead = x + i >= readable_.x0 && x + i < readable_.x1;
            const bool wasKnown = before != nullptr && wasRead && before[i] != 0;
            if (now[i] != 0 && !wasKnown) gain[i] = ratio[i];
        }
    }

    LuminanceSpread& spread_;
    int pass_;
    Region readable_;
    const Map<Pixel8>& before_;
    const Map<Pixel8>& now_;
    Map<Pixel32f>& gain_;
    Region stored_;  ///< of the map of gains
    Region gained_;  ///< where gains are needed and the map has pixels
};

void LuminanceSpread::Outcome::add(const Outcome& other)
{
    allKnown = allKnown && other.allKnown;
    becameKnown = becameKnown || other.becameKnown;
    leftEarlier = leftEarlier || other.leftEarlier;
    known = united(known, other.known);
    gained = united(gained, other.gained);
}

LuminanceSpread::LuminanceSpread(SharedWork& work, TileBlur& blur, const Settings& settings)
    : work_(work),
      blur_(blur),
      settings_(settings),
      steps_(static_cast<std::size_t>(work.workers()), KnownSpread(settings.halfReach))
{}

bool LuminanceSpread::makeRoom()
{
    const Region& area = settings_.area;
    const auto make = [&area](auto& map) {
        map.setSize(area.x1 - area.x0, area.y1 - area.y0);
        map.placeAt(area.x0, area.y0);
        map.allocate();
        return map.isUsable();
    };
    return make(ratio_) && std::ranges::all_of(known_, make);
}

void LuminanceSpread::run(const Region& written, const Region& bounds, Map<Pixel32f>& gain)
{
    if (bounds.isEmpty() || !plan(written, bounds)) return;
    findParts();
    spread(written, gain);
}

std::size_t LuminanceSpread::indexAfter(int pass)
{
    return pass == 0 ? 0 : 1 + static_cast<std::size_t>(pass - 1) % 3;
}

/// Taller boxes take more rows at once, since each task starts with the rows of a box.
int LuminanceSpread::rowsInTask() const
{
    const int rows = std::max(kTaskRows, settings_.halfReach);
    return (rows + Tiles::kSide - 1) / Tiles::kSide * Tiles::kSide;
}

int LuminanceSpread::tasksFor(const Region& part) const
{
    return part.isEmpty() ? 0 : (part.y1 - part.y0 - 1) / rowsInTask() + 1;
}

/// Finds out what is known after each pass, and which pass is the last. False after an abort.
bool LuminanceSpread::plan(const Region& written, const Region& bounds)
{
    passes_.assign(1, {});
    Region known = bounds, cleared = written;
    Region active;
    for (int pass = 1; pass <= settings_.maxPasses; ++pass) {
        // Beyond the reach of a blur the next pass changes nothing.
        active = united(active, grown(known, settings_.reach + 1, settings_.area));
        clearAround(knownAfter(pass - 1), cleared, active);
        if (pass > 2) clearAround(knownAfter(pass - 2), cleared, active);
        Outcome outcome;
        if (!tryPass(pass, active, outcome)) return false;
        passes_.push_back({active, {}, outcome.gained});
        outcome.allKnown = outcome.allKnown && contains(active, settings_.needed);
        // The next known pixels depend on the current ones only, and monotonically. So a pass that
        // adds none is followed by others that add none, and one that ends in the state of two
        // passes ago, as with three pixels in a line, starts a cycle. There are no longer cycles
        // (Goles and Olivos 1981).
        if (outcome.allKnown || !outcome.becameKnown || !outcome.leftEarlier) break;
        known = outcome.known;
        cleared = active;
    }
    return true;
}

bool LuminanceSpread::tryPass(int pass, const Region& active, Outcome& outcome)
{
    std::vector<Outcome> outcomes(static_cast<std::size_t>(tasksFor(active)));
    const bool isDone = work_.run(static_cast<int>(outcomes.size()), [&](int task, int worker) {
        const int begin = active.y0 + task * rowsInTask();
        const int end = std::min(begin + rowsInTask(), active.y1);
        steps_[static_cast<std::size_t>(worker)].run(knownAfter(pass - 1), active, knownAfter(pass),
                                                     active, begin, end);
        Outcome& part = outcomes[static_cast<std::size_t>(task)];
        std::vector<Pixel8> became(static_cast<std::size_t>(active.x1 - active.x0));
        for (int y = begin; y < end; ++y) judgeRow(pass, active, y, part, became.data());
    });
    for (const Outcome& part : outcomes) outcome.add(part);
    return isDone;
}

void LuminanceSpread::judgeRow(int pass, const Region& active, int y, Outcome& outcome,
                               Pixel8* became) const
{
    const int width = active.x1 - active.x0;
    const Pixel8* now = rowAt(knownAfter(pass), active.x0, y);
    const RowRange known = onesOf(now, width);
    outcome.known =
        united(outcome.known, {active.x0 + known.begin, y, active.x0 + known.end, y + 1});
    // Before the first two passes nothing counts as known.
    if (pass > 2) {
        const Pixel8* earlier = rowAt(knownAfter(pass - 2), active.x0, y);
        outcome.leftEarlier = outcome.leftEarlier || !isSame(now, earlier, width);
    } else if (!known.isEmpty()) {
        outcome.leftEarlier = true;
    }
    const Pixel8* before = pass > 1 ? rowAt(knownAfter(pass - 1), active.x0, y) : nullptr;
    const bool isNew =
        (before == nullptr || !isSame(now, before, width)) && findNew(now, before, became, width);
    if (isNew) outcome.becameKnown = true;
    if (y < settings_.needed.y0 || y >= settings_.needed.y1) return;
    const int begin = std::max(settings_.needed.x0 - active.x0, 0);
    const int end = std::min(settings_.needed.x1 - active.x0, width);
    if (begin >= end) return;
    const auto count = static_cast<std::size_t>(end - begin);
    if (std::memchr(now + begin, 0, count) != nullptr) outcome.allKnown = false;
    if (!isNew) return;
    const RowRange gained = onesOf(became + begin, end - begin);
    const int x0 = active.x0 + begin;
    outcome.gained = united(outcome.gained, {x0 + gained.begin, y, x0 + gained.end, y + 1});
}

/// From the last pass to the first: where gains are read, and where ratios come from that the next
/// pass reads. Passes that are followed by no gain are dropped.
void LuminanceSpread::findParts()
{
    Region next;
    for (std::size_t pass = passes_.size(); pass-- > 1;) {
        Pass& p = passes_[pass];
        next = united(p.gained, grown(next, settings_.reach, settings_.area).within(p.active));
        p.part = next;
        if (next.isEmpty()) passes_.resize(pass);
    }
}

/// Goes through the passes again, with ratios, in the parts that count.
bool LuminanceSpread::spread(const Region& written, Map<Pixel32f>& gain)
{
    const int last = static_cast<int>(passes_.size()) - 1;
    if (last < 1) return true;
    passes_[0].part = written;
    Tiles tiles, nextTiles;
    tiles.cover(partOf(1));
    if (!work_.run(tasksFor(partOf(1)),
                   [&](int task, int worker) { stepTiles(1, task, worker, tiles); })) {
        return false;
    }
    for (int pass = 1; pass <= last; ++pass) {
        TileBlur::Beside next;
        if (pass < last) {
            nextTiles.cover(partOf(pass + 1));
            next.count = tasksFor(partOf(pass + 1));
            next.task = [&](int task, int worker) { stepTiles(pass + 1, task, worker, nextTiles); };
        }
        const Region& readable = partOf(pass - 1);
        Planes planes(*this, pass, readable, gain);
        const Region& active = passes_[static_cast<std::size_t>(pass)].active;
        const TileBlur::Box box{.radius = settings_.reach,
                                .cornerX = active.x0,
                                .cornerY = active.y0,
                                .readable = {readable.y0, readable.y1}};
        if (!blur_.run(tiles, box, planes, next)) return false;
        std::swap(tiles, nextTiles);
    }
    return true;
}

/// Finds what is known after a pass, in some rows of its part, and wants the tiles that hold any.
void LuminanceSpread::stepTiles(int pass, int task, int worker, Tiles& tiles)
{
    const Region& part = partOf(pass);
    const int begin = part.y0 + task * rowsInTask();
    const int end = std::min(begin + rowsInTask(), part.y1);
    steps_[static_cast<std::size_t>(worker)].run(knownAfter(pass - 1), partOf(pass - 1),
                                                 knownAfter(pass), part, begin, end);
    for (int y = begin; y < end; ++y) {
        const Pixel8* row = rowAt(knownAfter(pass), part.x0, y);
        for (int column = 0; column < tiles.columns(); ++column) {
            if (tiles.isWanted(column, (y - part.y0) / Tiles::kSide)) continue;
            const int x = column * Tiles::kSide;
            const int count = std::min(Tiles::kSide, part.x1 - part.x0 - x);
            if (!onesOf(row + x, count).isEmpty()) tiles.want(column, (y - part.y0) / Tiles::kSide);
        }
    }
}

}  // namespace Orvane::Engine
