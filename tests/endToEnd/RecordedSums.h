#pragma once

/// Checksums of the pictures of RecordedTest.cpp. After a change that is meant to alter pictures
/// run test_endToEnd --gtest_filter='*Recorded*': each scene that fails prints its new line.

#include <array>
#include <cstdint>

namespace Tesseret::EndToEnd {

/// At 8 bits, at 16 bits, in floats.
using Sums = std::array<std::uint64_t, 3>;

struct RecordedSums {
    const char* scene;
    Sums sums;
};

inline constexpr RecordedSums kRecordedSums[] = {
    {"Plain", {0x388e8eb2b0afd31c, 0xb83c1947e18cdb38, 0xb25848070f8de9b1}},
    {"Blended", {0x8b68d9f6c8d34437, 0x4536c994b1512a49, 0x3687f3dc85b65f9d}},
    {"WideOverlap", {0xca8deb2fbe0d4648, 0x22cb605282cacd1c, 0x055537f21189f99e}},
    {"BoxSmallerThanABlock", {0x3e13a9a6b718c09f, 0x1a9cc9da7f9a4c86, 0x2ce839a0b48816c4}},
    {"ThreeTextures", {0xb48a539f8d266fdb, 0xafb1e2c4b8e980a9, 0x73ececd30eff93ae}},
    {"Patches", {0x8575493ffce542f2, 0x0d2d94233d18df12, 0xcfea2736d285266b}},
    {"Window", {0x6c26d6f6e43de608, 0xec9e82c006740250, 0x769b85dee431473d}},
    {"HalfSize", {0xeee6db8fd655cadb, 0x3945d10dab5d5b84, 0xc64b6ee580515ec2}},
    {"WidePixels", {0xe828e8269569c692, 0x73d982128c8a117c, 0x35f20836c3722034}},
    {"Replayed", {0xcf8ed93ce1e7267d, 0xd707ca9a52bd0210, 0x32de9b847531d1c8}},
    {"ReplayedWindow", {0x4b3ca8d47ddc8bab, 0xb69f43dfe2a7d696, 0x0c6e02bdf0b50ca9}},
    {"SourceAlpha", {0x2a4db89720a8c69d, 0xcb598aa07ec6d900, 0x3f0d34d2f86d68ff}},
    {"SourceInvertedAlpha", {0xf438f39cec9d9e58, 0xd213ed0349ad6f6e, 0xe85b81729c1e76a0}},
    {"Disc", {0x264d8754ddd2aeb8, 0xe06748055b574484, 0xcccec3227da22044}},
    {"DiscOfPatches", {0x2f2e89db91e7ee34, 0xa55a99b3cf0b8dfb, 0xaa27031e09ea6838}},
    {"InvertedMatte", {0x9e330c5695d1f4c0, 0xb757709326936bb0, 0x8234b9dd3f6fdf95}},
    {"TwoAreas", {0x76963c70b733a07d, 0x68869bb5d98de19f, 0x710a551c2741f525}},
    {"Corner", {0xed610db4c56b7fd6, 0x72617ce8f0008d88, 0x5042e016c4aa7aa2}},
    {"Speck", {0x861786c9dd1e8e2e, 0x03aa5c0948ee00e3, 0xe2a916022764a05e}},
    {"Star", {0xc93110c49d51d804, 0xf4b544882850a21f, 0x520fd991842b7a68}},
    {"StarAtHalfSize", {0x023608ede4962429, 0xea730d9416d26732, 0x837f234500b5158b}},
    {"StarInAWindow", {0xcaea47c817950762, 0xefe9fd990cfc047c, 0x9a8f1877578645fe}},
    {"Avoids", {0x9e6ab01a5802f9c7, 0x837d0ef0bedc570d, 0x6f7e94af27ff8023}},
    {"AvoidsWithTextures", {0x07440d5518bd7cdc, 0xb311e6b280d2665b, 0x31ede877b4e51aca}},
    {"AvoidsWithDifficulty", {0x846225b748192c9a, 0xa4e4b6a8f4cfe499, 0x535cce9910698f8f}},
    {"LuminanceBlur5", {0x733d0574e7aaf471, 0x91b6cf1f64df8c3a, 0x4b26ffa73842e0af}},
    {"LuminanceBlur24", {0x93d735ddb10c9a25, 0x158c0d3bce4f1e96, 0xa22645f7fa058b27}},
    {"LuminanceBlur61", {0x3126b9e909a49622, 0x0f92bab5b17433ed, 0xf32050989ef85225}},
    {"FarFromTheRegion", {0x032762cdc8681ca6, 0xdc5412cb00180a35, 0xf7b25ed0ea75a1cb}},
    {"FarFromTheRegionWithLuminance", {0x572d36ca89909174, 0x3f7b7154fc52862b, 0x090a759429658b1b}},
    {"FarFromTheRegionWithLuminanceOffTheOrigin",
     {0x89b10eaf7148c811, 0x555977272ae8d1a0, 0x879c042a39c92a3d}},
    {"FarFromTheRegionInAWindow", {0x6920c145aedcfd27, 0x06c13f8e2e71c825, 0xb43eab82aaa82fb0}},
    {"ReplayedRegion", {0xc341583734f3091d, 0x3859add110ae869e, 0x1b7c8ca801212c6c}},
    {"ReplayedRegionWithTextures", {0x2f179702e5e5fdf3, 0xa580281816fcb2e7, 0xd99ba99cb0ffc1d7}},
};

}  // namespace Tesseret::EndToEnd
