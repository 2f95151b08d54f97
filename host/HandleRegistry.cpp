#include "host/HandleRegistry.h"

#include <deque>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace Tesseret::Host {

namespace {

struct Entry {
    HandleKind kind;
    void* object;
};

/// Cells come from blocks that are never freed; free cells wait in a queue before reuse.
class Registry {
public:
    char* add(HandleKind kind, void* object)
    {
        const std::lock_guard lock(mutex_);
        char* const cell = takeCell();
        live_.emplace(cell, Entry{kind, object});
        return cell;
    }

    void remove(char* cell)
    {
        const std::lock_guard lock(mutex_);
        live_.erase(cell);
        dead_.push_back(cell);
    }

    void* find(HandleKind kind, const void* handle) const
    {
        const std::lock_guard lock(mutex_);
        const auto found = live_.find(handle);
        return found != live_.end() && found->second.kind == kind ? found->second.object : nullptr;
    }

    std::size_t size() const
    {
        const std::lock_guard lock(mutex_);
        return live_.size();
    }

private:
    static constexpr std::size_t kBlockCells = 4096;
    /// How many handles are released before a cell is reused.
    static constexpr std::size_t kQuarantine = 65536;

    char* takeCell()
    {
        if (dead_.size() > kQuarantine) {
            char* const cell = dead_.front();
            dead_.pop_front();
            return cell;
        }
        if (usedInBlock_ == kBlockCells) {
            blocks_.push_back(std::make_unique<char[]>(kBlockCells));
            usedInBlock_ = 0;
        }
        return &blocks_.back()[usedInBlock_++];
    }

    mutable std::mutex mutex_;
    std::unordered_map<const void*, Entry> live_;
    std::deque<char*> dead_;
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t usedInBlock_ = kBlockCells;
};

/// Never destroyed: plug-ins may call while the process ends.
Registry& registry()
{
    static Registry* const theRegistry = std::make_unique<Registry>().release();
    return *theRegistry;
}

}  // namespace

Handle::Handle(HandleKind kind, void* object) : cell_(registry().add(kind, object)) {}

Handle::~Handle()
{
    registry().remove(cell_);
}

void* findObject(HandleKind kind, const void* handle)
{
    return handle ? registry().find(kind, handle) : nullptr;
}

std::size_t liveHandles()
{
    return registry().size();
}

}  // namespace Tesseret::Host
