#include <fstream>

#include "files/FileError.h"
#include "host/HostError.h"
#include "host/Suites.h"
#include "render/JobError.h"
#include "tests/fixtures/FileSizeLimit.h"
#include "tests/viewer/SessionFixture.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {
namespace {

using Host::ParameterValue;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using ViewSessionTest = SessionFixture;

TEST_F(ViewSessionTest, ADragOfTheOverlayIsOneEdit)
{
    ViewSession session(settings());
    Host::Interact* const overlay = session.overlay();
    ASSERT_NE(overlay, nullptr);
    const ParameterValue before = session.value("sampleCorner1");
    EXPECT_TRUE(session.takeChanged());
    EXPECT_FALSE(session.takeChanged());

    overlay->draw();
    session.movePen(penAt(40, 80));
    EXPECT_TRUE(session.pressPen(penAt(40, 80)));  // the box begins at a fifth of 200 x 160
    for (const double x : {44.0, 48.0, 52.0}) session.movePen(penAt(x, 80));
    EXPECT_TRUE(session.isDragging());
    session.releasePen(penAt(52, 80));
    EXPECT_FALSE(session.isDragging());

    const ParameterValue after = session.value("sampleCorner1");
    EXPECT_NEAR(std::get<std::vector<double>>(after)[0], 52.0 / 200.0, 1e-3);
    EXPECT_TRUE(session.takeChanged());
    session.undo();
    EXPECT_EQ(session.value("sampleCorner1"), before);
    EXPECT_FALSE(session.canUndo());
    EXPECT_TRUE(session.takeChanged());
    session.redo();
    EXPECT_EQ(session.value("sampleCorner1"), after);
}

TEST_F(ViewSessionTest, ABlockOfThePluginsEditsIsOneEdit)
{
    ViewSession session(settings());
    const OfxParameterSuiteV1& suite = Host::parameterSuite();
    const OfxParamSetHandle all = session.instance().parameters().handle();
    const auto pluginSets = [&](const char* name, int value) {
        OfxParamHandle parameter = nullptr;
        suite.paramGetHandle(all, name, &parameter, nullptr);
        suite.paramSetValue(parameter, value);
    };
    const ParameterValue seed = session.value("seed"), samples = session.value("numSamples");
    suite.paramEditBegin(all, "both");
    pluginSets("seed", 5);
    pluginSets("numSamples", 7);
    suite.paramEditEnd(all);
    pluginSets("seed", 6);
    session.undo();
    EXPECT_EQ(session.value("seed"), ParameterValue(5));
    EXPECT_EQ(session.value("numSamples"), ParameterValue(7));
    session.undo();
    EXPECT_EQ(session.value("seed"), seed);
    EXPECT_EQ(session.value("numSamples"), samples);
    EXPECT_FALSE(session.canUndo());
}

TEST_F(ViewSessionTest, DragsWhileTheWorkerRenders)
{
    ViewSession session(settings("m.png"));
    session.set("avoidFillRegion", 0);
    session.overlay()->draw();
    for (int i = 0; i < 200; ++i) {
        const double x = i % 2 == 0 ? 40 : 60;  // the left edge, to and fro
        session.movePen(penAt(x, 80));
        session.pressPen(penAt(x, 80));
        session.movePen(penAt(100 - x, 80));
        session.releasePen(penAt(100 - x, 80));
        ASSERT_TRUE(session.takeChanged()) << i;
        session.request(0.5);
    }
    session.worker().wait();
    EXPECT_EQ(session.worker().latest()->serial, 200u);
    EXPECT_EQ(session.worker().latest()->request.values.at("sampleCorner1"),
              session.value("sampleCorner1"));
}

/// Counts the host records passed to a loaded plug-in, for its lifetime.
class HostRecords {
public:
    explicit HostRecords(const char* file)
        : library_(Host::PluginLibrary::load(file)), setHost_(library_->plugin().setHost)
    {
        given.clear();
        passedOn = setHost_;
        library_->plugin().setHost = [](OfxHost* host) {
            given.push_back(host);
            passedOn(host);
        };
    }
    ~HostRecords() { library_->plugin().setHost = setHost_; }
    HostRecords(const HostRecords&) = delete;
    HostRecords& operator=(const HostRecords&) = delete;

    static inline std::vector<OfxHost*> given;

private:
    using SetHost = void (*)(OfxHost*);
    static inline SetHost passedOn = nullptr;
    std::shared_ptr<Host::PluginLibrary> library_;
    SetHost setHost_;
};

TEST_F(ViewSessionTest, SharesOneHostWithItsWorker)
{
    const HostRecords records(FAILING_PLUGIN);
    ViewSession session(foreign(FAILING_PLUGIN));
    session.request(1.0);
    session.worker().wait();
    EXPECT_EQ(records.given.size(), 1u);
    // Messages of the worker's instance are in the render's result only.
    EXPECT_THAT(session.worker().latest()->messages, testing::ElementsAre("the lens is cracked"));
    EXPECT_THAT(session.takeMessages(), testing::IsEmpty());
}

TEST_F(ViewSessionTest, ServesAnyPlugin)
{
    ViewSession session(foreign(INVERT_PLUGIN));
    EXPECT_EQ(session.pages().size(), 1u);
    EXPECT_EQ(session.pages()[0].columns, (std::vector<std::vector<std::string>>{{"amount"}}));
    session.set("amount", 0.25);
    session.pressPen(penAt(0.5, 0));
    session.releasePen(penAt(0.5, 0));
    EXPECT_EQ(session.value("amount"), ParameterValue(0.5));
    session.undo();
    EXPECT_EQ(session.value("amount"), ParameterValue(0.25));
    session.reset("amount");
    EXPECT_EQ(session.value("amount"), ParameterValue(1.0));
    EXPECT_THROW(session.set("amount", std::string("x")), Host::HostError);
    EXPECT_THROW(session.reset("none"), Host::HostError);
    session.saveResult(in("o.png"));
    EXPECT_EQ(load(in("o.png")).at(3, 4, 1), 255 - load(in("a.png")).at(3, 4, 1));
}

TEST_F(ViewSessionTest, ParameterSetsAreOneEdit)
{
    ViewSession session(settings("m.png"));
    session.set("seed", 77);
    session.set("sampleCorner1", std::vector<double>{0.125, 0.1});
    session.saveParameters(in("p.json"));
    session.undo();
    session.undo();
    EXPECT_FALSE(session.canUndo());
    session.loadParameters(in("p.json"));
    EXPECT_EQ(session.value("seed"), ParameterValue(77));
    session.undo();
    EXPECT_EQ(session.value("seed"),
              ParameterValue(session.description().parameter("seed")->initial));
    EXPECT_FALSE(session.canUndo());
    std::ofstream(in("q.json")) << R"({"parameters": {"seed": "x"}})";
    EXPECT_THROW(session.loadParameters(in("q.json")), Render::UsageError);
    EXPECT_THROW(session.saveParameters(in("none/p.json")), Files::FileError);
}

TEST_F(ViewSessionTest, SavesWhatTheCommandWouldRender)
{
    ViewSession session(settings("m.png"));
    session.set("seed", 5);
    session.request(0.5);
    session.worker().wait();
    EXPECT_FALSE(session.hasFullResult());
    session.saveResult(in("o.png"));
    EXPECT_TRUE(session.hasFullResult());
    EXPECT_EQ(load(in("o.png")), filled({"--matte", in("m.png"), "seed=5"}));
    session.set("seed", 6);
    EXPECT_FALSE(session.hasFullResult());
    EXPECT_THROW(session.saveResult(in("a.png")), Render::UsageError);
    EXPECT_THROW(session.saveResult(in("none/o.png")), Files::FileError);
}

TEST_F(ViewSessionTest, AFullDiskLosesNoEdit)
{
    ViewSession session(settings("m.png"));
    session.set("seed", 5);
    session.saveResult(in("o.jpg"));
    session.saveParameters(in("p.json"));
    const Fixtures::LoadedPicture before = load(in("o.jpg"));
    session.set("seed", 6);
    {
        const Fixtures::FileSizeLimit limit(64);
        EXPECT_THROW(session.saveResult(in("o.jpg")), Files::FileError);
        EXPECT_THROW(session.saveParameters(in("p.json")), Files::FileError);
    }
    EXPECT_EQ(load(in("o.jpg")), before);
    EXPECT_EQ(session.value("seed"), ParameterValue(6));
    session.loadParameters(in("p.json"));
    EXPECT_EQ(session.value("seed"), ParameterValue(5));
}

TEST_F(ViewSessionTest, ButtonsSayTheirMessage)
{
    ViewSession session(settings());
    for (const Host::ParameterDescription& parameter : session.description().parameters) {
        if (parameter.isButton()) session.press(parameter.name);
    }
    EXPECT_THAT(session.takeMessages(), testing::Contains(HasSubstr("Tesseret")));
    EXPECT_THAT(session.takeMessages(), testing::IsEmpty());
    EXPECT_FALSE(session.canUndo());
}

struct Edited {
    const char *what, *name, *value;
};

// After any change, the command renders what the viewer shows.
TEST_F(ViewSessionTest, ThePastedCommandRendersTheSamePicture)
{
    std::filesystem::create_directory(in("it's here"));
    Render::RenderSettings given = settings("m.png");
    given.output = in("it's here/$o.png");
    given.parameters.emplace_back("seed=3");
    given.matteGrow = 1.5;
    const std::vector<Edited> cases = {
        {"as opened", "", ""},
        {"a number", "seed", "9"},
        {"a box alone: nothing is kept clear of", "sampleCorner1", "0.1,0.30000001192092896"},
        {"back from what the command would set", "avoidFillRegion", "off"},
        {"the matte's inverse", "fillRegion", "Matte->Inverted Alpha"},
        {"no matte at all", "fillRegion", "Entire Image"},
    };
    for (const Edited& each : cases) {
        SCOPED_TRACE(each.what);
        ViewSession session(given);
        if (*each.name != '\0') {
            const std::string assignment = std::string(each.name) + "=" + each.value;
            session.set(each.name,
                        Render::parseAssignment(assignment, session.description()).value);
        }
        session.saveResult(in("seen.png"));
        EXPECT_EQ(pasted(session.commandText(), "it's here/$o.png"), load(in("seen.png")));
    }
}

TEST_F(ViewSessionTest, TheCommandSaysNoMoreThanItMust)
{
    Render::RenderSettings given = settings("m.png");
    given.parameters.clear();
    given.threads = 0;
    given.plugin.clear();
    ViewSession session(given);
    EXPECT_EQ(session.commandText(), "tesseret render --source " + in("a.png") + " --output " +
                                         in("filled-a.png") + " --matte " + in("m.png"));
    session.set("blockSize", 40);
    EXPECT_THAT(session.commandText(), testing::EndsWith(" blockSize=40"));
    session.undo();
    EXPECT_THAT(session.commandText(), Not(HasSubstr("=")));
}

TEST_F(ViewSessionTest, GoesThroughASequence)
{
    for (const int frame : {8, 9}) {
        paint(in(Fixtures::numbered("s.%d.png", frame)), 100, 80, Fixtures::noise(frame));
    }
    Render::RenderSettings given = settings();
    given.source = in("s.#.png");
    given.frames = {8, 9};
    ViewSession session(given);
    EXPECT_EQ(session.frame(), 8);
    session.takeChanged();
    session.setFrame(9);
    EXPECT_TRUE(session.takeChanged());
    EXPECT_EQ(session.pictures().at("Source").info.file, in("s.9.png"));
    session.saveResult(in("o.##.png"));
    EXPECT_EQ(load(in("o.09.png")).width, 100);
    EXPECT_THAT(session.commandText(),
                AllOf(HasSubstr("--frames 8-9 "), HasSubstr("/filled-s.#.png'")));
    std::filesystem::remove(in("s.8.png"));
    EXPECT_THROW(session.setFrame(8), Files::FileError);
    EXPECT_EQ(session.frame(), 9);
}

}  // namespace
}  // namespace Tesseret::Viewer
