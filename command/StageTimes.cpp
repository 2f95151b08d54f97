#include "command/StageTimes.h"

#include <algorithm>

namespace Tesseret::Command {

void StageTimes::began(std::string_view name)
{
    const std::size_t level = running_.size();
    auto stage = std::ranges::find_if(
        stages_, [&](const Stage& known) { return known.name == name && known.level == level; });
    if (stage == stages_.end()) {
        stages_.push_back({std::string(name), level});
        stage = stages_.end() - 1;
    }
    ++stage->count;
    running_.push_back({static_cast<std::size_t>(stage - stages_.begin()), Clock::now()});
}

void StageTimes::ended()
{
    if (running_.empty()) return;
    const Running last = running_.back();
    running_.pop_back();
    stages_[last.stage].seconds += std::chrono::duration<double>(Clock::now() - last.start).count();
}

std::string StageTimes::current() const
{
    return running_.empty() ? std::string() : stages_[running_.back().stage].name;
}

}  // namespace Tesseret::Command
