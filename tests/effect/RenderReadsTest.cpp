#include <cstdarg>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ofx/ofxParam.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAreArray;
using ::testing::Gt;
using ::testing::SizeIs;
using Names = std::vector<std::string>;

constexpr OfxRectI kBounds{0, 0, 64, 48};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Which parameters and images a plug-in reads, in order. Stands between the plug-in and its host;
/// made before the plug-in starts, one at a time.
class ReadJournal {
public:
    explicit ReadJournal(Host::EmbeddedHost& host)
    {
        fetchSuite_ = host.record()->fetchSuite;
        host.record()->fetchSuite = &fetchSuite;
        names_.clear();
        reads.clear();
        times.clear();
    }

    static inline Names reads;
    static inline std::vector<OfxTime> times;  ///< of `reads`

private:
    static const void* fetchSuite(OfxPropertySetHandle host, const char* name, int version)
    {
        const void* suite = fetchSuite_(host, name, version);
        if (name == std::string_view(kOfxParameterSuite)) {
            hostParams_ = static_cast<const OfxParameterSuiteV1*>(suite);
            params_ = *hostParams_;
            params_.paramGetHandle = &paramGetHandle;
            params_.paramGetValueAtTime = &paramGetValueAtTime;
            return &params_;
        }
        if (name == std::string_view(kOfxImageEffectSuite)) {
            hostEffects_ = static_cast<const OfxImageEffectSuiteV1*>(suite);
            effects_ = *hostEffects_;
            effects_.clipGetHandle = &clipGetHandle;
            effects_.clipGetImage = &clipGetImage;
            return &effects_;
        }
        return suite;
    }
    static OfxStatus paramGetHandle(OfxParamSetHandle set, const char* name, OfxParamHandle* param,
                                    OfxPropertySetHandle* properties)
    {
        const OfxStatus status = hostParams_->paramGetHandle(set, name, param, properties);
        if (status == kOfxStatOK) names_[*param] = name;
        return status;
    }
    /// Only the two corners have two values.
    static OfxStatus paramGetValueAtTime(OfxParamHandle param, OfxTime time, ...)
    {
        const std::string& name = note(param, time);
        const bool isPair = name.starts_with("sampleCorner");
        std::va_list values;
        va_start(values, time);
        void* const first = va_arg(values, void*);
        void* const second = isPair ? va_arg(values, void*) : nullptr;
        va_end(values);
        return isPair ? hostParams_->paramGetValueAtTime(param, time, first, second)
                      : hostParams_->paramGetValueAtTime(param, time, first);
    }
    static OfxStatus clipGetHandle(OfxImageEffectHandle effect, const char* name,
                                   OfxImageClipHandle* clip, OfxPropertySetHandle* properties)
    {
        const OfxStatus status = hostEffects_->clipGetHandle(effect, name, clip, properties);
        if (status == kOfxStatOK) names_[*clip] = name;
        return status;
    }
    static OfxStatus clipGetImage(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                                  OfxPropertySetHandle* image)
    {
        note(clip, time);
        return hostEffects_->clipGetImage(clip, time, region, image);
    }
    static const std::string& note(const void* handle, OfxTime time)
    {
        times.push_back(time);
        return reads.emplace_back(names_[handle]);
    }

    static inline const void* (*fetchSuite_)(OfxPropertySetHandle, const char*, int) = nullptr;
    static inline const OfxParameterSuiteV1* hostParams_ = nullptr;
    static inline const OfxImageEffectSuiteV1* hostEffects_ = nullptr;
    static inline OfxParameterSuiteV1 params_{};
    static inline OfxImageEffectSuiteV1 effects_{};
    static inline std::map<const void*, std::string> names_;
};

class BlockListener final : public Host::RenderListener {
public:
    void blockLaid(Host::Instance&, const TesseretBlockV1& block) override
    {
        blocks.push_back(block);
    }
    std::vector<TesseretBlockV1> blocks;
};

TEST(RenderReads, HappenOnceForEachValueInOrder)
{
    const Names begin = {"Output", "Source", "temporalConsistancy", "fillRegion"};
    const Names fill = {"sampleCorner1", "sampleCorner2",   "seed",           "blockSize",
                        "overlap",       "blendSize",       "numSamples",     "pathWidth",
                        "edgeBlend",     "avoidFillRegion", "luminanceMatch", "luminanceBlur"};
    struct Case {
        const char* context;
        int fillRegion;
        Names matte, textures;
    };
    for (const Case& each :
         {Case{kOfxImageEffectContextFilter, 0, {}, {}},
          Case{kOfxImageEffectContextGeneral, 1, {}, {"useTexture1", "Texture1", "useTexture2"}},
          Case{kOfxImageEffectContextGeneral,
               3,
               {"Matte"},
               {"useTexture1", "Texture1", "useTexture2"}}}) {
        TestHost test;
        const ReadJournal journal(test.host());
        test.create(each.context, Depth::Byte, kBounds);
        if (each.context == std::string_view(kOfxImageEffectContextGeneral)) {
            test.connect("Matte", plainPicture(kBounds, Depth::Byte, 0.0, Components::Alpha));
            for (const char* clip : {"Texture1", "Texture2"}) {
                test.connect(clip, texturePicture(kBounds, Depth::Byte, 3));
            }
            test.instance().set("useTexture1", 1);
            test.instance().set("useTexture3", 1);  // of an unconnected clip
        }
        test.instance().set("fillRegion", each.fillRegion);
        Names expected = begin;
        for (const Names& part : {each.matte, fill, each.textures}) {
            expected.insert(expected.end(), part.begin(), part.end());
        }
        Picture output(kBounds, Depth::Byte);
        ReadJournal::reads.clear();
        ReadJournal::times.clear();
        EXPECT_EQ(test.instance().renderOnly({.time = 0.1, .window = kBounds}, &output),
                  kOfxStatOK);
        EXPECT_THAT(ReadJournal::reads, ElementsAreArray(expected));
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const bool isParameter = expected[i].front() >= 'a';
            EXPECT_EQ(ReadJournal::times[i], isParameter ? double{0.1f} : 0.1) << expected[i];
        }

        test.instance().connect("Source", nullptr);
        ReadJournal::reads.clear();
        EXPECT_EQ(test.instance().renderOnly({.time = 0.1, .window = kBounds}, &output),
                  kOfxStatOK);
        EXPECT_THAT(ReadJournal::reads, ElementsAreArray({"Output", "Source"}));
    }
}

TEST(RenderReads, ScaleLengthsByTheHorizontalScaleAndTruncateThem)
{
    TestHost test;
    BlockListener listener;
    test.host().setListener(&listener);
    test.create(kOfxImageEffectContextFilter, Depth::Byte, kBounds);
    test.instance().set("fillRegion", 0);
    test.instance().set("sampleCorner1", std::vector{0.0, 0.0});
    test.instance().set("sampleCorner2", std::vector{1.0, 1.0});
    test.instance().set("blockSize", 51);
    test.instance().set("overlap", 3);
    Picture output({0, 0, 32, 12}, Depth::Byte);
    EXPECT_EQ(
        test.instance().renderOnly({.window = output.bounds(), .scale = {0.5, 0.25}}, &output),
        kOfxStatOK);
    ASSERT_THAT(listener.blocks, SizeIs(Gt(1u)));
    EXPECT_EQ(listener.blocks[0].width, 25);
    EXPECT_EQ(listener.blocks[1].x, 24) << "an overlap of 1.5 is 1";
}

TEST(RenderReads, SurviveValuesThatAreNotNumbers)
{
    for (const double wild : {kNaN, 1e30, -1e30, 0.0}) {
        SCOPED_TRACE(wild);
        TestHost test;
        test.create(kOfxImageEffectContextGeneral, Depth::Byte, kBounds);
        auto matte = plainPicture(kBounds, Depth::Byte, 0.0, Components::Alpha);
        fillChannel(*matte, {20, 15, 40, 30}, 0, 1.0);
        test.connect("Matte", matte);
        test.instance().set("luminanceMatch", 1);
        for (const char* length : {"pathWidth", "edgeBlend", "luminanceBlur"}) {
            test.instance().set(length, wild > 1.0 ? 1.0 : wild);
        }
        test.instance().set("blendSize", 9000000);
        test.instance().set("sampleCorner1", std::vector{wild, -wild});
        test.instance().set("sampleCorner2", std::vector{-wild, kNaN});
        Host::Project project = test.instance().project();
        project.pixelAspectRatio = wild;
        test.instance().setProject(project);
        Picture output({0, 0, 8, 8}, Depth::Byte);
        EXPECT_EQ(
            test.instance().renderOnly({.window = output.bounds(), .scale = {wild, 1.0}}, &output),
            kOfxStatOK);
        test.expectClean();
    }
}

}  // namespace
}  // namespace Tesseret::Fixtures
