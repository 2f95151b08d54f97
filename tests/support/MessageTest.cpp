#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "products/OFX/Support/Message.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The result of an instance's message in that host.
int postFromInstance(TinyHost& tiny, const char* text, int kind, const char* id)
{
    const auto instance = tiny.create();
    int result = -1;
    tinyBehaviour().onHook = [&](const std::string&, const Orvane::OvOfxEffect& effect) {
        result = Orvane::postEffectMessage(effect.instance(), text, kind, id);
    };
    tiny.calls().reset();
    instance->syncPrivateData();
    tinyBehaviour().onHook = nullptr;
    return result;
}

TEST(Messages, ReachTheHostWithTheTypeOfTheirKind)
{
    const char* types[] = {"OfxMessageFatal", "OfxMessageError", "OfxMessageMessage",
                           "OfxMessageLog", "OfxMessageQuestion"};
    for (int kind = 0; kind < 5; ++kind) {
        TinyHost tiny;
        postFromInstance(tiny, "100% sure: %s %n\n%%", kind, "theId");
        const auto messages = tiny.calls().messages();
        ASSERT_THAT(messages, SizeIs(1));
        EXPECT_EQ(messages[0].type, types[kind]);
        EXPECT_EQ(messages[0].id, "theId");
        EXPECT_EQ(messages[0].text, "100% sure: %s %n\n%%");
        EXPECT_NE(messages[0].instance, nullptr);
    }
}

TEST(Messages, MapTheStatusOfTheHost)
{
    struct Case {
        OfxStatus status;
        const char* hostName;
        int result;
    };
    for (const Case& each :
         {Case{0, "host", 0}, Case{12, "host", 1}, Case{13, "host", 2}, Case{14, "host", 3},
          Case{-77, "host", 3}, Case{12, "The film master 3", 3}, Case{0, "film master", 3},
          Case{12, "film-master", 1}, Case{12, "Film Master", 1}}) {
        Fixtures::HostQuirks quirks;
        quirks.messageStatus = each.status;
        quirks.identity.name = each.hostName;
        TinyHost tiny(quirks);
        EXPECT_EQ(postFromInstance(tiny, "Well?", Orvane::kMessageQuestion, nullptr), each.result)
            << each.hostName << ' ' << each.status;
        EXPECT_THAT(tiny.calls().messages(), SizeIs(1));
    }
}

TEST(Messages, OfUnknownKindsAndFromDescriptorsAreNotPosted)
{
    TinyHost tiny;
    EXPECT_EQ(postFromInstance(tiny, "text", 7, "id"), 3);
    EXPECT_EQ(postFromInstance(tiny, "text", -1, "id"), 3);
    EXPECT_EQ(Orvane::postEffectMessage(nullptr, "text", Orvane::kMessageError, "id"), 3);
    EXPECT_THAT(tiny.calls().messages(), IsEmpty());
}

}  // namespace
}  // namespace Tesseret::Fixtures
