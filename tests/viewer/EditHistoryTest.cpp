#include <gtest/gtest.h>

#include "viewer/model/EditHistory.h"

namespace Tesseret::Viewer {
namespace {

/// "a=1 b=2", in the order of setting.
std::string text(const Replay& replay)
{
    std::string all;
    for (const auto& [name, value] : replay.values) {
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

/// A patch of so many bytes.
MattePatch patch(std::size_t bytes, std::uint64_t revision)
{
    MattePatch made;
    made.tiles.push_back({{0, 0, int(bytes), 1}, std::vector<std::uint8_t>(bytes)});
    made.revision = revision;
    return made;
}

TEST(EditHistory, StrokesAndValuesShareTheirSteps)
{
    EditHistory history;
    history.beginGroup();
    history.record(patch(4, 0));
    history.record(patch(4, 1));
    history.record({{"a", 1, 2}});
    history.endGroup();
    history.record(MattePatch{});
    Replay replay = history.undo();
    EXPECT_EQ(text(replay), "a=1");
    ASSERT_EQ(replay.patches.size(), 2u);
    EXPECT_EQ(replay.patches[0]->revision, 1u) << "the last one first";
    EXPECT_FALSE(history.canUndo());
    replay = history.redo();
    ASSERT_EQ(replay.patches.size(), 2u);
    EXPECT_EQ(replay.patches[0]->revision, 0u);
    history.undo();
    history.record(patch(1, 0));
    EXPECT_FALSE(history.canRedo());
}

TEST(EditHistory, ForgetsTheOldestWhenStrokesFillTheMemory)
{
    EditHistory history(/*maxPatchBytes=*/100);
    history.record({{"a", 1, 2}});
    for (const std::uint64_t revision : {0, 1, 2}) history.record(patch(40, revision));
    EXPECT_EQ(history.undo().patches.at(0)->revision, 2u);
    EXPECT_EQ(history.undo().patches.at(0)->revision, 1u);
    EXPECT_FALSE(history.canUndo()) << "what came before is gone, the value's edit too";
    history.record(patch(1000, 7));
    EXPECT_EQ(history.undo().patches.at(0)->revision, 7u) << "the last one is always kept";
}

}  // namespace
}  // namespace Tesseret::Viewer
