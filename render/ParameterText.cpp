#include "render/ParameterText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "render/JobError.h"
#include "render/NearestName.h"
#include "render/PluginSession.h"

namespace Tesseret::Render {

using Host::ParameterDescription;
using Host::ParameterValue;
using Host::PropertyType;

namespace {

std::string inQuotes(std::string_view text)
{
    return std::string(1, '"').append(text).append(1, '"');
}

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

bool isSettable(const ParameterDescription& parameter)
{
    return parameter.shape.dimension > 0;
}

const ParameterDescription& findParameter(std::string_view name,
                                          const Host::ContextDescription& description)
{
    std::vector<std::string> names;
    for (const ParameterDescription& parameter : description.parameters) {
        if (!isSettable(parameter)) continue;
        if (parameter.name == name) return parameter;
        names.push_back(parameter.name);
    }
    const std::string nearest = nearestName(name, names);
    throw UsageError("no parameter " + inQuotes(name) + " in the context " +
                     shortContextName(description.context) +
                     (nearest.empty() ? "" : "; did you mean " + inQuotes(nearest) + "?"));
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text)
{
    if (text.starts_with('+')) text.remove_prefix(1);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

[[noreturn]] void refuse(const ParameterDescription& parameter, std::string_view text,
                         const std::string& message)
{
    throw UsageError(parameter.name + "=" + std::string(text) + ": " + message);
}

int parseBoolean(const ParameterDescription& parameter, std::string_view text)
{
    const std::string word = lowered(text);
    for (const char* yes : {"true", "1", "on", "yes"}) {
        if (word == yes) return 1;
    }
    for (const char* no : {"false", "0", "off", "no"}) {
        if (word == no) return 0;
    }
    refuse(parameter, text, "expected true or false");
}

int parseChoice(const ParameterDescription& parameter, std::string_view text)
{
    const auto& options = parameter.options;
    for (const bool exactly : {true, false}) {
        for (std::size_t i = 0; i < options.size(); ++i) {
            if (exactly ? options[i] == text : lowered(options[i]) == lowered(text)) {
                return static_cast<int>(i);
            }
        }
    }
    const std::optional<int> index = parseNumber<int>(text);
    if (index && *index >= 0 && *index < static_cast<int>(options.size())) return *index;
    std::string choices;
    for (std::size_t i = 0; i < options.size(); ++i) {
        appendItem(choices, ", ", inQuotes(options[i]) + " (" + std::to_string(i) + ")");
    }
    refuse(parameter, text, "the choices are " + choices);
}

void checkRange(const ParameterDescription& parameter, std::string_view text, std::size_t dimension,
                double number)
{
    const bool tooLow = dimension < parameter.min.size() && !(number >= parameter.min[dimension]);
    const bool tooHigh = dimension < parameter.max.size() && !(number <= parameter.max[dimension]);
    if (tooLow || tooHigh || !std::isfinite(number)) {
        refuse(parameter, text, "the range is " + rangeText(parameter.min, parameter.max));
    }
}

/// As many numbers as the parameter has dimensions, separated by commas.
template <typename Number>
std::vector<Number> parseNumbers(const ParameterDescription& parameter, std::string_view text)
{
    constexpr bool isInteger = std::is_same_v<Number, int>;
    const std::size_t count = parameter.shape.dimension;
    std::string expected = isInteger ? "expected an integer" : "expected a number";
    if (count > 1) {
        expected = "expected " + std::to_string(count) + (isInteger ? " integers" : " numbers") +
                   ", separated by commas";
    }
    std::vector<Number> numbers;
    for (std::string_view rest = text;;) {
        const std::size_t comma = rest.find(',');
        const std::string_view part = rest.substr(0, comma);
        const std::optional<Number> number = parseNumber<Number>(part);
        if (!number) {
            // It may be too large for its type: then the range is the better message.
            if (const auto real = parseNumber<double>(part);
                real && isInteger && count == 1 && *real == std::floor(*real)) {
                checkRange(parameter, text, 0, *real);
            }
            refuse(parameter, text, expected);
        }
        numbers.push_back(*number);
        if (comma == std::string_view::npos) break;
        rest.remove_prefix(comma + 1);
    }
    if (numbers.size() != count) refuse(parameter, text, expected);
    for (std::size_t i = 0; i < count; ++i) {
        checkRange(parameter, text, i, static_cast<double>(numbers[i]));
    }
    return numbers;
}

template <typename Number>
ParameterValue numbersValue(std::vector<Number> numbers)
{
    if (numbers.size() == 1) return numbers.front();
    return numbers;
}

ParameterValue parseValue(const ParameterDescription& parameter, std::string_view text)
{
    if (parameter.type == kOfxParamTypeBoolean) return parseBoolean(parameter, text);
    if (parameter.type == kOfxParamTypeChoice) return parseChoice(parameter, text);
    switch (parameter.shape.type) {
        case PropertyType::Int:
            return numbersValue(parseNumbers<int>(parameter, text));
        case PropertyType::Double:
            return numbersValue(parseNumbers<double>(parameter, text));
        default:
            return std::string(text);
    }
}

struct ValueWriter {
    const ParameterDescription& parameter;

    std::string operator()(std::monostate /*none*/) const { return {}; }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(double number) const { return numberText(number); }
    std::string operator()(int number) const
    {
        if (parameter.type == kOfxParamTypeBoolean) return number != 0 ? "true" : "false";
        const bool named = parameter.type == kOfxParamTypeChoice && number >= 0 &&
                           number < static_cast<int>(parameter.options.size());
        return named ? parameter.options[static_cast<std::size_t>(number)] : std::to_string(number);
    }
    template <typename Number>
    std::string operator()(const std::vector<Number>& numbers) const
    {
        std::string text;
        for (const Number number : numbers) {
            appendItem(text, ",", numberText(static_cast<double>(number)));
        }
        return text;
    }
};

/// Without an exponent wherever a person would write none.
template <typename Number>
std::string shortestText(Number number)
{
    constexpr double kMostDigits = 1e15;
    std::array<char, 64> text{};
    char* const begin = text.data();
    char* const end = begin + text.size();
    const auto format = std::fabs(static_cast<double>(number)) < kMostDigits
                            ? std::chars_format::fixed
                            : std::chars_format::general;
    const std::to_chars_result result = std::to_chars(begin, end, number, format);
    std::string written =
        result.ec == std::errc() ? std::string(begin, result.ptr) : std::to_string(number);
    if (const std::size_t plus = written.find('+'); plus != std::string::npos) {
        written.erase(plus, 1);
    }
    return written == "-0" ? "0" : written;
}

}  // namespace

const Host::ParameterValue& valueOf(const std::string& name, const ParameterValues& values,
                                    const Host::ContextDescription& description)
{
    const auto set = values.find(name);
    return set != values.end() ? set->second : description.parameter(name)->initial;
}

NamedValue parseAssignment(std::string_view text, const Host::ContextDescription& description)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw UsageError(inQuotes(text) + " is neither an option nor name=value");
    }
    const ParameterDescription& parameter = findParameter(text.substr(0, equals), description);
    return {parameter.name, parseValue(parameter, text.substr(equals + 1))};
}

std::string valueText(const ParameterDescription& parameter, const ParameterValue& value)
{
    return std::visit(ValueWriter{parameter}, value);
}

std::string rangeText(const std::vector<double>& min, const std::vector<double>& max)
{
    if (min.empty() || min.size() != max.size()) return {};
    std::string text;
    for (std::size_t i = 0; i < min.size(); ++i) {
        const std::string range = numberText(min[i]) + " to " + numberText(max[i]);
        if (range == text) continue;
        appendItem(text, ", ", range);
    }
    return text;
}

std::string numberText(double number)
{
    constexpr int kDigits = 12;  // what lies beyond is rounding
    // Plug-ins with float values report 0.2f, which has many digits in double precision.
    const auto single = static_cast<float>(number);
    if (static_cast<double>(single) == number) return shortestText(single);
    return roundedText(number, kDigits);
}

std::string roundedText(double number, int digits)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*g", digits, number);
    return shortestText(std::strtod(text.data(), nullptr));
}

void appendItem(std::string& list, std::string_view separator, std::string_view item)
{
    if (!list.empty()) list.append(separator);
    list.append(item);
}

}  // namespace Tesseret::Render
