// Checks that the strict host finds each fault of a plug-in that has a choice of them.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Outcome {
    int code = -1;
    std::string out;
};

/// The strict host with the sloppy plug-in and one of its faults; an empty one is none.
Outcome runWith(const std::string& fault)
{
    ::setenv("SLOPPY_FAULT", fault.c_str(), 1);
    Outcome run;
    std::FILE* const pipe =
        ::popen("\"" STRICT_HOST "\" \"" SLOPPY_PLUGIN "\" byte Filter 2>&1", "r");
    if (pipe == nullptr) return run;
    std::array<char, 256> part{};
    while (std::fgets(part.data(), part.size(), pipe) != nullptr) run.out += part.data();
    const int status = ::pclose(pipe);
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

TEST(StrictHost, FindsNothingWhereNothingIsWrong)
{
    const Outcome run = runWith("");
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, IsEmpty());
}

struct Fault {
    const char* name;
    const char* report;
};

std::ostream& operator<<(std::ostream& out, const Fault& fault)
{
    return out << fault.name;
}

class Faults : public ::testing::TestWithParam<Fault> {};

TEST_P(Faults, AreReported)
{
    const Outcome run = runWith(GetParam().name);
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.out, HasSubstr(GetParam().report));
}

INSTANTIATE_TEST_SUITE_P(
    StrictHost, Faults,
    ::testing::Values(
        Fault{"suite in setHost", "OfxPropertySuite, inside setHost"},
        Fault{"record for any index", "a record for an index out of range"},
        Fault{"wrong status", "OfxActionDescribe: the status 14"},
        Fault{"no label", "OfxPropLabel is empty"},
        Fault{"unknown context", "OfxImageEffectPropSupportedContexts cannot be \"Filter\""},
        Fault{"unknown property", "effect: no property OfxPropOfNobody"},
        Fault{"wrong type", "OfxImageEffectPropSupportsTiles is of type int, not double"},
        Fault{"index out of range", "OfxImageEffectPropSupportsTiles has no index 1"},
        Fault{"gap in a list", "OfxImageEffectPropSupportedContexts has no index 2"},
        Fault{"null set", "a null handle of a property set"},
        Fault{"read-only property", "OfxPropType may not be written now"},
        Fault{"clip too early", "clipDefine: not while describing in a context"},
        Fault{"clip twice", "clipDefine: Source is defined already"},
        Fault{"clip handle while describing", "clipGetHandle: of Source, while describing"},
        Fault{"unknown type", "paramDefine: of amount, there is no type Amount"},
        Fault{"default out of range", "amount: OfxParamPropDefault of 2 is out of its range"},
        Fault{"no options", "choice: a choice without options"},
        Fault{"unknown child", "the page page has no parameter no to show"},
        Fault{"unlocked twice", "imageMemoryUnlock: the block is not locked"},
        Fault{"memory kept", "1 blocks of image memory are not freed"},
        Fault{"memory freed twice", "the handle of a block of memory is dead"},
        Fault{"nested threads", "multiThread: called from one of its own threads"},
        Fault{"open format", "message: a per-cent sign in the format"},
        Fault{"null abort", "abort: a null handle of an effect"},
        Fault{"unknown parameter", "paramGetHandle: no parameter none in this context"},
        Fault{"value set in a render", "paramSetValue: of amount, not allowed in this action"},
        Fault{"unknown clip", "clipGetHandle: no clip Image in this context"},
        Fault{"another frame", "clipGetImage: of Source at 1, outside its frames"},
        Fault{"window exceeded", "bytes outside the window are written"},
        Fault{"window not filled", "pixels of the window are not written"},
        Fault{"input written", "the images of Source were written to"},
        Fault{"image kept", "1 images of Source are not released"},
        Fault{"image released twice", "clipReleaseImage: the handle of a property set is dead"}),
    [](const auto& test) {
        std::string name = test.param.name;
        std::erase_if(name, [](unsigned char c) { return c == ' ' || c == '-'; });
        return name;
    });

}  // namespace
