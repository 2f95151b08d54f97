#include "engine/map/Map.h"

#include <cmath>

#include "engine/map/ExactMath.h"
#include "engine/map/ImageBlock.h"

namespace Orvane::Engine {
namespace {

template <typename Channel>
PixelRGBAf toSample(const RGBA<Channel>& p)
{
    return {static_cast<float>(p.r), static_cast<float>(p.g), static_cast<float>(p.b),
            static_cast<float>(p.a)};
}

PixelVec2f toSample(const PixelVec2f& p)
{
    return p;
}

template <typename Single>
float toSample(Single p)
{
    return static_cast<float>(p);
}

float mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

PixelVec2f mix(const PixelVec2f& a, const PixelVec2f& b, float t)
{
    return {mix(a.x, b.x, t), mix(a.y, b.y, t)};
}

PixelRGBAf mix(const PixelRGBAf& a, const PixelRGBAf& b, float t)
{
    return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t), mix(a.a, b.a, t)};
}

}  // namespace

template <typename Pixel>
void Map<Pixel>::assign(Map& other)
{
    if (&other == this) return;
    release();
    copyGeometry(other);
    data_ = other.data_;
    setFillValue(other.fillValue_);
    stride_ = other.stride_;
}

template <typename Pixel>
void Map<Pixel>::allocate()
{
    freeStorage();
    const auto columns = static_cast<std::size_t>(xAxis().storeLength);
    const auto rows = static_cast<std::size_t>(yAxis().storeLength);
    if (columns == 0 || rows == 0) return;
    data_ = allocateImageBlock(columns, rows, sizeof(Pixel)).release();
    ownsData_ = data_ != nullptr;
    allocFailed_ = data_ == nullptr;
    stride_ = static_cast<std::ptrdiff_t>(columns * sizeof(Pixel));
}

template <typename Pixel>
void Map<Pixel>::release()
{
    freeStorage();
    setSize(0, 0);
}

template <typename Pixel>
void Map<Pixel>::borrow(void* data, std::ptrdiff_t stride)
{
    freeStorage();
    data_ = static_cast<std::byte*>(data);
    stride_ = stride;
}

template <typename Pixel>
void Map<Pixel>::freeStorage()
{
    if (ownsData_) ImageBlockRelease()(data_);
    ownsData_ = false;
    data_ = nullptr;
    allocFailed_ = false;
    stride_ = 0;
}

template <typename Pixel>
void Map<Pixel>::swap(Map& other) noexcept
{
    swapGeometry(other);
    std::swap(ownsData_, other.ownsData_);
    std::swap(data_, other.data_);
    std::swap(allocFailed_, other.allocFailed_);
    std::swap(fillValue_, other.fillValue_);
    std::swap(stride_, other.stride_);
}

template <typename Pixel>
SampleOf<Pixel> Map<Pixel>::sampleBox(float x0, float y0, float x1, float y1) const
{
    const float u = (x0 + x1) * 0.5f - 0.5f - xAxis().offsetF;
    const float v = (y0 + y1) * 0.5f - 0.5f - yAxis().offsetF;
    const int i = floorToInt(u);
    const int j = floorToInt(v);
    const float fx = u - static_cast<float>(i);
    const float fy = v - static_cast<float>(j);
    // A neighbour that is missing reads as the fill value.
    const auto neighbour = [&](int column, int row) {
        const Pixel* p = at(xAxis().resolveIndex(column), yAxis().resolveIndex(row));
        return toSample(p != nullptr ? *p : fillValue_);
    };
    const auto top = mix(neighbour(i, j), neighbour(i + 1, j), fx);
    const auto bottom = mix(neighbour(i, j + 1), neighbour(i + 1, j + 1), fx);
    return mix(top, bottom, fy);
}

template <typename Pixel>
SampleOf<Pixel> Map<Pixel>::sampleAround(float cx, float cy, float halfWidth,
                                         float halfHeight) const
{
    return sampleBox(cx - halfWidth, cy - halfHeight, cx + halfWidth, cy + halfHeight);
}

template class Map<PixelRGBA8>;
template class Map<PixelRGBA16>;
template class Map<PixelRGBAf>;
template class Map<Pixel8>;
template class Map<Pixel16>;
template class Map<Pixel32f>;
template class Map<Pixel32i>;
template class Map<PixelVec2f>;

}  // namespace Orvane::Engine
