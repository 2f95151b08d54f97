#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "libraries/exceptions/ErrorReport.h"
#include "libraries/exceptions/Exceptions.h"
#include "tests/fixtures/FakeServices.h"

namespace Orvane::Exceptions {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kRule = "----------------------------------------\r\n";
constexpr UtcTime kWhen{2026, 3, 5, 7, 8, 9};

std::string report(const ErrorStacks& stacks)
{
    std::ostringstream out;
    writeErrorReport(out, stacks, kWhen);
    return out.str();
}

ErrorContext context(const char* function, const char* file, int line)
{
    return {5, function, file, line, "OutOfMemory", "Exception"};
}

/// The one entry of a report, without what comes before and after it.
std::string entryLine(const ErrorContext& entry)
{
    const std::string text = report({{0, {{0, entry}}}});
    const std::size_t start = text.find("1. ") + 3;
    return text.substr(start, text.find("\r\n", start) - start);
}

TEST(ErrorReport, WithoutEntriesIsDateRuleAndNul)
{
    EXPECT_EQ(report({}), std::string("05/03/2026 07:08:09\r\n") + kRule + '\0');
}

TEST(ErrorReport, NumbersFromTheNewestDownAndNamesThreadsOnlyWhenThereAreSeveral)
{
    const ErrorContext entry = context(kUnknownFunction, "file", 7);
    const std::string one = report({{3, {{0, entry}, {1, entry}, {2, entry}}}});
    EXPECT_THAT(one, Not(HasSubstr("Thread ")));
    EXPECT_LT(one.find("3. "), one.find("2. "));
    EXPECT_LT(one.find("2. "), one.find("1. "));
    EXPECT_THAT(one, EndsWith(std::string("(OutOfMemory)\r\n\r\n") + '\0'));

    const std::string two = report({{2, {{0, entry}}}, {0, {{0, entry}}}});
    const std::string rule = kRule;
    EXPECT_THAT(two, HasSubstr(rule + "Thread 0\r\n" + rule + "1. "));
    EXPECT_THAT(two, HasSubstr("(OutOfMemory)\r\n\r\nThread 2\r\n" + rule + "1. "));
}

TEST(ErrorReport, FormatsTheColumns)
{
    const std::string message = "\"Unregistered Error (5)\"  (OutOfMemory)";
    const std::string name30(30, 'f'), name31(31, 'g');
    const std::string file19(19, 'x'), file21 = "abcd" + std::string(17, 'y');
    EXPECT_EQ(entryLine(context(kUnknownFunction, nullptr, 9)), "[ Err 0005]  " + message);
    EXPECT_EQ(entryLine(context(nullptr, file19.c_str(), 118)),
              "[ Err 0005]   " + file19 + "(0118) " + message);
    EXPECT_EQ(entryLine(context(nullptr, file21.c_str(), 0)),
              "[ Err 0005]  ..." + std::string(17, 'y') + message);
    EXPECT_EQ(entryLine(context(name30.c_str(), nullptr, 0)),
              "[ Err 0005]  " + name30 + "  " + message);
    EXPECT_EQ(entryLine(context(name31.c_str(), nullptr, 0)),
              "[ Err 0005]  ..." + std::string(27, 'g') + "  " + message);
    EXPECT_EQ(entryLine(context("run", nullptr, 0)),
              "[ Err 0005]  run" + std::string(27, ' ') + "  " + message);
    EXPECT_THAT(entryLine({12345, nullptr, nullptr, 0, "T", "F"}), StartsWith("[ Err 12345]  "));
}

TEST(ErrorContext, StoresWhereItCameFromAndMovesOn)
{
    const Testing::FakeServices services;
    clearErrorContexts();
    ThreadFailed failure("raise", "a\\b\\c.cpp", 12, "detail");
    EXPECT_STREQ(failure.context().file, "\\c.cpp");
    EXPECT_EQ(failure.referenceCount(), 1);
    recordCatch(failure, "catch", "plain/path", 34);
    EXPECT_STREQ(failure.context().function, "catch");
    EXPECT_STREQ(failure.context().file, "plain/path");
    EXPECT_EQ(failure.context().line, 34);

    const ErrorStacks stacks = errorContexts();
    ASSERT_EQ(stacks.size(), 1u);
    const ErrorContext& stored = stacks.at(0).at(0);
    EXPECT_STREQ(stored.function, "raise");
    EXPECT_EQ(stored.line, 12);
    EXPECT_EQ(stored.id, 4);
    EXPECT_STREQ(stored.typeName, "ThreadFailed");
    EXPECT_STREQ(stored.familyName, "Threads");
    clearErrorContexts();
    EXPECT_TRUE(errorContexts().empty());
}

TEST(ErrorContext, SurvivesThreadsThatPushTogether)
{
    const Testing::FakeServices services;
    clearErrorContexts();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([] {
            for (int k = 0; k < 100; ++k) {
                OutOfMemory failure(kUnknownFunction, "file", k);
                recordCatch(failure, kUnknownFunction, "file", k);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(errorContexts().at(0).size(), 800u);
    clearErrorContexts();
}

TEST(ErrorContext, KeepsTheOldestWhereThereAreTooMany)
{
    const Testing::FakeServices services;
    clearErrorContexts();
    for (int k = 0; k < 5000; ++k) {
        OutOfMemory failure(kUnknownFunction, "file", k);
        recordCatch(failure, kUnknownFunction, "file", -1);
        EXPECT_EQ(failure.context().line, -1);
    }
    const ErrorStacks stacks = errorContexts();
    EXPECT_EQ(stacks.at(0).size(), kMaxErrorContexts);
    EXPECT_EQ(stacks.at(0).rbegin()->second.line, static_cast<int>(kMaxErrorContexts) - 1);
    clearErrorContexts();
}

}  // namespace
}  // namespace Orvane::Exceptions
