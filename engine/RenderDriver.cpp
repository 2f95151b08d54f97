#include "engine/RenderDriver.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "engine/RecordBytes.h"
#include "engine/SynthesisNode.h"
#include "engine/map/ExactMath.h"
#include "engine/mask/RegionMask.h"

namespace Orvane::Engine {
namespace {

constexpr int kSeamStep = 2;
constexpr int kMaxLuminancePasses = 2147483647;
constexpr const char* kNoMask = "there is no mask to fill, so the whole picture is filled";

/// A host image and the engine's own view of it. The view is destroyed before the image.
template <typename Pixel>
struct FetchedMap {
    std::unique_ptr<ClipImage> image;
    Map<Pixel> map;

    /// Takes over an image of this kind. Releases any other and returns false.
    bool adopt(std::unique_ptr<ClipImage> fetched)
    {
        Map<Pixel>* view = fetched != nullptr ? fetched->as<Pixel>() : nullptr;
        if (view == nullptr) return false;
        image = std::move(fetched);
        map.assign(*view);
        return true;
    }
};

/// Empties the state at the end of a render unless `keep` was called: blocks of a fresh render that
/// was aborted or failed are never replayed, and an instance without temporal consistency holds no
/// memory.
class StateKeeper {
public:
    explicit StateKeeper(TemporalState& state) : state_(state) {}
    StateKeeper(const StateKeeper&) = delete;
    StateKeeper& operator=(const StateKeeper&) = delete;
    ~StateKeeper()
    {
        if (!kept_) state_.discard();
    }
    void keep() { kept_ = true; }

private:
    TemporalState& state_;
    bool kept_ = false;
};

template <typename Pixel>
SynthesisSettings<Pixel> settingsOf(const FillParameters& fill)
{
    SynthesisSettings<Pixel> settings;
    settings.sampleBox = fill.sampleBox;
    settings.avoidFillRegion = fill.avoidFillRegion;
    settings.seed = fill.seed;
    settings.blocks = {.blockW = fill.blockSize,
                       .blockH = fill.blockSize,
                       .overlapW = fill.overlap,
                       .overlapH = fill.overlap,
                       .blendW = fill.blendWidth,
                       .blendH = fill.blendHeight,
                       .seamStep = kSeamStep,
                       .numSamples = fill.numSamples};
    settings.pathWidth = fill.pathWidth;
    settings.edgeBlend = fill.edgeBlend;
    settings.luminanceMatch = fill.luminanceMatch;
    settings.luminanceBlur = fill.luminanceBlur;
    settings.maxPasses = kMaxLuminancePasses;
    return settings;
}

/// One render at one depth.
template <typename Pixel>
class DepthRender {
public:
    DepthRender(RenderContext& context, TemporalState& state) : context_(context), state_(state) {}

    void render(std::unique_ptr<ClipImage> output)
    {
        FetchedMap<Pixel> target;
        FetchedMap<Pixel> source;
        const bool hasOutput = target.adopt(std::move(output)) && target.map.isUsable();
        const RenderPlace place = context_.place();
        const bool hasSource = source.adopt(context_.sourceImage());
        if (!hasOutput || !hasSource || place.window.isEmpty()) return;

        const bool hasBlocks = holdsBlocksFor(place.time);
        FillParameters fill;
        context_.readRegion(fill);
        const bool useStoredBlocks =
            fill.temporalConsistency && (hasBlocks || takesOffered(place.time));
        state_.valid = fill.temporalConsistency;  // else the next render starts anew
        StateKeeper keeper(state_);
        if (useStoredBlocks) keeper.keep();
        takeMask(fill, source.map);
        context_.readFill(fill);
        auto settings = settingsOf<Pixel>(fill);
        settings.useStoredBlocks = useStoredBlocks;
        settings.keepsBlocks = fill.temporalConsistency;
        if (!mask_.exists()) {
            noteMissingMask(fill.maskOrigin);
        } else if (!useStoredBlocks && !prepareMask(settings)) {
            return;
        }
        std::array<FetchedMap<Pixel>, 3> textures;
        fetchTextures(textures, source.map, settings);

        SynthesisNode<Pixel> node(settings, state_, context_.observer());
        node.setRegion(place.window);
        node.setStatusRecord(&context_.renderStatus());
        node.process(source.map, target.map);
        if (!state_.valid || context_.renderStatus().aborted != 0) return;
        keeper.keep();
        if (!useStoredBlocks) giveRecord();
    }

private:
    /// Whether the state holds blocks for that time. Empties it at frame 0, and when its blocks are
    /// not valid.
    bool holdsBlocksFor(double time)
    {
        if (!isFirstFrame(time) && state_.valid) return true;
        state_.discard();
        return false;
    }

    static bool isFirstFrame(double time) { return floorToInt(time + 0.5) == 0; }

    /// Whether the blocks of another instance are in the state now.
    bool takesOffered(double time)
    {
        RecordExchange* const records = context_.records();
        if (records == nullptr || isFirstFrame(time)) return false;
        const std::span<const std::byte> record = records->offered();
        if (record.empty()) return false;
        std::optional<TemporalState> offered = stateFrom(record);
        records->taken(offered.has_value());
        if (offered) state_ = std::move(*offered);
        return offered.has_value();
    }

    void giveRecord()
    {
        RecordExchange* const records = context_.records();
        if (records != nullptr && records->isWanted()) records->made(recordBytes(state_));
    }

    void takeMask(const FillParameters& fill, const Map<Pixel>& source)
    {
        RenderStatus& status = context_.renderStatus();
        if (fill.maskOrigin == MaskOrigin::SourceAlpha) {
            mask_.takeSourceAlpha(source, fill.maskPolarity, status);
        } else if (fill.maskOrigin == MaskOrigin::Matte) {
            mask_.takeMatte(context_.matteImage(), fill.maskPolarity, status);
        }
    }

    /// Prepares the mask; false when the host aborted meanwhile.
    bool prepareMask(SynthesisSettings<Pixel>& settings)
    {
        const ObservedStage stage(context_.observer(), "mask");
        preparedMask_ = mask_.prepare(settings.seed, context_.renderStatus());
        if (!preparedMask_) return false;
        settings.fillMask = &*preparedMask_;
        settings.fillAll = false;
        return true;
    }

    void noteMissingMask(MaskOrigin wanted)
    {
        RenderObserver* observer = context_.observer();
        if (wanted != MaskOrigin::None && observer != nullptr) observer->note(kNoMask);
    }

    /// Fetches the textures in use; uses the source when there is none.
    void fetchTextures(std::array<FetchedMap<Pixel>, 3>& textures, Map<Pixel>& source,
                       SynthesisSettings<Pixel>& settings)
    {
        bool any = false;
        for (std::size_t i = 0; i < textures.size(); ++i) {
            if (!textures[i].adopt(context_.textureImage(i))) continue;
            settings.textures[i] = &textures[i].map;
            any = true;
        }
        if (any) return;
        textures[0].map.assign(source);
        settings.textures[0] = &textures[0].map;
    }

    RenderContext& context_;
    TemporalState& state_;
    RegionMask<Pixel> mask_;
    std::optional<Map<Pixel32f>> preparedMask_;
};

template <typename Pixel>
void renderDepth(RenderContext& context, TemporalState& state, std::unique_ptr<ClipImage> output)
{
    DepthRender<Pixel>(context, state).render(std::move(output));
}

}  // namespace

void renderFrame(RenderContext& context, TemporalState& state, PixelKind depth)
{
    std::unique_ptr<ClipImage> output = context.outputImage();
    switch (output != nullptr ? output->kind() : depth) {
        case PixelKind::RGBA8:
            return renderDepth<PixelRGBA8>(context, state, std::move(output));
        case PixelKind::RGBA16:
            return renderDepth<PixelRGBA16>(context, state, std::move(output));
        case PixelKind::RGBAf:
            return renderDepth<PixelRGBAf>(context, state, std::move(output));
        default:
            break;
    }
}

}  // namespace Orvane::Engine
