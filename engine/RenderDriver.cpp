#include "engine/RenderDriver.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <utility>

#include "engine/SynthesisNode.h"
#include "engine/map/ExactMath.h"
#include "engine/mask/RegionMask.h"

namespace Orvane::Engine {
namespace {

constexpr int kEntireImage = 0;  ///< the choice of "fillRegion" that needs no mask
constexpr int kSeamStep = 2;
constexpr int kMaxLuminancePasses = 2147483647;
constexpr const char* kNoMask = "there is no mask to fill, so the whole picture is filled";

/// A host image and the engine's own view of it. The view goes first, then the image.
template <typename Pixel>
struct FetchedMap {
    std::unique_ptr<ClipImage> image;
    Map<Pixel> map;

    /// Whether there is an image of this kind.
    bool fetch(RenderContext& context, const char* clip, double time)
    {
        return adopt(context.clipImage(clip, time));
    }
    bool adopt(std::unique_ptr<ClipImage> fetched)
    {
        Map<Pixel>* view = fetched != nullptr ? fetched->as<Pixel>() : nullptr;
        if (view == nullptr) return false;
        image = std::move(fetched);
        map.assign(*view);
        return true;
    }
};

/// Empties the state at the end of a render unless that is to be kept: blocks of a fresh render
/// that was aborted or failed are never laid again, and an instance that lays no block again holds
/// no memory.
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

/// One render at one depth.
template <typename Pixel>
class DepthRender {
public:
    DepthRender(RenderContext& context, TemporalState& state)
        : context_(context), state_(state), time_(context.time())
    {}

    void render(std::unique_ptr<ClipImage> output)
    {
        FetchedMap<Pixel> target;
        FetchedMap<Pixel> source;
        const bool hasOutput = target.adopt(std::move(output)) && target.map.isUsable();
        const Window window = context_.renderWindow();
        const bool hasSource = source.fetch(context_, "Source", time_);
        if (!hasOutput || !hasSource || window.x2 <= window.x1 || window.y2 <= window.y1) return;

        SynthesisSettings<Pixel> settings;
        settings.useStoredBlocks = decideReplay();
        StateKeeper keeper(state_);
        if (settings.useStoredBlocks) keeper.keep();
        const int choice = context_.intAt("fillRegion", time_);
        mask_.fetch(context_, choice, source.map);
        readSettings(settings);
        if (!mask_.exists()) {
            sayThatThereIsNoMask(choice);
        } else if (!prepareMask(settings)) {
            return;
        }
        std::array<FetchedMap<Pixel>, 3> textures;
        fetchTextures(textures, source.map, settings);

        SynthesisNode<Pixel> node(settings, state_, context_.observer());
        node.setRegion({window.x1, window.y1, window.x2, window.y2});
        node.setStatusRecord(&context_.renderStatus());
        node.process(source.map, target.map);
        if (state_.valid && context_.renderStatus().aborted == 0) keeper.keep();
    }

private:
    /// Starts the state anew at frame 0 and when there is nothing to lay again.
    bool decideReplay()
    {
        const bool firstFrame = floorToInt(time_ + 0.5) == 0;
        bool replays = true;
        if (firstFrame || !state_.valid) {
            state_.discard();
            state_.valid = true;
            replays = false;
        }
        if (!context_.boolAt("temporalConsistancy", time_)) {
            replays = false;
            state_.valid = false;  // the next render starts anew
        }
        return replays;
    }

    /// Whether the render goes on: it ends when the host asks to while the mask is prepared.
    bool prepareMask(SynthesisSettings<Pixel>& settings)
    {
        const ObservedStage stage(context_.observer(), "mask");
        preparedMask_ = mask_.prepare(settings.seed, context_.renderStatus());
        if (!preparedMask_) return false;
        settings.fillMask = &*preparedMask_;
        settings.fillAll = false;
        return true;
    }

    void sayThatThereIsNoMask(int choice)
    {
        RenderObserver* observer = context_.observer();
        if (choice != kEntireImage && observer != nullptr) observer->note(kNoMask);
    }

    void readSettings(SynthesisSettings<Pixel>& settings)
    {
        settings.sampleBox = readSampleBox();
        settings.seed = context_.intAt("seed", time_);
        settings.blocks.blockW = settings.blocks.blockH = scaledInt("blockSize");
        settings.blocks.overlapW = settings.blocks.overlapH = scaledInt("overlap");
        const int blend = scaledInt("blendSize");
        settings.blocks.blendW = floorToInt(blend / context_.pixelAspectRatio() + 0.5);
        settings.blocks.blendH = blend;
        settings.blocks.numSamples = context_.intAt("numSamples", time_);
        settings.blocks.seamStep = kSeamStep;
        settings.pathWidth = lengthAt("pathWidth");
        settings.edgeBlend = lengthAt("edgeBlend");
        settings.avoidFillRegion = context_.boolAt("avoidFillRegion", time_);
        settings.luminanceMatch = context_.boolAt("luminanceMatch", time_);
        settings.luminanceBlur = lengthAt("luminanceBlur");
        settings.maxPasses = kMaxLuminancePasses;
    }

    /// A length in pixels of this render; a negative one and NaN count as 0.
    float lengthAt(const char* name)
    {
        const auto length = static_cast<float>(context_.doubleAt(name, time_));
        return length > 0.0f ? length : 0.0f;
    }

    /// A length in pixels at full size, as pixels of this render; the horizontal scale serves both
    /// axes.
    int scaledInt(const char* name)
    {
        const auto pixels = static_cast<float>(context_.intAt(name, time_));
        return truncateToInt(pixels * context_.renderScale().x);
    }

    /// The corners arrive in pixels, in any order.
    Region readSampleBox()
    {
        const Vec2 a = context_.double2DAt("sampleCorner1", time_);
        const Vec2 b = context_.double2DAt("sampleCorner2", time_);
        const auto [xMin, xMax] = std::minmax({truncateToInt(a.x), truncateToInt(b.x)});
        const auto [yMin, yMax] = std::minmax({truncateToInt(a.y), truncateToInt(b.y)});
        return {xMin, yMin, xMax, yMax};
    }

    /// Textures that are connected, switched on and deliver an image; the source when there is
    /// none.
    void fetchTextures(std::array<FetchedMap<Pixel>, 3>& textures, Map<Pixel>& source,
                       SynthesisSettings<Pixel>& settings)
    {
        struct TextureClip {
            const char* clip;
            const char* toggle;
        };
        constexpr std::array<TextureClip, 3> kClips{{{"Texture1", "useTexture1"},
                                                     {"Texture2", "useTexture2"},
                                                     {"Texture3", "useTexture3"}}};
        bool any = false;
        for (std::size_t i = 0; i < kClips.size(); ++i) {
            const auto& [clip, toggle] = kClips[i];
            if (!context_.hasParam(toggle) || !context_.isClipConnected(clip)) continue;
            if (!context_.boolAt(toggle, time_)) continue;
            if (!textures[i].fetch(context_, clip, time_)) continue;
            settings.textures[i] = &textures[i].map;
            any = true;
        }
        if (any) return;
        textures[0].map.assign(source);
        settings.textures[0] = &textures[0].map;
    }

    RenderContext& context_;
    TemporalState& state_;
    double time_;
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
    std::unique_ptr<ClipImage> output = context.clipImage("Output", context.time());
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
