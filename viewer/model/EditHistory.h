#pragma once

#include <string>
#include <vector>

#include "render/ParameterText.h"

namespace Tesseret::Viewer {

/// One value before and after an edit.
struct ValueChange {
    std::string name;
    Host::ParameterValue before, after;
};

/// Undo and redo of parameter edits.
class EditHistory {
public:
    /// A group while it lives.
    class Group {
    public:
        explicit Group(EditHistory& history) : history_(history) { history_.beginGroup(); }
        ~Group() { history_.endGroup(); }
        Group(const Group&) = delete;
        Group& operator=(const Group&) = delete;

    private:
        EditHistory& history_;
    };

    /// One edit, or within a group a part of one. It ends what could be redone, unless it changes
    /// nothing.
    void record(std::vector<ValueChange> changes);
    /// Everything recorded until the group ends is one edit. Groups may nest.
    void beginGroup() { ++groups_; }
    void endGroup();

    bool canUndo() const { return !done_.empty() || !open_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    /// What to set, in this order; nothing when there is no edit left. Open groups end.
    std::vector<Render::NamedValue> undo();
    std::vector<Render::NamedValue> redo();

private:
    using Edit = std::vector<ValueChange>;

    void closeGroups();

    std::vector<Edit> done_, undone_;
    Edit open_;  ///< of the groups that have begun
    int groups_ = 0;
};

}  // namespace Tesseret::Viewer
