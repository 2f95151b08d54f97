#pragma once

/// What a frame recorded for later ones: the areas of its matte and the blocks of their instances.

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "host/RecordKeeper.h"
#include "render/AreaRecord.h"

namespace Tesseret::Render {

using RecordBytes = std::vector<std::byte>;

/// Of one step of a fill.
struct FillRecord {
    std::vector<RecordedArea> areas;     ///< empty without a matte
    std::vector<RecordBytes> instances;  ///< one for each area, or one; empty: nothing recorded
};

/// The blocks of one instance.
class InstanceRecord final : public Host::RecordKeeper {
public:
    explicit InstanceRecord(bool isWanted) : isWanted_(isWanted) {}

    /// The instance repeats these in its next render.
    void offer(RecordBytes record) { offered_ = std::move(record); }
    void withdraw() { offered_.clear(); }
    /// Whether the plug-in could not use what was offered.
    bool wasRefused() const { return wasRefused_; }
    const RecordBytes& made() const { return made_; }

    std::span<const std::byte> offered() override { return offered_; }
    void taken(bool isUsable) override
    {
        wasRefused_ = !isUsable;
        offered_.clear();
    }
    bool wantsRecord() override { return isWanted_; }
    void made(std::span<const std::byte> record) override
    {
        made_.assign(record.begin(), record.end());
    }

private:
    bool isWanted_, wasRefused_ = false;
    RecordBytes offered_, made_;
};

}  // namespace Tesseret::Render
