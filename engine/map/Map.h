#pragma once

#include <cstddef>
#include <optional>
#include <utility>

#include "engine/map/MapDomain.h"
#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// A two-dimensional pixel array in absolute pixel coordinates. A map is empty, a view of pixels
/// owned elsewhere, or the owner of a block of the host's image memory. It can be moved, not
/// copied.
///
/// Rows are in increasing y, pixels in increasing x. Reads never fault: where there is no pixel
/// they return the fill value. A failed allocation leaves a map without storage and with
/// `allocFailed` set.
template <typename Pixel>
class Map final : public MapDomain {
public:
    Map() = default;
    Map(Map&& other) noexcept { swap(other); }
    Map& operator=(Map&& other) noexcept
    {
        release();
        swap(other);
        return *this;
    }
    ~Map() override { freeStorage(); }

    /// Becomes a view of another map's pixels, which must outlive it. Assigning a map to itself
    /// does nothing.
    void assign(Map& other);
    void setFillValue(Pixel value) { fillValue_ = value; }
    /// Bilinear sample at the centre of a box, computed in float on the stored values.
    SampleOf<Pixel> sampleBox(float x0, float y0, float x1, float y1) const;
    /// The same for a box given by its centre and half its size.
    SampleOf<Pixel> sampleAround(float cx, float cy, float halfWidth, float halfHeight) const;

    /// Allocates image memory for the stored range, contents undefined. Frees the previous storage.
    void allocate();
    /// Frees owned storage or forgets borrowed pixels; the map is empty then.
    void release();
    /// Becomes a view of pixels; `data` is the first stored one and may be null. `stride` is the
    /// distance from one row to the next in bytes, negative for rows stored top down.
    void borrow(void* data, std::ptrdiff_t stride);

    Pixel fillValue() const { return fillValue_; }
    bool ownsData() const { return ownsData_; }
    bool allocFailed() const { return allocFailed_; }
    std::ptrdiff_t stride() const { return stride_; }
    const void* firstPixel() const override { return data_; }

    /// The address of a stored pixel by its store-relative index, unchecked.
    Pixel* pixelAt(int column, int row) { return address(column, row); }
    const Pixel* pixelAt(int column, int row) const { return address(column, row); }

    /// The pixel that (x, y) reads, when nothing of [x, x + width) x [y, y + height) needs edge
    /// handling, so that the others follow it in the store; else null.
    const Pixel* interiorPixels(int x, int y, int width, int height) const
    {
        const std::optional<int> column = xAxis().interiorIndex(x, width);
        const std::optional<int> row = yAxis().interiorIndex(y, height);
        return at(column, row);
    }

    /// The pixel that absolute (x, y) reads through the edge modes, or null where there is none.
    const Pixel* resolve(int x, int y) const { return at(xAxis().resolve(x), yAxis().resolve(y)); }
    /// The pixel at absolute (x, y) itself, or null when it is not stored.
    Pixel* translate(int x, int y) { return at(xAxis().translate(x), yAxis().translate(y)); }

    /// The pixel at absolute (x, y), or the fill value where the edge modes yield none.
    Pixel read(int x, int y) const
    {
        const Pixel* pixel = resolve(x, y);
        return pixel != nullptr ? *pixel : fillValue_;
    }

private:
    Pixel* address(int column, int row) const
    {
        std::byte* rowStart = data_ + static_cast<std::ptrdiff_t>(row) * stride_;
        return reinterpret_cast<Pixel*>(rowStart) + column;
    }
    Pixel* at(std::optional<int> column, std::optional<int> row) const
    {
        return column && row && data_ != nullptr ? address(*column, *row) : nullptr;
    }
    void freeStorage();
    void swap(Map& other) noexcept;

    bool ownsData_ = false;
    std::byte* data_ = nullptr;
    bool allocFailed_ = false;
    Pixel fillValue_{};
    std::ptrdiff_t stride_ = 0;
};

}  // namespace Orvane::Engine
