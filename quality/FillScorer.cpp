#include "quality/FillScorer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>
#include <stdexcept>
#include <utility>

#include "quality/Activity.h"
#include "quality/KnownPixels.h"
#include "quality/Middle.h"
#include "quality/Region.h"
#include "quality/Repeats.h"
#include "quality/Request.h"
#include "quality/Steps.h"
#include "quality/UsualDifference.h"

namespace Tesseret::Quality {
namespace {

/// How far from the area a fill may change pixels.
constexpr int kReach = 96;
/// What is looked at round what changed.
constexpr int kMargin = 40;
/// Known squares: at most so many, and so wide.
constexpr int kSquares = 8, kSquareSide = 96;
/// Differences that nobody sees, in tones.
constexpr double kFloor = 6;
/// A patch or a step counts at most as this many times the usual.
constexpr double kWorst = 4;

struct Mean {
    double sum = 0;
    long count = 0;

    void add(double value)
    {
        sum += value;
        ++count;
    }
    Mean& operator+=(const Mean& other)
    {
        sum += other.sum;
        count += other.count;
        return *this;
    }
    double value() const { return count > 0 ? sum / double(count) : 0; }
};

/// How far a difference is above the usual one.
double excess(double difference, double usual)
{
    const double ratio = std::min((difference + kFloor) / (usual + kFloor), kWorst);
    return ratio * ratio;
}

/// Mean excesses of the patches and steps of a region.
struct Excess {
    Mean rim[2], inside[2];  ///< levels 0 and 1
    Mean structure[2];       ///< levels 2 and 3
    Mean stepRim, stepInside;
    /// Sums of the change of the region's cells, and of what is expected there.
    std::array<double, kScales> change{}, expected{};

    Excess& operator+=(const Excess& other)
    {
        for (int i = 0; i < 2; ++i) {
            rim[i] += other.rim[i];
            inside[i] += other.inside[i];
            structure[i] += other.structure[i];
        }
        stepRim += other.stepRim;
        stepInside += other.stepInside;
        return *this;
    }
};

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

/// A part of the score: the root of how much worse than usual the mean excess is.
double part(const Mean& mean, const Mean& usual)
{
    if (mean.count == 0 || usual.count == 0) return 1;
    return std::sqrt(mean.value() / usual.value());
}

}  // namespace

class FillScorer::Judge {
public:
    Judge(const Picture& source, const Picture& lost, OfxRectI area);

    Visibility score(const Picture& filled) const;

private:
    Reference reference(OfxRectI except = {0, 0, 0, 0}) const
    {
        return {&pixels_, &copies_, &levels_, except};
    }
    Region knownRegion(const OfxRectI& square) const;
    Region filledRegion(const Picture& filled, const PatchPyramid& pixels,
                        const OfxRectI& window) const;
    Excess measure(const Region& region, const RegionMatches& matches,
                   const StepSamples& steps) const;
    OfxRectI fromFirst(const OfxRectI& box) const;

    Picture source_, lost_;
    OfxRectI area_;
    ToneCurve curve_;
    PatchPyramid pixels_;
    std::vector<std::uint8_t> levels_;
    CopyIndex copies_;
    Activity activity_;
    Landmarks landmarks_;
    UsualDifference usual_;
    double usualStep_ = 0;
    Excess usualExcess_;
};

/// A box in pixels from the source's first.
OfxRectI FillScorer::Judge::fromFirst(const OfxRectI& box) const
{
    const OfxRectI& bounds = source_.bounds();
    return {box.x1 - bounds.x1, box.y1 - bounds.y1, box.x2 - bounds.x1, box.y2 - bounds.y1};
}

FillScorer::Judge::Judge(const Picture& source, const Picture& lost, OfxRectI area)
    : source_(source.copied(source.bounds(), {})),
      lost_(lost.copied(lost.bounds(), {})),
      area_(intersection(area, source.bounds())),
      curve_(source_, lost_),
      pixels_(curve_.apply(source_), kLevels),
      levels_(knownLevels(lost_, kLevels)),
      copies_(pixels_, levels_),
      activity_(pixels_)
{
    const OfxRectI box = fromFirst(area_);
    const int size = std::max(box.x2 - box.x1, box.y2 - box.y1);
    const OfxRectI near =
        intersection(grown(box, size + kReach), {0, 0, source_.width(), source_.height()});
    landmarks_ = Landmarks(activity_, levels_, source_.width(), near);

    std::vector<Region> regions;
    std::vector<RegionMatches> matches;
    std::vector<StepSamples> steps;
    std::vector<float> allSteps;
    for (const OfxRectI& square : knownSquares(lost_, box, kSquareSide, kSquares)) {
        regions.push_back(knownRegion(square));
        matches.push_back(matchRegion(regions.back(), reference(grown(square, kDoubtful))));
        steps.push_back(measureSteps(regions.back()));
        allSteps.insert(allSteps.end(), steps.back().rim.begin(), steps.back().rim.end());
        allSteps.insert(allSteps.end(), steps.back().inside.begin(), steps.back().inside.end());
    }
    usual_ = UsualDifference(activity_, matches);
    usualStep_ = double(middle(allSteps));
    for (std::size_t i = 0; i < regions.size(); ++i) {
        usualExcess_ += measure(regions[i], matches[i], steps[i]);
    }
}

/// As if the square had been filled.
Region FillScorer::Judge::knownRegion(const OfxRectI& square) const
{
    Region region;
    region.pixels = &pixels_;
    region.window = intersection(grown(square, kMargin), {0, 0, source_.width(), source_.height()});
    const OfxRectI& window = region.window;
    const int width = window.x2 - window.x1, height = window.y2 - window.y1;
    std::vector<std::uint8_t> changed(std::size_t(width) * std::size_t(height));
    std::vector<std::uint8_t> ignored(changed.size());
    for (int y = window.y1; y < window.y2; ++y) {
        const auto row = std::size_t(y - window.y1) * std::size_t(width);
        const auto* gone =
            lost_.pixel<std::uint8_t>(lost_.bounds().x1 + window.x1, lost_.bounds().y1 + y);
        std::copy_n(gone, width, ignored.begin() + std::ptrdiff_t(row));
        if (y < square.y1 || y >= square.y2) continue;
        std::fill_n(changed.begin() + std::ptrdiff_t(row) + (square.x1 - window.x1),
                    square.x2 - square.x1, std::uint8_t{1});
    }
    region.changed = PixelSums(changed, width, height);
    region.ignored.emplace(ignored, width, height);
    return region;
}

Region FillScorer::Judge::filledRegion(const Picture& filled, const PatchPyramid& pixels,
                                       const OfxRectI& window) const
{
    (void)filled;
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
        const auto row = std::size_t(y) * std::size_t(width);
        for (int x = 0; x < width; ++x) {
            const int apart = std::max({std::abs(before[3 * x] - after[3 * x]),
                                        std::abs(before[3 * x + 1] - after[3 * x + 1]),
                                        std::abs(before[3 * x + 2] - after[3 * x + 2])});
            const bool ours = inRows && window.x1 + x >= area_.x1 && window.x1 + x < area_.x2;
            if (gone[x] != 0 && !ours) {
                ignored[row + std::size_t(x)] = 1;
                others = true;
            } else if (gone[x] != 0 || apart > kFloor) {
                changed[row + std::size_t(x)] = 1;
            }
        }
    }
    region.changed = PixelSums(changed, width, height);
    if (others) region.ignored.emplace(ignored, width, height);
    return region;
}

Excess FillScorer::Judge::measure(const Region&, const RegionMatches& matches,
                                  const StepSamples& steps) const
{
    Excess result;
    for (int level = 0; level < kLevels; ++level) {
        const LevelMatches& found = matches[std::size_t(level)];
        for (std::size_t i = 0; i < found.matches.size(); ++i) {
            const Match& match = found.matches[i];
            if (match.difference == Match::kNone) continue;
            const double value = excess(difference(match), usual_.at(match.x, match.y, level));
            if (level >= 2)
                result.structure[level - 2].add(value);
            else if (found.parts[i] == Part::Rim)
                result.rim[level].add(value);
            else
                result.inside[level].add(value);
        }
    }
    for (const float step : steps.rim) result.stepRim.add(excess(double(step), usualStep_));
    for (const float step : steps.inside) result.stepInside.add(excess(double(step), usualStep_));
    return result;
}

Visibility FillScorer::Judge::score(const Picture& filled) const
{
    const OfxRectI a = filled.bounds(), b = source_.bounds();
    if (a.x1 != b.x1 || a.y1 != b.y1 || a.x2 != b.x2 || a.y2 != b.y2 ||
        filled.depth() != source_.depth() || filled.components() != source_.components()) {
        throw std::invalid_argument("the fill has other bounds or channels than the source");
    }
    const OfxRectI where = intersection(grown(area_, kReach), source_.bounds());
    const OfxRectI seen = joined(area_, differentBox(source_, filled, where));
    const OfxRectI window = intersection(grown(seen, kMargin), source_.bounds());
    const PatchPyramid pixels(curve_.apply(filled, window), kLevels);
    const Region region = filledRegion(filled, pixels, window);
    const RegionMatches matches = matchRegion(region, reference());
    const Excess found = measure(region, matches, measureSteps(region));

    Visibility result;
    const auto both = [](const Mean* mean, const Mean* usual) {
        return (part(mean[0], usual[0]) + part(mean[1], usual[1])) / 2;
    };
    result.rim = both(found.rim, usualExcess_.rim);
    result.inside = both(found.inside, usualExcess_.inside);
    result.structure = both(found.structure, usualExcess_.structure);
    result.step = (part(found.stepRim, usualExcess_.stepRim) +
                   part(found.stepInside, usualExcess_.stepInside)) /
                  2;
    const OfxRectI box = fromFirst(area_);
    const int size = std::max(box.x2 - box.x1, box.y2 - box.y1);
    result.repeats =
        1 + repeatedShare(matches, usual_, landmarks_, activity_, grown(box, size / 2));
    const double parts[] = {result.rim, result.inside, result.step, result.repeats,
                            result.structure};
    double sum = 0;
    for (const double value : parts) sum += value * value;
    result.total = std::sqrt(sum / std::size(parts));
    return result;
}

FillScorer::FillScorer(const Picture& source, const Picture& lost, OfxRectI area)
{
    checkRequest(source, lost, area);
    judge_ = std::make_unique<const Judge>(source, lost, area);
}

FillScorer::~FillScorer() = default;
FillScorer::FillScorer(FillScorer&&) noexcept = default;
FillScorer& FillScorer::operator=(FillScorer&&) noexcept = default;

Visibility FillScorer::score(const Picture& filled) const
{
    return judge_->score(filled);
}

}  // namespace Tesseret::Quality
