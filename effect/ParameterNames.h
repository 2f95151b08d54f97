#pragma once

/// The names of the effect's parameters, fill choices and clips: each is spelt only here. Projects
/// and parameter files store them, so they keep their spelling, odd ones included. Includes nothing
/// of the tree, so that the command line and the viewer can share it.

#include <array>

namespace Tesseret::Names {

// Clips.
inline constexpr const char* kSource = "Source";
inline constexpr const char* kMatte = "Matte";
inline constexpr std::array kTextures = {"Texture1", "Texture2", "Texture3"};

// Parameters.
inline constexpr const char* kSampleCorner1 = "sampleCorner1";
inline constexpr const char* kSampleCorner2 = "sampleCorner2";
inline constexpr const char* kAvoidFillRegion = "avoidFillRegion";
inline constexpr const char* kFillRegion = "fillRegion";
inline constexpr const char* kSeed = "seed";
inline constexpr const char* kBlockSize = "blockSize";
inline constexpr const char* kOverlap = "overlap";
inline constexpr const char* kBlendSize = "blendSize";
inline constexpr const char* kNumSamples = "numSamples";
inline constexpr const char* kPathWidth = "pathWidth";
inline constexpr const char* kEdgeBlend = "edgeBlend";
inline constexpr const char* kTemporalConsistency = "temporalConsistancy";
inline constexpr const char* kLuminanceMatch = "luminanceMatch";
inline constexpr const char* kLuminanceBlur = "luminanceBlur";
/// Whether the texture of the same index is used.
inline constexpr std::array kUseTextures = {"useTexture1", "useTexture2", "useTexture3"};
inline constexpr const char* kShowWidget = "showWidget";
inline constexpr const char* kAbout = "about";
/// The rectangle between the two corners; only the overlay has it.
inline constexpr const char* kSampleRegion = "sampleRegion";

// The choices of the fill region.
inline constexpr const char* kEntireImage = "Entire Image";
inline constexpr const char* kSourceAlpha = "Source->Alpha";
inline constexpr const char* kSourceInvertedAlpha = "Source->Inverted Alpha";
inline constexpr const char* kMatteAlpha = "Matte->Alpha";
inline constexpr const char* kMatteInvertedAlpha = "Matte->Inverted Alpha";
/// In the order of the choice's index.
inline constexpr std::array kFillRegions = {kEntireImage, kSourceAlpha, kSourceInvertedAlpha,
                                            kMatteAlpha, kMatteInvertedAlpha};

}  // namespace Tesseret::Names
