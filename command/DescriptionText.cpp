#include "command/DescriptionText.h"

#include <sstream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "render/ParameterFile.h"
#include "render/PluginSession.h"

namespace Tesseret::Command {

using Host::ClipDescription;
using Host::ContextDescription;
using Host::EffectDescription;
using Host::ParameterDescription;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view kTypePrefix = "OfxParamType";
constexpr std::string_view kComponentPrefix = "OfxImageComponent";

std::string withoutPrefix(const std::string& text, std::string_view prefix)
{
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

std::string versionText(const EffectDescription& effect)
{
    return std::to_string(effect.versionMajor) + "." + std::to_string(effect.versionMinor);
}

void writeClip(std::ostringstream& text, const ClipDescription& clip)
{
    text << "  " << clip.name << "  \"" << clip.label << "\"";
    for (const std::string& components : clip.components) {
        text << "  " << withoutPrefix(components, kComponentPrefix);
    }
    text << (clip.optional ? "  optional" : "") << (clip.isMask ? "  mask" : "") << "\n";
}

void writeParameter(std::ostringstream& text, const ParameterDescription& parameter)
{
    text << "  " << parameter.name << "  \"" << parameter.label << "\"  "
         << withoutPrefix(parameter.type, kTypePrefix);
    const std::string initial = Render::valueText(parameter, parameter.initial);
    if (!initial.empty()) text << "  default " << initial;
    const std::string range = Render::rangeText(parameter.min, parameter.max);
    if (!range.empty()) text << "  range " << range;
    const std::string shown = Render::rangeText(parameter.displayMin, parameter.displayMax);
    if (!shown.empty() && shown != range) text << "  slider " << shown;
    text << "\n";
    for (std::size_t i = 0; i < parameter.options.size(); ++i) {
        text << "      " << i << "  \"" << parameter.options[i] << "\"\n";
    }
    if (!parameter.hint.empty()) text << "      " << parameter.hint << "\n";
}

void writePage(std::ostringstream& text, const ParameterDescription& page)
{
    text << "  \"" << page.label << "\"\n";
    std::string column;
    const auto endColumn = [&] {
        if (!column.empty()) text << "      " << column << "\n";
        column.clear();
    };
    for (const std::string& child : page.pageChildren) {
        if (child == kOfxParamPageSkipColumn) {
            endColumn();
        } else if (child != kOfxParamPageSkipRow) {
            Render::appendItem(column, ", ", child);
        }
    }
    endColumn();
}

void writeContext(std::ostringstream& text, const ContextDescription& context)
{
    text << "\nContext " << Render::shortContextName(context.context) << "\n\nClips\n";
    for (const ClipDescription& clip : context.clips) writeClip(text, clip);
    text << "\nParameters\n";
    for (const ParameterDescription& parameter : context.parameters) {
        if (!parameter.isPage() && !parameter.isGroup()) writeParameter(text, parameter);
    }
    text << "\nPages, one line for each column\n";
    for (const std::string& name : context.pageOrder) {
        if (const ParameterDescription* page = context.parameter(name)) writePage(text, *page);
    }
}

Json clipJson(const ClipDescription& clip)
{
    return {{"name", clip.name},
            {"label", clip.label},
            {"components", clip.components},
            {"optional", clip.optional},
            {"mask", clip.isMask},
            {"temporalAccess", clip.temporalAccess},
            {"tiles", clip.supportsTiles},
            {"fieldExtraction", clip.fieldExtraction}};
}

Json parameterJson(const ParameterDescription& parameter)
{
    Json json{{"name", parameter.name},
              {"type", withoutPrefix(parameter.type, kTypePrefix)},
              {"label", parameter.label},
              {"scriptName", parameter.scriptName},
              {"hint", parameter.hint}};
    if (parameter.isPage()) {
        json["children"] = parameter.pageChildren;
        return json;
    }
    json["parent"] = parameter.parent;
    json["secret"] = parameter.secret;
    json["enabled"] = parameter.enabled;
    if (parameter.isGroup() || parameter.isButton()) return json;
    json["default"] = Render::valueJson(parameter.initial);
    json["animates"] = parameter.animates;
    if (!parameter.min.empty()) {
        json["min"] = parameter.min;
        json["max"] = parameter.max;
    }
    if (!parameter.displayMin.empty()) {
        json["displayMin"] = parameter.displayMin;
        json["displayMax"] = parameter.displayMax;
    }
    if (!parameter.doubleType.empty()) {
        json["doubleType"] = parameter.doubleType;
        json["increment"] = parameter.increment;
        json["digits"] = parameter.digits;
    }
    if (!parameter.options.empty()) json["options"] = parameter.options;
    return json;
}

Json contextJson(const ContextDescription& context)
{
    Json json{{"context", Render::shortContextName(context.context)},
              {"clips", Json::array()},
              {"parameters", Json::array()},
              {"pages", Json::array()}};
    for (const ClipDescription& clip : context.clips) json["clips"].push_back(clipJson(clip));
    for (const ParameterDescription& parameter : context.parameters) {
        json[parameter.isPage() ? "pages" : "parameters"].push_back(parameterJson(parameter));
    }
    return json;
}

}  // namespace

std::string descriptionText(const EffectDescription& effect,
                            const std::vector<ContextDescription>& contexts)
{
    std::ostringstream text;
    text << effect.label << " " << versionText(effect) << "  " << effect.identifier << "\n";
    for (const ContextDescription& context : contexts) writeContext(text, context);
    return text.str();
}

std::string descriptionJson(const EffectDescription& effect,
                            const std::vector<ContextDescription>& contexts)
{
    Json json{{"identifier", effect.identifier}, {"label", effect.label},
              {"grouping", effect.grouping},     {"version", versionText(effect)},
              {"depths", effect.depths},         {"threadSafety", effect.threadSafety},
              {"tiles", effect.supportsTiles},   {"overlay", effect.hasOverlay},
              {"contexts", Json::array()}};
    for (const ContextDescription& context : contexts) {
        json["contexts"].push_back(contextJson(context));
    }
    return json.dump(2) + "\n";
}

}  // namespace Tesseret::Command
