/// Parameter values in JSON files.

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileError.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "render/PluginSession.h"
#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Render {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::HasSubstr;

class ParameterOrderTest : public MatteFixture {
protected:
    std::string write(const std::string& text) const
    {
        std::ofstream(in("p.json")) << text;
        return in("p.json");
    }
};

class ParameterFileTest : public ParameterOrderTest {
protected:
    std::string error(const std::string& text)
    {
        try {
            loadParameters(write(text), plugin_, general_);
            return "none";
        } catch (const UsageError& error) {
            return error.what();
        } catch (const Files::FileError& error) {
            return error.what();
        }
    }

    PluginSession session_{TESSERET_PLUGIN_FILE};
    const Host::ContextDescription& general_ = session_.describe("General");
    const std::string plugin_ = session_.effect().description().identifier;
};

TEST_F(ParameterFileTest, KeepsEveryValueToItsLastBit)
{
    ParameterValues values{{"blockSize", 77},
                           {"fillRegion", 4},
                           {"luminanceMatch", 1},
                           {"edgeBlend", 1.0 / 3.0},
                           {"sampleCorner1", std::vector<double>{0.1f, 1e-9}}};
    saveParameters(in("p.json"), plugin_, general_, values);
    EXPECT_EQ(contextOfParameters(in("p.json")), "General");
    const ParameterValues loaded = loadParameters(in("p.json"), plugin_, general_);
    for (const Host::ParameterDescription& parameter : general_.parameters) {
        if (parameter.shape.dimension == 0) continue;
        const auto found = loaded.find(parameter.name);
        ASSERT_EQ(found != loaded.end(), parameter.persistent) << parameter.name;
        EXPECT_EQ(found->second, valueOf(parameter.name, values, general_)) << parameter.name;
    }
    EXPECT_THROW(saveParameters(in("none/p.json"), plugin_, general_, values), Files::FileError);
    EXPECT_THAT(names(), testing::UnorderedElementsAre("a.png", "p.json"));
}

TEST_F(ParameterFileTest, SaysWhatIsWrong)
{
    struct Case {
        const char *text, *wanted;
    };
    const Case cases[] = {
        {"{\n\n\"parameters\": nought}", "invalid JSON at line 3"},
        {"[]", "holds no parameters"},
        {R"({"parameters": [1]})", "holds no parameters"},
        {R"({"plugin": 1, "parameters": {}})", "\"plugin\" must be a string"},
        {R"({"plugin": "org.x", "parameters": {}})", "holds parameters of org.x, not of com."},
        {R"({"parameters": {"blockSiz": 64}})", "did you mean \"blockSize\"?"},
        {R"({"parameters": {"Texture": 1}})", "no parameter \"Texture\""},
        {R"({"parameters": {"blockSize": "64"}})", "blockSize: \"64\" is not an integer"},
        {R"({"parameters": {"blockSize": 64.5}})", "blockSize=64.5: expected an integer"},
        {R"({"parameters": {"blockSize": 29}})", "blockSize=29: the range is 30 to"},
        {R"({"parameters": {"luminanceMatch": 1}})", "luminanceMatch: 1 is not true or false"},
        {R"({"parameters": {"fillRegion": "Hole"}})", "the choices are \"Entire Image\" (0)"},
        {R"({"parameters": {"fillRegion": 5}})", "the choices are"},
        {R"({"parameters": {"sampleCorner1": 0.5}})", "is not a list of numbers"},
        {R"({"parameters": {"sampleCorner1": [0.5]}})", "expected 2 numbers"},
        {R"({"parameters": {"edgeBlend": null}})", "edgeBlend: null is not a number"},
    };
    for (const Case& each : cases) {
        EXPECT_THAT(error(each.text), AllOf(HasSubstr("p.json: "), HasSubstr(each.wanted)));
    }
    EXPECT_THROW(contextOfParameters(in("missing.json")), Files::FileError);
    EXPECT_THROW(contextOfParameters(in("")), Files::FileError);
}

// The command line, options as well as name=value, overrides the file; the file overrides what
// options only imply.
TEST_F(ParameterOrderTest, TheCommandLineComesFirst)
{
    paintMatte("m.png", masks({kMiddle}));
    const auto filledWith = [&](const char* parameters, CommandRun::Arguments more) {
        more.insert(more.end(),
                    {"--parameters", write(std::string(R"({"parameters": )") + parameters + "}")});
        return filled(more);
    };
    const std::string matte = in("m.png");
    EXPECT_EQ(filledWith(R"({"seed": 8})", {"--matte", matte}),
              filled({"--matte", matte, "seed=8"}));
    EXPECT_EQ(filledWith(R"({"seed": 8})", {"--matte", matte, "seed=9"}),
              filled({"--matte", matte, "seed=9"}));
    EXPECT_EQ(filledWith(R"({"fillRegion": "Matte->Inverted Alpha"})", {"--matte", matte}),
              filled({"--matte", matte, "--matte-inverted"}));
    EXPECT_EQ(filledWith(R"({"fillRegion": "Entire Image"})", {"--matte", matte}),
              filled({"--matte", matte}));
    EXPECT_EQ(filledWith(R"({"sampleCorner1": [0.1, 0.1]})", {"--sample-box", "50,50,150,150"}),
              filled({"--sample-box", "50,50,150,150"}));
    EXPECT_NE(filledWith(R"({"sampleCorner1": [0.1, 0.1]})", {}), filled({}));
}

}  // namespace
}  // namespace Tesseret::Render
