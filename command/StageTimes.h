#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace Tesseret::Command {

/// Where the time of renders goes, by the stages that the plug-in tells. Stages nest; a stage's
/// time holds that of the stages inside it.
class StageTimes {
public:
    struct Stage {
        std::string name;
        std::size_t level = 0;  ///< how many stages it stands in
        int count = 0;
        double seconds = 0.0;
    };

    void began(std::string_view name);
    /// Ends the stage that began last.
    void ended();

    /// Of the stage that runs; empty when none does.
    std::string current() const;
    /// In the order in which they began first.
    const std::vector<Stage>& all() const { return stages_; }

private:
    using Clock = std::chrono::steady_clock;
    struct Running {
        std::size_t stage;
        Clock::time_point start;
    };

    std::vector<Stage> stages_;
    std::vector<Running> running_;
};

}  // namespace Tesseret::Command
