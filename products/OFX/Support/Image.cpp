#include "products/OFX/Support/Image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "engine/map/Map.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/InstanceRecord.h"

namespace Orvane {
namespace {

using Engine::PixelKind;

constexpr int kMaxInt = std::numeric_limits<int>::max();

OfxRectI rectOf(const OvOfxPropertySet& properties, const char* name)
{
    std::array<int, 4> sides{};
    if (properties.getInts(name, sides) != kOfxStatOK) return {};
    return {.x1 = sides[0], .y1 = sides[1], .x2 = sides[2], .y2 = sides[3]};
}

PixelKind kindOf(OvDepth depth, OvComponents components)
{
    static constexpr std::array kRGBA = {PixelKind::None, PixelKind::RGBA8, PixelKind::RGBA16,
                                         PixelKind::RGBAf};
    static constexpr std::array kAlpha = {PixelKind::None, PixelKind::Alpha8, PixelKind::Alpha16,
                                          PixelKind::Alphaf};
    switch (components) {
        case OvComponents::RGBA:
            return kRGBA[static_cast<std::size_t>(depth)];
        case OvComponents::Alpha:
            return kAlpha[static_cast<std::size_t>(depth)];
        default:
            return PixelKind::None;
    }
}

/// A number on the channel's own scale as a channel: truncated and clamped.
template <typename Channel>
Channel channelOf(float value)
{
    if constexpr (std::is_floating_point_v<Channel>) {
        return value;
    } else {
        constexpr auto kMax = static_cast<float>(std::numeric_limits<Channel>::max());
        return value > 0.0f ? static_cast<Channel>(std::min(value, kMax)) : Channel{0};
    }
}

/// A clip's edge colour as a pixel. A single-channel clip uses the alpha, on the scale 0 to 1 at
/// every depth.
template <typename Pixel>
Pixel edgePixel(const std::array<float, 4>& colour)
{
    if constexpr (std::is_arithmetic_v<Pixel>) {
        return channelOf<Pixel>(colour[3]);
    } else {
        using Channel = typename Pixel::Channel;
        constexpr float kScale = std::is_floating_point_v<Channel>
                                     ? 1.0f
                                     : static_cast<float>(std::numeric_limits<Channel>::max());
        return {channelOf<Channel>(colour[0] * kScale), channelOf<Channel>(colour[1] * kScale),
                channelOf<Channel>(colour[2] * kScale), channelOf<Channel>(colour[3] * kScale)};
    }
}

/// A fraction of an axis in whole pixels; the fraction may be any number.
int pixelsOf(int size, float part)
{
    const double pixels = std::trunc(static_cast<double>(size) * static_cast<double>(part));
    return std::isnan(pixels) ? 0 : static_cast<int>(std::clamp<double>(pixels, -kMaxInt, kMaxInt));
}

Engine::EdgeMode edgeModeOf(OvEdgeMethod method)
{
    return static_cast<Engine::EdgeMode>(method);
}

/// A fetched image together with its map; the image is released last.
template <typename Pixel>
class ImageView final : public Engine::ClipImage {
public:
    ImageView(std::unique_ptr<OvOfxImage> image, const OvOfxClip& clip) : image_(std::move(image))
    {
        const OfxRectI bounds = image_->bounds();
        const OfxRectI defined = image_->regionOfDefinition();
        const OvImageAxis x = imageAxis(defined.x1, defined.x2, bounds.x1, bounds.x2);
        const OvImageAxis y = imageAxis(defined.y1, defined.y2, bounds.y1, bounds.y2);
        auto* data = static_cast<std::byte*>(image_->data());
        if (data != nullptr && !x.isEmpty() && !y.isEmpty()) {
            place(x, y);
            map_.borrow(firstStored(data, x, y), image_->rowBytes());
        }
        applyEdges(clip);
    }

    [[nodiscard]] PixelKind kind() const override { return Engine::kPixelKind<Pixel>; }

protected:
    Engine::MapDomain& domain() override { return map_; }

private:
    void place(const OvImageAxis& x, const OvImageAxis& y)
    {
        map_.setSize(x.size, y.size);
        map_.setStoredRange(x.storeFirst, x.storeLast, y.storeFirst, y.storeLast);
        map_.setOffset(x.origin, y.origin);
        map_.setOrigin(x.origin, y.origin);
    }

    /// `data` is the first pixel of the bounds; those before the region of definition are skipped.
    std::byte* firstStored(std::byte* data, const OvImageAxis& x, const OvImageAxis& y) const
    {
        const std::int64_t offset =
            std::int64_t{y.skipped} * image_->rowBytes() +
            std::int64_t{x.skipped} * static_cast<std::int64_t>(sizeof(Pixel));
        return data + static_cast<std::ptrdiff_t>(offset);
    }

    void applyEdges(const OvOfxClip& clip)
    {
        map_.setEdgeMode(edgeModeOf(clip.edgeMethodX), edgeModeOf(clip.edgeMethodY));
        if (clip.edgeMethodX == OvEdgeMethod::Colour || clip.edgeMethodY == OvEdgeMethod::Colour) {
            map_.setFillValue(edgePixel<Pixel>(clip.edgeColour));
        }
        map_.setActiveRange(pixelsOf(map_.width(), clip.cropBottomLeft.x),
                            pixelsOf(map_.width(), clip.cropTopRight.x),
                            pixelsOf(map_.height(), clip.cropBottomLeft.y),
                            pixelsOf(map_.height(), clip.cropTopRight.y));
    }

    std::unique_ptr<OvOfxImage> image_;
    Engine::Map<Pixel> map_;
};

template <typename Pixel>
std::unique_ptr<Engine::ClipImage> viewOf(std::unique_ptr<OvOfxImage> image, const OvOfxClip& clip)
{
    return std::make_unique<ImageView<Pixel>>(std::move(image), clip);
}

}  // namespace

std::unique_ptr<OvOfxImage> OvOfxImage::fetch(const OvOfxClipHandle& clip, double time,
                                              const OvRect* region)
{
    OfxPropertySetHandle handle = nullptr;  // decides, whatever status the host returns
    const OfxRectD wanted = region != nullptr ? toOfx(*region) : OfxRectD{};
    // Made before the fetch, so that nothing can fail between the fetch and its release.
    std::unique_ptr<OvOfxImage> image(new OvOfxImage(nullptr));
    hostDescription().suites.imageEffect->clipGetImage(
        clip.clip(), time, region != nullptr ? &wanted : nullptr, &handle);
    if (handle == nullptr) return nullptr;
    image->properties_ = OvOfxPropertySet(handle);
    return image;
}

OvOfxImage::~OvOfxImage()
{
    if (properties_.handle() == nullptr) return;
    hostDescription().suites.imageEffect->clipReleaseImage(properties_.handle());
}

void* OvOfxImage::data() const
{
    void* data = nullptr;
    return properties_.getPointer(kOfxImagePropData, data) == kOfxStatOK ? data : nullptr;
}

int OvOfxImage::rowBytes() const
{
    return properties_.intOr(kOfxImagePropRowBytes, 0);
}

OfxRectI OvOfxImage::bounds() const
{
    return rectOf(properties_, kOfxImagePropBounds);
}

OfxRectI OvOfxImage::regionOfDefinition() const
{
    return rectOf(properties_, kOfxImagePropRegionOfDefinition);
}

std::optional<double> OvOfxImage::pixelAspectRatio() const
{
    return aspectOf(properties_, kOfxImagePropPixelAspectRatio);
}

OvField OvOfxImage::field() const
{
    return fieldFromName(properties_.stringOr(kOfxImagePropField, "").c_str());
}

PixelKind OvOfxImage::kind(const OvOfxClip& clip) const
{
    const std::string depth = properties_.stringOr(kOfxImageEffectPropPixelDepth, "");
    const std::string components = properties_.stringOr(kOfxImageEffectPropComponents, "");
    return kindOf(depth.empty() ? clip.pixelDepth() : depthFromName(depth.c_str()),
                  components.empty() ? clip.components() : componentsFromName(components.c_str()));
}

OvImageAxis imageAxis(int definedMin, int definedMax, int storedMin, int storedMax)
{
    // 64 bits: hosts may pass extents that overflow an int.
    std::int64_t first = definedMin;
    std::int64_t end = definedMax;
    if (definedMin == kOfxFlagInfiniteMin || definedMax == kOfxFlagInfiniteMax || first == end ||
        end - first > kMaxInt) {
        first = storedMin;
        end = storedMax;
    }
    const std::int64_t readFirst = std::max<std::int64_t>(first, storedMin);
    const std::int64_t readEnd = std::min<std::int64_t>(end, storedMax);
    if (readEnd <= readFirst || end - first > kMaxInt || readFirst - storedMin > kMaxInt) return {};
    return {.origin = static_cast<int>(first),
            .size = static_cast<int>(end - first),
            .storeFirst = static_cast<int>(readFirst - first),
            .storeLast = static_cast<int>(readEnd - first - 1),
            .skipped = static_cast<int>(readFirst - storedMin)};
}

std::unique_ptr<Engine::ClipImage> makeImageView(std::unique_ptr<OvOfxImage> image,
                                                 const OvOfxClip& clip)
{
    switch (image->kind(clip)) {
        case PixelKind::RGBA8:
            return viewOf<Engine::PixelRGBA8>(std::move(image), clip);
        case PixelKind::RGBA16:
            return viewOf<Engine::PixelRGBA16>(std::move(image), clip);
        case PixelKind::RGBAf:
            return viewOf<Engine::PixelRGBAf>(std::move(image), clip);
        case PixelKind::Alpha8:
            return viewOf<Engine::Pixel8>(std::move(image), clip);
        case PixelKind::Alpha16:
            return viewOf<Engine::Pixel16>(std::move(image), clip);
        case PixelKind::Alphaf:
            return viewOf<Engine::Pixel32f>(std::move(image), clip);
        default:
            return nullptr;
    }
}

}  // namespace Orvane
