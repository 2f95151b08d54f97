#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "inspect/Report.h"

namespace Tesseret::Inspect {

/// Where the steps of loading go while they happen, so that what was found before a crash is known.
class StepSink {
public:
    virtual ~StepSink() = default;
    /// Called before each step; a crash is then reported as one "while STEP".
    virtual void step(const std::string& what) = 0;
    virtual void finding(const Finding& finding) = 0;
    /// The facts of one plug-in, once it was described.
    virtual void plugin(const nlohmann::ordered_json& facts) = 0;
};

/// Loads the library in this process, which may crash or hang, and checks what it does.
void runLoadSteps(const std::filesystem::path& file, StepSink& sink);

}  // namespace Tesseret::Inspect
