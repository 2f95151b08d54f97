/// The kernels on kLanes pixels at once, in the vector types of GCC and Clang. Each instruction
/// set's file sets kLanes (4 or 8) and includes this once. It is compiled with its own flags, so
/// its code must not be shared: everything is in the unnamed namespace, and no function or template
/// of another header is called. (The linker keeps one copy of shared inline code; it could be the
/// one that this processor cannot run.)
///
/// Each lane performs the operations of the plain kernel in the same order, so results are
/// bit-identical; lanes are combined only where the plain kernel combines its sums, too.

#include "engine/kernels/Tables.h"

namespace Orvane::Engine::Kernels {
namespace {

#define TESSERET_LANES inline __attribute__((always_inline))

static_assert(kRoughLanes % kLanes == 0);

using Ints = int __attribute__((vector_size(4 * kLanes)));
using Floats = float __attribute__((vector_size(4 * kLanes)));
using HalfFloats = float __attribute__((vector_size(2 * kLanes)));
using Doubles = double __attribute__((vector_size(4 * kLanes)));  ///< half as many
using Words = unsigned short __attribute__((vector_size(2 * kLanes)));

template <typename Vector>
TESSERET_LANES Vector load(const void* from)
{
    Vector vector;
    __builtin_memcpy(&vector, from, sizeof(Vector));
    return vector;
}

template <typename Vector>
TESSERET_LANES void store(void* to, Vector vector)
{
    __builtin_memcpy(to, &vector, sizeof(Vector));
}

TESSERET_LANES Floats floats(Ints v)
{
    return __builtin_convertvector(v, Floats);
}

/// Truncates toward zero.
TESSERET_LANES Ints ints(Floats v)
{
    return __builtin_convertvector(v, Ints);
}

TESSERET_LANES Floats all(float value)
{
    return Floats{} + value;
}

// Shuffles of two vectors: every second entry, and interleaved entries.

template <typename Vector>
TESSERET_LANES Vector evens(Vector a, Vector b)
{
    if constexpr (kLanes == 8) {
        return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
    } else {
        return __builtin_shufflevector(a, b, 0, 2, 4, 6);
    }
}

template <typename Vector>
TESSERET_LANES Vector odds(Vector a, Vector b)
{
    if constexpr (kLanes == 8) {
        return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
    } else {
        return __builtin_shufflevector(a, b, 1, 3, 5, 7);
    }
}

template <typename Vector>
TESSERET_LANES Vector zipLow(Vector a, Vector b)
{
    if constexpr (kLanes == 8) {
        return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
    } else {
        return __builtin_shufflevector(a, b, 0, 4, 1, 5);
    }
}

template <typename Vector>
TESSERET_LANES Vector zipHigh(Vector a, Vector b)
{
    if constexpr (kLanes == 8) {
        return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
    } else {
        return __builtin_shufflevector(a, b, 2, 6, 3, 7);
    }
}

template <typename Vector>
TESSERET_LANES auto lowHalf(Vector v)
{
    if constexpr (sizeof(Vector) == 32) {
        return __builtin_shufflevector(v, v, 0, 1, 2, 3);
    } else {
        return __builtin_shufflevector(v, v, 0, 1);
    }
}

template <typename Vector>
TESSERET_LANES auto highHalf(Vector v)
{
    if constexpr (sizeof(Vector) == 32) {
        return __builtin_shufflevector(v, v, 4, 5, 6, 7);
    } else {
        return __builtin_shufflevector(v, v, 2, 3);
    }
}

template <typename Vector>
TESSERET_LANES auto joined(Vector low, Vector high)
{
    if constexpr (sizeof(Vector) == 16) {
        return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
    } else {
        return __builtin_shufflevector(low, high, 0, 1, 2, 3);
    }
}

/// `mask ? yes : no` in each lane; a mask's lanes are all ones or all zeros.
TESSERET_LANES Floats choose(Ints mask, Floats yes, Floats no)
{
    return reinterpret_cast<Floats>((mask & reinterpret_cast<Ints>(yes)) |
                                    (~mask & reinterpret_cast<Ints>(no)));
}

/// The colours of kLanes pixels.
struct Planes {
    Floats r, g, b;
};

/// kLanes pixels of a kind in registers, and conversions from and to planes of colours.
template <typename Pixel>
struct Lanes;

template <>
struct Lanes<PixelRGBA8> {
    static constexpr float kMax = 255.0f;
    static constexpr float kInverseMax = 0.003921569f;

    Ints pixels;

    TESSERET_LANES static Lanes read(const PixelRGBA8* from) { return {load<Ints>(from)}; }
    TESSERET_LANES void write(PixelRGBA8* to) const { store(to, pixels); }

    TESSERET_LANES Ints red() const { return pixels & 0xff; }
    TESSERET_LANES Ints green() const { return (pixels >> 8) & 0xff; }
    TESSERET_LANES Ints blue() const { return (pixels >> 16) & 0xff; }
    TESSERET_LANES Planes colours() const
    {
        return {floats(red()), floats(green()), floats(blue())};
    }

    /// Truncates colours of 0 to M; copies alpha from `alpha`.
    TESSERET_LANES static Lanes from(const Planes& c, const Lanes& alpha)
    {
        return {ints(c.r) | (ints(c.g) << 8) | (ints(c.b) << 16) |
                (alpha.pixels & static_cast<int>(0xff000000u))};
    }

    /// (a - b) / M for each channel, like `PixelTraits::difference`.
    TESSERET_LANES static Planes differences(const PixelRGBA8* a, const PixelRGBA8* b)
    {
        const Planes d = plainDifferences(a, b);
        return {d.r / kMax, d.g / kMax, d.b / kMax};
    }
    TESSERET_LANES static Planes plainDifferences(const PixelRGBA8* a, const PixelRGBA8* b)
    {
        const Lanes from = read(a), to = read(b);
        return {floats(from.red() - to.red()), floats(from.green() - to.green()),
                floats(from.blue() - to.blue())};
    }
    TESSERET_LANES Floats mean() const
    {
        const Ints sum = red() + green() + blue();
        return floats((sum * 43691) >> 17);  // a third of any sum up to 765, truncated
    }
};

template <>
struct Lanes<PixelRGBA16> {
    static constexpr float kMax = 65535.0f;
    static constexpr float kInverseMax = 1.5259022e-05f;

    Ints redGreen, blueAlpha;

    TESSERET_LANES static Lanes read(const PixelRGBA16* from)
    {
        const auto low = load<Ints>(from);
        const auto high = load<Ints>(from + kLanes / 2);
        return {evens(low, high), odds(low, high)};
    }
    TESSERET_LANES void write(PixelRGBA16* to) const
    {
        store(to, zipLow(redGreen, blueAlpha));
        store(to + kLanes / 2, zipHigh(redGreen, blueAlpha));
    }

    TESSERET_LANES Ints red() const { return redGreen & 0xffff; }
    TESSERET_LANES Ints green() const { return (redGreen >> 16) & 0xffff; }
    TESSERET_LANES Ints blue() const { return blueAlpha & 0xffff; }
    TESSERET_LANES Planes colours() const
    {
        return {floats(red()), floats(green()), floats(blue())};
    }

    TESSERET_LANES static Lanes from(const Planes& c, const Lanes& alpha)
    {
        return {ints(c.r) | (ints(c.g) << 16),
                ints(c.b) | (alpha.blueAlpha & static_cast<int>(0xffff0000u))};
    }

    TESSERET_LANES static Planes differences(const PixelRGBA16* a, const PixelRGBA16* b)
    {
        const Lanes from = read(a), to = read(b);
        return {floats(from.red() - to.red()) * kInverseMax,
                floats(from.green() - to.green()) * kInverseMax,
                floats(from.blue() - to.blue()) * kInverseMax};
    }
    TESSERET_LANES Floats mean() const
    {
        // For sums up to 196605 the float quotient never rounds up to the next integer.
        return floats(ints(floats(red() + green() + blue()) / 3.0f));
    }
};

template <>
struct Lanes<PixelRGBAf> {
    static constexpr float kMax = 1.0f;
    static constexpr float kInverseMax = 1.0f;
    static constexpr int kQuarter = kLanes / 4;  ///< pixels in one vector of interleaved channels

    Floats r, g, b, a;

    TESSERET_LANES static Lanes read(const PixelRGBAf* from)
    {
        return split(load<Floats>(from), load<Floats>(from + kQuarter),
                     load<Floats>(from + 2 * kQuarter), load<Floats>(from + 3 * kQuarter));
    }
    /// Converts interleaved channels to planes.
    TESSERET_LANES static Lanes split(Floats v0, Floats v1, Floats v2, Floats v3)
    {
        const Floats rb0 = evens(v0, v1), rb1 = evens(v2, v3);
        const Floats ga0 = odds(v0, v1), ga1 = odds(v2, v3);
        return {evens(rb0, rb1), evens(ga0, ga1), odds(rb0, rb1), odds(ga0, ga1)};
    }
    TESSERET_LANES void write(PixelRGBAf* to) const
    {
        const Floats rb0 = zipLow(r, b), rb1 = zipHigh(r, b);
        const Floats ga0 = zipLow(g, a), ga1 = zipHigh(g, a);
        store(to, zipLow(rb0, ga0));
        store(to + kQuarter, zipHigh(rb0, ga0));
        store(to + 2 * kQuarter, zipLow(rb1, ga1));
        store(to + 3 * kQuarter, zipHigh(rb1, ga1));
    }

    TESSERET_LANES Planes colours() const { return {r, g, b}; }
    TESSERET_LANES static Lanes from(const Planes& c, const Lanes& alpha)
    {
        return {c.r, c.g, c.b, alpha.a};
    }
    TESSERET_LANES static Planes differences(const PixelRGBAf* a, const PixelRGBAf* b)
    {
        const auto d = [a, b](int quarter) {
            return load<Floats>(a + quarter * kQuarter) - load<Floats>(b + quarter * kQuarter);
        };
        const Lanes planes = split(d(0), d(1), d(2), d(3));
        return {planes.r, planes.g, planes.b};
    }
    TESSERET_LANES Floats mean() const { return (r + g + b) / 3.0f; }
};

/// The pixels at the end of a row, padded with zeros, so that nothing after the row is read.
template <typename Pixel>
struct Tail {
    Pixel pixels[kRoughLanes];

    TESSERET_LANES Tail(const Pixel* from, int count)
    {
        __builtin_memset(pixels, 0, sizeof(pixels));
        if (from == nullptr) return;
        __builtin_memcpy(pixels, from, static_cast<__SIZE_TYPE__>(count) * sizeof(Pixel));
    }
};

template <typename Pixel>
TESSERET_LANES const Pixel* row(Rows<Pixel> rows, int y)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(rows.first);
    return rows.first != nullptr ? reinterpret_cast<const Pixel*>(bytes + y * rows.stride)
                                 : nullptr;
}

TESSERET_LANES Doubles eighthPower(HalfFloats d)
{
    // exact: the square of a float is exact in double, the other two round once each.
    const Doubles wide = __builtin_convertvector(d, Doubles);
    const Doubles second = wide * wide;
    const Doubles fourth = second * second;
    return fourth * fourth;
}

TESSERET_LANES HalfFloats errorsOf(HalfFloats r, HalfFloats g, HalfFloats b)
{
    // exact: in double, in the order B, G, R, then rounded to floats.
    Doubles sum = eighthPower(b);
    sum += eighthPower(g);
    sum += eighthPower(r);
    return __builtin_convertvector(sum, HalfFloats);
}

template <typename Pixel>
TESSERET_LANES Floats errorsOfLanes(const Pixel* a, const Pixel* b)
{
    const Planes d = Lanes<Pixel>::differences(a, b);
    return joined(errorsOf(lowHalf(d.r), lowHalf(d.g), lowHalf(d.b)),
                  errorsOf(highHalf(d.r), highHalf(d.g), highHalf(d.b)));
}

TESSERET_LANES Floats keep(Ints mask, Floats v)
{
    return reinterpret_cast<Floats>(mask & reinterpret_cast<Ints>(v));
}

/// The errors where weights are positive, else 0; weights may be null.
template <typename Pixel>
TESSERET_LANES Floats weightedErrors(const Pixel* a, const Pixel* b, const float* weights)
{
    const Floats errors = errorsOfLanes(a, b);
    return weights != nullptr ? keep(load<Floats>(weights) > 0.0f, errors) : errors;
}

template <typename Pixel>
void errorMap(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height, float* map,
              std::ptrdiff_t mapStride)
{
    for (int y = 0; y < height; ++y, map += mapStride) {
        const Pixel* aRow = row(a, y);
        const Pixel* bRow = row(b, y);
        const float* weightRow = row(weights, y);
        if (width < kLanes) {
            const Tail<Pixel> aTail(aRow, width), bTail(bRow, width);
            const Tail<float> weightTail(weightRow, width);
            const Floats errors = weightedErrors(
                aTail.pixels, bTail.pixels, weightRow != nullptr ? weightTail.pixels : nullptr);
            __builtin_memcpy(map, &errors, static_cast<__SIZE_TYPE__>(width) * sizeof(float));
            continue;
        }
        const auto errorsAt = [=](int x) {
            const float* w = weightRow != nullptr ? weightRow + x : nullptr;
            store(map + x, weightedErrors(aRow + x, bRow + x, w));
        };
        int x = 0;
        for (; x + kLanes <= width; x += kLanes) errorsAt(x);
        // The last kLanes pixels, some of them a second time.
        if (x < width) errorsAt(width - kLanes);
    }
}

TESSERET_LANES Floats roughPower(Floats d)
{
    const Floats second = d * d;
    const Floats fourth = second * second;
    return fourth * fourth;
}

constexpr int kRoughParts = kRoughLanes / kLanes;

/// Selects among kRoughLanes pixels.
struct RoughMask {
    Ints parts[kRoughParts];

    /// Selects the last `count`.
    TESSERET_LANES static RoughMask last(int count)
    {
        alignas(32) constexpr static int kOnes[2 * kRoughLanes] = {0,  0,  0,  0,  0,  0,  0,  0,
                                                                   -1, -1, -1, -1, -1, -1, -1, -1};
        RoughMask mask;
        for (int part = 0; part < kRoughParts; ++part) {
            mask.parts[part] = load<Ints>(kOnes + count + part * kLanes);
        }
        return mask;
    }
    /// Selects those with positive weights.
    TESSERET_LANES static RoughMask positive(const float* weights)
    {
        RoughMask mask;
        for (int part = 0; part < kRoughParts; ++part) {
            mask.parts[part] = load<Floats>(weights + part * kLanes) > 0.0f;
        }
        return mask;
    }
    TESSERET_LANES RoughMask operator&(const RoughMask& other) const
    {
        RoughMask both;
        for (int part = 0; part < kRoughParts; ++part) {
            both.parts[part] = parts[part] & other.parts[part];
        }
        return both;
    }
};

/// The partial sums of a rough error, in planes.
template <typename Pixel>
struct RoughSums {
    Floats r[kRoughParts] = {}, g[kRoughParts] = {}, b[kRoughParts] = {};

    /// Adds kRoughLanes pixels; unselected ones add zeros.
    template <bool kMasked>
    TESSERET_LANES void add(const Pixel* from, const Pixel* to, const RoughMask& mask)
    {
        for (int part = 0; part < kRoughParts; ++part) {
            Planes d = Lanes<Pixel>::plainDifferences(from + part * kLanes, to + part * kLanes);
            if constexpr (kMasked) {
                const Ints ones = mask.parts[part];
                d = {keep(ones, d.r), keep(ones, d.g), keep(ones, d.b)};
            }
            r[part] += roughPower(d.r);
            g[part] += roughPower(d.g);
            b[part] += roughPower(d.b);
        }
    }
    TESSERET_LANES void addLast(const Pixel* from, const Pixel* to, int rest)
    {
        add<true>(from, to, RoughMask::last(rest));
    }
    TESSERET_LANES float total() const
    {
        float lanes[kRoughLanes];
        for (int part = 0; part < kRoughParts; ++part) {
            store(lanes + part * kLanes, r[part] + g[part] + b[part]);
        }
        return roughTotal(lanes);
    }
    TESSERET_LANES static float roughTotal(const float* l)
    {
        return (((l[0] + l[4]) + (l[2] + l[6])) + ((l[1] + l[5]) + (l[3] + l[7]))) *
               RoughScale<Pixel>::kAfter;
    }
};

/// The same for kinds whose channels are as wide as a lane once loaded: sums interleaved channels,
/// which needs no shuffles, and ignores alpha's sums.
template <typename Pixel>
struct WideRoughSums {
    static constexpr int kVectors = 4 * kRoughLanes / kLanes;
    static constexpr int kPixels = kLanes / 4;  ///< in one vector

    Floats sums[kVectors] = {};

    template <bool kMasked>
    TESSERET_LANES void add(const Pixel* from, const Pixel* to, const RoughMask& mask)
    {
        for (int v = 0; v < kVectors; ++v) {
            Floats d = difference(from + v * kPixels, to + v * kPixels);
            if constexpr (kMasked) {
                const Ints ones = mask.parts[v * kPixels / kLanes];
                const int first = v * kPixels % kLanes;
                Ints spread{};
                for (int i = 0; i < kLanes; ++i) spread[i] = ones[first + i / 4];
                d = keep(spread, d);
            }
            sums[v] += roughPower(d);
        }
    }
    /// Adds the last `rest` of kRoughLanes pixels. The others would add zeros.
    TESSERET_LANES void addLast(const Pixel* from, const Pixel* to, int rest)
    {
        const int first = kRoughLanes - rest;
        for (int v = 0; v < kVectors; ++v) {
            if ((v + 1) * kPixels <= first) continue;
            Floats d = difference(from + v * kPixels, to + v * kPixels);
            if (v * kPixels < first) {  // a vector of two pixels, of which the second is selected
                Ints spread;
                for (int i = 0; i < kLanes; ++i) spread[i] = i < kLanes / 2 ? 0 : -1;
                d = keep(spread, d);
            }
            sums[v] += roughPower(d);
        }
    }
    TESSERET_LANES float total() const
    {
        float channels[4 * kRoughLanes];
        for (int v = 0; v < kVectors; ++v) store(channels + v * kLanes, sums[v]);
        float lanes[kRoughLanes];
        for (int i = 0; i < kRoughLanes; ++i) {
            lanes[i] = channels[4 * i] + channels[4 * i + 1] + channels[4 * i + 2];
        }
        return RoughSums<Pixel>::roughTotal(lanes);
    }

    TESSERET_LANES static Floats difference(const PixelRGBA16* from, const PixelRGBA16* to)
    {
        const Ints a = __builtin_convertvector(load<Words>(from), Ints);
        const Ints b = __builtin_convertvector(load<Words>(to), Ints);
        return floats(a - b) * RoughScale<PixelRGBA16>::kBefore;
    }
    TESSERET_LANES static Floats difference(const PixelRGBAf* from, const PixelRGBAf* to)
    {
        return load<Floats>(from) - load<Floats>(to);
    }
};

template <typename Pixel>
struct RoughSumsOf {
    using Type = WideRoughSums<Pixel>;
};
template <>
struct RoughSumsOf<PixelRGBA8> {
    using Type = RoughSums<PixelRGBA8>;
};

template <typename Pixel, bool kWeighted, typename Sums>
TESSERET_LANES void addRow(Sums& sums, const Pixel* a, const Pixel* b, const float* weights,
                           int width)
{
    const int rest = width % kRoughLanes;
    const int body = width - rest;
    const auto weightsAt = [weights](int x) {
        return kWeighted ? RoughMask::positive(weights + x) : RoughMask::last(kRoughLanes);
    };
    if (body == 0) {
        const Tail<Pixel> aTail(a, rest), bTail(b, rest);
        const Tail<float> weightTail(weights, rest);
        // The padding is equal in both and adds zeros.
        const RoughMask mask =
            kWeighted ? RoughMask::positive(weightTail.pixels) : RoughMask::last(kRoughLanes);
        sums.template add<kWeighted>(aTail.pixels, bTail.pixels, mask);
        return;
    }
    for (int x = 0; x < body; x += kRoughLanes) {
        sums.template add<kWeighted>(a + x, b + x, weightsAt(x));
    }
    if (rest == 0) return;
    const int x = width - kRoughLanes;
    if constexpr (kWeighted) {
        sums.template add<true>(a + x, b + x, RoughMask::last(rest) & weightsAt(x));
    } else {
        sums.addLast(a + x, b + x, rest);
    }
}

template <typename Pixel, bool kWeighted>
TESSERET_LANES float roughSum(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width,
                              int height, float limit)
{
    typename RoughSumsOf<Pixel>::Type sums;
    int seen = 0;
    for (int y = 0; y < height; ++y) {
        addRow<Pixel, kWeighted>(sums, row(a, y), row(b, y), row(weights, y), width);
        seen += width;
        if (seen < kRoughSegment) continue;
        seen = 0;
        if (sums.total() > limit) break;
    }
    return sums.total();
}

template <typename Pixel>
float roughError(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                 float limit)
{
    return weights.first != nullptr ? roughSum<Pixel, true>(a, b, weights, width, height, limit)
                                    : roughSum<Pixel, false>(a, b, weights, width, height, limit);
}

/// `v` clamped to [0, limit]; NaN becomes 0.
TESSERET_LANES Floats clamped(Floats v, float limit)
{
    const Floats max = all(limit);
    const Floats upper = choose(max < v, max, v);
    return choose(v > 0.0f, upper, Floats{});
}

/// The part t of the way from one plane to another.
TESSERET_LANES Floats mixed(Floats from, Floats to, Floats t)
{
    return from + (to - from) * t;  // exact: float, in this order
}

/// `v` as its kind stores it.
template <typename Pixel>
TESSERET_LANES Floats stored(Floats v)
{
    return floats(ints(v));
}

template <>
TESSERET_LANES Floats stored<PixelRGBAf>(Floats v)
{
    return v;
}

template <typename Pixel>
TESSERET_LANES Floats gained(Floats channel, Floats gain)
{
    return stored<Pixel>(clamped(channel * gain, Lanes<Pixel>::kMax));
}

template <typename Pixel>
TESSERET_LANES void compositeLanes(Pixel* out, const Pixel* from, const Pixel* source,
                                   const float* mask, const float* gain)
{
    const auto texture = Lanes<Pixel>::read(from);
    const Planes behind = Lanes<Pixel>::read(source).colours();
    Planes front = texture.colours();
    if (gain != nullptr) {
        const auto g = load<Floats>(gain);
        front = {gained<Pixel>(front.r, g), gained<Pixel>(front.g, g), gained<Pixel>(front.b, g)};
    }
    const Floats share = clamped(load<Floats>(mask) * Lanes<Pixel>::kInverseMax, 1.0f);
    const Ints none = share == 0.0f;
    const Planes result = {choose(none, behind.r, mixed(behind.r, front.r, share)),
                           choose(none, behind.g, mixed(behind.g, front.g, share)),
                           choose(none, behind.b, mixed(behind.b, front.b, share))};
    Lanes<Pixel>::from(result, texture).write(out);
}

template <typename Pixel>
void composite(Pixel* out, const Pixel* texture, const Pixel* source, const float* mask,
               const float* gain, int count)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        compositeLanes(out + i, texture + i, source + i, mask + i,
                       gain != nullptr ? gain + i : nullptr);
    }
    const int rest = count - i;
    if (rest == 0) return;
    Tail<Pixel> last(texture + i, rest);
    const Tail<Pixel> lastSource(source + i, rest);
    const Tail<float> lastMask(mask + i, rest);
    const Tail<float> lastGain(gain != nullptr ? gain + i : nullptr, rest);
    compositeLanes(last.pixels, last.pixels, lastSource.pixels, lastMask.pixels,
                   gain != nullptr ? lastGain.pixels : nullptr);
    __builtin_memcpy(out + i, last.pixels, static_cast<__SIZE_TYPE__>(rest) * sizeof(Pixel));
}

template <typename Pixel>
TESSERET_LANES void blendLanes(Pixel* to, const Pixel* from, const float* shares)
{
    const auto before = Lanes<Pixel>::read(to);
    const Planes a = before.colours();
    const Planes b = Lanes<Pixel>::read(from).colours();
    const auto t = load<Floats>(shares);
    const Planes result = {mixed(a.r, b.r, t), mixed(a.g, b.g, t), mixed(a.b, b.b, t)};
    Lanes<Pixel>::from(result, before).write(to);
}

template <typename Pixel>
void blend(Pixel* to, const Pixel* from, const float* shares, int count)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes) blendLanes(to + i, from + i, shares + i);
    const int rest = count - i;
    if (rest == 0) return;
    Tail<Pixel> last(to + i, rest);
    const Tail<Pixel> lastFrom(from + i, rest);
    const Tail<float> lastShares(shares + i, rest);
    blendLanes(last.pixels, lastFrom.pixels, lastShares.pixels);
    __builtin_memcpy(to + i, last.pixels, static_cast<__SIZE_TYPE__>(rest) * sizeof(Pixel));
}

template <typename Pixel>
void luma(const Pixel* pixels, float* means, int count)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes)
        store(means + i, Lanes<Pixel>::read(pixels + i).mean());
    const int rest = count - i;
    if (rest == 0) return;
    const Tail<Pixel> last(pixels + i, rest);
    const Floats lastMeans = Lanes<Pixel>::read(last.pixels).mean();
    __builtin_memcpy(means + i, &lastMeans, static_cast<__SIZE_TYPE__>(rest) * sizeof(float));
}

TESSERET_LANES Floats minOf(const float* before, int step)
{
    auto min = load<Floats>(before - step);
    for (int from = 1 - step; from <= step; ++from) {
        // This order of operands keeps a NaN that comes first and ignores any other.
        const auto next = load<Floats>(before + from);
        min = choose(next < min, next, min);
    }
    return min;
}

/// Writes whole vectors, into the padding at the end of the line.
void seamLine(const float* error, const float* before, float* cost, int count, int step)
{
    for (int s = 0; s < count; s += kLanes) {
        store(cost + s, load<Floats>(error + s) + minOf(before + s, step));
    }
}

/// One sample, or one sum, of all lines of a box filter.
struct BoxSums {
    static constexpr int kLanesOfDoubles = kLanes / 2;
    static constexpr int kParts = kBoxLines / kLanesOfDoubles;

    Doubles parts[kParts] = {};

    TESSERET_LANES static BoxSums of(const float* samples)
    {
        BoxSums sums;
        for (int i = 0; i < kParts; ++i) {
            const auto part = load<HalfFloats>(samples + i * kLanesOfDoubles);
            sums.parts[i] = __builtin_convertvector(part, Doubles);
        }
        return sums;
    }
    TESSERET_LANES void add(const BoxSums& other)
    {
        for (int i = 0; i < kParts; ++i) parts[i] += other.parts[i];
    }
    TESSERET_LANES void addTimes(const BoxSums& other, double factor)
    {
        for (int i = 0; i < kParts; ++i) parts[i] += factor * other.parts[i];
    }
    TESSERET_LANES void keepAt(double* sums) const
    {
        for (int i = 0; i < kParts; ++i) store(sums + i * kLanesOfDoubles, parts[i]);
    }
    TESSERET_LANES static BoxSums keptAt(const double* sums)
    {
        BoxSums kept;
        for (int i = 0; i < kParts; ++i) kept.parts[i] = load<Doubles>(sums + i * kLanesOfDoubles);
        return kept;
    }
    TESSERET_LANES void write(float* samples, double norm) const
    {
        for (int i = 0; i < kParts; ++i) {
            store(samples + i * kLanesOfDoubles,
                  __builtin_convertvector(parts[i] * norm, HalfFloats));
        }
    }
};

template <bool kFractional>
TESSERET_LANES void writeBoxes(float* samples, const double* tails, const Box& box, BoxSums head,
                               int count)
{
    const float* next = samples + static_cast<__PTRDIFF_TYPE__>(box.size + 1) * kBoxLines;
    for (int i = 0; i < count; ++i) {
        const BoxSums entering = BoxSums::of(next);
        BoxSums sum = BoxSums::keptAt(tails);
        sum.add(head);
        if constexpr (kFractional) {
            BoxSums both = BoxSums::of(samples);
            both.add(entering);
            sum.addTimes(both, box.fraction);
        }
        sum.write(samples, box.norm);
        head.add(entering);
        samples += kBoxLines, next += kBoxLines, tails += kBoxLines;
    }
}

void boxSegment(float* samples, double* tails, const Box& box, int first, int count)
{
    const auto at = [samples](int i) {
        return samples + static_cast<__PTRDIFF_TYPE__>(i) * kBoxLines;
    };
    const int length = box.size - first;  // of the segment's tail
    BoxSums tail;
    int i = length - 1;
    for (; i >= count; --i) tail.add(BoxSums::of(at(i + 1)));
    for (; i >= 0; --i) {
        tail.add(BoxSums::of(at(i + 1)));
        tail.keepAt(tails + static_cast<__PTRDIFF_TYPE__>(i) * kBoxLines);
    }
    BoxSums head;
    for (i = 0; i < first; ++i) head.add(BoxSums::of(at(length + 1 + i)));
    if (box.fraction != 0.0) {
        writeBoxes<true>(samples, tails, box, head, count);
    } else {
        writeBoxes<false>(samples, tails, box, head, count);
    }
}

/// A square of kLanes lines and samples.
struct Square {
    Floats rows[kLanes];

    TESSERET_LANES void transpose()
    {
        // As often as kLanes halves, every row is zipped with the one half the square away.
        for (int round = kLanes; round > 1; round /= 2) {
            Floats zipped[kLanes];
            for (int i = 0; i < kLanes / 2; ++i) {
                zipped[2 * i] = zipLow(rows[i], rows[i + kLanes / 2]);
                zipped[2 * i + 1] = zipHigh(rows[i], rows[i + kLanes / 2]);
            }
            for (int i = 0; i < kLanes; ++i) rows[i] = zipped[i];
        }
    }
};

void interleave(const float* const* lines, float* samples, int count)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes, samples += kLanes * kBoxLines) {
        for (int line = 0; line < kBoxLines; line += kLanes) {
            Square square;
            for (int k = 0; k < kLanes; ++k) square.rows[k] = load<Floats>(lines[line + k] + i);
            square.transpose();
            for (int k = 0; k < kLanes; ++k) store(samples + k * kBoxLines + line, square.rows[k]);
        }
    }
    for (; i < count; ++i, samples += kBoxLines) {
        for (int line = 0; line < kBoxLines; ++line) samples[line] = lines[line][i];
    }
}

void separate(const float* samples, float* const* lines, int count)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes, samples += kLanes * kBoxLines) {
        for (int line = 0; line < kBoxLines; line += kLanes) {
            Square square;
            for (int k = 0; k < kLanes; ++k) {
                square.rows[k] = load<Floats>(samples + k * kBoxLines + line);
            }
            square.transpose();
            for (int k = 0; k < kLanes; ++k) store(lines[line + k] + i, square.rows[k]);
        }
    }
    for (; i < count; ++i, samples += kBoxLines) {
        for (int line = 0; line < kBoxLines; ++line) lines[line][i] = samples[line];
    }
}

template <typename Pixel>
constexpr PixelKernels<Pixel> kPixelKernels = {errorMap<Pixel>, roughError<Pixel>, composite<Pixel>,
                                               blend<Pixel>, luma<Pixel>};

constexpr KernelTable tableNamed(const char* name)
{
    return {name,
            kPixelKernels<PixelRGBA8>,
            kPixelKernels<PixelRGBA16>,
            kPixelKernels<PixelRGBAf>,
            {seamLine, boxSegment, interleave, separate}};
}

#undef TESSERET_LANES

}  // namespace
}  // namespace Orvane::Engine::Kernels
