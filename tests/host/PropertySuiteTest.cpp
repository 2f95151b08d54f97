#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/EmbeddedHost.h"
#include "host/Suites.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {
namespace {

using Fixtures::WrongType;
using ::testing::ElementsAre;

class PropertySuiteTest : public ::testing::Test {
protected:
    PropertySuiteTest()
    {
        set.define("number", {1.5});
        set.define("pair", {1, 2});
        set.define("fixed", {7}, Access::ReadOnly);
        set.define("text", {"start"});
        set.defineList("list", PropertyType::String);
    }

    Fixtures::QuirkyHost quirky;
    EmbeddedHost host{quirky.options()};
    PropertySet set{host, "set"};
    const OfxPropertySuiteV1& suite = propertySuite();
};

TEST_F(PropertySuiteTest, ReturnsTheStatusOfEveryWrongWrite)
{
    const OfxPropertySetHandle handle = set.handle();
    const struct {
        const char* what;
        OfxStatus returned;
        OfxStatus expected;
    } cases[] = {
        {"unknown", suite.propSetInt(handle, "nothing", 0, 1), kOfxStatErrUnknown},
        {"null name", suite.propSetInt(handle, nullptr, 0, 1), kOfxStatErrUnknown},
        {"wrong type", suite.propSetInt(handle, "number", 0, 1), kOfxStatErrValue},
        {"read-only", suite.propSetInt(handle, "fixed", 0, 1), kOfxStatErrUnknown},
        {"above", suite.propSetInt(handle, "pair", 2, 1), kOfxStatErrBadIndex},
        {"below", suite.propSetInt(handle, "pair", -1, 1), kOfxStatErrBadIndex},
        {"gap in a list", suite.propSetString(handle, "list", 1, "b"), kOfxStatErrBadIndex},
        {"null handle", suite.propSetInt(nullptr, "pair", 0, 1), kOfxStatErrBadHandle},
        {"null values", suite.propSetIntN(handle, "pair", 2, nullptr), kOfxStatErrValue},
        {"negative count", suite.propSetStringN(handle, "list", -1, nullptr), kOfxStatErrBadIndex},
        {"reset of read-only", suite.propReset(handle, "fixed"), kOfxStatErrUnknown},
    };
    for (const auto& each : cases) EXPECT_EQ(each.returned, each.expected) << each.what;
    EXPECT_THAT(set.ints("pair"), ElementsAre(1, 2));
    EXPECT_EQ(set.intOr("fixed", 0), 7);
    EXPECT_EQ(quirky.calls.counters().badCalls,
              10u);  // all but the unknown name, which may be asked for
}

TEST_F(PropertySuiteTest, ReturnsTheStatusOfEveryWrongRead)
{
    const OfxPropertySetHandle handle = set.handle();
    int number = -5;
    int three[3] = {-5, -5, -5};
    char* text = nullptr;
    const struct {
        const char* what;
        OfxStatus returned;
        OfxStatus expected;
    } cases[] = {
        {"unknown", suite.propGetInt(handle, "nothing", 0, &number), kOfxStatErrUnknown},
        {"wrong type", suite.propGetInt(handle, "number", 0, &number), kOfxStatErrValue},
        {"above", suite.propGetInt(handle, "pair", 2, &number), kOfxStatErrBadIndex},
        {"above with N", suite.propGetIntN(handle, "pair", 3, three), kOfxStatErrBadIndex},
        {"empty list", suite.propGetString(handle, "list", 0, &text), kOfxStatErrBadIndex},
        {"null result", suite.propGetInt(handle, "pair", 0, nullptr), kOfxStatErrValue},
        {"null count", suite.propGetDimension(handle, "pair", nullptr), kOfxStatErrValue},
        {"no handle", suite.propGetDimension(nullptr, "pair", &number), kOfxStatErrBadHandle},
        {"unknown dimension", suite.propGetDimension(handle, "nothing", &number),
         kOfxStatErrUnknown},
    };
    for (const auto& each : cases) EXPECT_EQ(each.returned, each.expected) << each.what;
    EXPECT_EQ(number, -5);
    EXPECT_EQ(text, nullptr);
    EXPECT_THAT(three, ElementsAre(-5, -5, -5));
}

TEST_F(PropertySuiteTest, GrowsListsIndexByIndexAndCopiesStrings)
{
    std::string text = "one";
    EXPECT_EQ(suite.propSetString(set.handle(), "list", 0, text.c_str()), kOfxStatOK);
    text = "two";
    EXPECT_EQ(suite.propSetString(set.handle(), "list", 1, text.c_str()), kOfxStatOK);
    EXPECT_THAT(set.strings("list"), ElementsAre("one", "two"));
    int count = 0;
    EXPECT_EQ(suite.propGetDimension(set.handle(), "list", &count), kOfxStatOK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(suite.propReset(set.handle(), "list"), kOfxStatOK);
    EXPECT_EQ(set.dimension("list"), 0u);
}

TEST_F(PropertySuiteTest, FollowsTheSwitchesForTypesAndUnknownNames)
{
    double number = 0.0;
    quirky.quirks.wrongType = WrongType::Unknown;
    EXPECT_EQ(suite.propGetDouble(set.handle(), "pair", 0, &number), kOfxStatErrUnknown);
    quirky.quirks.wrongType = WrongType::Convert;
    EXPECT_EQ(suite.propGetDouble(set.handle(), "pair", 1, &number), kOfxStatOK);
    EXPECT_EQ(number, 2.0);
    EXPECT_EQ(suite.propSetInt(set.handle(), "number", 0, 3), kOfxStatOK);
    EXPECT_EQ(set.doubleOr("number", 0.0), 3.0);
    EXPECT_EQ(suite.propSetInt(set.handle(), "text", 0, 3), kOfxStatErrValue);

    quirky.quirks.acceptUnknownProperties = true;
    EXPECT_EQ(suite.propSetInt(set.handle(), "new", 0, 9), kOfxStatOK);
    EXPECT_EQ(set.intOr("new", 0), 9);
    quirky.quirks.refusedWrites["text"] = kOfxStatErrUnsupported;
    EXPECT_EQ(suite.propSetString(set.handle(), "text", 0, "x"), kOfxStatErrUnsupported);
}

TEST_F(PropertySuiteTest, RecordsWritesInTheirOrder)
{
    const int both[] = {8, 9};
    suite.propSetIntN(set.handle(), "pair", 2, both);
    suite.propSetDouble(set.handle(), "text", 0, 1.0);
    std::vector<std::string> lines;
    for (const Fixtures::PropertyWrite& write : quirky.calls.propertyWrites()) {
        lines.push_back(write.set + " " + write.property + " " + std::to_string(write.index) + " " +
                        std::to_string(write.status));
    }
    EXPECT_THAT(lines, ElementsAre("set pair 0 0", "set pair 1 0", "set text 0 11"));
}

TEST(PropertyHandleTest, RecognisesADeadSetAndOneOfAnotherKind)
{
    EmbeddedHost host;
    OfxPropertySetHandle dead = nullptr;
    {
        PropertySet set(host, "short-lived");
        dead = set.handle();
    }
    PropertySet other(host, "other");  // may have the address of the dead one
    int number = 0;
    EXPECT_EQ(propertySuite().propGetInt(dead, "x", 0, &number), kOfxStatErrBadHandle);
    auto* const wrongKind = reinterpret_cast<OfxImageEffectHandle>(other.handle());
    EXPECT_EQ(imageEffectSuite().getPropertySet(wrongKind, &dead), kOfxStatErrBadHandle);
    EXPECT_EQ(propertySuite().propGetInt(reinterpret_cast<OfxPropertySetHandle>(&number), "x", 0,
                                         &number),
              kOfxStatErrBadHandle);
}

}  // namespace
}  // namespace Tesseret::Host
