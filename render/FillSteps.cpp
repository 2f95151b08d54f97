#include "render/FillSteps.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <nlohmann/json.hpp>

#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "render/PluginSession.h"

namespace Tesseret::Render {

using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kSteps = "steps";
constexpr const char* kAreas = "areas";
constexpr const char* kSide = "matteSide";
constexpr const char* kGrow = "matteGrow";
constexpr std::array kCrops{"texture1Crop", "texture2Crop", "texture3Crop"};

[[noreturn]] void refuse(const char* key, const Json& value, const char* expected)
{
    throw UsageError(std::string("\"") + key + "\": " + jsonText(value) + " is not " + expected);
}

template <std::size_t Count>
std::array<double, Count> numbers(const char* key, const Json& value, const char* expected)
{
    const bool isList =
        value.is_array() && value.size() == Count &&
        std::ranges::all_of(value, [](const Json& item) { return item.is_number(); });
    if (!isList) refuse(key, value, expected);
    std::array<double, Count> list{};
    std::ranges::transform(value, list.begin(),
                           [](const Json& item) { return item.get<double>(); });
    return list;
}

void readAreas(const Json& step, RenderSettings& settings)
{
    if (!step.contains(kAreas) || !settings.areas.empty()) return;
    const Json& areas = step[kAreas];
    const bool isList =
        areas.is_array() && !areas.empty() && std::ranges::all_of(areas, [](const Json& item) {
            return item.is_number_unsigned() && item.get<std::size_t>() > 0;
        });
    if (!isList) refuse(kAreas, areas, "a list of numbers from 1");
    for (const Json& item : areas) settings.areas.push_back(item.get<std::size_t>() - 1);
}

void readMatte(const Json& step, RenderSettings& settings)
{
    constexpr double kMaxGrow = 1000.0;
    readAreas(step, settings);
    if (step.contains(kSide) && !settings.matteSide) {
        const auto side = numbers<3>(kSide, step[kSide], "[x, y, angle]");
        settings.matteSide = LineSide{side[0], side[1], side[2]};
    }
    if (step.contains(kGrow) && settings.matteGrow == 0.0) {
        const Json& grow = step[kGrow];
        const bool isGood =
            grow.is_number() && grow.get<double>() >= 0.0 && grow.get<double>() <= kMaxGrow;
        if (!isGood) refuse(kGrow, grow, "a number from 0 to 1000");
        settings.matteGrow = grow.get<double>();
    }
}

void readCrops(const Json& step, RenderSettings& settings)
{
    for (std::size_t i = 0; i < kCrops.size(); ++i) {
        const char* const key = kCrops.at(i);
        if (!step.contains(key) || settings.textureCrops[i]) continue;
        const auto box = numbers<4>(key, step[key], "[x1, y1, x2, y2]");
        if (!(box[0] < box[2] && box[1] < box[3])) refuse(key, step[key], "a box");
        settings.textureCrops[i] = ViewBox{box[0], box[1], box[2], box[3]};
    }
}

Json stepJson(const Host::ContextDescription& description, const FillStep& step)
{
    const RenderSettings& settings = step.settings;
    Json json = Json::object();
    for (const std::size_t area : settings.areas) json[kAreas].push_back(area + 1);
    if (const auto& side = settings.matteSide) json[kSide] = {side->x, side->y, side->angle};
    if (settings.matteGrow > 0.0) json[kGrow] = settings.matteGrow;
    for (std::size_t i = 0; i < kCrops.size(); ++i) {
        const auto& box = settings.textureCrops[i];
        if (box) json[kCrops.at(i)] = {box->x1, box->y1, box->x2, box->y2};
    }
    json["parameters"] = parametersJson(description, step.values);
    return json;
}

}  // namespace

std::vector<RenderSettings> stepsOf(const RenderSettings& settings)
{
    if (settings.parameterFile.empty()) return {settings};
    const Json json = readParameterFile(settings.parameterFile);
    const std::size_t count = json.contains(kSteps) ? json[kSteps].size() : 1;
    std::vector<RenderSettings> steps(count, settings);
    for (std::size_t i = 0; i < count; ++i) {
        const Json& step = json.contains(kSteps) ? json[kSteps][i] : json;
        steps[i].step = i;
        try {
            if (!settings.matte.empty()) readMatte(step, steps[i]);
            readCrops(step, steps[i]);
        } catch (const UsageError& error) {
            const std::string name = settings.parameterFile.string();
            throw UsageError((name.starts_with('{') ? "--parameters" : name) + ": " + error.what());
        }
    }
    return steps;
}

Json stepsJson(const std::string& plugin, const Host::ContextDescription& description,
               const std::vector<FillStep>& steps)
{
    Json json{{"plugin", plugin}, {"context", shortContextName(description.context)}};
    if (steps.size() == 1) {
        json.update(stepJson(description, steps.front()));
        return json;
    }
    for (const FillStep& step : steps) json[kSteps].push_back(stepJson(description, step));
    return json;
}

}  // namespace Tesseret::Render
