#include "viewer/model/EditHistory.h"

#include <algorithm>
#include <utility>

namespace Tesseret::Viewer {

using Render::NamedValue;

void EditHistory::record(std::vector<ValueChange> changes)
{
    std::erase_if(changes, [](const ValueChange& change) { return change.before == change.after; });
    if (changes.empty()) return;
    undone_.clear();
    for (ValueChange& change : changes) {
        const auto earlier = std::ranges::find(open_, change.name, &ValueChange::name);
        if (earlier == open_.end()) {
            open_.push_back(std::move(change));
        } else {
            earlier->after = std::move(change.after);
        }
    }
    if (groups_ == 0) closeGroups();
}

void EditHistory::endGroup()
{
    if (groups_ > 0 && --groups_ == 0) closeGroups();
}

void EditHistory::closeGroups()
{
    groups_ = 0;
    Edit edit = std::exchange(open_, {});
    std::erase_if(edit, [](const ValueChange& change) { return change.before == change.after; });
    if (!edit.empty()) done_.push_back(std::move(edit));
}

std::vector<NamedValue> EditHistory::undo()
{
    closeGroups();
    std::vector<NamedValue> values;
    if (done_.empty()) return values;
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    const Edit& edit = undone_.back();
    for (auto change = edit.rbegin(); change != edit.rend(); ++change) {
        values.push_back({change->name, change->before});
    }
    return values;
}

std::vector<NamedValue> EditHistory::redo()
{
    closeGroups();
    std::vector<NamedValue> values;
    if (undone_.empty()) return values;
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    for (const ValueChange& change : done_.back()) values.push_back({change.name, change.after});
    return values;
}

}  // namespace Tesseret::Viewer
