#include "effect/FillParameters.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "effect/ParameterNames.h"
#include "engine/map/ExactMath.h"

namespace Tesseret {
namespace {

using Orvane::OvPoint;
using Orvane::Engine::FillParameters;
using Orvane::Engine::floorToInt;
using Orvane::Engine::MaskOrigin;
using Orvane::Engine::Polarity;
using Orvane::Engine::truncateToInt;

struct MaskRow {
    std::string_view choice;
    MaskOrigin origin;
    Polarity polarity;
};

constexpr auto kMasks = std::to_array<MaskRow>({
    {Names::kEntireImage, MaskOrigin::None, Polarity::White},
    {Names::kSourceAlpha, MaskOrigin::SourceAlpha, Polarity::White},
    {Names::kSourceInvertedAlpha, MaskOrigin::SourceAlpha, Polarity::Black},
    {Names::kMatteAlpha, MaskOrigin::Matte, Polarity::White},
    {Names::kMatteInvertedAlpha, MaskOrigin::Matte, Polarity::Black},
});
static_assert(std::ranges::equal(kMasks, Names::kFillRegions, {}, &MaskRow::choice));

}  // namespace

FillParameterReader::FillParameterReader(const Orvane::OvOfxHostWrapper& wrapper,
                                         Orvane::OvOfxEffectInterface& effectInterface, double time)
    : wrapper_(wrapper), interface_(effectInterface), time_(static_cast<float>(time))
{}

void FillParameterReader::readScale()
{
    scaleX_ = wrapper_.renderScale().x;
    pixelAspectRatio_ = wrapper_.pixelAspectRatio();
}

void FillParameterReader::readRegion(FillParameters& fill)
{
    fill.temporalConsistency = interface_.boolAt(Names::kTemporalConsistency, time_);
    const int choice = interface_.intAt(Names::kFillRegion, time_);
    if (choice < 0 || choice >= static_cast<int>(kMasks.size())) return;
    const MaskRow& mask = kMasks[static_cast<std::size_t>(choice)];
    fill.maskOrigin = mask.origin;
    fill.maskPolarity = mask.polarity;
}

void FillParameterReader::readFill(FillParameters& fill)
{
    fill.sampleBox = sampleBox();
    fill.seed = interface_.intAt(Names::kSeed, time_);
    fill.blockSize = scaledInt(Names::kBlockSize);
    fill.overlap = scaledInt(Names::kOverlap);
    fill.blendHeight = scaledInt(Names::kBlendSize);
    fill.blendWidth = floorToInt(fill.blendHeight / pixelAspectRatio_ + 0.5);
    fill.numSamples = interface_.intAt(Names::kNumSamples, time_);
    fill.pathWidth = lengthAt(Names::kPathWidth);
    fill.edgeBlend = lengthAt(Names::kEdgeBlend);
    fill.avoidFillRegion = interface_.boolAt(Names::kAvoidFillRegion, time_);
    fill.luminanceMatch = interface_.boolAt(Names::kLuminanceMatch, time_);
    fill.luminanceBlur = lengthAt(Names::kLuminanceBlur);
}

bool FillParameterReader::hasTexture(std::size_t index) const
{
    return wrapper_.hasParam(Names::kUseTextures.at(index));
}

bool FillParameterReader::usesTexture(std::size_t index)
{
    return interface_.boolAt(Names::kUseTextures.at(index), time_);
}

/// A length in pixels at full size, as pixels of this render; the horizontal scale serves both
/// axes.
int FillParameterReader::scaledInt(const char* name)
{
    const auto pixels = static_cast<float>(interface_.intAt(name, time_));
    return truncateToInt(pixels * scaleX_);
}

/// A length that does not depend on the scale; a negative one and NaN count as 0.
float FillParameterReader::lengthAt(const char* name)
{
    const auto length = static_cast<float>(interface_.doubleAt(name, time_));
    return length > 0.0f ? length : 0.0f;
}

/// The corners arrive in pixels, in any order.
Orvane::Engine::Region FillParameterReader::sampleBox()
{
    const OvPoint a = interface_.double2DAt(Names::kSampleCorner1, time_);
    const OvPoint b = interface_.double2DAt(Names::kSampleCorner2, time_);
    const auto [xMin, xMax] = std::minmax({truncateToInt(a.x), truncateToInt(b.x)});
    const auto [yMin, yMax] = std::minmax({truncateToInt(a.y), truncateToInt(b.y)});
    return {xMin, yMin, xMax, yMax};
}

}  // namespace Tesseret
