#include "effect/EffectTable.h"

#include "effect/ParameterNames.h"

namespace Tesseret {
namespace {

constexpr auto kClips = std::to_array<ClipRow>({
    {.name = Names::kSource, .label = "Source", .components = "RGBA"},
    {.name = Names::kTextures[0],
     .label = "Texture 1",
     .components = "RGBA",
     .optional = true,
     .temporalAccess = true,
     .contexts = In::GeneralOnly},
    {.name = Names::kTextures[1],
     .label = "Texture 2",
     .components = "RGBA",
     .optional = true,
     .temporalAccess = true,
     .contexts = In::GeneralOnly},
    {.name = Names::kTextures[2],
     .label = "Texture 3",
     .components = "RGBA",
     .optional = true,
     .temporalAccess = true,
     .contexts = In::GeneralOnly},
    {.name = Names::kMatte,
     .label = "Fill Matte",
     .components = "alpha",
     .optional = true,
     .isMask = true,
     .temporalAccess = true,
     .contexts = In::GeneralOnly},
});

/// Without a matte clip there are only the first three.
constexpr auto kFilterFillRegions = std::span(Names::kFillRegions).first<3>();

constexpr auto kParameters = std::to_array<ParamRow>({
    {.name = Names::kSampleCorner1,
     .scriptName = "Point1",
     .label = "Sample Corner 1",
     .value = Corner{.number = 1, .initialX = 0.2f, .initialY = 0.2f},
     .animates = true},
    {.name = Names::kSampleCorner2,
     .scriptName = "Point2",
     .label = "Sample Corner 2",
     .value = Corner{.number = 2, .initialX = 0.8f, .initialY = 0.8f},
     .animates = true},
    {.name = Names::kAvoidFillRegion,
     .label = "Avoid Fill Region",
     .hint = "Whether to avoid the fill region when selecting texture blocks.",
     .value = Boolean{.initial = false}},
    {.name = Names::kFillRegion,
     .label = "Fill Region",
     .value = Choice{.initial = "None", .options = kFilterFillRegions},
     .contexts = In::FilterOnly},
    {.name = Names::kFillRegion,
     .label = "Fill Region",
     .value = Choice{.initial = Names::kMatteAlpha, .options = Names::kFillRegions},
     .contexts = In::GeneralOnly},
    {.name = Names::kSeed,
     .label = "Random Seed",
     .hint = "the random number seed which will be used to initialise the process.",
     .value = Integer{.initial = 1, .min = 0, .max = 9000000, .displayMin = 0, .displayMax = 1000}},
    {.name = Names::kBlockSize,
     .label = "Block Size",
     .hint = "Size of the jigsaw pieces used in creating the new texture.",
     .value =
         Integer{.initial = 100, .min = 30, .max = 9000000, .displayMin = 30, .displayMax = 1000}},
    {.name = Names::kOverlap,
     .label = "Overlap",
     .hint = "Size of the overlap regions between block pieces.",
     .value =
         Integer{.initial = 25, .min = 1, .max = 9000000, .displayMin = 1, .displayMax = 1000}},
    {.name = Names::kBlendSize,
     .label = "Blend Size",
     .hint = "The amount of blending between block pieces.",
     .value = Integer{.initial = 0, .min = 0, .max = 9000000, .displayMin = 0, .displayMax = 100}},
    {.name = Names::kNumSamples,
     .label = "Num. of Samples",
     .hint = "The number of different block samples trialled from each texture image.",
     .value = Integer{.initial = 5, .min = 1, .max = 9000000, .displayMin = 1, .displayMax = 100}},
    {.name = Names::kPathWidth,
     .label = "Path Width",
     .hint = "Maximum width of the best fit path between the fill region and source image.",
     .value = Real{.initial = 10.0f,
                   .min = 1.0f,
                   .max = 9000000.0f,
                   .displayMin = 1.0f,
                   .displayMax = 200.0f,
                   .increment = 2.0f},
     .animates = true},
    {.name = Names::kEdgeBlend,
     .label = "Edge Blend",
     .hint = "Blend between the fill region and source image.",
     .value = Real{.initial = 5.0f,
                   .min = 0.0f,
                   .max = 9000000.0f,
                   .displayMin = 0.0f,
                   .displayMax = 200.0f,
                   .increment = 2.0f},
     .animates = true},
    {.name = Names::kTemporalConsistency,
     .label = "Temporal Consistency",
     .hint = "When temporally consistent, the random blocks used are only chosen at frame 1.",
     .value = Boolean{.initial = false}},
    {.name = Names::kLuminanceMatch,
     .label = "Luminance Match",
     .hint = "Attempts to match the luminance of the fill region and source image.",
     .value = Boolean{.initial = false}},
    {.name = Names::kLuminanceBlur,
     .label = "Luminance Blur",
     .hint = "Amount of softening of luminance between regions.",
     .value = Real{.initial = 40.0f,
                   .min = 5.0f,
                   .max = 9000000.0f,
                   .displayMin = 5.0f,
                   .displayMax = 100.0f,
                   .increment = 1.0f},
     .animates = true},
    {.name = Names::kUseTextures[0],
     .label = "Use Texture 1",
     .hint = "Whether to use Texture 2 as a texture source.",
     .value = Boolean{.initial = false},
     .contexts = In::GeneralOnly},
    {.name = Names::kUseTextures[1],
     .label = "Use Texture 2",
     .hint = "Whether to use Texture 3 as a texture source.",
     .value = Boolean{.initial = false},
     .contexts = In::GeneralOnly},
    {.name = Names::kUseTextures[2],
     .label = "Use Texture 3",
     .hint = "Whether to use Texture 4 as a texture source.",
     .value = Boolean{.initial = false},
     .contexts = In::GeneralOnly},
    {.name = Names::kShowWidget, .label = "Show Widget", .value = InterfaceToggle{}},
    {.name = Names::kAbout,
     .label = "Help...",
     .hint = "Shows information about the plugin.",
     .value = Button{}},
});

constexpr auto kTextureLines = std::to_array<PageLine>({
    {Names::kAvoidFillRegion, Names::kSeed, Names::kPathWidth, Names::kUseTextures[0],
     Names::kAbout},
    {Names::kFillRegion, Names::kBlockSize, Names::kEdgeBlend, Names::kUseTextures[1],
     Names::kShowWidget},
    {kEmptyCell, Names::kOverlap, Names::kTemporalConsistency, Names::kUseTextures[2]},
    {kEmptyCell, Names::kBlendSize, Names::kLuminanceMatch},
    {kEmptyCell, Names::kNumSamples, Names::kLuminanceBlur},
});

constexpr auto kSampleBoxLines = std::to_array<PageLine>({
    {Names::kSampleCorner1, Names::kSampleCorner2},
});

constexpr auto kPages = std::to_array<PageRow>({
    {.name = "Texture", .scriptName = "Texture", .lines = kTextureLines},
    {.name = "Sample Box", .scriptName = "parameter", .lines = kSampleBoxLines},
});

}  // namespace

const char* const kDescription =
    "Tesseret replicates large scale textures, by taking blocks of texture from several sources, "
    "and rearranging them in a destination region.\n\n"
    "Note, when 'temporalConsistancy' is set to 'true', Tesseret will only show correctly rendered "
    "results when the output is rendered in sequence from the first to last frame. So skipping "
    "around on the time line in a user interface will not show the correct computation.\n\n"
    "Supported OFX hosts know this, and compute from first to last when doing a 'final' render. "
    "The one exception to this is FilmLight's Baselight, which cannot be made to work with plug-in "
    "in this mode.";

std::span<const ClipRow> clipRows()
{
    return kClips;
}

std::span<const ParamRow> paramRows()
{
    return kParameters;
}

std::span<const PageRow> pageRows()
{
    return kPages;
}

}  // namespace Tesseret
