#include "quality/Autocorrelation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Tesseret::Quality {
namespace {

/// Of a peak: one that is lower does not tell a period.
constexpr float kClear = 0.45f;
/// The share of the highest peak that a nearer one must reach.
constexpr float kNearer = 0.75f;

/// Shades that differ by less than this, in tones, are no texture.
constexpr double kNoise = 4;
constexpr int kSamples = 16000;

/// Sums in four lanes, so that the order is the same for every instruction set.
float dot(const float* a, const float* b, int count)
{
    float lanes[4] = {0, 0, 0, 0};
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        for (int l = 0; l < 4; ++l) lanes[l] += a[i + l] * b[i + l];
    }
    for (; i < count; ++i) lanes[0] += a[i] * b[i];
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

}  // namespace

Autocorrelation::Autocorrelation(const Shades& shades, int reach)
    : reach_(std::min({reach, shades.width / 2, shades.height / 2})),
      values_(std::size_t(2 * reach_ + 1) * std::size_t(reach_ + 1))
{
    const int width = shades.width, height = shades.height;
    double squares = 0, total = 0;
    for (std::size_t i = 0; i < shades.values.size(); ++i) {
        squares += double(shades.values[i]) * double(shades.values[i]);
        total += double(shades.known[i]);
    }
    if (squares <= 0) return;
    // Large areas are sampled in some of their rows.
    const int every = 1 + width * height / kSamples;
    const double variance = squares / total + kNoise * kNoise;
    for (int dy = 0; dy <= reach_; ++dy) {
        for (int dx = -reach_; dx <= reach_; ++dx) {
            double sum = 0, pairs = 0;
            const int first = std::max(0, -dx), count = width - std::abs(dx);
            for (int y = 0; y + dy < height; y += every) {
                const std::size_t a = std::size_t(y) * std::size_t(width) + std::size_t(first);
                const std::size_t b =
                    std::size_t(y + dy) * std::size_t(width) + std::size_t(first + dx);
                sum += double(dot(&shades.values[a], &shades.values[b], count));
                pairs += double(dot(&shades.known[a], &shades.known[b], count));
            }
            // Few pairs say little.
            if (pairs * every < total / 8) continue;
            values_[std::size_t(dy) * std::size_t(2 * reach_ + 1) + std::size_t(dx + reach_)] =
                float(sum / pairs / variance);
        }
    }
}

float Autocorrelation::at(int x, int y) const
{
    if (y < 0) {
        x = -x;
        y = -y;
    }
    return values_[std::size_t(y) * std::size_t(2 * reach_ + 1) + std::size_t(x + reach_)];
}

float Autocorrelation::ring(int radius) const
{
    float sum = 0;
    int count = 0;
    for (int y = 0; y <= std::min(radius, reach_); ++y) {
        for (int x = -std::min(radius, reach_); x <= std::min(radius, reach_); ++x) {
            const float length = std::sqrt(float(x * x + y * y));
            if (std::abs(length - float(radius)) > 0.5f) continue;
            sum += at(x, y);
            ++count;
        }
    }
    return count > 0 ? sum / float(count) : 0;
}

bool Autocorrelation::isPeak(int x, int y) const
{
    const float value = at(x, y);
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            if (std::abs(x + dx) > reach_ || std::abs(y + dy) > reach_) return false;
            if (at(x + dx, y + dy) > value) return false;
        }
    }
    return true;
}

std::optional<double> Autocorrelation::period(int least) const
{
    struct Peak {
        double length;
        float value;
    };
    std::vector<Peak> peaks;
    float highest = 0;
    for (int y = 0; y <= reach_; ++y) {
        for (int x = -reach_; x <= reach_; ++x) {
            const double length = std::sqrt(double(x * x + y * y));
            if (length < least || at(x, y) < kClear || !isPeak(x, y)) continue;
            peaks.push_back({length, at(x, y)});
            highest = std::max(highest, at(x, y));
        }
    }
    std::optional<double> shortest;
    for (const Peak& peak : peaks) {
        if (peak.value >= kNearer * highest && (!shortest || peak.length < *shortest)) {
            shortest = peak.length;
        }
    }
    return shortest;
}

}  // namespace Tesseret::Quality
