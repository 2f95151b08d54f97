#include "quality/Findings.h"

#include <algorithm>
#include <vector>

#include "quality/Middle.h"

namespace Tesseret::Quality {
namespace {

/// A difference counts at most as this many times the usual.
constexpr double kWorst = 4;
constexpr double kLeast = 0.75;

double timesUsual(double difference, double usual)
{
    return std::clamp((difference + kUnseen) / (usual + kUnseen), kLeast, kWorst);
}

void addMatches(Findings& findings, const RegionMatches& matches, const UsualDifference& usual)
{
    for (std::size_t level = 0; level < kLevels; ++level) {
        const LevelMatches& found = matches[level];
        for (std::size_t i = 0; i < found.matches.size(); ++i) {
            const Match& match = found.matches[i];
            if (match.difference == Match::kNone) continue;
            Mean& mean = level >= 2                       ? findings.large[level - 2]
                         : found.parts[i] == Part::Inside ? findings.inside[level]
                                                          : findings.rim[level];
            const double times =
                timesUsual(difference(match), usual.at(match.x, match.y, int(level)));
            mean.add(times * times * times * times);
        }
    }
}

void addCells(Findings& findings, const Region& region, const RimLook& around)
{
    if (around.isEmpty()) return;
    const OfxRectI& window = region.window;
    int count = 0;
    std::array<std::vector<float>, kScales> changes;
    for (int y = window.y1; y + kCell <= window.y2; y += kCell) {
        for (int x = window.x1; x + kCell <= window.x2; x += kCell) {
            const int column = x - window.x1, row = y - window.y1;
            const int changed = region.changed.sum(column, row, column + kCell, row + kCell);
            if (4 * changed < 3 * kCell * kCell) continue;
            const PlacedLook cell = {cellLook(*region.pixels, x, y), region.x + x + kCell / 2.0,
                                     region.y + y + kCell / 2.0};
            const std::array<float, kScales> expected = around.expectedChange(cell);
            for (std::size_t s = 0; s < kScales; ++s) {
                changes[s].push_back(cell.look.change[s]);
                findings.change[s] += double(cell.look.change[s]);
                findings.expected[s] += double(expected[s]);
            }
            const double strange = around.strangeness(cell) + kUnseen;
            findings.strange.add(strange * strange);
            ++count;
        }
    }
    for (std::size_t s = 0; s < kScales && count > 0; ++s) {
        findings.change[s] /= count;
        findings.expected[s] /= count;
        findings.middleChange[s] = double(middle(changes[s]));
        findings.calmest[s] = double(around.calmestChange()[s]);
    }
}

}  // namespace

void Mean::add(double value)
{
    sum += value;
    ++count;
}

void Mean::add(const Mean& other)
{
    sum += other.sum;
    count += other.count;
}

double Mean::over(const Mean& known) const
{
    if (count == 0 || known.count == 0) return 1;
    return sum / double(count) / (known.sum / double(known.count));
}

void Findings::add(const Findings& other)
{
    for (std::size_t i = 0; i < 2; ++i) {
        rim[i].add(other.rim[i]);
        inside[i].add(other.inside[i]);
        large[i].add(other.large[i]);
    }
    stepRim.add(other.stepRim);
    stepInside.add(other.stepInside);
    across.add(other.across);
    strange.add(other.strange);
}

Findings measure(const Region& region, const RegionMatches& matches, const StepSamples& steps,
                 const Usual& usual, const RimLook& around)
{
    Findings findings;
    addMatches(findings, matches, usual.difference);
    for (const float step : steps.rim) {
        findings.stepRim.add(timesUsual(double(step), usual.step));
    }
    for (const float step : steps.inside) {
        findings.stepInside.add(timesUsual(double(step), usual.step));
    }
    for (const float step : steps.across) {
        findings.across.add(timesUsual(double(step), usual.across));
    }
    addCells(findings, region, around);
    return findings;
}

}  // namespace Tesseret::Quality
