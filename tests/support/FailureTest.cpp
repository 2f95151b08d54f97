#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libraries/exceptions/ErrorContext.h"
#include "libraries/exceptions/Exceptions.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane::Exceptions;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

/// Has every hook throw from now on.
template <typename Exception>
void failWith(const Exception& exception)
{
    tinyBehaviour().onHook = [exception](const std::string&, Orvane::OvOfxEffect&) {
        throw exception;
    };
}

TEST(Failures, OfTheFamilyAreReportedOnceAndLeaveTheStatusAsItWas)
{
    TinyHost tiny;
    const auto instance = tiny.create();
    for (int time = 0; time < 2; ++time) {
        tiny.calls().reset();
        failWith(ThreadFailed(kUnknownFunction, "worker\\100%s.cpp", 118, "thread failed"));
        EXPECT_EQ(instance->syncPrivateData(), kOfxStatReplyDefault);
        const std::vector<Host::Message> messages = tiny.calls().messages();
        ASSERT_THAT(messages, SizeIs(1));
        EXPECT_EQ(messages[0].type, "OfxMessageError");
        EXPECT_EQ(messages[0].id, "ExceptionID");
        EXPECT_EQ(messages[0].instance, nullptr);
        // One entry each time: the first failure was not kept for the second report.
        EXPECT_THAT(messages[0].text,
                    HasSubstr("\r\n1. [ Err 0004]            \\100%s.cpp(0118) "
                              "\"Unregistered Error (4)\"  (ThreadFailed)\r\n\r\n"));
        EXPECT_THAT(messages[0].text, Not(HasSubstr("2. [")));
        EXPECT_TRUE(errorContexts().empty());
    }
}

TEST(Failures, OfOtherKindsBecomeAStatusWithoutAMessage)
{
    struct Case {
        std::function<void()> fail;
        OfxStatus status;
    };
    const Case cases[] = {
        {[] { failWith(OutOfMemory(kUnknownFunction, "here", 1)); }, kOfxStatErrMemory},
        {[] { failWith(std::bad_alloc()); }, kOfxStatErrMemory},
        {[] { failWith(std::runtime_error("unexpected")); }, kOfxStatFailed},
        {[] { failWith(42); }, kOfxStatFailed},
    };
    TinyHost tiny;
    const auto instance = tiny.create();
    for (const Case& each : cases) {
        tiny.calls().reset();
        // What workers pushed before is discarded too.
        ErrorContext context{.id = 4, .typeName = "ThreadFailed"};
        pushErrorContext(context, kUnknownFunction, "worker", 67);
        each.fail();
        EXPECT_EQ(instance->syncPrivateData(), each.status);
        EXPECT_THAT(tiny.calls().messages(), SizeIs(0));
        EXPECT_TRUE(errorContexts().empty());
    }
}

TEST(Failures, InAnyHookNeverLeaveTheHostWithADeadInstance)
{
    TinyHost tiny;
    std::atomic<int> destroyed = 0;
    const auto victim = tiny.create();
    tinyBehaviour().destroyed = &destroyed;
    const auto instance = tiny.create();
    // Creation fails in the change callbacks, after the host was given the instance.
    EXPECT_EQ(victim->action(kOfxActionDestroyInstance), kOfxStatOK);
    tinyBehaviour().onHook = [](const std::string& hook, Orvane::OvOfxEffect&) {
        if (hook.starts_with("change")) throw std::bad_alloc();
    };
    EXPECT_EQ(victim->action(kOfxActionCreateInstance), kOfxStatErrMemory);
    EXPECT_EQ(victim->properties().pointerOr(kOfxPropInstanceData, nullptr), nullptr);
    EXPECT_EQ(destroyed, 1);
    // Destruction fails in its hook.
    failWith(std::bad_alloc());
    EXPECT_EQ(instance->action(kOfxActionDestroyInstance), kOfxStatErrMemory);
    EXPECT_EQ(instance->properties().pointerOr(kOfxPropInstanceData, nullptr), nullptr);
    EXPECT_EQ(destroyed, 2);
}

}  // namespace
}  // namespace Tesseret::Fixtures
