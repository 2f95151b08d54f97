#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "engine/quilt/Quilt.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"
#include "tests/fixtures/ReferenceImage.h"
#include "tests/fixtures/ReferenceQuilt.h"

namespace Orvane::Engine {
namespace {

using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::noise;
using Testing::referenceOf;
using Testing::solid;
using Testing::TestMap;

TEST(Random, FollowsItsRecurrence)
{
    Random random(1);
    // By hand: 1 -> 0x41C67EA6 -> 0x167EB0E7 (0x41C6 -> a = 0xC6, 0x167E -> b = 0x7E).
    EXPECT_EQ(random.next(), 0x7E ^ (0xC6 << 7));
    std::uint32_t state = 1;
    Reference::nextRandom(state);
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(random.next(), Reference::nextRandom(state));
}

TEST(Random, DrawsTowardZeroOnBothSides)
{
    for (const int n : {0, 1, 2, 7, 480, 32767, 1000000, 2147483647, -1, -37, -2000000}) {
        Random random(99);
        std::uint32_t state = 99;
        for (int i = 0; i < 2000; ++i) {
            const int drawn = drawBelow(random, n);
            ASSERT_EQ(drawn, Reference::drawBelow(state, n)) << n;
            ASSERT_LE(std::abs(drawn), std::max(std::abs(n) - 1, 0));
        }
    }
}

template <typename Pixel>
class QuiltStages : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(QuiltStages, Depths);

TYPED_TEST(QuiltStages, ErrorAgreesWithTheReferenceForEveryThreadCount)
{
    auto a = noise<TypeParam>(40, 33, 1, -3, 5), b = noise<TypeParam>(50, 60, 2, 100, 100);
    b->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
    auto refA = referenceOf(a), refB = referenceOf(b);
    for (const int threads : {1, 2, 4, 7, 40}) {
        OverlapError<TypeParam> error(threads);
        for (const int bx : {100, 140, 60}) {  // inside, and hanging out on both sides
            Reference::Field refError(0, 0, 25, 31);
            const float wanted =
                Reference::overlapError(refA, 2, 6, refB, bx, 101, refError, threads);
            std::vector<TypeParam> aCopy, bCopy;
            Strip<TypeParam> strip;
            strip.width = 25;
            strip.height = 31;
            strip.a = rowsOf(*a, 2, 6, 25, 31, aCopy);
            strip.b = rowsOf(*b, bx, 101, 25, 31, bCopy);
            EXPECT_EQ(error.exact(strip), wanted);
            const float rough = error.rough(strip, std::numeric_limits<float>::max());
            EXPECT_LE(boundsOf(rough, strip.pixels()).lower, wanted);
            EXPECT_GE(boundsOf(rough, strip.pixels()).upper, wanted);
        }
    }
}

/// Uses pixels whose float sum depends on the order of the terms.
TEST(OverlapError, AddsTheTermsInTheOrderBlueGreenRed)
{
    const PixelRGBA16 a{47856, 13852, 24352, 0}, b{};
    const Strip<PixelRGBA16> strip = {
        .a = {&a, 0}, .b = {&b, 0}, .weights = {}, .width = 1, .height = 1};
    const float error = OverlapError<PixelRGBA16>(1).exact(strip);
    const auto term = [](std::uint16_t value) {
        const auto d = static_cast<double>(static_cast<float>(value) * 1.5259022e-05f);
        return ((d * d) * (d * d)) * ((d * d) * (d * d));
    };
    const double blueGreenRed = term(24352) + term(13852) + term(47856);
    const double redGreenBlue = term(47856) + term(13852) + term(24352);
    EXPECT_EQ(error, static_cast<float>(blueGreenRed));
    EXPECT_NE(error, static_cast<float>(redGreenBlue));
}

TYPED_TEST(QuiltStages, ErrorCountsOnlyPositiveWeights)
{
    const auto a = solid<TypeParam>(4, 1, 0.0f), b = solid<TypeParam>(4, 1, 1.0f);
    const std::array weights = {1.0f, 0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()};
    std::vector<TypeParam> copy;
    const Strip<TypeParam> strip = {.a = rowsOf(*a, 0, 0, 4, 1, copy),
                                    .b = rowsOf(*b, 0, 0, 4, 1, copy),
                                    .weights = {weights.data(), 0},
                                    .width = 4,
                                    .height = 1};
    EXPECT_EQ(OverlapError<TypeParam>(1).exact(strip), 1.0f + 1.0f + 1.0f);
}

TYPED_TEST(QuiltStages, PasteAgreesWithTheReference)
{
    std::mt19937 random(5);
    for (int round = 0; round < 49; ++round) {
        auto from = noise<TypeParam>(30, 30, 10, 4, 4), to = noise<TypeParam>(24, 20, 11);
        from->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        auto refFrom = referenceOf(from), refTo = referenceOf(to);
        const int w = 17, h = 13, bw = round % 7, bh = round / 7;
        std::vector<int> seamX(h), seamY(w);
        std::vector<PixelVec2f> vertical(h), horizontal(w);
        for (int j = 0; j < h; ++j) {
            seamX[static_cast<std::size_t>(j)] = static_cast<int>(random() % 9);
            vertical[static_cast<std::size_t>(j)].x =
                static_cast<float>(seamX[static_cast<std::size_t>(j)]);
        }
        for (int i = 0; i < w; ++i) {
            seamY[static_cast<std::size_t>(i)] = static_cast<int>(random() % 7);
            horizontal[static_cast<std::size_t>(i)].y =
                static_cast<float>(seamY[static_cast<std::size_t>(i)]);
        }
        // Rows may be pasted apart.
        const int cut = 2 + round % (h + 1);
        for (const RowRange& rows : {RowRange{-9, cut}, RowRange{cut, 99}}) {
            BlockPaste<TypeParam>({bw, bh}).run(*from,
                                                {.region = {3, 2, 3 + w, 2 + h},
                                                 .srcX = 22,
                                                 .srcY = 1,
                                                 .seams = {horizontal, vertical}},
                                                rows, *to);
        }
        Reference::paste(refFrom, 22, 1, refTo, 3, 2, w, h, seamX, seamY, bw, bh);
        ASSERT_EQ(to.pixels(), refTo.pixels) << "blend " << bw << ' ' << bh;
    }
}

TYPED_TEST(QuiltStages, PastesFromAnywhereInTheIntegersAndOnlyIntoTheDestination)
{
    constexpr int kFar = 1'000'000'000, kEnd = std::numeric_limits<int>::max() - 40;
    const auto from = noise<TypeParam>(12, 6, 3, kEnd, -kFar);
    auto to = solid<TypeParam>(8, 3, 0.25f);
    const auto untouched = to.at(0, 0);
    to->placeAt(-kFar + 1, kFar);
    const std::vector<PixelVec2f> horizontal(12), vertical(3);
    // The destination begins a column behind the block and ends three before its end.
    for (const int blend : {0, 1}) {
        BlockPaste<TypeParam>({.width = blend, .height = 0})
            .run(*from,
                 {.region = {-kFar, kFar, -kFar + 12, kFar + 3},
                  .srcX = kEnd,
                  .srcY = -kFar + 2,
                  .seams = {horizontal, vertical}},
                 {kFar, kFar + 2}, *to);
        for (int x = 0; x < 8; ++x) {
            // The blend across the seam, at the block's first column, ends where the map begins.
            EXPECT_EQ(to->read(-kFar + 1 + x, kFar), from->read(kEnd + 1 + x, -kFar + 2)) << x;
            EXPECT_EQ(to->read(-kFar + 1 + x, kFar + 2), untouched) << x;
        }
    }
}

TEST(CandidateDraw, ReturnsNowAndThenWhereOnlyRepetitionsAreLeft)
{
    const auto texture = noise<PixelRGBA8>(8, 8, 1);
    const MapDomain* const domain = &*texture;
    const CandidateSource source{.sampleBox = {0, 0, 4, 4},
                                 .textures = {&domain, 1},
                                 .samples = std::numeric_limits<int>::max(),
                                 .seed = 1};
    BlockPlace place{};
    place.width = place.height = 4;
    TriedPositions tried;
    CandidateDraw draw(source, place, 0, tried);
    for (int i = 0; i < 3; ++i) {
        const std::int64_t before = draw.positionsDrawn();
        ASSERT_TRUE(draw.next());
        EXPECT_LE(draw.positionsDrawn() - before, (1 << 20) + 1);
    }
}

TYPED_TEST(QuiltStages, PasteRisesLinearlyAcrossTheVerticalSeam)
{
    auto target = solid<TypeParam>(16, 1, 0.0f);
    const auto white = solid<TypeParam>(16, 1, 1.0f);
    const std::vector<PixelVec2f> horizontal(16), vertical{{10.0f, 0.0f}};
    BlockPaste<TypeParam>({.width = 3, .height = 0})
        .run(*white,
             {.region = {0, 0, 16, 1}, .srcX = 0, .srcY = 0, .seams = {horizontal, vertical}},
             {0, 1}, *target);
    for (int x = 0; x < 16; ++x) {
        const float share = static_cast<float>(target.at(x, 0).r) / PixelTraits<TypeParam>::kMax;
        EXPECT_NEAR(share, std::clamp((static_cast<float>(x) - 7.0f) / 6.0f, 0.0f, 1.0f), 0.005f);
    }
}

TYPED_TEST(QuiltStages, WholeQuiltAgreesWithTheReference)
{
    struct Case {
        int threads;
        Reference::Settings settings;
    };
    Reference::Settings base{.blockW = 12,
                             .blockH = 10,
                             .overlapW = 5,
                             .overlapH = 4,
                             .numSamples = 3,
                             .seed = 7,
                             .boxX0 = 2,
                             .boxY0 = 1,
                             .boxX1 = 45,
                             .boxY1 = 38};
    std::vector<Reference::Settings> cases(6, base);
    cases[1].blendW = cases[1].blendH = 2;
    cases[2].blockW = cases[2].blockH = 500;  // clamped to the box, overlap and blend to the size
    cases[2].overlapW = cases[2].overlapH = cases[2].blendW = cases[2].blendH = 999;
    cases[3].threads = 4;
    cases[3].seed = -5;
    cases[4].boxX0 = -30;  // draws and reads outside the textures
    cases[4].boxX1 = 90;
    cases[5].blockW = 1;
    cases[5].overlapW = 1;
    for (const Reference::Settings& s : cases) {
        const FakeServices services(static_cast<unsigned int>(s.threads));
        auto first = noise<TypeParam>(48, 40, 20), second = noise<TypeParam>(50, 42, 21);
        for (auto* texture : {&first, &second}) {
            (*texture)->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        }
        auto refFirst = referenceOf(first), refSecond = referenceOf(second);
        auto target = solid<TypeParam>(70, 50, 0.0f);
        BlockSettings blocks{s.blockW, s.blockH, s.overlapW, s.overlapH,
                             s.blendW, s.blendH, s.step,     s.numSamples};
        Map<TypeParam>* textures[] = {&*first, &*second};
        BlockList list;
        QuiltInputs<TypeParam> inputs;
        inputs.fillRect = {3, 2, 60, 44};
        inputs.sampleBox = {s.boxX0, s.boxY0, s.boxX1, s.boxY1};
        inputs.textures = textures;
        inputs.target = &*target;
        inputs.seed = s.seed;
        inputs.blocks = blocks;
        inputs.blockList = &list;
        const BlockSize used = Quilt<TypeParam>(inputs).run().blockSize;

        auto expected = Reference::Quilt<TypeParam>(s, {&refFirst, &refSecond}).cover(3, 2, 57, 42);
        for (int y = 2; y < 44; ++y) {
            for (int x = 3; x < 60; ++x) {
                ASSERT_EQ(target.at(x, y), expected.at(x, y)) << x << ' ' << y;
            }
        }
        EXPECT_EQ(target.at(2, 10), Testing::grey<TypeParam>(0.0f)) << "outside the rectangle";
        EXPECT_EQ(used.width, static_cast<float>(std::min(s.blockW, s.boxX1 - s.boxX0)));
        for (const BlockRecord& record : list) {
            EXPECT_EQ(record.seamH.size(),
                      std::min<std::size_t>(static_cast<std::size_t>(used.width),
                                            static_cast<std::size_t>(60 - record.x)));
        }
        EXPECT_TRUE(services.memory.live.empty());
    }
}

TEST(BestFitPath, AgreesWithTheReferenceAndBreaksTiesToTheSmallestIndex)
{
    const FakeServices services;
    std::mt19937 random(8);
    for (int round = 0; round < 60; ++round) {
        const int w = 3 + static_cast<int>(random() % 20), h = 3 + static_cast<int>(random() % 20);
        const int step = round % 4, margin = round % 2;
        TestMap<Pixel32f> error(w, h);
        for (float& e : error.pixels()) e = static_cast<float>(random() % 3);  // many ties
        Reference::Field refError(0, 0, w, h);
        refError.pixels = error.pixels();
        SeamStrip rows, columns;
        rows.shape(h, w);
        for (int y = 0; y < h; ++y) std::copy_n(error->pixelAt(0, y), w, rows.errors(y));
        columns.shape(w, h);
        columns.setColumns({error->pixelAt(0, 0), error->stride()});
        std::vector<int> vertical(static_cast<std::size_t>(h));
        std::vector<int> horizontal(static_cast<std::size_t>(w));
        bestFitPath({step, margin}, rows, vertical);
        bestFitPath({step, margin}, columns, horizontal);
        std::ranges::reverse(horizontal);
        EXPECT_EQ(vertical, Reference::seam(refError, step, margin, true));
        EXPECT_EQ(horizontal, Reference::seam(refError, step, margin, false));
    }
}

TEST(BestFitPath, StaysWithinNarrowStrips)
{
    SeamStrip strip;
    strip.shape(3, 4);
    for (int y = 0; y < 3; ++y) std::fill_n(strip.errors(y), 4, static_cast<float>(y));
    std::vector<int> path(3);
    bestFitPath({2, 50}, strip, path);
    for (const int s : path) EXPECT_TRUE(s == 1 || s == 2);
}

/// A small quilt whose settings a test may change.
struct SmallQuilt {
    SmallQuilt()
    {
        texture->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        inputs.fillRect = {0, 0, 33, 21};
        inputs.sampleBox = {0, 0, 40, 30};
    }

    void run()
    {
        Map<PixelRGBA8>* textures[] = {&*texture};
        inputs.textures = textures;
        inputs.target = &*target;
        inputs.source = &*texture;
        inputs.blocks = blocks;
        inputs.blockList = keepsList ? &list : nullptr;
        result = Quilt<PixelRGBA8>(inputs).run();
    }

    TestMap<PixelRGBA8> texture = noise<PixelRGBA8>(40, 30, 3);
    TestMap<PixelRGBA8> target = solid<PixelRGBA8>(33, 21, 0.0f);
    BlockSettings blocks{10, 10, 3, 3, 0, 0, 2, 2};
    BlockList list;
    bool keepsList = true;
    QuiltInputs<PixelRGBA8> inputs;
    QuiltResult result;
};

TEST(Quilt, ClampsAnySizes)
{
    const FakeServices services;
    constexpr int kHuge = 1'000'000'000;
    struct Case {
        BlockSettings blocks;
        Region box;
    };
    const Case cases[] = {{{0, 0, 0, 0, 0, 0, 2, 0}, {0, 0, 40, 30}},
                          {{-9, -9, -9, -9, -9, -9, 2, -9}, {0, 0, 40, 30}},
                          {{kHuge, kHuge, kHuge, kHuge, kHuge, kHuge, 2, 3}, {0, 0, 40, 30}},
                          {{kHuge, kHuge, 1, 1, 0, 0, 2, 1}, {-kHuge, -kHuge, kHuge, kHuge}},
                          {{10, 10, 3, 3, 1, 1, 2, 2}, {7, 5, 7, 25}},
                          {{10, 10, 3, 3, 1, 1, 2, 2}, {7, 5, 7, 5}}};
    for (const Case& c : cases) {
        SmallQuilt quilt;
        quilt.blocks = c.blocks;
        quilt.inputs.sampleBox = c.box;
        quilt.run();
        EXPECT_GE(quilt.result.blockSize.width, 1.0f);
        EXPECT_FALSE(quilt.list.empty());
        EXPECT_NE(quilt.target.pixels(), solid<PixelRGBA8>(33, 21, 0.0f).pixels());
    }
}

TEST(Quilt, BlocksDependOnTheirPlaceAndTheSeed)
{
    const FakeServices services;
    SmallQuilt first, again, otherSeed;
    otherSeed.inputs.seed = 1;
    first.run();
    again.run();
    otherSeed.run();
    EXPECT_EQ(first.target.pixels(), again.target.pixels());
    EXPECT_NE(first.target.pixels(), otherSeed.target.pixels());
}

TEST(Quilt, ManySamplesAreTheSameButMeasuredOnce)
{
    const FakeServices services;
    SmallQuilt some, many;
    some.blocks.numSamples = 999;                                    // every draw is measured
    some.inputs.sampleBox = many.inputs.sampleBox = {2, 1, 17, 15};  // 5 x 4 positions
    many.blocks.numSamples = 1000000;
    some.run();
    many.run();
    EXPECT_EQ(some.target.pixels(), many.target.pixels());

    TriedPositions tried;
    const std::array<const MapDomain*, 1> textures = {&*many.texture};
    const CandidateSource source = {many.inputs.sampleBox, textures, nullptr, 1000000, 7};
    BlockPlace place{};
    place.width = place.height = 10;
    CandidateDraw draw(source, place, 0, tried);
    int candidates = 0;
    while (draw.next()) ++candidates;
    EXPECT_EQ(draw.drawn(), 1000000);
    EXPECT_EQ(candidates, 5 * 4);
}

/// Where nothing else is read, the rest may be left out and stored in turn.
TEST(Quilt, APartIsThatOfTheWhole)
{
    for (const unsigned threads : {1u, 2u, 7u}) {
        const FakeServices services(threads);
        const auto lay = [](const Region& wanted, Map<PixelRGBA8>& laid) {
            SmallQuilt quilt;
            quilt.inputs.fillRect = {-7, 3, 150, 190};
            quilt.inputs.wanted = wanted;
            quilt.inputs.laid = &laid;
            quilt.blocks = {10, 10, 4, 4, 1, 1, 2, 3};
            quilt.keepsList = false;
            quilt.run();
        };
        Map<PixelRGBA8> whole;
        lay({}, whole);
        ASSERT_EQ(whole.storedExtent(), (Region{-7, 3, 150, 190}));
        for (const Region wanted : {Region{-7, 3, 150, 189}, Region{20, 41, 101, 97},
                                    Region{-20, -20, 1, 9}, Region{60, 182, 900, 900}}) {
            Map<PixelRGBA8> part;
            lay(wanted, part);
            EXPECT_EQ(part.extent(), whole.extent());
            const Region stored = part.storedExtent();
            ASSERT_EQ(stored, wanted.within(whole.extent()));
            for (int y = stored.y0; y < stored.y1; ++y) {
                for (int x = stored.x0; x < stored.x1; ++x) {
                    ASSERT_EQ(part.read(x, y), whole.read(x, y)) << x << ' ' << y;
                }
            }
        }
    }
}

TEST(BlockGrid, StripsInTurnAreNeverInUseTogether)
{
    for (const int concurrent : {0, 2, 4, 14, 32, 500}) {
        for (const auto& [width, height] :
             {std::pair{1, 1}, {90, 2000}, {2000, 90}, {700, 700}, {2070, 1230}}) {
            BlockGrid grid({0, 0, width, height}, {100, 100, 25, 25, 0, 0, 2, 1});
            if (concurrent > 0) grid.splitRuns(concurrent);
            // The steps from the first block of the row below to the one that joins the rows.
            std::vector<std::pair<int, int>> uses(static_cast<std::size_t>(grid.rows()), {-1, -1});
            for (int step = 0; step < grid.steps(); ++step) {
                for (const BlockRun& run : grid.runsOf(step)) {
                    const auto row = static_cast<std::size_t>(run.row);
                    if (row + 1 < uses.size() && uses[row + 1].first < 0)
                        uses[row + 1].first = step;
                    uses[row].second = step + 1;
                }
            }
            const auto strips = static_cast<std::size_t>(grid.openStrips());
            ASSERT_GE(strips, 1u);
            for (std::size_t row = 1; row + strips < uses.size(); ++row) {
                ASSERT_GT(uses[row + strips].first, uses[row].second)
                    << concurrent << ' ' << width << ' ' << height << ' ' << row;
            }
        }
    }
}

TEST(Quilt, AvoidsTheFillRegion)
{
    const FakeServices services;
    SmallQuilt quilt;
    TestMap<Pixel32f> mask(40, 30);
    for (int y = 0; y < 30; ++y) {
        for (int x = 18; x < 40; ++x) mask.at(x, y) = 255.0f;  // candidates must end before x = 18
    }
    quilt.inputs.avoidFillRegion = true;
    quilt.inputs.fillMask = &*mask;
    quilt.inputs.sampleBox = {0, 0, 5, 5};  // unused while avoiding
    quilt.run();
    EXPECT_FALSE(quilt.result.gaveUpAvoiding);
    EXPECT_EQ(quilt.result.blockSize.width, 10.0f) << "not clamped to the box";
    for (const BlockRecord& record : quilt.list) {
        EXPECT_LE(record.srcX + static_cast<float>(record.seamH.size()), 18.0f);
    }
}

TEST(Quilt, GivesUpAvoidingOnceAndReportsIt)
{
    const FakeServices services;
    SmallQuilt quilt;
    TestMap<Pixel32f> mask(40, 30);
    for (float& m : mask.pixels()) m = 1.0f;
    quilt.inputs.avoidFillRegion = true;
    quilt.inputs.fillMask = &*mask;
    ::testing::internal::CaptureStderr();
    quilt.run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Cannot avoid matte!\n");
    EXPECT_TRUE(quilt.result.gaveUpAvoiding);
}

TEST(Quilt, KnownPixelsDecideTheFirstBlock)
{
    const FakeServices services;
    SmallQuilt quilt;
    TestMap<Pixel32f> weight(40, 30);
    for (float& w : weight.pixels()) w = 1.0f;
    quilt.inputs.fillAll = false;
    quilt.inputs.weightMap = &*weight;
    quilt.inputs.fillRect = {0, 0, 10, 10};
    quilt.inputs.sampleBox = {0, 0, 12, 12};  // four places; (0, 0) fits the source exactly
    quilt.blocks.numSamples = 200;
    quilt.run();
    ASSERT_FALSE(quilt.list.empty());
    EXPECT_EQ(quilt.list[0].srcX, 0.0f);
    EXPECT_EQ(quilt.list[0].srcY, 0.0f);
}

TEST(Quilt, GoesOnWhenMemoryRunsOut)
{
    for (int k = 1; k < 12; ++k) {
        for (const bool lock : {false, true}) {
            FakeServices services(2);
            (lock ? services.memory.failLock : services.memory.failAllocation) = k;
            SmallQuilt quilt;
            ::testing::internal::CaptureStderr();
            quilt.run();
            ::testing::internal::GetCapturedStderr();
            EXPECT_TRUE(services.memory.live.empty());
        }
    }
}

TEST(Quilt, StopsAtAnAbortAndLeavesTheTarget)
{
    for (int allowed = 0; allowed < 40; ++allowed) {
        const FakeServices services;
        SmallQuilt quilt;
        RenderStatus record;
        int left = allowed;
        record.abortHandle = &left;
        record.poll = [](void* counter, int*) { return --*static_cast<int*>(counter) < 0 ? 1 : 0; };
        quilt.inputs.statusRecord = &record;
        quilt.run();
        EXPECT_EQ(left, -1);
        EXPECT_EQ(quilt.target.pixels(), solid<PixelRGBA8>(33, 21, 0.0f).pixels());
    }
}

TEST(Quilt, SurvivesPixelsThatAreNan)
{
    const FakeServices services;
    auto texture = noise<PixelRGBAf>(20, 20, 1);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (auto& pixel : texture.pixels())
        pixel = {nan, std::numeric_limits<float>::infinity(), -1, 1};
    auto target = solid<PixelRGBAf>(30, 30, 0.5f);
    Map<PixelRGBAf>* textures[] = {&*texture};
    BlockSettings blocks{8, 8, 3, 3, 1, 1, 2, 2};
    QuiltInputs<PixelRGBAf> inputs;
    inputs.fillRect = {0, 0, 30, 30};
    inputs.sampleBox = {0, 0, 20, 20};
    inputs.textures = textures;
    inputs.target = &*target;
    inputs.blocks = blocks;
    Quilt<PixelRGBAf>(inputs).run();
    EXPECT_EQ(target.at(15, 15).b, -1.0f);
}

}  // namespace
}  // namespace Orvane::Engine
