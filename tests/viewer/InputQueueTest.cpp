#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "viewer/model/InputQueue.h"

namespace Tesseret::Viewer {
namespace {

using testing::ElementsAre;

/// One letter for each event: m motion, P and R a button, w wheel, K and k keys, t text.
InputEvent eventOf(char letter)
{
    switch (letter) {
        case 'm':
            return MotionEvent{};
        case 'P':
            return ButtonEvent{0, 1, 0};
        case 'R':
            return ButtonEvent{0, 0, 0};
        case 'w':
            return WheelEvent{0.0, 1.0};
        case 't':
            return TextEvent{U'a'};
        default:
            return KeyEvent{letter, 0, 1, 0};
    }
}

char letterOf(const InputEvent& event)
{
    if (const auto* const button = std::get_if<ButtonEvent>(&event)) {
        return button->action == 1 ? 'P' : 'R';
    }
    if (const auto* const key = std::get_if<KeyEvent>(&event)) return char(key->key);
    return "mPwKt"[event.index()];
}

std::vector<std::string> framesOf(const std::string& letters)
{
    InputQueue queue;
    for (const char letter : letters) queue.push(eventOf(letter));
    std::vector<std::string> frames;
    while (!queue.empty()) {
        frames.emplace_back();
        for (const InputEvent& event : queue.takeFrame()) frames.back() += letterOf(event);
    }
    return frames;
}

TEST(InputQueueTest, AQuickClickIsSeenDownAndUp)
{
    EXPECT_THAT(framesOf("mmP"), ElementsAre("mmP"));
    EXPECT_THAT(framesOf("PR"), ElementsAre("P", "R"));
    EXPECT_THAT(framesOf("mPRPR"), ElementsAre("mP", "R", "P", "R"));
}

TEST(InputQueueTest, AButtonIsSeenWhereThePointerWas)
{
    EXPECT_THAT(framesOf("mPmmRm"), ElementsAre("mP", "mmR", "m"));
    EXPECT_THAT(framesOf("mwmw"), ElementsAre("mw", "mw"));
    EXPECT_THAT(framesOf("wwP"), ElementsAre("wwP"));
    EXPECT_THAT(framesOf("Pw"), ElementsAre("P", "w"));
}

TEST(InputQueueTest, EachKeyChangesOnceInAFrame)
{
    EXPECT_THAT(framesOf("1t2t"), ElementsAre("1t2t"));
    EXPECT_THAT(framesOf("1t1"), ElementsAre("1t", "1"));
    EXPECT_THAT(framesOf("1t12t2"), ElementsAre("1t", "12t", "2"));
}

TEST(InputQueueTest, AKeyComesBeforeTheButtonsOfItsFrame)
{
    EXPECT_THAT(framesOf("1mP2mR3"), ElementsAre("1mP", "2mR", "3"));
}

TEST(InputQueueTest, NothingIsAnEmptyFrame)
{
    InputQueue queue;
    EXPECT_TRUE(queue.takeFrame().empty());
}

}  // namespace
}  // namespace Tesseret::Viewer
