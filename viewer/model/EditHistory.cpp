#include "viewer/model/EditHistory.h"

#include <algorithm>
#include <utility>

namespace Tesseret::Viewer {

namespace {

bool isNothing(const ValueChange& change)
{
    return change.before == change.after;
}

}  // namespace

std::size_t EditHistory::Edit::bytes() const
{
    std::size_t sum = 0;
    for (const MattePatch& patch : patches) sum += patch.bytes();
    return sum;
}

void EditHistory::record(std::vector<ValueChange> changes)
{
    std::erase_if(changes, isNothing);
    if (changes.empty()) return;
    undone_.clear();
    for (ValueChange& change : changes) {
        const auto earlier = std::ranges::find(open_.values, change.name, &ValueChange::name);
        if (earlier == open_.values.end()) {
            open_.values.push_back(std::move(change));
        } else {
            earlier->after = std::move(change.after);
        }
    }
    if (groups_ == 0) closeGroups();
}

void EditHistory::record(ListChange change)
{
    if (change.before == change.after) return;
    undone_.clear();
    if (open_.list) {
        open_.list->after = std::move(change.after);
    } else {
        open_.list = std::move(change);
    }
    if (groups_ == 0) closeGroups();
}

void EditHistory::record(MattePatch patch)
{
    if (patch.empty()) return;
    undone_.clear();
    open_.patches.push_back(std::move(patch));
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
    std::erase_if(edit.values, isNothing);
    if (edit.list && edit.list->before == edit.list->after) edit.list.reset();
    if (edit.empty()) return;
    done_.push_back(std::move(edit));
    forgetOldest();
}

void EditHistory::forgetOldest()
{
    std::size_t bytes = 0;
    for (const Edit& edit : done_) bytes += edit.bytes();
    while (bytes > maxPatchBytes_ && done_.size() > 1) {
        bytes -= done_.front().bytes();
        done_.pop_front();
    }
}

Replay EditHistory::undo()
{
    closeGroups();
    Replay replay;
    if (done_.empty()) return replay;
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    Edit& edit = undone_.back();
    for (auto change = edit.values.rbegin(); change != edit.values.rend(); ++change) {
        replay.values.push_back({change->name, change->before});
    }
    if (edit.list) replay.list = edit.list->before;
    for (auto patch = edit.patches.rbegin(); patch != edit.patches.rend(); ++patch) {
        replay.patches.push_back(&*patch);
    }
    return replay;
}

Replay EditHistory::redo()
{
    closeGroups();
    Replay replay;
    if (undone_.empty()) return replay;
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    Edit& edit = done_.back();
    for (const ValueChange& change : edit.values) {
        replay.values.push_back({change.name, change.after});
    }
    if (edit.list) replay.list = edit.list->after;
    for (MattePatch& patch : edit.patches) replay.patches.push_back(&patch);
    return replay;
}

}  // namespace Tesseret::Viewer
