#include "render/ParameterFile.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <span>
#include <type_traits>
#include <variant>

#include <nlohmann/json.hpp>

#include "files/FileError.h"
#include "files/WholeFile.h"
#include "render/JobError.h"
#include "render/PluginSession.h"

namespace Tesseret::Render {

using Files::FileError;
using Host::ContextDescription;
using Host::ParameterDescription;
using Host::ParameterValue;
using Json = nlohmann::ordered_json;

namespace fs = std::filesystem;

namespace {

constexpr const char* kPlugin = "plugin";
constexpr const char* kContext = "context";
constexpr const char* kParameters = "parameters";
constexpr const char* kSteps = "steps";

bool isText(const fs::path& file)
{
    return file.string().starts_with('{');
}

/// What messages call it.
std::string nameOf(const fs::path& file)
{
    return isText(file) ? "--parameters" : file.string();
}

std::string readText(const fs::path& file)
{
    if (isText(file)) return file.string();
    std::error_code ignored;
    std::ifstream stream(file, std::ios::binary);
    if (!stream || fs::is_directory(file, ignored)) throw FileError(file, "cannot be read");
    std::string text(std::istreambuf_iterator<char>(stream), {});
    return text;
}

/// "line 3, column 7" of the byte at which the reader stopped; bytes count from 1.
std::string placeText(const std::string& text, std::size_t byte)
{
    const std::size_t end = std::min(byte > 0 ? byte - 1 : 0, text.size());
    const std::size_t lines = static_cast<std::size_t>(
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
    const std::size_t start = lines == 0 ? 0 : text.rfind('\n', end - 1) + 1;
    const auto isLetterStart = [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    };
    const auto column =
        1 + std::count_if(text.begin() + static_cast<std::ptrdiff_t>(start),
                          text.begin() + static_cast<std::ptrdiff_t>(end), isLetterStart);
    return "line " + std::to_string(lines + 1) + ", column " + std::to_string(column);
}

bool hasParameters(const Json& json)
{
    return json.is_object() && json.contains(kParameters) && json[kParameters].is_object();
}

bool hasSteps(const Json& json)
{
    return json.is_object() && json.contains(kSteps) && json[kSteps].is_array() &&
           !json[kSteps].empty() && std::ranges::all_of(json[kSteps], hasParameters);
}

bool isPoint(const ParameterDescription& parameter, const Json& value)
{
    return parameter.shape.dimension > 1 && value.is_array() &&
           std::ranges::all_of(value, [](const Json& item) { return item.is_number(); });
}

/// Whether the value is of the parameter's kind; its range is checked elsewhere.
bool isOfKind(const ParameterDescription& parameter, const Json& value)
{
    if (parameter.shape.dimension > 1) return isPoint(parameter, value);
    if (parameter.type == kOfxParamTypeBoolean) return value.is_boolean();
    if (parameter.type == kOfxParamTypeChoice) {
        return value.is_string() || value.is_number_integer();
    }
    if (parameter.shape.type == Host::PropertyType::String) return value.is_string();
    return value.is_number();
}

const char* kindText(const ParameterDescription& parameter)
{
    if (parameter.shape.dimension > 1) return "a list of numbers";
    if (parameter.type == kOfxParamTypeBoolean) return "true or false";
    if (parameter.type == kOfxParamTypeChoice) return "the name of a choice";
    if (parameter.shape.type == Host::PropertyType::String) return "a string";
    return parameter.shape.type == Host::PropertyType::Int ? "an integer" : "a number";
}

/// A number with all its digits, and none that a person would not write.
std::string exactText(const Json& value)
{
    if (!value.is_number_float()) return value.dump();
    const auto number = value.get<double>();
    const std::string text = numberText(number);
    return std::strtod(text.c_str(), nullptr) == number ? text : value.dump();
}

std::string textOf(const Json& value)
{
    if (value.is_string()) return value.get<std::string>();
    if (!value.is_array()) return exactText(value);
    std::string text;
    for (const Json& item : value) appendItem(text, ",", exactText(item));
    return text;
}

NamedValue understand(const std::string& name, const Json& value,
                      const ContextDescription& description)
{
    const ParameterDescription* const parameter = description.parameter(name);
    if (parameter != nullptr && parameter->shape.dimension > 0 && !isOfKind(*parameter, value)) {
        throw UsageError(name + ": " + jsonText(value) + " is not " + kindText(*parameter));
    }
    return parseAssignment(name + "=" + textOf(value), description);
}

Json jsonOf(const ParameterDescription& parameter, const ParameterValue& value)
{
    const int* const number = std::get_if<int>(&value);
    if (number != nullptr && parameter.type == kOfxParamTypeBoolean) return *number != 0;
    if (number != nullptr && parameter.type == kOfxParamTypeChoice && *number >= 0 &&
        *number < static_cast<int>(parameter.options.size())) {
        return parameter.options[static_cast<std::size_t>(*number)];
    }
    return valueJson(value);
}

}  // namespace

Json readParameterFile(const fs::path& file)
{
    const std::string text = readText(file);
    Json json;
    try {
        json = Json::parse(text);
    } catch (const Json::parse_error& error) {
        throw FileError(nameOf(file), "is invalid JSON at " + placeText(text, error.byte));
    }
    if (!hasParameters(json) && !hasSteps(json)) {
        throw FileError(nameOf(file),
                        "holds no parameters: expected {\"parameters\": {\"name\": value}}");
    }
    for (const char* key : {kPlugin, kContext}) {
        if (json.contains(key) && !json[key].is_string()) {
            throw FileError(nameOf(file), std::string("\"") + key + "\" must be a string");
        }
    }
    return json;
}

std::string contextOfParameters(const fs::path& file)
{
    return readParameterFile(file).value(kContext, "");
}

ParameterValues loadParameters(const fs::path& file, const std::string& plugin,
                               const ContextDescription& description, std::size_t step)
{
    const Json json = readParameterFile(file);
    const std::string theirs = json.value(kPlugin, plugin);
    if (theirs != plugin) {
        throw UsageError(nameOf(file) + ": holds parameters of " + theirs + ", not of " + plugin);
    }
    ParameterValues values;
    const Json& holder = hasSteps(json) ? json[kSteps].at(step) : json;
    for (const auto& [name, value] : holder[kParameters].items()) {
        try {
            NamedValue understood = understand(name, value, description);
            values.insert_or_assign(std::move(understood.name), std::move(understood.value));
        } catch (const UsageError& error) {
            throw UsageError(nameOf(file) + ": " + error.what());
        }
    }
    return values;
}

Json parametersJson(const ContextDescription& description, const ParameterValues& values)
{
    Json parameters = Json::object();
    for (const ParameterDescription& parameter : description.parameters) {
        if (parameter.shape.dimension == 0 || !parameter.persistent) continue;
        parameters[parameter.name] =
            jsonOf(parameter, valueOf(parameter.name, values, description));
    }
    return parameters;
}

void saveParameters(const fs::path& file, const std::string& plugin,
                    const ContextDescription& description, const ParameterValues& values)
{
    writeJson(file, {{kPlugin, plugin},
                     {kContext, shortContextName(description.context)},
                     {kParameters, parametersJson(description, values)}});
}

void writeJson(const fs::path& file, const Json& json)
{
    const std::string text = json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
    Files::writeWhole(file, std::as_bytes(std::span(text)));
}

std::string jsonText(const Json& value)
{
    if (value.is_number_float()) return numberText(value.get<double>());
    if (!value.is_array()) return value.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string list;
    for (const Json& item : value) appendItem(list, ", ", jsonText(item));
    return "[" + list + "]";
}

Json valueJson(const ParameterValue& value)
{
    return std::visit(
        [](const auto& held) -> Json {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>) {
                return nullptr;
            } else {
                return held;
            }
        },
        value);
}

}  // namespace Tesseret::Render
