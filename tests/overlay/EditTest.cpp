// Which parameter writes of a drag are one edit, in hosts that have edits and in those that do not.

#include <cstdarg>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "host/Interact.h"
#include "host/Suites.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;

// The calls of the suite below, and the statuses it returns.
std::vector<std::string> made;
OfxStatus beginStatus = kOfxStatOK, setStatus = kOfxStatOK;

OfxStatus begin(OfxParamSetHandle set, const char* name)
{
    made.push_back(std::string("begin ") + name);
    return beginStatus == kOfxStatOK ? Host::parameterSuite().paramEditBegin(set, name)
                                     : beginStatus;
}

OfxStatus end(OfxParamSetHandle set)
{
    made.emplace_back("end");
    return Host::parameterSuite().paramEditEnd(set);
}

/// Of a corner, the only kind of parameter that the overlay writes.
OfxStatus set(OfxParamHandle parameter, ...)
{
    std::va_list components;
    va_start(components, parameter);
    const double x = va_arg(components, double);
    const double y = va_arg(components, double);
    va_end(components);
    made.emplace_back("set");
    return setStatus == kOfxStatOK ? Host::parameterSuite().paramSetValue(parameter, x, y)
                                   : setStatus;
}

OfxParameterSuiteV1 patched;
const OfxHost* original = nullptr;

const void* fetch(OfxPropertySetHandle host, const char* name, int version)
{
    if (std::string_view(name) == kOfxParameterSuite) return &patched;
    return original->fetchSuite(host, name, version);
}

/// The plug-in in the embedded host, but for the functions above.
class EditTest : public ::testing::Test, protected TestHost {
protected:
    EditTest()
    {
        made.clear();
        beginStatus = setStatus = kOfxStatOK;
        patched = Host::parameterSuite();
        patched.paramEditBegin = &begin;
        patched.paramEditEnd = &end;
        patched.paramSetValue = &set;
        original = host().record();
        record_ = *original;
        record_.fetchSuite = &fetch;
        effect().plugin().setHost(&record_);
    }
    ~EditTest() override
    {
        destroyInstance();
        expectClean();
    }

    /// Presses on the left edge of the box, drags it twice and releases.
    std::vector<std::string> dragCalls()
    {
        create(kOfxImageEffectContextFilter, Depth::Byte, {0, 0, 400, 300});
        Host::Interact overlay(instance());
        overlay.draw();
        Host::Interact::Pen pen;
        pen.position = {80, 150};
        overlay.penDown(pen);
        for (int step = 0; step < 2; ++step) {
            pen.position.x += 10;
            EXPECT_EQ(overlay.penMotion(pen), kOfxStatOK);
        }
        EXPECT_EQ(overlay.penUp(pen), kOfxStatOK);
        EXPECT_EQ(instance().parameters().openEdits(), 0u);
        return made;
    }

private:
    OfxHost record_{};
};

TEST_F(EditTest, HoldsBothCornersOfEveryStep)
{
    EXPECT_THAT(dragCalls(), ElementsAre("begin Region", "set", "set", "end", "begin Region", "set",
                                         "set", "end", "begin Region", "set", "set", "end"));
}

TEST_F(EditTest, EndsWhenWritesFail)
{
    setStatus = kOfxStatErrValue;
    EXPECT_THAT(dragCalls(), ElementsAre("begin Region", "set", "set", "end", "begin Region", "set",
                                         "set", "end", "begin Region", "set", "set", "end"));
}

TEST_F(EditTest, IsNotEndedWhereItWasRefused)
{
    beginStatus = kOfxStatErrUnsupported;
    EXPECT_THAT(dragCalls(), ElementsAre("begin Region", "set", "set", "begin Region", "set", "set",
                                         "begin Region", "set", "set"));
}

TEST_F(EditTest, IsDoneWithoutWhereTheHostHasNone)
{
    patched.paramEditEnd = nullptr;
    EXPECT_THAT(dragCalls(), ElementsAre("set", "set", "set", "set", "set", "set"));
    patched.paramEditBegin = nullptr;
    made.clear();
    EXPECT_THAT(dragCalls(), ElementsAre("set", "set", "set", "set", "set", "set"));
}

}  // namespace
}  // namespace Tesseret::Fixtures
