#include "engine/RecordBytes.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

constexpr std::uint32_t kVersion = 1;
/// Of a coordinate and of a size; beyond what any image has, and safe to add.
constexpr float kMostFloat = 1e8f;
constexpr std::int32_t kMost = 100'000'000;

class Writer {
public:
    void put(std::uint32_t value)
    {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes_.push_back(static_cast<std::byte>(value >> shift & 0xff));
        }
    }
    void put(std::int32_t value) { put(static_cast<std::uint32_t>(value)); }
    void put(float value) { put(std::bit_cast<std::uint32_t>(value)); }
    void put(const std::vector<PixelVec2f>& pairs)
    {
        put(static_cast<std::uint32_t>(pairs.size()));
        for (const PixelVec2f& pair : pairs) {
            put(pair.x);
            put(pair.y);
        }
    }
    void reserve(std::size_t more) { bytes_.reserve(bytes_.size() + more); }
    std::vector<std::byte> take() { return std::move(bytes_); }

private:
    std::vector<std::byte> bytes_;
};

/// After a number that is not there or not possible all others are 0, and `isGood` is false.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::uint32_t number()
    {
        if (bytes_.size() < 4) return fail();
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            value |= std::to_integer<std::uint32_t>(bytes_[i]) << (8 * i);
        }
        bytes_ = bytes_.subspan(4);
        return value;
    }
    std::int32_t integer()
    {
        const auto value = static_cast<std::int32_t>(number());
        const bool isPossible = value >= -kMost && value <= kMost;
        return isPossible ? value : static_cast<std::int32_t>(fail());
    }
    float real()
    {
        const auto value = std::bit_cast<float>(number());
        return std::isfinite(value) ? value : static_cast<float>(fail());
    }
    float length()
    {
        const float value = real();
        return std::fabs(value) <= kMostFloat ? value : static_cast<float>(fail());
    }
    /// Of items of so many bytes; all of them are there.
    std::size_t count(std::size_t itemBytes)
    {
        const std::size_t value = number();
        return value <= bytes_.size() / itemBytes ? value : fail();
    }
    std::vector<PixelVec2f> pairs()
    {
        std::vector<PixelVec2f> read(count(8));
        for (PixelVec2f& pair : read) {
            pair.x = length();
            pair.y = length();
        }
        return read;
    }
    /// Whether so many items of so many bytes are there.
    bool holds(std::uint64_t items, std::size_t itemBytes) const
    {
        return items <= bytes_.size() / itemBytes;
    }
    bool isGood() const { return isGood_; }
    bool isAtEnd() const { return bytes_.empty(); }
    std::uint32_t fail()
    {
        isGood_ = false;
        bytes_ = {};
        return 0;
    }

private:
    std::span<const std::byte> bytes_;
    bool isGood_ = true;
};

void putAxis(Writer& writer, const MapAxis& axis)
{
    for (const std::int32_t value :
         {axis.size, axis.offset, axis.origin, static_cast<std::int32_t>(axis.edgeMode),
          axis.activeStart, axis.activeEnd, axis.storeStart, axis.storeEnd}) {
        writer.put(value);
    }
}

/// The numbers of an axis, which need not belong together.
struct AxisNumbers {
    std::int32_t size, offset, origin, edgeMode, activeStart, activeEnd, storeStart, storeEnd;

    /// Whether the stored part lies in the axis and is not empty.
    bool isPossible() const
    {
        return size >= 1 && storeStart >= 0 && storeStart <= storeEnd && storeEnd < size &&
               activeStart >= 0 && activeStart <= activeEnd && activeEnd < size;
    }
    std::uint64_t stored() const { return static_cast<std::uint64_t>(storeEnd - storeStart) + 1; }
};

AxisNumbers takeAxis(Reader& reader)
{
    AxisNumbers axis{};
    for (std::int32_t* const value :
         {&axis.size, &axis.offset, &axis.origin, &axis.edgeMode, &axis.activeStart,
          &axis.activeEnd, &axis.storeStart, &axis.storeEnd}) {
        *value = reader.integer();
    }
    return axis;
}

void putMap(Writer& writer, const Map<Pixel32f>& map)
{
    const bool hasPixels = map.isUsable();
    writer.put(std::uint32_t{hasPixels});
    writer.put(map.fillValue());
    if (!hasPixels) return;
    putAxis(writer, map.xAxis());
    putAxis(writer, map.yAxis());
    const int width = map.xAxis().storeLength;
    const int height = map.yAxis().storeLength;
    writer.reserve(std::size_t{4} * static_cast<std::size_t>(width) *
                   static_cast<std::size_t>(height));
    for (int row = 0; row < height; ++row) {
        const Pixel32f* const pixels = map.pixelAt(0, row);
        for (int column = 0; column < width; ++column) writer.put(pixels[column]);
    }
}

void takeMap(Reader& reader, Map<Pixel32f>& map)
{
    const bool hasPixels = reader.number() != 0;
    map.setFillValue(std::bit_cast<float>(reader.number()));
    if (!hasPixels) return;
    const AxisNumbers x = takeAxis(reader);
    const AxisNumbers y = takeAxis(reader);
    const bool isPossible = x.isPossible() && y.isPossible();
    if (!isPossible || !reader.holds(x.stored() * y.stored(), sizeof(float))) {
        reader.fail();
        return;
    }
    map.setSize(x.size, y.size);
    map.setEdgeMode(static_cast<EdgeMode>(x.edgeMode), static_cast<EdgeMode>(y.edgeMode));
    map.setOffset(x.offset, y.offset);
    map.setOrigin(x.origin, y.origin);
    map.setActiveRange(x.activeStart, x.activeEnd, y.activeStart, y.activeEnd);
    map.setStoredRange(x.storeStart, x.storeEnd, y.storeStart, y.storeEnd);
    map.allocate();
    if (!map.isUsable()) {
        reader.fail();
        return;
    }
    for (int row = 0; row < map.yAxis().storeLength && reader.isGood(); ++row) {
        Pixel32f* const pixels = map.pixelAt(0, row);
        for (int column = 0; column < map.xAxis().storeLength; ++column) {
            pixels[column] = std::bit_cast<float>(reader.number());
        }
    }
}

void putBlock(Writer& writer, const BlockRecord& block)
{
    for (const float value : {block.x, block.y, block.srcX, block.srcY}) writer.put(value);
    writer.put(std::int32_t{block.textureIndex});
    writer.put(block.seamH);
    writer.put(block.seamV);
}

BlockRecord takeBlock(Reader& reader)
{
    BlockRecord block{};
    for (float* const value : {&block.x, &block.y, &block.srcX, &block.srcY}) {
        *value = reader.length();
    }
    block.textureIndex = reader.integer();
    block.seamH = reader.pairs();
    block.seamV = reader.pairs();
    return block;
}

}  // namespace

std::vector<std::byte> recordBytes(const TemporalState& state)
{
    Writer writer;
    writer.put(kVersion);
    for (const int edge :
         {state.fillBounds.x0, state.fillBounds.y0, state.fillBounds.x1, state.fillBounds.y1}) {
        writer.put(std::int32_t{edge});
    }
    writer.put(state.savedBlockSize.width);
    writer.put(state.savedBlockSize.height);
    writer.put(static_cast<std::uint32_t>(state.blockList.size()));
    for (const BlockRecord& block : state.blockList) putBlock(writer, block);
    putMap(writer, state.compositeMask);
    putMap(writer, state.luminanceGain);
    return writer.take();
}

std::optional<TemporalState> stateFrom(std::span<const std::byte> record)
{
    constexpr std::size_t kLeastBlockBytes = 28;
    Reader reader(record);
    if (reader.number() != kVersion) return std::nullopt;
    TemporalState state;
    for (int* const edge :
         {&state.fillBounds.x0, &state.fillBounds.y0, &state.fillBounds.x1, &state.fillBounds.y1}) {
        *edge = reader.integer();
    }
    state.savedBlockSize.width = reader.length();
    state.savedBlockSize.height = reader.length();
    const std::size_t count = reader.count(kLeastBlockBytes);
    for (std::size_t i = 0; i < count && reader.isGood(); ++i) {
        state.blockList.push_back(takeBlock(reader));
    }
    takeMap(reader, state.compositeMask);
    takeMap(reader, state.luminanceGain);
    if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;
    state.valid = true;
    return state;
}

}  // namespace Orvane::Engine
