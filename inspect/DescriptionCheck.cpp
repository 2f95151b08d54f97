#include "inspect/DescriptionCheck.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxParam.h"

namespace Tesseret::Inspect {

using Host::ClipDescription;
using Host::ContextDescription;
using Host::EffectDescription;
using Host::ParameterDescription;
using Json = nlohmann::ordered_json;

namespace {

/// What a context asks of its clips and parameters.
struct ContextRule {
    std::string_view context;
    std::array<std::string_view, 3> clips;  ///< all are required; unused ones are empty
    std::string_view parameter;             ///< required, unless it is empty
};
constexpr std::array<ContextRule, 6> kContextRules{{
    {kOfxImageEffectContextGenerator, {"Output"}, ""},
    {kOfxImageEffectContextFilter, {"Output", "Source"}, ""},
    {kOfxImageEffectContextTransition, {"Output", "SourceFrom", "SourceTo"}, "Transition"},
    {kOfxImageEffectContextPaint, {"Output", "Source", "Brush"}, ""},
    {kOfxImageEffectContextGeneral, {"Output"}, ""},
    {kOfxImageEffectContextRetimer, {"Output", "Source"}, "SourceTime"},
}};
constexpr std::array<std::string_view, 4> kDepths{kOfxBitDepthByte, kOfxBitDepthShort,
                                                  kOfxBitDepthHalf, kOfxBitDepthFloat};

const ContextRule* ruleOf(std::string_view context)
{
    const auto* const found = std::ranges::find(kContextRules, context, &ContextRule::context);
    return found == kContextRules.end() ? nullptr : found;
}

/// Letters, digits and marks that a file name can have too: the icon is named after it.
bool isIdentifier(std::string_view text)
{
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
               std::string_view("._-:").find(c) != std::string_view::npos;
    });
}

void checkClips(const ContextDescription& context, const std::string& about, Report& report)
{
    if (const ContextRule* const rule = ruleOf(context.context)) {
        for (const std::string_view name : rule->clips) {
            if (name.empty() || context.clip(name) != nullptr) continue;
            report.error(about, "it has no clip " + std::string(name),
                         "define it: the context requires it");
        }
    }
    for (const ClipDescription& clip : context.clips) {
        if (!clip.components.empty()) continue;
        report.error(about + ", clip " + clip.name, "it supports no components",
                     "set OfxImageEffectPropSupportedComponents");
    }
}

std::vector<double> numbersOf(const Host::ParameterValue& value)
{
    if (const int* const number = std::get_if<int>(&value)) return {static_cast<double>(*number)};
    if (const double* const number = std::get_if<double>(&value)) return {*number};
    if (const auto* const all = std::get_if<std::vector<int>>(&value))
        return {all->begin(), all->end()};
    const auto* const all = std::get_if<std::vector<double>>(&value);
    return all == nullptr ? std::vector<double>() : *all;
}

/// Whether a number of the default lies outside the range.
bool isOutside(std::span<const double> initial, std::span<const double> min,
               std::span<const double> max)
{
    for (std::size_t i = 0; i < initial.size(); ++i) {
        if (i < min.size() && initial[i] < min[i]) return true;
        if (i < max.size() && initial[i] > max[i]) return true;
    }
    return false;
}

void checkParameter(const ContextDescription& context, const ParameterDescription& parameter,
                    const std::string& about, Report& report)
{
    const std::string own = about + ", parameter " + parameter.name;
    if (!parameter.parent.empty()) {
        const ParameterDescription* const parent = context.parameter(parameter.parent);
        if (parent == nullptr || !parent->isGroup()) {
            report.error(own, "its parent \"" + parameter.parent + "\" is no group",
                         "define the group, or correct OfxParamPropParent");
        }
    }
    if (parameter.isPage()) {
        for (const std::string& child : parameter.pageChildren) {
            const bool isMark = child == kOfxParamPageSkipRow || child == kOfxParamPageSkipColumn;
            if (isMark || context.parameter(child) != nullptr) continue;
            report.error(own, "it shows \"" + child + "\", which is no parameter",
                         "correct OfxParamPropPageChild");
        }
        return;
    }
    if (parameter.type == kOfxParamTypeChoice && parameter.options.empty()) {
        report.error(own, "it is a choice without options", "set OfxParamPropChoiceOption");
    }
    const std::vector<double> initial = numbersOf(parameter.initial);
    const std::vector<double> lastOption{static_cast<double>(parameter.options.size()) - 1.0};
    const bool isChoice = !parameter.options.empty();
    if (isOutside(initial, parameter.min, isChoice ? lastOption : parameter.max)) {
        report.error(own, "its default lies outside its range",
                     "correct OfxParamPropDefault, OfxParamPropMin or OfxParamPropMax");
    }
}

}  // namespace

void checkRecord(const OfxPlugin& plugin, Report& report)
{
    const std::string identifier = plugin.pluginIdentifier;
    if (!isIdentifier(identifier)) {
        report.error("plug-in \"" + identifier + "\"",
                     "its identifier is empty, or has characters that no file name should have",
                     "call it as com.maker.product");
    } else if (identifier.find('.') == std::string::npos) {
        report.warning("plug-in " + identifier, "its identifier names no maker",
                       "call it as com.maker.product; saved projects keep the name for ever");
    }
    if (plugin.setHost == nullptr)
        report.error("plug-in " + identifier, "its record has no setHost", "set it");
}

void checkEffect(const EffectDescription& effect, Report& report)
{
    const std::string about = "plug-in " + effect.identifier;
    if (effect.label.empty())
        report.warning(about, "it has no label, so hosts show its identifier", "set OfxPropLabel");
    if (effect.contexts.empty()) {
        report.error(about, "it supports no context",
                     "set OfxImageEffectPropSupportedContexts when it is described");
    }
    for (const std::string& context : effect.contexts) {
        if (ruleOf(context) != nullptr) continue;
        report.error(about, "it supports an unknown context \"" + context + "\"",
                     "correct OfxImageEffectPropSupportedContexts");
    }
    if (effect.depths.empty()) {
        report.error(about, "it supports no depth",
                     "set OfxImageEffectPropSupportedPixelDepths when it is described");
    }
    for (const std::string& depth : effect.depths) {
        if (std::ranges::find(kDepths, depth) != kDepths.end()) continue;
        report.error(about, "it supports an unknown depth \"" + depth + "\"",
                     "correct OfxImageEffectPropSupportedPixelDepths");
    }
}

void checkContext(const ContextDescription& context, const std::string& identifier, Report& report)
{
    const std::string about = "plug-in " + identifier + ", " + context.context;
    checkClips(context, about, report);
    const ContextRule* const rule = ruleOf(context.context);
    if (rule != nullptr && !rule->parameter.empty() &&
        context.parameter(rule->parameter) == nullptr) {
        report.error(about, "it has no parameter " + std::string(rule->parameter),
                     "define it as a double: the context requires it");
    }
    for (const ParameterDescription& parameter : context.parameters)
        checkParameter(context, parameter, about, report);
}

Json effectFacts(const EffectDescription& effect)
{
    return {{"identifier", effect.identifier},
            {"label", effect.label},
            {"grouping", effect.grouping},
            {"depths", effect.depths},
            {"contexts", Json::array()}};
}

Json contextFacts(const ContextDescription& context)
{
    Json clips = Json::array();
    for (const ClipDescription& clip : context.clips) {
        clips.push_back(
            {{"name", clip.name}, {"components", clip.components}, {"optional", clip.optional}});
    }
    const auto values = std::ranges::count_if(context.parameters, [](const auto& parameter) {
        return !parameter.isPage() && !parameter.isGroup();
    });
    return {{"context", context.context}, {"clips", clips}, {"parameters", values}};
}

}  // namespace Tesseret::Inspect
