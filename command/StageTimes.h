#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace Tesseret::Command {

/// Time spent in each stage that the plug-in reports. Stages nest; the time of a stage includes
/// that of the stages inside it.
class StageTimes {
public:
    struct Stage {
        std::string name;
        std::size_t level = 0;  ///< number of stages around it
        int count = 0;
        double seconds = 0.0;
    };

    void began(std::string_view name);
    /// Ends the stage that began last.
    void ended();

    /// The name of the running stage; empty when none runs.
    std::string current() const;
    /// In the order of their first start.
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
