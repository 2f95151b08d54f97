#include "command/InspectionText.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string_view>

#include "render/ParameterText.h"
#include "render/PluginSession.h"

namespace Tesseret::Command {

using Inspect::Finding;
using Inspect::Report;
using Inspect::Severity;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view kDepthPrefix = "OfxBitDepth";

/// The texts of a list without a common prefix, with commas.
std::string joined(const Json& list, std::string_view prefix = "")
{
    std::string text;
    for (const Json& item : list) {
        std::string word = item.get<std::string>();
        if (!prefix.empty() && word.starts_with(prefix)) word.erase(0, prefix.size());
        Render::appendItem(text, ", ", word);
    }
    return text;
}

void writeLine(std::ostringstream& text, std::string_view name, const std::string& value)
{
    text << "  " << std::left << std::setw(10) << name << value << "\n";
}

void writePlugin(std::ostringstream& text, const Json& plugin)
{
    writeLine(
        text, "plug-in",
        plugin.at("identifier").get<std::string>() + " " + plugin.at("version").get<std::string>());
    if (!plugin.contains("label")) return;
    writeLine(text, "label", plugin.at("label").get<std::string>());
    writeLine(text, "group", plugin.at("grouping").get<std::string>());
    writeLine(text, "depths", joined(plugin.at("depths"), kDepthPrefix));
    for (const Json& context : plugin.at("contexts")) {
        Json clips = Json::array();
        for (const Json& clip : context.at("clips")) clips.push_back(clip.at("name"));
        writeLine(text, "context",
                  Render::shortContextName(context.at("context").get<std::string>()) + ": clips " +
                      joined(clips) + "; " + std::to_string(context.at("parameters").get<int>()) +
                      " parameters");
    }
}

void writeFacts(std::ostringstream& text, const Json& facts)
{
    text << facts.at("bundle").get<std::string>() << "\n";
    if (facts.contains("systems")) writeLine(text, "systems", joined(facts.at("systems")));
    if (facts.contains("needs")) writeLine(text, "needs", joined(facts.at("needs")));
    if (facts.contains("glibc")) {
        const Json& glibc = facts.at("glibc");
        writeLine(text, "glibc",
                  glibc.at("version").get<std::string>() + ", for " +
                      glibc.at("symbols").front().get<std::string>());
    }
    if (facts.contains("exports"))
        writeLine(text, "exports", std::to_string(facts.at("exports").size()) + " symbols");
    for (const Json& plugin : facts.value("plugins", Json::array())) writePlugin(text, plugin);
    for (const Json& icon : facts.value("icons", Json::array())) {
        writeLine(text, "icon",
                  icon.at("file").get<std::string>() + ", " + icon.at("size").get<std::string>());
    }
}

std::string counted(std::ptrdiff_t count, const std::string& word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

}  // namespace

std::string inspectionText(const Report& report)
{
    std::ostringstream text;
    writeFacts(text, report.facts);
    for (const Finding& finding : report.findings) {
        text << (finding.severity == Severity::Error ? "error: " : "warning: ") << finding.about
             << ": " << finding.text << "; " << finding.advice << "\n";
    }
    const auto errors = std::ranges::count(report.findings, Severity::Error, &Finding::severity);
    const auto all = static_cast<std::ptrdiff_t>(report.findings.size());
    if (all == 0) {
        text << "all is well\n";
    } else {
        text << counted(errors, "error") << ", " << counted(all - errors, "warning") << "\n";
    }
    return text.str();
}

std::string inspectionJson(const Report& report)
{
    Json json = report.facts;
    json["findings"] = Json::array();
    for (const Finding& finding : report.findings) json["findings"].push_back(toJson(finding));
    json["isWell"] = report.findings.empty();
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace Tesseret::Command
