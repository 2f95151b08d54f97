#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "render/ParameterText.h"
#include "viewer/model/MattePaint.h"

namespace Tesseret::Viewer {

/// One value before and after an edit.
struct ValueChange {
    std::string name;
    Host::ParameterValue before, after;
};

class FillList;

/// The list of steps before and after an edit; null where there was none.
struct ListChange {
    std::shared_ptr<const FillList> before, after;
};

/// What an undo or redo has to do, in this order.
struct Replay {
    std::vector<Render::NamedValue> values;               ///< to set
    std::optional<std::shared_ptr<const FillList>> list;  ///< to set, null included
    std::vector<MattePatch*> patches;                     ///< to swap; kept by the history
};

/// Undo and redo of parameter edits, lists of steps and painted strokes.
class EditHistory {
public:
    /// Keeps a group open for its lifetime.
    class Group {
    public:
        explicit Group(EditHistory& history) : history_(history) { history_.beginGroup(); }
        ~Group() { history_.endGroup(); }
        Group(const Group&) = delete;
        Group& operator=(const Group&) = delete;

    private:
        EditHistory& history_;
    };

    /// The oldest edits are forgotten when all patches have more bytes.
    explicit EditHistory(std::size_t maxPatchBytes = std::size_t{256} << 20)
        : maxPatchBytes_(maxPatchBytes)
    {}

    /// Adds an edit, or within a group a part of one. Clears the redo list, unless it changes
    /// nothing.
    void record(std::vector<ValueChange> changes);
    void record(ListChange change);
    void record(MattePatch patch);
    /// Everything added until the group ends is one edit. Groups may nest.
    void beginGroup() { ++groups_; }
    void endGroup();

    bool isGroupOpen() const { return groups_ > 0; }

    bool canUndo() const { return !done_.empty() || !open_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    /// Empty when no edit is left. Closes open groups.
    Replay undo();
    Replay redo();

private:
    struct Edit {
        std::vector<ValueChange> values;
        std::optional<ListChange> list;
        std::vector<MattePatch> patches;
        bool empty() const { return values.empty() && !list && patches.empty(); }
        std::size_t bytes() const;
    };

    void closeGroups();
    void forgetOldest();

    std::size_t maxPatchBytes_;
    std::deque<Edit> done_;
    std::vector<Edit> undone_;
    Edit open_;  ///< of the open groups
    int groups_ = 0;
};

}  // namespace Tesseret::Viewer
