#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Descriptor.h"
#include "host/EmbeddedHost.h"
#include "host/Parameter.h"
#include "host/Suites.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {
namespace {

using ::testing::ElementsAre;

class ParameterTest : public ::testing::Test {
protected:
    ParameterTest() { effect.setDescribing(true); }

    Parameter& define(const char* type, const char* name)
    {
        EXPECT_EQ(suite.paramDefine(set, type, name, nullptr), kOfxStatOK);
        return *effect.parameters().find(name);
    }

    Fixtures::QuirkyHost quirky;
    EmbeddedHost host{quirky.options()};
    Descriptor effect{host};
    const OfxParameterSuiteV1& suite = parameterSuite();
    OfxParamSetHandle set = effect.parameters().handle();
};

TEST_F(ParameterTest, DefinesEveryTypeOnceAndOnlyWhileDescribing)
{
    OfxPropertySetHandle properties = nullptr;
    EXPECT_EQ(suite.paramDefine(set, "OfxParamTypeNothing", "a", &properties), kOfxStatErrUnknown);
    EXPECT_EQ(suite.paramDefine(set, kOfxParamTypeDouble, nullptr, &properties), kOfxStatErrValue);
    EXPECT_EQ(suite.paramDefine(nullptr, kOfxParamTypeDouble, "a", &properties),
              kOfxStatErrBadHandle);
    EXPECT_EQ(suite.paramDefine(set, kOfxParamTypeDouble, "a", nullptr), kOfxStatOK);
    EXPECT_EQ(suite.paramDefine(set, kOfxParamTypeInteger, "a", &properties), kOfxStatErrExists);
    OfxParamHandle parameter = nullptr;
    EXPECT_EQ(suite.paramGetHandle(set, "a", &parameter, nullptr), kOfxStatErrBadHandle);
    effect.setDescribing(false);
    EXPECT_EQ(suite.paramDefine(set, kOfxParamTypeDouble, "b", &properties), kOfxStatFailed);
    EXPECT_EQ(effect.parameters().all().size(), 1u);
}

TEST_F(ParameterTest, KeepsTheShapeOfItsType)
{
    Parameter& corner = define(kOfxParamTypeDouble2D, "corner");
    EXPECT_TRUE(corner.setValue(std::vector<int>{1, 2}));  // integers are accepted
    EXPECT_EQ(corner.value(), ParameterValue(std::vector<double>{1.0, 2.0}));
    EXPECT_FALSE(corner.setValue(std::vector<double>{1.0}));
    EXPECT_FALSE(corner.setValue(1.0));
    EXPECT_FALSE(define(kOfxParamTypeInteger, "count").setValue(1.5));
    EXPECT_FALSE(define(kOfxParamTypePushButton, "button").setValue(1));
}

TEST_F(ParameterTest, ReturnsValuesByPointer)
{
    Parameter& corner = define(kOfxParamTypeDouble2D, "corner");
    Parameter& text = define(kOfxParamTypeString, "text");
    corner.setValue(std::vector<double>{0.25, 0.75});
    text.setValue(std::string("words"));
    double x = 0.0;
    double y = 0.0;
    char* words = nullptr;
    EXPECT_EQ(suite.paramGetValue(corner.handle(), &x, &y), kOfxStatOK);
    EXPECT_THAT((std::vector{x, y}), ElementsAre(0.25, 0.75));
    EXPECT_EQ(suite.paramGetValueAtTime(text.handle(), 5.0, &words), kOfxStatOK);
    EXPECT_STREQ(words, "words");
    double* const nowhere = nullptr;
    EXPECT_EQ(suite.paramGetValue(corner.handle(), &x, nowhere), kOfxStatErrValue);
    EXPECT_EQ(suite.paramGetValue(nullptr, &x), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.paramGetValue(define(kOfxParamTypeGroup, "group").handle(), &x),
              kOfxStatErrUnsupported);
}

TEST_F(ParameterTest, ChangesEvenlyBetweenKeys)
{
    Parameter& width = define(kOfxParamTypeDouble, "width");
    for (const auto& [time, value] : {std::pair{0.0, 10.0}, {10.0, 30.0}, {20.0, 30.0}}) {
        EXPECT_TRUE(width.setValueAt(time, value));
    }
    EXPECT_EQ(width.valueAt(-5.0), ParameterValue(10.0));
    EXPECT_EQ(width.valueAt(2.5), ParameterValue(15.0));
    EXPECT_EQ(width.valueAt(99.0), ParameterValue(30.0));
    double result = 0.0;
    EXPECT_EQ(suite.paramGetDerivative(width.handle(), 5.0, &result), kOfxStatOK);
    EXPECT_EQ(result, 2.0);
    EXPECT_EQ(suite.paramGetIntegral(width.handle(), -10.0, 30.0, &result), kOfxStatOK);
    EXPECT_EQ(result, 100.0 + 200.0 + 300.0 + 300.0);
    EXPECT_EQ(suite.paramGetIntegral(width.handle(), 30.0, -10.0, &result), kOfxStatOK);
    EXPECT_EQ(result, -900.0);
    int index = -1;
    EXPECT_EQ(suite.paramGetKeyIndex(width.handle(), 10.0, 1, &index), kOfxStatOK);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(suite.paramGetKeyIndex(width.handle(), 10.0, -1, &index), kOfxStatOK);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(suite.paramGetKeyIndex(width.handle(), 9.0, 0, &index), kOfxStatFailed);
    EXPECT_EQ(suite.paramDeleteKey(width.handle(), 9.0), kOfxStatErrBadIndex);

    Parameter& count = define(kOfxParamTypeInteger, "count");
    count.setValueAt(0.0, 1);
    count.setValueAt(10.0, 9);
    EXPECT_EQ(count.valueAt(9.0), ParameterValue(1));
    EXPECT_EQ(suite.paramGetDerivative(count.handle(), 5.0, &result), kOfxStatErrUnsupported);
}

TEST_F(ParameterTest, BalancesEdits)
{
    EXPECT_EQ(suite.paramEditBegin(nullptr, "edit"), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatFailed);
    EXPECT_EQ(suite.paramEditBegin(set, "edit"), kOfxStatOK);
    EXPECT_EQ(suite.paramEditBegin(set, nullptr), kOfxStatOK);
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatOK);
    EXPECT_EQ(effect.parameters().openEdits(), 1u);
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatOK);
    EXPECT_EQ(suite.paramEditEnd(set), kOfxStatFailed);
    EXPECT_EQ(quirky.calls.counters().badCalls, 3u);
}

}  // namespace
}  // namespace Tesseret::Host
