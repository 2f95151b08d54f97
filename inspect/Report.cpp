#include "inspect/Report.h"

namespace Tesseret::Inspect {

using Json = nlohmann::ordered_json;

Json toJson(const Finding& finding)
{
    return {{"severity", finding.severity == Severity::Error ? "error" : "warning"},
            {"about", finding.about},
            {"text", finding.text},
            {"advice", finding.advice}};
}

Finding findingFrom(const Json& json)
{
    return {json.at("severity") == "error" ? Severity::Error : Severity::Warning,
            json.at("about").get<std::string>(), json.at("text").get<std::string>(),
            json.at("advice").get<std::string>()};
}

}  // namespace Tesseret::Inspect
