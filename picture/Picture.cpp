#include "picture/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace Tesseret {

namespace {

constexpr std::align_val_t kAlignment{64};

template <typename Value>
struct NamedValue {
    Value value;
    const char* name;
};

constexpr auto kDepthNames = std::to_array<NamedValue<Depth>>({{Depth::Byte, kOfxBitDepthByte},
                                                               {Depth::Short, kOfxBitDepthShort},
                                                               {Depth::Float, kOfxBitDepthFloat}});
constexpr auto kComponentsNames =
    std::to_array<NamedValue<Components>>({{Components::RGBA, kOfxImageComponentRGBA},
                                           {Components::RGB, kOfxImageComponentRGB},
                                           {Components::Alpha, kOfxImageComponentAlpha}});
constexpr auto kAlphaNames =
    std::to_array<NamedValue<Alpha>>({{Alpha::Opaque, kOfxImageOpaque},
                                      {Alpha::Premultiplied, kOfxImagePreMultiplied},
                                      {Alpha::Unpremultiplied, kOfxImageUnPreMultiplied}});

template <typename Table, typename Value>
const char* nameIn(const Table& table, Value value)
{
    return std::find_if(table.begin(), table.end(), [&](auto& row) { return row.value == value; })
        ->name;
}

template <typename Table, typename Value>
bool valueIn(const Table& table, std::string_view name, Value& value)
{
    const auto row =
        std::find_if(table.begin(), table.end(), [&](auto& each) { return name == each.name; });
    if (row == table.end()) return false;
    value = row->value;
    return true;
}

template <typename Channel>
constexpr float kFullScale = std::is_same_v<Channel, float>
                                 ? 1.0f
                                 : static_cast<float>(std::numeric_limits<Channel>::max());

template <typename To, typename From>
To convertChannel(From value)
{
    if constexpr (std::is_same_v<To, From>) {
        return value;
    } else {
        const float part = static_cast<float>(value) / kFullScale<From>;
        if constexpr (std::is_same_v<To, float>) {
            return part;
        } else {
            // Written so that NaN becomes 0.
            const float clamped = part > 0.0f ? std::min(part, 1.0f) : 0.0f;
            return static_cast<To>(std::lround(clamped * kFullScale<To>));
        }
    }
}

/// For each target channel its source channel, or one of two constants.
constexpr int kZero = -1;
constexpr int kFull = -2;
using ChannelMap = std::array<int, 4>;

ChannelMap channelMap(Components from, Components to)
{
    if (to == Components::Alpha) {
        return {from == Components::RGBA ? 3 : from == Components::Alpha ? 0 : kFull};
    }
    if (from == Components::Alpha) return {kZero, kZero, kZero, 0};
    return {0, 1, 2, from == Components::RGBA ? 3 : kFull};
}

template <typename To, typename From>
void convertRows(const Picture& from, Picture& to)
{
    const ChannelMap map = channelMap(from.components(), to.components());
    const int toChannels = to.channels();
    const int fromChannels = from.channels();
    for (int y = to.bounds().y1; y < to.bounds().y2; ++y) {
        const From* in = reinterpret_cast<const From*>(from.row(y));
        To* out = reinterpret_cast<To*>(to.row(y));
        for (int x = 0; x < to.width(); ++x, in += fromChannels, out += toChannels) {
            for (int c = 0; c < toChannels; ++c) {
                const int source = map[static_cast<std::size_t>(c)];
                out[c] = source == kZero   ? To{0}
                         : source == kFull ? static_cast<To>(kFullScale<To>)
                                           : convertChannel<To>(in[source]);
            }
        }
    }
}

template <typename To>
void convertRowsTo(const Picture& from, Picture& to)
{
    switch (from.depth()) {
        case Depth::Byte:
            return convertRows<To, std::uint8_t>(from, to);
        case Depth::Short:
            return convertRows<To, std::uint16_t>(from, to);
        case Depth::Float:
            return convertRows<To, float>(from, to);
    }
}

bool isInfinite(double edge)
{
    return edge <= double{kOfxFlagInfiniteMin} || edge >= double{kOfxFlagInfiniteMax};
}

/// Infinite stays infinite; values outside the range of int become infinite.
int pixelEdge(double canonical, double factor, double (*round)(double))
{
    const double edge = isInfinite(canonical) ? canonical : round(canonical * factor);
    if (!(edge > double{kOfxFlagInfiniteMin})) return kOfxFlagInfiniteMin;
    return edge < double{kOfxFlagInfiniteMax} ? static_cast<int>(edge) : kOfxFlagInfiniteMax;
}

double canonicalEdge(int pixels, double factor)
{
    const double edge = pixels;
    return isInfinite(edge) ? edge : edge / factor;
}

/// Moved inwards by a millionth of a pixel, so that rounding errors at a pixel edge add no pixel.
double floorOf(double edge)
{
    return std::floor(edge + 1e-6);
}
double ceilOf(double edge)
{
    return std::ceil(edge - 1e-6);
}

}  // namespace

std::size_t channelBytes(Depth depth)
{
    return depth == Depth::Byte ? 1 : depth == Depth::Short ? 2 : 4;
}

int channelCount(Components components)
{
    return components == Components::RGBA ? 4 : components == Components::RGB ? 3 : 1;
}

const char* depthName(Depth depth)
{
    return nameIn(kDepthNames, depth);
}
const char* componentsName(Components components)
{
    return nameIn(kComponentsNames, components);
}
const char* alphaName(Alpha alpha)
{
    return nameIn(kAlphaNames, alpha);
}
bool depthFromName(std::string_view name, Depth& depth)
{
    return valueIn(kDepthNames, name, depth);
}
bool componentsFromName(std::string_view name, Components& components)
{
    return valueIn(kComponentsNames, name, components);
}

bool alphaFromName(std::string_view name, Alpha& alpha)
{
    return valueIn(kAlphaNames, name, alpha);
}

void Picture::Release::operator()(std::byte* storage) const
{
    ::operator delete[](storage, kAlignment);
}

Picture::Picture(OfxRectI bounds, Depth depth, Components components, RowLayout layout)
    : bounds_(isEmpty(bounds) ? OfxRectI{bounds.x1, bounds.y1, bounds.x1, bounds.y1} : bounds),
      regionOfDefinition_(bounds_),
      depth_(depth),
      components_(components),
      layout_(layout)
{
    const std::int64_t columns = std::int64_t{bounds_.x2} - bounds_.x1;
    const std::int64_t rows = std::int64_t{bounds_.y2} - bounds_.y1;
    const std::int64_t rowLength = columns * static_cast<std::int64_t>(pixelBytes()) +
                                   static_cast<std::int64_t>(layout.padding);
    const std::int64_t most = std::numeric_limits<int>::max();
    if (columns > most || rows > most || rowLength > most ||
        (rows > 0 && rowLength > std::numeric_limits<std::ptrdiff_t>::max() / rows)) {
        throw PictureError("a picture of " + std::to_string(columns) + " x " +
                           std::to_string(rows) + " pixels is too large");
    }
    storageBytes_ = static_cast<std::size_t>(rowLength * rows);
    if (storageBytes_ == 0) return;
    // At least 64 bytes, and rows of any length: the alignment holds for the storage.
    auto* const storage =
        static_cast<std::byte*>(::operator new[](storageBytes_, kAlignment, std::nothrow));
    if (!storage) throw PictureError("not enough memory for a picture", true);
    storage_.reset(storage);
    std::memset(storage, 0, storageBytes_);
    const auto stride = static_cast<std::ptrdiff_t>(rowLength);
    rowBytes_ = layout.topDown ? -stride : stride;
    lowestRow_ =
        layout.topDown ? storage + stride * (static_cast<std::ptrdiff_t>(rows) - 1) : storage;
}

double Picture::channel(int x, int y, int c) const
{
    switch (depth_) {
        case Depth::Byte:
            return pixel<std::uint8_t>(x, y)[c];
        case Depth::Short:
            return pixel<std::uint16_t>(x, y)[c];
        case Depth::Float:
            break;
    }
    return double{pixel<float>(x, y)[c]};
}

void Picture::setChannel(int x, int y, int c, double value)
{
    switch (depth_) {
        case Depth::Byte:
            pixel<std::uint8_t>(x, y)[c] = static_cast<std::uint8_t>(value);
            break;
        case Depth::Short:
            pixel<std::uint16_t>(x, y)[c] = static_cast<std::uint16_t>(value);
            break;
        case Depth::Float:
            pixel<float>(x, y)[c] = static_cast<float>(value);
            break;
    }
}

Picture Picture::copied(OfxRectI bounds, RowLayout layout, std::uint8_t outside) const
{
    Picture copy(bounds, depth_, components_, layout);
    const OfxRectI common = intersection(bounds_, copy.bounds_);
    const bool covers = common.x1 == copy.bounds_.x1 && common.x2 == copy.bounds_.x2 &&
                        common.y1 == copy.bounds_.y1 && common.y2 == copy.bounds_.y2;
    if (copy.storageBytes_ > 0 && outside != 0 && (!covers || layout.padding > 0)) {
        std::memset(copy.storage_.get(), outside, copy.storageBytes_);
    }
    copy.paste(*this);
    copy.regionOfDefinition_ = regionOfDefinition_;
    copy.pixelAspectRatio_ = pixelAspectRatio_;
    copy.alpha_ = alpha_;
    return copy;
}

Picture Picture::converted(Depth depth, Components components) const
{
    if (depth == depth_ && components == components_) return copied();
    Picture result(bounds_, depth, components, RowLayout{layout_.topDown, 0});
    switch (depth) {
        case Depth::Byte:
            convertRowsTo<std::uint8_t>(*this, result);
            break;
        case Depth::Short:
            convertRowsTo<std::uint16_t>(*this, result);
            break;
        case Depth::Float:
            convertRowsTo<float>(*this, result);
            break;
    }
    result.regionOfDefinition_ = regionOfDefinition_;
    result.pixelAspectRatio_ = pixelAspectRatio_;
    result.alpha_ = alpha_;
    return result;
}

void Picture::move(int x, int y)
{
    for (OfxRectI* const box : {&bounds_, &regionOfDefinition_}) {
        *box = {box->x1 + x, box->y1 + y, box->x2 + x, box->y2 + y};
    }
}

void Picture::paste(const Picture& from)
{
    if (from.depth_ != depth_ || from.components_ != components_) {
        throw PictureError("pictures of different formats cannot be pasted");
    }
    const OfxRectI common = intersection(bounds_, from.bounds_);
    if (isEmpty(common)) return;
    const std::size_t bytes = static_cast<std::size_t>(common.x2 - common.x1) * pixelBytes();
    for (int y = common.y1; y < common.y2; ++y) {
        std::memcpy(pixel<std::byte>(common.x1, y), from.pixel<std::byte>(common.x1, y), bytes);
    }
}

OfxRectI intersection(const OfxRectI& a, const OfxRectI& b)
{
    const OfxRectI both{std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2),
                        std::min(a.y2, b.y2)};
    return isEmpty(both) ? OfxRectI{0, 0, 0, 0} : both;
}

bool isEmpty(const OfxRectI& rect)
{
    return rect.x1 >= rect.x2 || rect.y1 >= rect.y2;
}

OfxRectI toPixels(const OfxRectD& canonical, OfxPointD renderScale, double pixelAspectRatio)
{
    const double x = renderScale.x / pixelAspectRatio;
    return {pixelEdge(canonical.x1, x, floorOf), pixelEdge(canonical.y1, renderScale.y, floorOf),
            pixelEdge(canonical.x2, x, ceilOf), pixelEdge(canonical.y2, renderScale.y, ceilOf)};
}

OfxRectD toCanonical(const OfxRectI& pixels, OfxPointD renderScale, double pixelAspectRatio)
{
    const double x = renderScale.x / pixelAspectRatio;
    return {canonicalEdge(pixels.x1, x), canonicalEdge(pixels.y1, renderScale.y),
            canonicalEdge(pixels.x2, x), canonicalEdge(pixels.y2, renderScale.y)};
}

}  // namespace Tesseret
