#include <gtest/gtest.h>

#include "viewer/model/EditHistory.h"

namespace Tesseret::Viewer {
namespace {

/// "a=1 b=2", in the order of setting.
std::string text(const std::vector<Render::NamedValue>& values)
{
    std::string all;
    for (const auto& [name, value] : values) {
        if (!all.empty()) all += " ";
        all += name + "=" + std::to_string(std::get<int>(value));
    }
    return all;
}

TEST(EditHistory, GoesBackAndForth)
{
    EditHistory history;
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(text(history.undo()), "");
    history.record({{"a", 1, 2}, {"b", 5, 6}});
    history.record({{"a", 2, 3}});
    EXPECT_EQ(text(history.undo()), "a=2");
    EXPECT_EQ(text(history.undo()), "b=5 a=1");
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(text(history.redo()), "a=2 b=6");
    history.record({{"a", 7, 7}});
    EXPECT_TRUE(history.canRedo()) << "an edit of nothing is none";
    history.record({{"b", 6, 8}});
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(text(history.undo()), "b=6");
}

TEST(EditHistory, AGroupIsOneEdit)
{
    EditHistory history;
    history.beginGroup();
    history.beginGroup();
    history.record({{"a", 1, 2}});
    history.endGroup();
    history.record({{"a", 2, 3}, {"b", 5, 6}});
    EXPECT_TRUE(history.canUndo());
    history.endGroup();
    EXPECT_EQ(text(history.undo()), "b=5 a=1");
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(text(history.redo()), "a=3 b=6");

    history.beginGroup();  // there and back again
    history.record({{"a", 3, 4}});
    history.record({{"a", 4, 3}});
    history.endGroup();
    EXPECT_EQ(text(history.undo()), "b=5 a=1");

    history.beginGroup();
    history.record({{"b", 5, 9}});
    EXPECT_EQ(text(history.undo()), "b=5") << "undo ends what is open";
    history.endGroup();
    history.record({{"b", 5, 7}});
    history.record({{"b", 7, 8}});
    EXPECT_EQ(text(history.undo()), "b=7") << "the group has ended";
}

}  // namespace
}  // namespace Tesseret::Viewer
