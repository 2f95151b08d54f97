#include "render/BlockAdvice.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "effect/ParameterNames.h"
#include "render/BlockValues.h"

namespace Tesseret::Render {

namespace {

constexpr int kLeastBlock = 30;  // of the parameter
/// A fill with more candidates than this expected to touch the region is told.
constexpr double kToldFailures = 0.01;
constexpr double kAttempts = 999.0;  // of the plug-in for each candidate

int widthOf(const OfxRectI& box)
{
    return box.x2 - box.x1;
}

int heightOf(const OfxRectI& box)
{
    return box.y2 - box.y1;
}

/// The pictures that blocks are taken from, in pixels of the render.
std::vector<OfxRectI> texturesOf(const InstanceSetup& setup, double scale)
{
    const JobInputs& inputs = setup.inputs();
    const ParameterValues values = setup.values();
    std::vector<OfxRectI> windows;
    const auto add = [&](const Files::PictureInfo& info) {
        const OfxRectI& w = info.dataWindow;
        windows.push_back(toPixels({double(w.x1), double(w.y1), double(w.x2), double(w.y2)},
                                   {scale, scale}, 1.0));
    };
    for (std::size_t i = 0; i < Names::kTextures.size(); ++i) {
        const auto use = values.find(Names::kUseTextures[i]);
        const bool isUsed = use != values.end() && use->second == Host::ParameterValue(1);
        if (isUsed && inputs.has(Names::kTextures[i])) add(inputs.infos().at(Names::kTextures[i]));
    }
    if (windows.empty()) add(inputs.source());
    return windows;
}

/// How many places a block has along an axis, and how many of them touch [first, end).
struct AxisPlaces {
    double all, touching;
};

AxisPlaces placesAlong(int textureFirst, int textureEnd, int block, int first, int end)
{
    const int all = std::max(1, textureEnd - textureFirst - block);
    const int from = std::clamp(first - block + 1 - textureFirst, 0, all);
    const int to = std::clamp(end - textureFirst, 0, all);
    return {double(all), double(std::max(0, to - from))};
}

/// Where an area's pixels are: counts of them to the lower left of each corner.
class AreaSums {
public:
    AreaSums(const MatteAreas& areas, std::size_t area)
        : box_(areas.box(area)),
          columns_(static_cast<std::size_t>(widthOf(box_)) + 1),
          sums_(columns_ * (static_cast<std::size_t>(heightOf(box_)) + 1))
    {
        const Picture alone = areas.alone(area, box_);
        eachMasked(alone, areas.polarity(), [&](int x, int y) { ++at(x + 1, y + 1); });
        for (int y = box_.y1 + 1; y <= box_.y2; ++y) {
            for (int x = box_.x1 + 1; x <= box_.x2; ++x) {
                at(x, y) += at(x - 1, y) + at(x, y - 1) - at(x - 1, y - 1);
            }
        }
    }

    const OfxRectI& box() const { return box_; }

    bool isTouched(int x, int y, int size) const
    {
        const int x1 = std::max(x, box_.x1), x2 = std::min(x + size, box_.x2);
        const int y1 = std::max(y, box_.y1), y2 = std::min(y + size, box_.y2);
        return x1 < x2 && y1 < y2 && at(x2, y2) + at(x1, y1) != at(x1, y2) + at(x2, y1);
    }

private:
    std::size_t& at(int x, int y) { return sums_[index(x, y)]; }
    std::size_t at(int x, int y) const { return sums_[index(x, y)]; }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y - box_.y1) * columns_ +
               static_cast<std::size_t>(x - box_.x1);
    }

    OfxRectI box_;
    std::size_t columns_;
    std::vector<std::size_t> sums_;
};

class Fit {
public:
    Fit(const BlockValues& values, const std::vector<OfxRectI>& textures, const MatteAreas& areas,
        std::size_t area)
        : values_(values), textures_(textures), areas_(areas), area_(area), box_(areas.box(area))
    {}

    /// The least share of a texture's places that keep clear of the area.
    double freeShare(int size)
    {
        double share = 1.0;
        for (const OfxRectI& texture : textures_) {
            share = std::min(share, freeShare(texture, values_.pixels(size)));
        }
        return share;
    }

    /// How many candidates are expected to find no place clear of the area.
    double failures(int size)
    {
        return candidates(size) * std::pow(1.0 - freeShare(size), kAttempts);
    }

    /// A block size that fits; 0 when none does.
    int fittingSize()
    {
        int fits = kLeastBlock - 1, fitsNot = values_.block;
        while (fitsNot - fits > 1) {
            const int middle = fits + (fitsNot - fits) / 2;
            (failures(middle) <= kToldFailures ? fits : fitsNot) = middle;
        }
        constexpr int kStep = 5;
        if (fits < kLeastBlock) return 0;
        return fits < kLeastBlock + kStep ? fits : fits / kStep * kStep;
    }

private:
    double freeShare(const OfxRectI& texture, int block)
    {
        const AxisPlaces x = placesAlong(texture.x1, texture.x2, block, box_.x1, box_.x2);
        const AxisPlaces y = placesAlong(texture.y1, texture.y2, block, box_.y1, box_.y2);
        const double all = x.all * y.all;
        const double byBox = 1.0 - x.touching * y.touching / all;
        // As if the area were its whole box; where that suffices nothing is counted.
        if (std::pow(1.0 - byBox, kAttempts) * 1e6 < kToldFailures) return byBox;
        return 1.0 - touchingPlaces(texture, block) / all;
    }

    double touchingPlaces(const OfxRectI& texture, int block)
    {
        if (!sums_) sums_.emplace(areas_, area_);
        const int endX = texture.x1 + std::max(1, widthOf(texture) - block);
        const int endY = texture.y1 + std::max(1, heightOf(texture) - block);
        double count = 0.0;
        for (int y = std::max(texture.y1, box_.y1 - block); y < std::min(endY, box_.y2); ++y) {
            for (int x = std::max(texture.x1, box_.x1 - block); x < std::min(endX, box_.x2); ++x) {
                count += sums_->isTouched(x, y, block) ? 1.0 : 0.0;
            }
        }
        return count;
    }

    double candidates(int size) const
    {
        const double block = values_.pixels(size), more = 2.0 * values_.margin;
        return values_.blocksIn(widthOf(box_) + more, heightOf(box_) + more, block, block) *
               values_.samples * double(textures_.size());
    }

    const BlockValues& values_;
    const std::vector<OfxRectI>& textures_;
    const MatteAreas& areas_;
    std::size_t area_;
    OfxRectI box_;
    std::optional<AreaSums> sums_;
};

std::string avoidanceLine(Fit& fit, const BlockValues& values)
{
    const std::string size = std::to_string(values.block);
    const bool fitsNowhere = fit.freeShare(values.block) == 0.0;
    std::string line = fitsNowhere
                           ? "no block of " + size + " pixels keeps clear of the region to fill"
                           : "few blocks of " + size + " pixels keep clear of the region to fill";
    line += ", so parts of it may come back; ";
    if (const int fitting = fit.fittingSize(); fitting > 0) {
        return line + (fitsNowhere ? "" : "try another seed, or ") +
               "blockSize=" + std::to_string(fitting) + " fits";
    }
    return line +
           "no smaller block fits either: give other texture with --texture1, or a clean "
           "box with --sample-box";
}

}  // namespace

std::vector<std::string> avoidanceAdvice(const InstanceSetup& setup, const MatteAreas& areas,
                                         std::size_t count, double renderScale)
{
    const std::optional<BlockValues> values = blockValuesOf(setup, renderScale);
    if (!values || !values->avoids) return {};
    const std::vector<OfxRectI> textures = texturesOf(setup, renderScale);
    std::vector<std::string> lines;
    for (std::size_t area = 0; area < count; ++area) {
        Fit fit(*values, textures, areas, area);
        if (fit.failures(values->block) <= kToldFailures) continue;
        const std::string which = count > 1 ? "area " + std::to_string(area + 1) + ": " : "";
        lines.push_back(which + avoidanceLine(fit, *values));
    }
    return lines;
}

std::string sampleBoxAdvice(const RenderSettings& settings, const InstanceSetup& setup)
{
    const std::optional<BlockValues> values = blockValuesOf(setup, 1.0);
    if (!settings.sampleBox || !values || values->avoids) return {};
    const ViewBox& box = *settings.sampleBox;
    const int side = static_cast<int>(std::min(box.x2 - box.x1, box.y2 - box.y1));
    if (side >= values->block) return {};
    std::string line = "--sample-box: the box is smaller than a block of " +
                       std::to_string(values->block) + " pixels, so blocks are cut to its size; " +
                       "try a larger box";
    if (side >= kLeastBlock) line += ", or blockSize=" + std::to_string(side);
    return line;
}

std::string adviceOnNote(std::string_view note)
{
    if (note.find("does not enclose") != std::string_view::npos ||
        note.find("could not be followed") != std::string_view::npos) {
        return "try another seed, or a larger pathWidth";
    }
    if (note.find("no path leads round the region") != std::string_view::npos) {
        return "try another seed, a larger pathWidth, or a matte with more of the picture round it";
    }
    return {};
}

}  // namespace Tesseret::Render
