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

    /// Adds an edit, or within a group a part of one. Clears the redo list, unless it changes
    /// nothing.
    void record(std::vector<ValueChange> changes);
    /// Everything added until the group ends is one edit. Groups may nest.
    void beginGroup() { ++groups_; }
    void endGroup();

    bool canUndo() const { return !done_.empty() || !open_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    /// The values to set, in this order; empty when no edit is left. Closes open groups.
    std::vector<Render::NamedValue> undo();
    std::vector<Render::NamedValue> redo();

private:
    using Edit = std::vector<ValueChange>;

    void closeGroups();

    std::vector<Edit> done_, undone_;
    Edit open_;  ///< of the open groups
    int groups_ = 0;
};

}  // namespace Tesseret::Viewer
