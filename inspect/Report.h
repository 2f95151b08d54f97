#pragma once

/// What an inspection says: facts about a bundle, and one finding for each thing that is wrong.

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace Tesseret::Inspect {

enum class Severity {
    Warning,  ///< some hosts or users will notice
    Error,    ///< a host cannot use the plug-in, or should not
};

struct Finding {
    Severity severity = Severity::Error;
    std::string about;   ///< a file of the bundle, an action or an object of the plug-in
    std::string text;    ///< what is wrong
    std::string advice;  ///< what to do
};

struct Report {
    nlohmann::ordered_json facts = nlohmann::ordered_json::object();
    std::vector<Finding> findings;

    void error(std::string about, std::string text, std::string advice)
    {
        findings.push_back({Severity::Error, std::move(about), std::move(text), std::move(advice)});
    }
    void warning(std::string about, std::string text, std::string advice)
    {
        findings.push_back(
            {Severity::Warning, std::move(about), std::move(text), std::move(advice)});
    }
};

nlohmann::ordered_json toJson(const Finding& finding);
Finding findingFrom(const nlohmann::ordered_json& json);

}  // namespace Tesseret::Inspect
