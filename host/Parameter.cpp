#include "host/Parameter.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

#include "host/EffectObject.h"

namespace Tesseret::Host {

namespace {

struct TypeRow {
    const char* name;
    ParameterShape shape;
};

constexpr auto kTypes = std::to_array<TypeRow>({
    {kOfxParamTypeInteger, {PropertyType::Int, 1}},
    {kOfxParamTypeBoolean, {PropertyType::Int, 1}},
    {kOfxParamTypeChoice, {PropertyType::Int, 1}},
    {kOfxParamTypeInteger2D, {PropertyType::Int, 2}},
    {kOfxParamTypeInteger3D, {PropertyType::Int, 3}},
    {kOfxParamTypeDouble, {PropertyType::Double, 1}},
    {kOfxParamTypeDouble2D, {PropertyType::Double, 2}},
    {kOfxParamTypeDouble3D, {PropertyType::Double, 3}},
    {kOfxParamTypeRGB, {PropertyType::Double, 3}},
    {kOfxParamTypeRGBA, {PropertyType::Double, 4}},
    {kOfxParamTypeString, {PropertyType::String, 1}},
    {kOfxParamTypeCustom, {PropertyType::String, 1}},
    {kOfxParamTypeGroup, {}},
    {kOfxParamTypePage, {}},
    {kOfxParamTypePushButton, {}},
});

bool startsWith(const std::string& text, std::string_view start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool isColour(const std::string& type)
{
    return type == kOfxParamTypeRGB || type == kOfxParamTypeRGBA;
}

bool isPlainDouble(const std::string& type)
{
    return startsWith(type, kOfxParamTypeDouble);
}

bool isPlainInteger(const std::string& type)
{
    return startsWith(type, kOfxParamTypeInteger);
}

std::vector<PropertyValue> repeated(const PropertyValue& value, std::size_t count)
{
    return std::vector<PropertyValue>(count, value);
}

void defineValueProperties(PropertySet& properties, const std::string& type, ParameterShape shape)
{
    const PropertyValue initial = shape.type == PropertyType::Int      ? PropertyValue(0)
                                  : shape.type == PropertyType::Double ? PropertyValue(0.0)
                                                                       : PropertyValue("");
    properties.define(kOfxParamPropDefault, repeated(initial, shape.dimension));
    properties.define(kOfxParamPropAnimates, {1});
    properties.define(kOfxParamPropCanUndo, {1});
    properties.define(kOfxParamPropPersistant, {1});
    properties.define(kOfxParamPropEvaluateOnChange, {1});
    properties.define(kOfxParamPropPluginMayWrite, {0});
    properties.define(kOfxParamPropCacheInvalidation, {kOfxParamInvalidateValueChange});
    if (type == kOfxParamTypeChoice) {
        properties.defineList(kOfxParamPropChoiceOption, PropertyType::String);
    } else if (type == kOfxParamTypeString) {
        properties.define(kOfxParamPropStringMode, {kOfxParamStringIsSingleLine});
    }
}

void defineRange(PropertySet& properties, ParameterShape shape)
{
    const bool whole = shape.type == PropertyType::Int;
    const PropertyValue least = whole ? PropertyValue(std::numeric_limits<int>::min())
                                      : PropertyValue(std::numeric_limits<double>::lowest());
    const PropertyValue most = whole ? PropertyValue(std::numeric_limits<int>::max())
                                     : PropertyValue(std::numeric_limits<double>::max());
    for (const char* name : {kOfxParamPropMin, kOfxParamPropDisplayMin}) {
        properties.define(name, repeated(least, shape.dimension));
    }
    for (const char* name : {kOfxParamPropMax, kOfxParamPropDisplayMax}) {
        properties.define(name, repeated(most, shape.dimension));
    }
}

void defineProperties(PropertySet& properties, const std::string& type, const std::string& name,
                      ParameterShape shape)
{
    properties.define(kOfxPropType, {kOfxTypeParameter}, Access::ReadOnly);
    properties.define(kOfxParamPropType, {type}, Access::ReadOnly);
    properties.define(kOfxPropName, {name}, Access::ReadOnly);
    properties.define(kOfxPropLabel, {name});
    properties.define(kOfxParamPropScriptName, {name});
    properties.define(kOfxParamPropHint, {""});
    properties.define(kOfxParamPropParent, {""});
    properties.define(kOfxParamPropSecret, {0});
    properties.define(kOfxParamPropEnabled, {1});
    if (type == kOfxParamTypePage) {
        properties.defineList(kOfxParamPropPageChild, PropertyType::String);
    }
    if (shape.dimension == 0) return;
    defineValueProperties(properties, type, shape);
    if (isPlainDouble(type) || isColour(type) || isPlainInteger(type)) {
        defineRange(properties, shape);
    }
    if (isPlainDouble(type) || isColour(type)) {
        properties.define(kOfxParamPropIncrement, {1.0});
        properties.define(kOfxParamPropDigits, {2});
    }
    if (isPlainDouble(type)) {
        properties.define(kOfxParamPropDoubleType, {kOfxParamDoubleTypePlain});
    }
}

/// The doubles that a value holds; empty when it holds other types.
std::vector<double> fractions(const ParameterValue& value)
{
    if (const double* one = std::get_if<double>(&value)) return {*one};
    const auto* many = std::get_if<std::vector<double>>(&value);
    return many ? *many : std::vector<double>();
}

ParameterValue fromFractions(const std::vector<double>& numbers)
{
    return numbers.size() == 1 ? ParameterValue(numbers[0]) : ParameterValue(numbers);
}

/// from + (to - from) * part, number by number.
std::vector<double> between(const std::vector<double>& from, const std::vector<double>& to,
                            double part)
{
    std::vector<double> result(from.size());
    for (std::size_t i = 0; i < from.size(); ++i) result[i] = from[i] + (to[i] - from[i]) * part;
    return result;
}

}  // namespace

bool parameterShape(std::string_view parameterType, ParameterShape& shape)
{
    const auto row = std::find_if(kTypes.begin(), kTypes.end(),
                                  [&](const TypeRow& each) { return parameterType == each.name; });
    if (row == kTypes.end()) return false;
    shape = row->shape;
    return true;
}

Parameter::Parameter(EffectObject& owner, std::string type, std::string name)
    : owner_(owner),
      type_(std::move(type)),
      name_(std::move(name)),
      handle_(HandleKind::Parameter, this),
      properties_(owner.host(), (type_ == kOfxParamTypePage ? "page " : "param ") + name_)
{
    parameterShape(type_, shape_);
    defineProperties(properties_, type_, name_, shape_);
    resetToDefault();
}

Parameter::Parameter(EffectObject& owner, const Parameter& described)
    : Parameter(owner, described.type_, described.name_)
{
    properties_.copyFrom(described.properties_);
    resetToDefault();
}

ParameterValue Parameter::defaultValue() const
{
    if (shape_.dimension == 0) return {};
    switch (shape_.type) {
        case PropertyType::Int: {
            const std::vector<int> numbers = properties_.ints(kOfxParamPropDefault);
            return shape_.dimension == 1 ? ParameterValue(numbers.at(0)) : ParameterValue(numbers);
        }
        case PropertyType::Double:
            return fromFractions(properties_.doubles(kOfxParamPropDefault));
        default:
            return properties_.stringOr(kOfxParamPropDefault, "");
    }
}

void Parameter::resetToDefault()
{
    keys_.clear();
    value_ = defaultValue();
}

/// Brings a value into the parameter's shape; false when it is another.
bool Parameter::shaped(ParameterValue& value) const
{
    if (shape_.type == PropertyType::Double) {
        if (const int* whole = std::get_if<int>(&value))
            value = double{static_cast<double>(*whole)};
        if (const auto* wholes = std::get_if<std::vector<int>>(&value)) {
            value = std::vector<double>(wholes->begin(), wholes->end());
        }
    }
    if (value.index() != value_.index()) return false;
    if (const auto* ints = std::get_if<std::vector<int>>(&value)) {
        return ints->size() == shape_.dimension;
    }
    const auto* doubles = std::get_if<std::vector<double>>(&value);
    return hasValue() && (!doubles || doubles->size() == shape_.dimension);
}

bool Parameter::setValue(ParameterValue value)
{
    if (!shaped(value)) return false;
    value_ = std::move(value);
    return true;
}

bool Parameter::setValueAt(OfxTime time, ParameterValue value)
{
    if (!shaped(value)) return false;
    keys_[time] = std::move(value);
    return true;
}

ParameterValue Parameter::valueAt(OfxTime time) const
{
    if (keys_.empty()) return value_;
    const auto after = keys_.upper_bound(time);
    if (after == keys_.begin()) return after->second;
    const auto before = std::prev(after);
    const std::vector<double> from = fractions(before->second);
    if (after == keys_.end() || from.empty()) return before->second;
    const double part = (time - before->first) / (after->first - before->first);
    return fromFractions(between(from, fractions(after->second), part));
}

bool Parameter::derivative(OfxTime time, std::vector<double>& result) const
{
    if (shape_.type != PropertyType::Double || !hasValue()) return false;
    result.assign(shape_.dimension, 0.0);
    const auto after = keys_.upper_bound(time);
    if (after == keys_.begin() || after == keys_.end()) return true;
    const auto before = std::prev(after);
    const std::vector<double> from = fractions(before->second);
    const std::vector<double> to = fractions(after->second);
    for (std::size_t i = 0; i < from.size(); ++i) {
        result[i] = (to[i] - from[i]) / (after->first - before->first);
    }
    return true;
}

bool Parameter::integral(OfxTime time1, OfxTime time2, std::vector<double>& result) const
{
    if (shape_.type != PropertyType::Double || !hasValue()) return false;
    result.assign(shape_.dimension, 0.0);
    const OfxTime low = std::min(time1, time2);
    const OfxTime high = std::max(time1, time2);
    // Linear pieces between time1, the keys in between and time2.
    OfxTime from = low;
    for (auto key = keys_.upper_bound(low); from < high; ++key) {
        const bool last = key == keys_.end() || key->first >= high;
        const OfxTime to = last ? high : key->first;
        const std::vector<double> start = fractions(valueAt(from));
        const std::vector<double> end = fractions(valueAt(to));
        for (std::size_t i = 0; i < start.size(); ++i) {
            result[i] += (start[i] + end[i]) / 2.0 * (to - from);
        }
        from = to;
        if (last) break;
    }
    if (time2 < time1) {
        for (double& area : result) area = -area;
    }
    return true;
}

ParameterSet::ParameterSet(EffectObject& owner)
    : owner_(owner), handle_(HandleKind::ParameterSet, this)
{}

Parameter* ParameterSet::find(std::string_view name) const
{
    const auto found = std::find_if(parameters_.begin(), parameters_.end(),
                                    [&](const auto& each) { return each->name() == name; });
    return found == parameters_.end() ? nullptr : found->get();
}

Parameter& ParameterSet::add(std::unique_ptr<Parameter> parameter)
{
    return *parameters_.emplace_back(std::move(parameter));
}

bool ParameterSet::endEdit()
{
    if (openEdits_ == 0) return false;
    --openEdits_;
    return true;
}

}  // namespace Tesseret::Host
