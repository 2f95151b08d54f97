#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {
namespace {

using Host::ContextDescription;
using Host::ParameterDescription;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

constexpr const char* kFilter = kOfxImageEffectContextFilter;
constexpr const char* kGeneral = kOfxImageEffectContextGeneral;

const ContextDescription& described(TestHost& test, const char* context)
{
    test.effect().start();
    return test.effect().describeInContext(context);
}

/// The names of all parameters except pages, in order of definition.
Names parametersOf(const ContextDescription& context)
{
    Names names;
    for (const ParameterDescription& parameter : context.parameters) {
        if (!parameter.isPage()) names.push_back(parameter.name);
    }
    return names;
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '\n') {
            result += "\\n";
        } else {
            if (c == '"' || c == '\\') result += '\\';
            result += c;
        }
    }
    return result + '"';
}

struct ValueText {
    std::string operator()(void* pointer) const { return pointer != nullptr ? "set" : "null"; }
    std::string operator()(const std::string& text) const { return quoted(text); }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(double value) const  ///< as many digits as make the same double
    {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        return {digits.data(), end};
    }
};

/// Lists every property that was written since the last reset, in order, grouped by property set.
void listWrites(const CallRecorder& calls, std::ostream& out)
{
    std::string set;
    for (const PropertyWrite& write : calls.propertyWrites()) {
        if (write.set != set) out << '\n' << write.set << '\n';
        set = write.set;
        out << "    " << write.property;
        if (write.index > 0) out << '[' << write.index << ']';
        out << " = " << std::visit(ValueText(), write.value) << '\n';
    }
}

/// Everything that a host with pages receives: the record, then all definitions and writes.
std::string listing()
{
    TestHost test;
    std::ostringstream out;
    const OfxPlugin& plugin = test.effect().plugin();
    out << plugin.pluginIdentifier << ' ' << plugin.pluginVersionMajor << '.'
        << plugin.pluginVersionMinor << '\n';
    test.effect().start();
    listWrites(test.calls(), out);
    for (const char* name : {kFilter, kGeneral}) {
        test.calls().reset();
        const ContextDescription& context = test.effect().describeInContext(name);
        out << "\n== " << name << "\n\n";
        for (const auto& clip : context.clips) out << "Clip " << clip.name << '\n';
        for (const auto& each : context.parameters) out << each.type << ' ' << each.name << '\n';
        listWrites(test.calls(), out);
    }
    test.expectClean();
    return out.str();
}

TEST(Description, IsTheRecordedListing)
{
    const std::string actual = listing();
    std::ifstream file(DESCRIPTION_LISTING);
    std::ostringstream recorded;
    recorded << file.rdbuf();
    if (recorded.str() == actual) return;
    const std::string path = ::testing::TempDir() + "description.txt";
    std::ofstream(path) << actual;
    EXPECT_EQ(recorded.str(), actual) << "The new listing is in " << path
                                      << "; if it is meant, copy it to " << DESCRIPTION_LISTING;
}

/// The pages of a host, x rows and y columns.
HostQuirks pages(int rows, int columns)
{
    HostQuirks quirks;
    quirks.identity.pageRowsAndColumns = OfxPointI{rows, columns};
    return quirks;
}

TEST(Description, HasPagesOnlyWhereTheHostHasRoomForAll)
{
    struct Case {
        const char* context;
        std::optional<OfxPointI> room;
        bool admitted;
    };
    for (const Case& each :
         {Case{kFilter, OfxPointI{5, 4}, true}, Case{kFilter, OfxPointI{4, 4}, false},
          Case{kFilter, OfxPointI{5, 3}, false}, Case{kGeneral, OfxPointI{5, 4}, false},
          Case{kGeneral, OfxPointI{5, 5}, true}, Case{kFilter, OfxPointI{0, 0}, false},
          Case{kFilter, {}, false}}) {
        HostQuirks quirks;
        quirks.identity.pageRowsAndColumns = each.room;
        TestHost test(quirks);
        const ContextDescription& context = described(test, each.context);
        EXPECT_EQ(context.pageOrder.size(), each.admitted ? 2u : 0u);
        EXPECT_EQ(context.parameter("Texture") != nullptr, each.admitted);
        EXPECT_EQ(parametersOf(context).size(), each.context == kFilter ? 16u : 19u);
    }
}

TEST(Description, StopsSilentlyAtTheHostsNumberOfParameters)
{
    HostQuirks quirks = pages(4, 4);
    for (const int limit : {3, 0}) {
        quirks.identity.maxParameters = limit;
        TestHost test(quirks);
        const Names names = parametersOf(described(test, kGeneral));
        EXPECT_EQ(names.size(), limit == 3 ? 3u : 19u);
        EXPECT_EQ(names[2], "avoidFillRegion");
    }
}

TEST(Description, OnABackgroundHostIsForRenderingOnly)
{
    HostQuirks quirks;
    quirks.identity.isBackground = true;
    TestHost test(quirks);
    const ContextDescription& context = described(test, kGeneral);
    EXPECT_THAT(context.parameters, Each(AllOf(Field(&ParameterDescription::label, "Render Only"),
                                               Field(&ParameterDescription::hint, "Render Only"),
                                               Field(&ParameterDescription::secret, true))));
    EXPECT_EQ(context.parameter("seed")->scriptName, "seed");
    EXPECT_EQ(context.clip("Source")->label, "Source");
}

TEST(Description, IsForAUserWhereTheHostClaimsToBeInTheBackground)
{
    HostQuirks quirks;
    quirks.identity.name = "MLT";
    quirks.identity.isBackground = true;
    TestHost test(quirks);
    for (const char* context : {kFilter, kGeneral}) {
        const ContextDescription& description = described(test, context);
        EXPECT_THAT(description.parameters, Each(Field(&ParameterDescription::secret, false)));
        EXPECT_EQ(description.parameter("seed")->label, "Random Seed");
    }
    test.create(kFilter);
    EXPECT_NE(test.instance().set("seed", 5), kOfxStatErrFatal);  // it has a user
}

/// The defaults written for the choice while describing in the Filter context.
std::vector<Host::PropertyValue> filterChoiceDefaults(const char* hostName)
{
    HostQuirks quirks;
    quirks.identity.name = hostName;
    TestHost test(quirks);
    described(test, kFilter);
    std::vector<Host::PropertyValue> values;
    for (const PropertyWrite& write : test.calls().propertyWrites()) {
        const bool isDefault = write.property == kOfxParamPropDefault;
        if (isDefault && write.set == "param fillRegion") values.push_back(write.value);
    }
    return values;
}

TEST(Description, HasADefaultForEveryChoiceOnlyWhereTheHostNeedsIt)
{
    EXPECT_THAT(filterChoiceDefaults("MLT"), ElementsAre(Host::PropertyValue(0)));
    EXPECT_THAT(filterChoiceDefaults("another host"), IsEmpty());
}

TEST(Description, SurvivesAHostThatRefusesSingleProperties)
{
    HostQuirks quirks;
    quirks.refusedWrites[kOfxPluginPropParamPageOrder] = kOfxStatErrUnknown;
    quirks.refusedWrites[kOfxParamPropHint] = kOfxStatErrUnsupported;
    quirks.refusedWrites[kOfxImageEffectPropSupportsTiles] = kOfxStatErrUnknown;
    TestHost test(quirks);
    const ContextDescription& context = described(test, kGeneral);
    EXPECT_EQ(parametersOf(context).size(), 19u);
    EXPECT_NE(context.parameter("Sample Box"), nullptr);
    EXPECT_THAT(context.pageOrder, IsEmpty());
}

TEST(Description, IsTheSameEachTime)
{
    HostQuirks quirks;
    quirks.describeTwice = true;
    TestHost test(quirks);
    test.effect().start();
    EXPECT_EQ(test.effect().sendDescribe(), kOfxStatOK);
    const Names first = parametersOf(test.effect().describeInContext(kFilter));
    EXPECT_EQ(test.effect().sendDescribeInContext(kFilter), kOfxStatOK);
    EXPECT_EQ(parametersOf(test.effect().contextDescriptor(kFilter)->describeContext()), first);
    EXPECT_EQ(test.effect().sendDescribeInContext("OfxImageEffectContextUnheardOf"),
              kOfxStatFailed);
}

}  // namespace
}  // namespace Tesseret::Fixtures
