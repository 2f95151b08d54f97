#include "quality/FillScorer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "quality/Activity.h"
#include "quality/Findings.h"
#include "quality/KnownPixels.h"
#include "quality/Middle.h"
#include "quality/Region.h"
#include "quality/Repeats.h"
#include "quality/Request.h"
#include "quality/RimLook.h"
#include "quality/Sides.h"

namespace Tesseret::Quality {
namespace {

/// How far from the area a fill may change pixels.
constexpr int kReach = 96;
/// What is looked at round what changed.
constexpr int kMargin = 40;
/// Known squares: at most so many, and so wide.
constexpr int kSquares = 8, kSquareSide = 96;
/// How far round a region cells tell what to expect within.
constexpr int kAround = 64;

/// Tones that change by less than this are smooth anyway.
constexpr double kSmooth = 8;
/// Of what is expected, a fill should have at least and at most this much change.
constexpr double kLeastChange = 0.8, kMostChange = 1.25;
/// A fill of which half has less than this share of the calmest surroundings' change was blurred.
constexpr double kCalm = 0.98;

// Weights, chosen so that the total orders some two hundred fills as eyes do; docs/quality.md.
constexpr double kRim = 0.7, kInside = 4.0, kStep = 1.0, kRepeats = 0.4, kStructure = 0.6;
constexpr double kTooMuch = 0.3;  ///< too much change, against too little
constexpr double kBlur = 6;       ///< less change than nearly everywhere around
constexpr double kStepRim = 0.2, kStepInside = 0.4, kStrange = 0.4, kAcross = 0.8;
/// A fill that is wholly on the wrong side is so much more visible, in times.
constexpr double kMistaken = 1.2;
/// A border between grounds may bend as far as this share of a fill, and more where the known one
/// bends: by so many times the share that lies on the wrong side there.
constexpr double kBend = 0.08, kKnownBend = 4;
/// A part below 1 counts by this share: what is better than untouched makes up for little.
constexpr double kBetter = 0.4;

OfxRectI grown(const OfxRectI& box, int by)
{
    return {box.x1 - by, box.y1 - by, box.x2 + by, box.y2 + by};
}

/// The box of the pixels of `where` in which the pictures differ in any byte.
OfxRectI differentBox(const Picture& a, const Picture& b, const OfxRectI& where)
{
    const std::size_t bytes = a.pixelBytes();
    const std::size_t row = bytes * std::size_t(where.x2 - where.x1);
    OfxRectI box = {where.x2, where.y2, where.x1, where.y1};
    for (int y = where.y1; y < where.y2; ++y) {
        const std::byte* p = a.row(y) + std::size_t(where.x1 - a.bounds().x1) * bytes;
        const std::byte* q = b.row(y) + std::size_t(where.x1 - b.bounds().x1) * bytes;
        if (std::memcmp(p, q, row) == 0) continue;
        std::size_t first = 0, last = row;
        while (p[first] == q[first]) ++first;
        while (p[last - 1] == q[last - 1]) --last;
        box.x1 = std::min(box.x1, where.x1 + int(first / bytes));
        box.x2 = std::max(box.x2, where.x1 + int((last - 1) / bytes) + 1);
        box.y1 = std::min(box.y1, y);
        box.y2 = y + 1;
    }
    return isEmpty(box) ? OfxRectI{0, 0, 0, 0} : box;
}

OfxRectI joined(const OfxRectI& a, const OfxRectI& b)
{
    if (isEmpty(a)) return b;
    if (isEmpty(b)) return a;
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

/// Of fourth powers, over two sizes of patches.
double part(const std::array<Mean, 2>& found, const std::array<Mean, 2>& known)
{
    const double first = found[0].over(known[0]), second = found[1].over(known[1]);
    return (std::sqrt(std::sqrt(first)) + std::sqrt(std::sqrt(second))) / 2;
}

/// 0 for as much change as expected at all scales; grows with blur, and with what is too busy.
double wrongChange(const Findings& found)
{
    double wrong = 0;
    for (std::size_t s = 0; s < kScales; ++s) {
        const double share = (found.change[s] + kSmooth) / (found.expected[s] + kSmooth);
        wrong += std::max(kLeastChange - share, 0.0);
        wrong += kTooMuch * std::clamp(share - kMostChange, 0.0, 1.0);
        const double calm = (found.middleChange[s] + kSmooth) / (found.calmest[s] + kSmooth);
        wrong += kBlur * std::max(kCalm - calm, 0.0);
    }
    return wrong;
}

/// What counts in a sum.
double tempered(double value)
{
    return value < 1 ? 1 - kBetter * (1 - value) : std::min(value, 4.0);
}

/// Squares, so that one bad part is enough.
double total(const Visibility& parts)
{
    const auto square = [](double value) { return tempered(value) * tempered(value); };
    return parts.sides * std::sqrt((kRim * square(parts.rim) + kInside * square(parts.inside) +
                                    kStep * square(parts.step) + kRepeats * square(parts.repeats) +
                                    kStructure * square(parts.structure)) /
                                   (kRim + kInside + kStep + kRepeats + kStructure));
}

}  // namespace

class FillScorer::Judge {
public:
    Judge(const Picture& source, const Picture& lost, OfxRectI area,
          const std::optional<TwoGrounds>& grounds);

    Visibility score(const Picture& filled) const;

private:
    void learn(const Picture& lost, const std::vector<OfxRectI>& squares);
    Region knownRegion(const Picture& lost, const OfxRectI& square) const;
    Region filledRegion(const PatchPyramid& pixels, const OfxRectI& window) const;
    Reference reference(OfxRectI except = {0, 0, 0, 0}) const
    {
        return {&pixels_, &copies_, &levels_, except};
    }
    RimLook around(const OfxRectI& box, const OfxRectI& except) const
    {
        return {activity_, levels_, pixels_.width(), grown(box, kAround), except};
    }
    /// A box in pixels from the source's first.
    OfxRectI fromFirst(const OfxRectI& box) const;
    OfxRectI inPicture(const OfxRectI& box) const
    {
        return intersection(box, {0, 0, pixels_.width(), pixels_.height()});
    }

    OfxRectI bounds_;
    OfxRectI area_;
    OfxRectI reach_;         ///< where a fill may change pixels
    Picture source_, lost_;  ///< the part that can be looked at
    ToneCurve curve_;
    PatchPyramid pixels_;
    std::vector<std::uint8_t> levels_;
    CopyIndex copies_;
    Activity activity_;
    RimLook around_;
    std::optional<Sides> sides_;
    double bend_ = 0;
    Landmarks landmarks_;
    OfxRectI near_{};  ///< what is seen together with the area, from the source's first pixel
    Usual usual_;
    Findings known_;
};

OfxRectI FillScorer::Judge::fromFirst(const OfxRectI& box) const
{
    return {box.x1 - bounds_.x1, box.y1 - bounds_.y1, box.x2 - bounds_.x1, box.y2 - bounds_.y1};
}

FillScorer::Judge::Judge(const Picture& source, const Picture& lost, OfxRectI area,
                         const std::optional<TwoGrounds>& grounds)
    : bounds_(source.bounds()),
      area_(intersection(area, bounds_)),
      reach_(intersection(grown(area_, kReach), bounds_)),
      source_(source.copied(reach_, {})),
      lost_(lost.copied(intersection(grown(reach_, kMargin), bounds_), {})),
      curve_(source, lost),
      pixels_(curve_.apply(source), kLevels),
      levels_(knownLevels(lost, kLevels)),
      copies_(pixels_, levels_),
      activity_(pixels_),
      around_(around(fromFirst(area_), {0, 0, 0, 0}))
{
    const OfxRectI box = fromFirst(area_);
    const int size = std::max(box.x2 - box.x1, box.y2 - box.y1);
    if (grounds) {
        TwoGrounds line = *grounds;
        line.offset = line.height(bounds_.x1, bounds_.y1) * -1.0;
        sides_.emplace(line, around_);
        bend_ = kBend + kKnownBend * line.mistaken;
    }
    near_ = inPicture(grown(box, size / 2));
    landmarks_ = Landmarks(activity_, levels_, pixels_.width(), inPicture(grown(near_, kReach)));
    learn(lost, knownSquares(levels_, pixels_.width(), box, kSquareSide, kSquares));
}

/// Measures the squares as if they had been filled: that is what is usual.
void FillScorer::Judge::learn(const Picture& lost, const std::vector<OfxRectI>& squares)
{
    std::vector<Region> regions;
    std::vector<RegionMatches> matches;
    std::vector<StepSamples> steps;
    std::vector<float> allSteps, allAcross;
    for (const OfxRectI& square : squares) {
        regions.push_back(knownRegion(lost, square));
        matches.push_back(matchRegion(regions.back(), reference(grown(square, kDoubtful))));
        steps.push_back(measureSteps(regions.back()));
        const StepSamples& last = steps.back();
        allSteps.insert(allSteps.end(), last.rim.begin(), last.rim.end());
        allSteps.insert(allSteps.end(), last.inside.begin(), last.inside.end());
        allAcross.insert(allAcross.end(), last.across.begin(), last.across.end());
    }
    usual_ = {UsualDifference(activity_, matches), double(middle(allSteps)),
              double(middle(allAcross))};
    for (std::size_t i = 0; i < squares.size(); ++i) {
        known_.add(
            measure(regions[i], matches[i], steps[i], usual_, around(squares[i], squares[i])));
    }
}

Region FillScorer::Judge::knownRegion(const Picture& lost, const OfxRectI& square) const
{
    Region region;
    region.pixels = &pixels_;
    region.window = inPicture(grown(square, kMargin));
    const OfxRectI& window = region.window;
    const int width = window.x2 - window.x1, height = window.y2 - window.y1;
    std::vector<std::uint8_t> changed(std::size_t(width) * std::size_t(height));
    std::vector<std::uint8_t> ignored(changed.size());
    for (int y = window.y1; y < window.y2; ++y) {
        const auto row = std::ptrdiff_t(y - window.y1) * width;
        const auto* gone = lost.pixel<std::uint8_t>(bounds_.x1 + window.x1, bounds_.y1 + y);
        std::copy_n(gone, width, ignored.begin() + row);
        if (y < square.y1 || y >= square.y2) continue;
        std::fill_n(changed.begin() + row + (square.x1 - window.x1), square.x2 - square.x1,
                    std::uint8_t{1});
    }
    region.changed = PixelSums(changed, width, height);
    region.ignored.emplace(ignored, width, height);
    return region;
}

/// `pixels` are those of the window. Changed is what the area lost, and every other pixel that
/// looks different, except for what other areas lost.
Region FillScorer::Judge::filledRegion(const PatchPyramid& pixels, const OfxRectI& window) const
{
    Region region;
    const OfxRectI first = fromFirst(window);
    const int width = pixels.width(), height = pixels.height();
    region.pixels = &pixels;
    region.x = first.x1;
    region.y = first.y1;
    region.window = {0, 0, width, height};
    std::vector<std::uint8_t> changed(std::size_t(width) * std::size_t(height));
    std::vector<std::uint8_t> ignored(changed.size());
    bool others = false;
    for (int y = 0; y < height; ++y) {
        const std::int16_t* before = pixels_.sample(first.x1, first.y1 + y, 0);
        const std::int16_t* after = pixels.sample(0, y, 0);
        const auto* gone = lost_.pixel<std::uint8_t>(window.x1, window.y1 + y);
        const bool inRows = window.y1 + y >= area_.y1 && window.y1 + y < area_.y2;
        auto at = std::size_t(y) * std::size_t(width);
        for (int x = 0; x < width; ++x, ++at, before += 3, after += 3) {
            const int apart =
                std::max({std::abs(before[0] - after[0]), std::abs(before[1] - after[1]),
                          std::abs(before[2] - after[2])});
            const bool inArea = inRows && window.x1 + x >= area_.x1 && window.x1 + x < area_.x2;
            ignored[at] = gone[x] != 0 && !inArea ? 1 : 0;
            changed[at] = ignored[at] == 0 && (gone[x] != 0 || apart > kUnseen) ? 1 : 0;
            others = others || ignored[at] != 0;
        }
    }
    region.changed = PixelSums(changed, width, height);
    if (others) region.ignored.emplace(ignored, width, height);
    return region;
}

Visibility FillScorer::Judge::score(const Picture& filled) const
{
    const OfxRectI bounds = filled.bounds();
    if (bounds.x1 != bounds_.x1 || bounds.y1 != bounds_.y1 || bounds.x2 != bounds_.x2 ||
        bounds.y2 != bounds_.y2 || filled.depth() != source_.depth() ||
        filled.components() != source_.components()) {
        throw std::invalid_argument("the fill has other bounds or channels than the source");
    }
    const OfxRectI seen = joined(area_, differentBox(source_, filled, reach_));
    const OfxRectI window = intersection(grown(seen, kMargin), bounds_);
    const PatchPyramid pixels(curve_.apply(filled, window), kLevels);
    const Region region = filledRegion(pixels, window);
    const RegionMatches matches = matchRegion(region, reference());
    const Findings found = measure(region, matches, measureSteps(region), usual_, around_);

    Visibility result;
    result.rim = part(found.rim, known_.rim);
    result.inside = part(found.inside, known_.inside);
    result.step = kStepRim * tempered(found.stepRim.over(known_.stepRim)) +
                  kStepInside * tempered(found.stepInside.over(known_.stepInside)) +
                  kStrange * tempered(std::sqrt(found.strange.over(known_.strange))) +
                  kAcross * (tempered(found.across.over(known_.across)) - 1);
    result.repeats = 1 + repeatedShare(matches, usual_.difference, landmarks_, activity_, near_);
    if (sides_) result.sides = 1 + kMistaken * std::max(sides_->mistakenShare(region) - bend_, 0.0);
    result.structure = part(found.large, known_.large) + wrongChange(found);
    result.total = total(result);
    return result;
}

FillScorer::FillScorer(const Picture& source, const Picture& lost, OfxRectI area,
                       const std::optional<TwoGrounds>& grounds)
{
    checkRequest(source, lost, area);
    judge_ = std::make_unique<const Judge>(source, lost, area, grounds);
}

FillScorer::~FillScorer() = default;
FillScorer::FillScorer(FillScorer&&) noexcept = default;
FillScorer& FillScorer::operator=(FillScorer&&) noexcept = default;

Visibility FillScorer::score(const Picture& filled) const
{
    return judge_->score(filled);
}

}  // namespace Tesseret::Quality
