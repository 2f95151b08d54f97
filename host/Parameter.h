#pragma once

/// Parameters of an effect: what was described, and for an instance the values and their keys.

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/PropertySet.h"
#include "ofx/ofxParam.h"

namespace Tesseret::Host {

class EffectObject;

/// Integer, Boolean and Choice hold an int, Double a double, String and Custom a text; 2D, 3D and
/// colour parameters hold one number per dimension. Groups, pages and buttons hold no value.
using ParameterValue =
    std::variant<std::monostate, int, double, std::string, std::vector<int>, std::vector<double>>;

/// The form of a parameter type's values.
struct ParameterShape {
    PropertyType type = PropertyType::Int;
    std::size_t dimension = 0;  ///< 0: no value
};
/// False when there is no such parameter type.
bool parameterShape(std::string_view parameterType, ParameterShape& shape);

class Parameter {
public:
    Parameter(EffectObject& owner, std::string type, std::string name);
    /// An instance's parameter, with the properties described and the described default as its
    /// value.
    Parameter(EffectObject& owner, const Parameter& described);
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;

    OfxParamHandle handle() const { return handle_.as<OfxParamHandle>(); }
    EffectObject& owner() const { return owner_; }
    const std::string& type() const { return type_; }
    const std::string& name() const { return name_; }
    ParameterShape shape() const { return shape_; }
    bool hasValue() const { return shape_.dimension > 0; }
    PropertySet& properties() { return properties_; }
    const PropertySet& properties() const { return properties_; }

    ParameterValue value() const { return value_; }
    /// Between two keys doubles are interpolated linearly; all other types keep the earlier key's
    /// value.
    ParameterValue valueAt(OfxTime time) const;
    /// False when the value has another shape; an integer is accepted for a double.
    bool setValue(ParameterValue value);
    bool setValueAt(OfxTime time, ParameterValue value);
    /// Derivative with respect to time, and integral from time1 to time2, one number for each
    /// dimension; false unless the parameter holds doubles.
    bool derivative(OfxTime time, std::vector<double>& result) const;
    bool integral(OfxTime time1, OfxTime time2, std::vector<double>& result) const;
    const std::map<OfxTime, ParameterValue>& keys() const { return keys_; }
    std::map<OfxTime, ParameterValue>& keys() { return keys_; }
    /// The value that the property "OfxParamPropDefault" holds.
    ParameterValue defaultValue() const;
    void resetToDefault();

    /// The text that the suite last returned to the plug-in; valid until the next read.
    std::string& lentText() { return lentText_; }

private:
    bool shaped(ParameterValue& value) const;

    EffectObject& owner_;
    std::string type_;
    std::string name_;
    ParameterShape shape_;
    Handle handle_;
    PropertySet properties_;
    ParameterValue value_;
    std::map<OfxTime, ParameterValue> keys_;
    std::string lentText_;
};

/// The parameters of one descriptor or instance, in the order of definition.
class ParameterSet {
public:
    explicit ParameterSet(EffectObject& owner);
    OfxParamSetHandle handle() const { return handle_.as<OfxParamSetHandle>(); }
    EffectObject& owner() const { return owner_; }
    Parameter* find(std::string_view name) const;
    Parameter& add(std::unique_ptr<Parameter> parameter);
    const std::vector<std::unique_ptr<Parameter>>& all() const { return parameters_; }

    /// Groups of changes that the plug-in wants undone in one step. They nest; `endEdit` returns
    /// false when none is open.
    void beginEdit() { ++openEdits_; }
    bool endEdit();
    unsigned int openEdits() const { return openEdits_; }

private:
    EffectObject& owner_;
    Handle handle_;
    std::vector<std::unique_ptr<Parameter>> parameters_;
    unsigned int openEdits_ = 0;
};

}  // namespace Tesseret::Host
