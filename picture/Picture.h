#pragma once

/// An image in memory. Bounds are half-open pixels with y upwards; row 0 is the lowest row in every
/// memory layout.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ofx/ofxImageEffect.h"

namespace Tesseret {

enum class Depth { Byte, Short, Float };     ///< full scale 255, 65535, 1.0
enum class Components { RGBA, RGB, Alpha };  ///< channels in this order, interleaved
enum class Alpha { Opaque, Premultiplied, Unpremultiplied };

std::size_t channelBytes(Depth depth);
int channelCount(Components components);
/// To and from the names of the interface; false for an unknown name.
const char* depthName(Depth depth);
const char* componentsName(Components components);
const char* alphaName(Alpha alpha);
bool depthFromName(std::string_view name, Depth& depth);
bool componentsFromName(std::string_view name, Components& components);
bool alphaFromName(std::string_view name, Alpha& alpha);

/// The layout of rows in memory.
struct RowLayout {
    bool topDown = false;     ///< the highest row first: row bytes are negative
    std::size_t padding = 0;  ///< bytes after every row, a multiple of the channel's bytes
    bool operator==(const RowLayout&) const = default;
};

/// Why a picture cannot exist, as one clear line.
class PictureError : public std::runtime_error {
public:
    explicit PictureError(const std::string& line, bool outOfMemory = false)
        : std::runtime_error(line), outOfMemory_(outOfMemory)
    {}

    bool isOutOfMemory() const { return outOfMemory_; }

private:
    bool outOfMemory_;
};

class Picture {
public:
    /// Without pixels.
    Picture() = default;
    /// All channels zero. Empty bounds are allowed. Throws PictureError when there is not enough
    /// memory.
    Picture(OfxRectI bounds, Depth depth, Components components = Components::RGBA,
            RowLayout layout = {});
    Picture(Picture&&) noexcept = default;
    Picture& operator=(Picture&&) noexcept = default;

    OfxRectI bounds() const { return bounds_; }
    int width() const { return bounds_.x2 - bounds_.x1; }
    int height() const { return bounds_.y2 - bounds_.y1; }
    Depth depth() const { return depth_; }
    Components components() const { return components_; }
    int channels() const { return channelCount(components_); }
    std::size_t pixelBytes() const { return channelBytes(depth_) * std::size_t(channels()); }
    RowLayout layout() const { return layout_; }
    /// Bytes from one row to the row above it; negative when rows are stored top-down.
    std::ptrdiff_t rowBytes() const { return rowBytes_; }
    std::size_t storageBytes() const { return storageBytes_; }

    /// The region of definition in pixels; the bounds unless set otherwise.
    OfxRectI regionOfDefinition() const { return regionOfDefinition_; }
    void setRegionOfDefinition(OfxRectI region) { regionOfDefinition_ = region; }
    double pixelAspectRatio() const { return pixelAspectRatio_; }
    void setPixelAspectRatio(double ratio) { pixelAspectRatio_ = ratio; }
    Alpha alpha() const { return alpha_; }
    void setAlpha(Alpha alpha) { alpha_ = alpha; }

    /// The pixel (x1, y1), the lower left one; aligned to 64 bytes when rows are not top-down.
    std::byte* data() { return lowestRow_; }
    const std::byte* data() const { return lowestRow_; }
    /// The first pixel (x1) of the row at absolute y, which must lie in the bounds.
    std::byte* row(int y) { return lowestRow_ + (y - bounds_.y1) * rowBytes_; }
    const std::byte* row(int y) const { return lowestRow_ + (y - bounds_.y1) * rowBytes_; }
    /// The channels of the pixel at absolute (x, y), which must lie in the bounds; Channel is the
    /// type of the depth (std::uint8_t, std::uint16_t or float).
    template <typename Channel>
    Channel* pixel(int x, int y)
    {
        return reinterpret_cast<Channel*>(row(y) + (x - bounds_.x1) * std::ptrdiff_t(pixelBytes()));
    }
    template <typename Channel>
    const Channel* pixel(int x, int y) const
    {
        return reinterpret_cast<const Channel*>(row(y) +
                                                (x - bounds_.x1) * std::ptrdiff_t(pixelBytes()));
    }
    bool contains(int x, int y) const
    {
        return x >= bounds_.x1 && x < bounds_.x2 && y >= bounds_.y1 && y < bounds_.y2;
    }

    /// One channel as stored, of any depth; for tests and single pixels.
    double channel(int x, int y, int c) const;
    void setChannel(int x, int y, int c, double value);

    /// A copy in another memory layout and over other bounds; pixels outside this picture are
    /// filled with the byte `outside`. Region of definition, aspect ratio and alpha are kept.
    Picture copied(OfxRectI bounds, RowLayout layout, std::uint8_t outside = 0) const;
    Picture copied() const { return copied(bounds_, layout_); }
    /// A copy of another depth and other components. Full scale maps to full scale, rounded to
    /// nearest and clamped for integers; a picture without alpha gets a full one; an alpha-only
    /// picture becomes black with that alpha.
    Picture converted(Depth depth, Components components) const;
    /// Moves the bounds and the region of definition, and the pixels with them.
    void move(int x, int y);
    /// Copies the pixels that both pictures have; depth and components must be equal.
    void paste(const Picture& from);

private:
    struct Release {
        void operator()(std::byte* storage) const;
    };

    OfxRectI bounds_{0, 0, 0, 0};
    OfxRectI regionOfDefinition_{0, 0, 0, 0};
    Depth depth_ = Depth::Byte;
    Components components_ = Components::RGBA;
    Alpha alpha_ = Alpha::Unpremultiplied;
    RowLayout layout_;
    double pixelAspectRatio_ = 1.0;
    std::ptrdiff_t rowBytes_ = 0;
    std::size_t storageBytes_ = 0;
    std::unique_ptr<std::byte[], Release> storage_;
    std::byte* lowestRow_ = nullptr;
};

/// The intersection; all zero when it is empty.
OfxRectI intersection(const OfxRectI& a, const OfxRectI& b);
bool isEmpty(const OfxRectI& rect);
/// Canonical to pixels and back: x is divided by the aspect ratio and multiplied by the scale, y
/// multiplied by the scale. The smallest pixels that cover the rectangle; infinite edges stay
/// infinite.
OfxRectI toPixels(const OfxRectD& canonical, OfxPointD renderScale, double pixelAspectRatio);
OfxRectD toCanonical(const OfxRectI& pixels, OfxPointD renderScale, double pixelAspectRatio);

}  // namespace Tesseret
