#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/inspect/BundleFixture.h"

namespace Tesseret::Inspect {

namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Fault {
    const char* name;
    const char* finding;
};

class LoadTest : public testing::Test {
protected:
    ~LoadTest() override { ::unsetenv("INSPECT_FAULT"); }

    std::vector<std::string> findingsWith(const char* fault, std::chrono::milliseconds limit = 20s)
    {
        ::setenv("INSPECT_FAULT", fault, 1);
        return sample_.findings(limit);
    }

    BundleFixture sample_{FAULTY_PLUGIN};
};

TEST_F(LoadTest, ACrashIsReportedWithItsStep)
{
    const std::vector<Fault> faults{
        {"crash when opened", "while loading the library"},
        {"crash when loaded again", "while OfxActionLoad, for the second time, of org.example"},
        {"crash in an instance",
         "while OfxActionCreateInstance in OfxImageEffectContextFilter of org.example.faulty"},
    };
    for (const auto& [fault, step] : faults) {
        EXPECT_THAT(findingsWith(fault),
                    ElementsAre(AllOf(StartsWith("error: Sample.ofx: it crashes with signal 11"),
                                      HasSubstr(step))))
            << fault;
    }
}

TEST_F(LoadTest, AHangIsEndedAndReported)
{
    const std::vector<Fault> faults{
        {"hang when opened", "while loading the library"},
        {"hang when described", "while OfxActionLoad and OfxActionDescribe of org.example.faulty"},
    };
    for (const auto& [fault, step] : faults) {
        EXPECT_THAT(findingsWith(fault, 1s),
                    ElementsAre(AllOf(HasSubstr("it does not come back within 1 seconds"),
                                      HasSubstr(step))))
            << fault;
    }
}

TEST_F(LoadTest, EndingTheProcessIsReported)
{
    EXPECT_THAT(findingsWith("exit when opened"),
                ElementsAre(HasSubstr("it ends the process, with exit code 0 while loading")));
}

TEST_F(LoadTest, FaultsOfTheDescriptionAreNamed)
{
    const std::vector<Fault> faults{
        {"incomplete record", "its plug-in record 0 is incomplete"},
        {"no identifier", "plug-in \"my plug-in\": its identifier is empty, or has characters"},
        {"refuse to load", "kOfxStatErrMissingHostFeature (4) for OfxActionLoad"},
        {"no context", "it supports no context"},
        {"unknown context", "it supports an unknown context \"OfxImageEffectContextOther\""},
        {"no depth", "it supports no depth"},
        {"no source", "OfxImageEffectContextFilter: it has no clip Source"},
        {"no components", "clip Source: it supports no components"},
        {"default outside", "parameter count: its default lies outside its range"},
        {"choice without options", "parameter which: it is a choice without options"},
        {"unknown page child", "parameter page: it shows \"nothing\", which is no parameter"},
        {"wrong call", "plug-in org.example.faulty: "},
        {"fail to unload", "it returns kOfxStatFailed (1) for OfxActionUnload"},
        {"other parameters when loaded again", "it describes itself differently"},
    };
    for (const auto& [fault, finding] : faults)
        EXPECT_THAT(findingsWith(fault), testing::Contains(HasSubstr(finding))) << fault;
}

TEST_F(LoadTest, AMistakeMadeAtEachLoadIsOneFinding)
{
    EXPECT_THAT(findingsWith("wrong call"), testing::SizeIs(1));
    EXPECT_THAT(findingsWith("no components"), testing::SizeIs(2));
}

TEST_F(LoadTest, MissingLibrariesAreNamed)
{
    const BundleFixture incomplete(INCOMPLETE_PLUGIN);
    EXPECT_THAT(incomplete.findings(),
                ElementsAre(AllOf(HasSubstr("it needs libabsent_library.so: "),
                                  HasSubstr("cannot open shared object file"))));
}

}  // namespace

}  // namespace Tesseret::Inspect
