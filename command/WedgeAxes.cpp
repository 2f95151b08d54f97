#include "command/WedgeAxes.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <regex>
#include <utility>

#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Command {

using Host::ParameterDescription;

namespace {

/// What may be written for a parameter, for the end of a message.
std::string rangeOf(const ParameterDescription& parameter)
{
    const std::string range = Render::rangeText(parameter.min, parameter.max);
    return range.empty() ? "" : "; the range is " + range;
}

/// Reads the text of one parameter.
class ListReader {
public:
    ListReader(const ParameterDescription& parameter, const Host::ContextDescription& description,
               std::string text)
        : parameter_(parameter), description_(description), text_(std::move(text))
    {}

    std::vector<std::string> values();

private:
    [[noreturn]] void refuse(const std::string& reason) const
    {
        throw Render::UsageError(parameter_.name + "=" + text_ + ": " + reason +
                                 rangeOf(parameter_));
    }
    bool isSingle() const;
    void addItem(const std::string& item);
    void addRange(double first, double last, double step);
    void add(const std::string& value);

    const ParameterDescription& parameter_;
    const Host::ContextDescription& description_;
    std::string text_;
    std::vector<std::string> values_;
};

/// Whether commas are a part of the value.
bool ListReader::isSingle() const
{
    return parameter_.shape.dimension > 1 || parameter_.shape.type == Host::PropertyType::String ||
           std::ranges::find(parameter_.options, text_) != parameter_.options.end();
}

std::vector<std::string> ListReader::values()
{
    if (isSingle()) {
        add(text_);
        return std::move(values_);
    }
    for (std::size_t begin = 0; begin <= text_.size();) {
        const std::size_t end = std::min(text_.find(',', begin), text_.size());
        addItem(text_.substr(begin, end - begin));
        begin = end + 1;
    }
    return std::move(values_);
}

void ListReader::addItem(const std::string& item)
{
    static const std::regex kRange(R"(([+-]?\d+\.?\d*)-([+-]?\d+\.?\d*)(?:x([+-]?\d+\.?\d*))?)");
    if (item.empty()) {
        refuse("has an empty value; write 1,2,5 for a list and 1-9x2 for a range");
    }
    std::smatch parts;
    if (!std::regex_match(item, parts, kRange)) return add(item);
    addRange(std::stod(parts[1]), std::stod(parts[2]),
             parts[3].matched ? std::stod(parts[3]) : 1.0);
}

void ListReader::addRange(double first, double last, double step)
{
    if (last < first) refuse("runs downwards");
    if (!(step > 0.0)) refuse("its step must be above 0");
    // A last value that rounding misses by a little counts.
    const double count = std::floor((last - first) / step + 1e-6) + 1.0;
    if (count > double(kMostTiles)) {
        refuse("has more than " + std::to_string(kMostTiles) + " values");
    }
    constexpr double kDigits = 1e9;
    for (int i = 0; i < static_cast<int>(count); ++i) {
        add(Render::numberText(std::round((first + i * step) * kDigits) / kDigits));
    }
}

/// As it is written shortest, once.
void ListReader::add(const std::string& value)
{
    const Render::NamedValue parsed =
        Render::parseAssignment(parameter_.name + "=" + value, description_);
    const std::string text = Render::valueText(parameter_, parsed.value);
    if (std::ranges::find(values_, text) == values_.end()) values_.push_back(text);
}

std::string namesOf(const std::vector<WedgeAxis>& axes)
{
    std::string names;
    for (const WedgeAxis& axis : axes) Render::appendItem(names, ", ", axis.name);
    return names;
}

void check(const WedgeValues& values)
{
    if (values.axes.empty()) {
        throw Render::UsageError(
            "a wedge needs a parameter with several values, as in seed=1-4 or blockSize=30,50,80");
    }
    if (values.axes.size() > kMostAxes) {
        throw Render::UsageError(namesOf(values.axes) + ": only three may have several values");
    }
    if (values.tiles() > kMostTiles) {
        throw Render::UsageError(namesOf(values.axes) + ": these are " +
                                 std::to_string(values.tiles()) + " pictures; at most " +
                                 std::to_string(kMostTiles) + " go on a sheet");
    }
}

}  // namespace

std::size_t WedgeValues::tiles() const
{
    std::size_t count = 1;
    for (const WedgeAxis& axis : axes) count *= axis.values.size();
    return count;
}

WedgeValues wedgeValues(const std::vector<std::string>& assignments,
                        const Host::ContextDescription& description)
{
    WedgeValues values;
    for (const std::string& text : assignments) {
        const std::size_t equals = std::min(text.find('='), text.size());
        const std::string name = text.substr(0, equals);
        const ParameterDescription* const parameter = description.parameter(name);
        if (parameter == nullptr || equals == text.size() || parameter->shape.dimension == 0) {
            static_cast<void>(Render::parseAssignment(text, description));  // throws
            continue;
        }
        WedgeAxis axis{name, ListReader(*parameter, description, text.substr(equals + 1)).values()};
        const auto isSame = [&](const WedgeAxis& other) { return other.name == name; };
        if (std::ranges::any_of(values.axes, isSame)) {
            throw Render::UsageError(name + " is given twice");
        }
        if (axis.values.size() > 1) {
            values.axes.push_back(std::move(axis));
        } else {
            values.fixed.push_back(axis.assignment(0));
        }
    }
    check(values);
    return values;
}

}  // namespace Tesseret::Command
