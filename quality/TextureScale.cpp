#include "quality/TextureScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "quality/Activity.h"
#include "quality/Autocorrelation.h"
#include "quality/Grounds.h"
#include "quality/KnownPixels.h"
#include "quality/Middle.h"
#include "quality/PatchPyramid.h"
#include "quality/Request.h"

namespace Tesseret::Quality {
namespace {

constexpr int kLevels = 3;
/// What counts as surroundings for the period, and for the grounds.
constexpr int kWide = 192, kNear = 64;
constexpr int kLongest = 192;

int brightness(const std::int16_t* p)
{
    return (p[0] + 2 * p[1] + p[2]) / 4;
}

/// Takes off the plane that fits the known samples best: the slope of a sky is no texture.
void level(Shades& shades)
{
    // Sums of products, with x and y from the middle of the known samples.
    double n = 0, meanX = 0, meanY = 0, mean = 0, xx = 0, xy = 0, yy = 0, xv = 0, yv = 0;
    const auto each = [&shades](auto&& visit) {
        std::size_t i = 0;
        for (int y = 0; y < shades.height; ++y) {
            for (int x = 0; x < shades.width; ++x, ++i) {
                if (shades.known[i] != 0) visit(x, y, shades.values[i]);
            }
        }
    };
    each([&](int x, int y, float& value) {
        n += 1;
        meanX += x;
        meanY += y;
        mean += double(value);
    });
    if (n == 0) return;
    meanX /= n;
    meanY /= n;
    mean /= n;
    each([&](int x, int y, float& value) {
        const double dx = x - meanX, dy = y - meanY;
        xx += dx * dx;
        xy += dx * dy;
        yy += dy * dy;
        xv += dx * double(value);
        yv += dy * double(value);
    });
    const double determinant = xx * yy - xy * xy;
    if (determinant <= 0) return;
    const double slopeX = (xv * yy - yv * xy) / determinant;
    const double slopeY = (yv * xx - xv * xy) / determinant;
    each([&](int x, int y, float& value) {
        value -= float(mean + slopeX * (x - meanX) + slopeY * (y - meanY));
    });
}

/// The mean brightness of the known samples within `radius` of each sample is taken off, so that
/// slow shades do not hide the texture.
void flatten(Shades& shades, int radius)
{
    const int width = shades.width, height = shades.height;
    const auto sums = [&](const std::vector<float>& values) {
        std::vector<double> table(std::size_t(width + 1) * std::size_t(height + 1));
        for (int y = 0; y < height; ++y) {
            double row = 0;
            for (int x = 0; x < width; ++x) {
                row += double(values[std::size_t(y) * std::size_t(width) + std::size_t(x)]);
                table[std::size_t(y + 1) * std::size_t(width + 1) + std::size_t(x + 1)] =
                    table[std::size_t(y) * std::size_t(width + 1) + std::size_t(x + 1)] + row;
            }
        }
        return table;
    };
    const std::vector<double> values = sums(shades.values), known = sums(shades.known);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto i = std::size_t(y) * std::size_t(width) + std::size_t(x);
            if (shades.known[i] == 0) continue;
            const int x1 = std::max(x - radius, 0), x2 = std::min(x + radius + 1, width);
            const int y1 = std::max(y - radius, 0), y2 = std::min(y + radius + 1, height);
            const auto box = [&](const std::vector<double>& table) {
                const auto at = [&](int px, int py) {
                    return table[std::size_t(py) * std::size_t(width + 1) + std::size_t(px)];
                };
                return at(x2, y2) - at(x1, y2) - at(x2, y1) + at(x1, y1);
            };
            shades.values[i] -= float(box(values) / box(known));
        }
    }
}

}  // namespace

class TextureScale::Surroundings {
public:
    Surroundings(const Picture& source, const Picture& lost, OfxRectI area);

    double period = 0, elementSize = 0, roughness = 0;
    std::optional<TwoGrounds> grounds;

    double likeness(const OfxRectI& box, int ground) const;

private:
    Shades shades(const OfxRectI& window, int level) const;
    void measureScale(const OfxRectI& area);
    void measureRoughness(const OfxRectI& area);
    void collectCells(const OfxRectI& area);
    bool isKnown(int x, int y) const
    {
        return levels_[std::size_t(y) * std::size_t(pixels_.width()) + std::size_t(x)] > 0;
    }
    OfxRectI within(const OfxRectI& box, int by) const
    {
        return intersection({box.x1 - by, box.y1 - by, box.x2 + by, box.y2 + by},
                            {0, 0, pixels_.width(), pixels_.height()});
    }

    OfxRectI bounds_;
    PatchPyramid pixels_;
    std::vector<std::uint8_t> levels_;
    Activity activity_;
    /// Known ones near the area.
    struct Cells {
        std::vector<PlacedLook> looks;
        double usual = 0;  ///< unlikeness
    };
    Cells all_;
    std::array<Cells, 2> ofGround_;
};

TextureScale::Surroundings::Surroundings(const Picture& source, const Picture& lost, OfxRectI area)
    : bounds_(source.bounds()),
      pixels_(ToneCurve(source, lost).apply(source), kLevels),
      levels_(knownLevels(lost, kLevels)),
      activity_(pixels_)
{
    area = intersection(area, bounds_);
    const OfxRectI box = {area.x1 - bounds_.x1, area.y1 - bounds_.y1, area.x2 - bounds_.x1,
                          area.y2 - bounds_.y1};
    measureScale(box);
    measureRoughness(box);
    collectCells(box);
}

/// Samples of 2^level pixels.
Shades TextureScale::Surroundings::shades(const OfxRectI& window, int level) const
{
    const int step = 1 << level;
    Shades result{(window.x2 - window.x1) / step, (window.y2 - window.y1) / step, {}, {}};
    for (int row = 0; row < result.height; ++row) {
        for (int column = 0; column < result.width; ++column) {
            const int x = window.x1 + column * step, y = window.y1 + row * step;
            const bool known = isKnown(x, y);
            result.known.push_back(known ? 1.0f : 0.0f);
            result.values.push_back(known ? float(brightness(pixels_.sample(x, y, level))) : 0.0f);
        }
    }
    return result;
}

void TextureScale::Surroundings::measureScale(const OfxRectI& area)
{
    // At a quarter of the size first: that finds everything but fine patterns.
    const OfxRectI window = within(area, kWide);
    Shades coarse = shades(window, 2);
    level(coarse);
    flatten(coarse, 16);
    const Autocorrelation far(coarse, kLongest / 4);
    int crossing = 1;
    while (crossing < far.reach() && far.ring(crossing) > 0.1f) ++crossing;
    elementSize = std::min(8.0 * crossing, double(kLongest));

    Shades fine = shades(within(area, kWide / 4), 1);
    level(fine);
    flatten(fine, 16);
    const Autocorrelation close(fine, 24);
    // The period lies beyond the first valley.
    int valley = 1;
    while (valley < far.reach() && far.ring(valley) > 0.0f) ++valley;
    int closeValley = 1;
    while (closeValley < close.reach() && close.ring(closeValley) > 0.0f) ++closeValley;
    if (const auto found = far.period(std::max(valley, 4)))
        period = 4 * *found;
    else if (const auto small = close.period(std::max(closeValley, 3)))
        period = 2 * *small;
}

void TextureScale::Surroundings::measureRoughness(const OfxRectI& area)
{
    const OfxRectI window = within(area, kNear);
    std::vector<float> differences;
    for (int y = window.y1; y + 8 <= window.y2; y += 8) {
        for (int x = window.x1; x + 8 <= window.x2; x += 8) {
            if (!isKnown(x, y)) continue;
            int mean = 0;
            for (int dy = 0; dy < 8; dy += 4) {
                for (int dx = 0; dx < 8; dx += 4) {
                    mean += brightness(pixels_.sample(x + dx, y + dy, 2));
                }
            }
            // Every second pixel of every second row is enough.
            for (int dy = 0; dy < 8; dy += 2) {
                for (int dx = 0; dx < 8; dx += 2) {
                    const int value = brightness(pixels_.sample(x + dx, y + dy, 0));
                    differences.push_back(std::abs(float(value) - float(mean) / 4));
                }
            }
        }
    }
    roughness = double(middle(differences)) / 1023;
}

double TextureScale::Surroundings::likeness(const OfxRectI& box, int ground) const
{
    const OfxRectI inside = intersection(
        {box.x1 - bounds_.x1, box.y1 - bounds_.y1, box.x2 - bounds_.x1, box.y2 - bounds_.y1},
        {0, 0, activity_.columns() * kCell, activity_.rows() * kCell});
    const RimLook there(activity_, levels_, pixels_.width(), inside, {});
    const Cells& here =
        grounds && (ground == 0 || ground == 1) ? ofGround_[std::size_t(ground)] : all_;
    return alike(here.looks, there.cells(), here.usual);
}

void TextureScale::Surroundings::collectCells(const OfxRectI& area)
{
    all_.looks = RimLook(activity_, levels_, pixels_.width(), within(area, kNear), {}).cells();
    all_.usual = usualUnlikeness(all_.looks);
    grounds = divide(all_.looks);
    if (!grounds) return;
    for (const PlacedLook& cell : all_.looks) {
        const double along = grounds->normalX * cell.x + grounds->normalY * cell.y;
        ofGround_[along > grounds->offset ? 1 : 0].looks.push_back(cell);
    }
    for (Cells& cells : ofGround_) cells.usual = usualUnlikeness(cells.looks);
    grounds->offset += grounds->normalX * bounds_.x1 + grounds->normalY * bounds_.y1;
}

TextureScale::TextureScale(const Picture& source, const Picture& lost, OfxRectI area)
{
    checkRequest(source, lost, area);
    surroundings_ = std::make_unique<const Surroundings>(source, lost, area);
}

TextureScale::~TextureScale() = default;
TextureScale::TextureScale(TextureScale&&) noexcept = default;
TextureScale& TextureScale::operator=(TextureScale&&) noexcept = default;

double TextureScale::period() const
{
    return surroundings_->period;
}

double TextureScale::elementSize() const
{
    return surroundings_->elementSize;
}

double TextureScale::roughness() const
{
    return surroundings_->roughness;
}

const std::optional<TwoGrounds>& TextureScale::grounds() const
{
    return surroundings_->grounds;
}

double TextureScale::likeness(const OfxRectI& box) const
{
    return surroundings_->likeness(box, -1);
}

double TextureScale::likeness(const OfxRectI& box, int ground) const
{
    return surroundings_->likeness(box, ground);
}

}  // namespace Tesseret::Quality
