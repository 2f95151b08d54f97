/// Compares every table of kernels that this processor can run with the plain one, bit for bit.

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "engine/kernels/Kernels.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine::Kernels {
namespace {

constexpr float kHuge = std::numeric_limits<float>::max();

/// Equal bits; any NaN equals any other, since the order of two operands decides which one stays.
bool same(float a, float b)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}
template <typename Channel>
bool same(const RGBA<Channel>& a, const RGBA<Channel>& b)
{
    return same(float(a.r), float(b.r)) && same(float(a.g), float(b.g)) &&
           same(float(a.b), float(b.b)) && same(float(a.a), float(b.a));
}
template <typename T>
bool same(const std::vector<T>& a, const std::vector<T>& b)
{
    return std::ranges::equal(a, b, [](const T& x, const T& y) { return same(x, y); });
}

template <typename Pixel>
class KernelsTest : public testing::Test {
protected:
    using Channel = typename Pixel::Channel;

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    /// Floats of 0 to `full`, and sometimes a value that no image should hold.
    float value(float full)
    {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        constexpr float kOdd[] = {0.0f,       -0.0f, kInfinity, -kInfinity, kNan, 1e-42f,
                                  -1.17e-38f, kHuge, -3.0f,     0.01f,      1e-6f};
        if (odd_ && below(12) == 0) return kOdd[below(std::size(kOdd))];
        return static_cast<float>(below(1 << 20)) / (1 << 20) * full;
    }
    Channel channel()
    {
        if constexpr (std::is_integral_v<Channel>) {
            // Often near each other, as in an image.
            const int most = std::numeric_limits<Channel>::max();
            return static_cast<Channel>(below(2) ? below(most + 1) : most - below(4));
        } else {
            return value(1.0f);
        }
    }
    std::vector<Pixel> pixels(int count)
    {
        std::vector<Pixel> all(static_cast<std::size_t>(count));
        for (Pixel& p : all) p = {channel(), channel(), channel(), channel()};
        return all;
    }
    std::vector<float> values(int count, float full)
    {
        std::vector<float> all(static_cast<std::size_t>(count));
        for (float& v : all) v = value(full);
        return all;
    }

    /// Runs a case for every further table, with ordinary and with odd values.
    template <typename Case>
    void eachTable(const Case& test)
    {
        for (const KernelTable* table : offeredTables().subspan(1)) {
            SCOPED_TRACE(table->name);
            for (int round = 0; round < 400 && !this->HasFailure(); ++round) {
                odd_ = round % 2 == 1;
                test(pixelKernels<Pixel>(*offeredTables().front()), pixelKernels<Pixel>(*table));
            }
        }
    }

    std::mt19937 random_{11};
    bool odd_ = false;
};

using Kinds = testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(KernelsTest, Kinds);

TYPED_TEST(KernelsTest, ErrorsAreThePlainOnes)
{
    this->eachTable([this](const auto& plain, const auto& fast) {
        using Pixel = TypeParam;
        const int width = 1 + this->below(70), height = 1 + this->below(30);
        const int aGap = this->below(5), bGap = this->below(5), mapStride = width + this->below(9);
        const auto a = this->pixels((width + aGap) * height);
        const auto b = this->below(8) ? this->pixels((width + bGap) * height) : a;
        const auto rows = [width](const std::vector<Pixel>& from, int gap) {
            return Rows<Pixel>{from.data(),
                               static_cast<std::ptrdiff_t>(sizeof(Pixel)) * (width + gap)};
        };
        const Rows<Pixel> aRows = rows(a, aGap),
                          bRows = rows(b, &b == &a ? aGap : std::min(aGap, bGap));
        // The gaps between the rows of a map stay unchanged.
        std::vector<float> wanted(static_cast<std::size_t>(mapStride * height), 7.0f), got = wanted;
        auto weights = this->values(width * height, 1.0f);
        for (float& w : weights) w = this->below(3) == 0 ? 0.0f : w;
        const Rows<float> weightRows =
            this->below(2) ? Rows<float>{}
                           : Rows<float>{weights.data(), static_cast<std::ptrdiff_t>(4 * width)};
        plain.errorMap(aRows, bRows, weightRows, width, height, wanted.data(), mapStride);
        fast.errorMap(aRows, bRows, weightRows, width, height, got.data(), mapStride);
        EXPECT_TRUE(same(wanted, got)) << width << " x " << height;

        const float whole = plain.roughError(aRows, bRows, weightRows, width, height, kHuge);
        for (const float limit : {kHuge, whole * 0.5f, 0.0f}) {
            EXPECT_TRUE(same(plain.roughError(aRows, bRows, weightRows, width, height, limit),
                             fast.roughError(aRows, bRows, weightRows, width, height, limit)))
                << width << " x " << height << " up to " << limit;
        }
    });
}

TYPED_TEST(KernelsTest, CompositesAreThePlainOnes)
{
    this->eachTable([this](const auto& plain, const auto& fast) {
        constexpr float kMax = PixelTraits<TypeParam>::kMax;
        const int count = 1 + this->below(70);
        const auto texture = this->pixels(count), source = this->pixels(count);
        auto mask = this->values(count, 1.2f * kMax);
        for (float& m : mask) m = this->below(3) == 0 ? 0.0f : m;
        const auto gain = this->values(count, 3.0f);
        for (const float* factors : {static_cast<const float*>(nullptr), gain.data()}) {
            auto wanted = texture, got = texture, apart = source;
            plain.composite(wanted.data(), wanted.data(), source.data(), mask.data(), factors,
                            count);
            fast.composite(got.data(), got.data(), source.data(), mask.data(), factors, count);
            fast.composite(apart.data(), texture.data(), source.data(), mask.data(), factors,
                           count);
            EXPECT_TRUE(same(wanted, got)) << count;
            EXPECT_TRUE(same(wanted, apart)) << count;
        }
    });
}

TYPED_TEST(KernelsTest, BlendsAndMeansAreThePlainOnes)
{
    this->eachTable([this](const auto& plain, const auto& fast) {
        const int count = 1 + this->below(70);
        const auto to = this->pixels(count), from = this->pixels(count);
        std::vector<float> shares(static_cast<std::size_t>(count));
        for (float& share : shares) share = static_cast<float>(this->below(1025)) / 1024;
        auto wanted = to, got = to;
        plain.blend(wanted.data(), from.data(), shares.data(), count);
        fast.blend(got.data(), from.data(), shares.data(), count);
        EXPECT_TRUE(same(wanted, got)) << count;

        std::vector<float> means(static_cast<std::size_t>(count)), fastMeans = means;
        plain.luma(to.data(), means.data(), count);
        fast.luma(to.data(), fastMeans.data(), count);
        EXPECT_TRUE(same(means, fastMeans)) << count;
    });
}

/// Every sum of three channels.
TEST(KernelMeansTest, AThirdOfASixteenBitSumIsTruncated)
{
    std::vector<PixelRGBA16> pixels;
    for (int sum = 0; sum <= 3 * 65535; ++sum) {
        const int r = std::min(sum, 65535), g = std::min(sum - r, 65535);
        pixels.push_back({static_cast<std::uint16_t>(r), static_cast<std::uint16_t>(g),
                          static_cast<std::uint16_t>(sum - r - g), 0});
    }
    for (const KernelTable* table : offeredTables()) {
        std::vector<float> means(pixels.size());
        table->rgba16.luma(pixels.data(), means.data(), static_cast<int>(pixels.size()));
        for (std::size_t sum = 0; sum < means.size(); ++sum) {
            const std::size_t mean = sum / 3;
            ASSERT_EQ(means[sum], static_cast<float>(mean)) << table->name << " " << sum;
        }
    }
}

TEST(SeamLineTest, EveryTableFindsTheSameCosts)
{
    std::mt19937 random(5);
    const auto below = [&random](int n) {
        return static_cast<int>(random() % static_cast<unsigned>(n));
    };
    for (int round = 0; round < 600; ++round) {
        const int count = 1 + below(60), step = below(5);
        const auto padded = static_cast<std::size_t>(count) + 2 * std::size_t{kSeamPadding};
        std::vector<float> error(padded), before(padded);
        for (auto* line : {&error, &before}) {
            for (float& v : *line) v = below(20) ? static_cast<float>(below(40)) : std::nanf("");
        }
        std::vector<float> wanted(padded);
        offeredTables().front()->plane.seamLine(error.data() + kSeamPadding,
                                                before.data() + kSeamPadding,
                                                wanted.data() + kSeamPadding, count, step);
        for (const KernelTable* table : offeredTables().subspan(1)) {
            std::vector<float> got(padded);
            table->plane.seamLine(error.data() + kSeamPadding, before.data() + kSeamPadding,
                                  got.data() + kSeamPadding, count, step);
            for (int s = 0; s < count; ++s) {
                const auto i = static_cast<std::size_t>(s) + kSeamPadding;
                ASSERT_TRUE(same(wanted[i], got[i])) << table->name << " " << s << " of " << count;
            }
        }
    }
}

TEST(BoxSegmentTest, EveryTableFindsTheSameSums)
{
    std::mt19937 random(9);
    const auto below = [&random](int n) {
        return static_cast<int>(random() % static_cast<unsigned>(n));
    };
    constexpr float kOdd[] = {-0.0f,
                              std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(),
                              kHuge,
                              1e-42f};
    for (int round = 0; round < 600; ++round) {
        const int size = 1 + 2 * below(30), first = below(size);
        const int count = 1 + below(size - first);
        const double fraction = below(2) ? 0.0 : 0.375;
        const Box box{size, fraction, 1.0 / (size + 2.0 * fraction)};
        std::vector<float> samples(static_cast<std::size_t>((size + count + 1) * kBoxLines));
        for (float& v : samples) {
            v = static_cast<float>(below(1 << 20)) / static_cast<float>(1 + below(1 << 10));
            if (round % 2 == 1 && below(40) == 0) v = kOdd[below(std::size(kOdd))];
        }
        std::vector<double> tails(static_cast<std::size_t>(count * kBoxLines));
        auto wanted = samples;
        offeredTables().front()->plane.boxSegment(wanted.data(), tails.data(), box, first, count);
        if (round % 2 == 0) {
            for (int i = 0; i < count; ++i) {
                double sum = 0.0;
                for (int k = 0; k <= size + 1; ++k) {
                    const float sample =
                        samples[(static_cast<std::size_t>(i) + static_cast<std::size_t>(k)) *
                                    kBoxLines +
                                3];
                    sum += (k == 0 || k == size + 1 ? fraction : 1.0) * sample;
                }
                const float got = wanted[static_cast<std::size_t>(i) * kBoxLines + 3];
                ASSERT_FLOAT_EQ(got, static_cast<float>(sum * box.norm)) << i;
            }
        }
        for (const KernelTable* table : offeredTables().subspan(1)) {
            auto got = samples;
            table->plane.boxSegment(got.data(), tails.data(), box, first, count);
            ASSERT_TRUE(same(wanted, got)) << table->name << " " << size << " " << first;
        }
    }
}

TEST(InterleaveTest, PutsLinesSideBySideAndBack)
{
    for (const KernelTable* table : offeredTables()) {
        for (const int count : {1, 3, 8, 29}) {
            std::vector<std::vector<float>> lines(kBoxLines);
            std::vector<const float*> from;
            for (auto& line : lines) {
                for (int i = 0; i < count; ++i) {
                    line.push_back(static_cast<float>(from.size()) * 100 + static_cast<float>(i));
                }
                from.push_back(line.data());
            }
            std::vector<float> samples(static_cast<std::size_t>(count * kBoxLines));
            table->plane.interleave(from.data(), samples.data(), count);
            for (int i = 0; i < count * kBoxLines; ++i) {
                ASSERT_EQ(samples[static_cast<std::size_t>(i)], i % kBoxLines * 100 + i / kBoxLines)
                    << table->name;
            }
            auto back = lines;
            std::vector<float*> to;
            for (auto& line : back) line.assign(line.size(), -1.0f), to.push_back(line.data());
            table->plane.separate(samples.data(), to.data(), count);
            EXPECT_EQ(back, lines) << table->name << " " << count;
        }
    }
}

}  // namespace
}  // namespace Orvane::Engine::Kernels
