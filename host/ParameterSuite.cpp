/// "OfxParameterSuite": definition, values, keys. The variable arguments depend on the parameter's
/// type.

#include <array>
#include <cstdarg>
#include <iterator>
#include <string>

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

ParameterSet* findSet(OfxParamSetHandle handle)
{
    return static_cast<ParameterSet*>(findObject(HandleKind::ParameterSet, handle));
}

Parameter* findParameter(OfxParamHandle handle)
{
    return static_cast<Parameter*>(findObject(HandleKind::Parameter, handle));
}

OfxStatus noHandle(const char* function)
{
    return badCall(std::string(function) + ": no such handle", kOfxStatErrBadHandle);
}

OfxStatus wrong(const Parameter& parameter, const std::string& what, OfxStatus status)
{
    return parameter.owner().host().badCall("param " + parameter.name() + ": " + what, status);
}

OfxStatus nullResult(const char* function)
{
    return badCall(std::string(function) + ": a null pointer for the result", kOfxStatErrValue);
}

// Definition and look-up

OfxStatus paramDefine(OfxParamSetHandle handle, const char* type, const char* name,
                      OfxPropertySetHandle* properties)
{
    ParameterSet* const set = findSet(handle);
    if (!set) return noHandle("paramDefine");
    EmbeddedHost& host = set->owner().host();
    if (!type || !name || !*name) {
        return host.badCall("paramDefine: no type or no name", kOfxStatErrValue);
    }
    const std::string label = std::string("paramDefine: ") + name;
    if (!set->owner().describing()) {
        return host.badCall(label + ": not while describing", kOfxStatFailed);
    }
    ParameterShape shape;
    if (!parameterShape(type, shape)) {
        return host.badCall(label + ": no such type, " + type, kOfxStatErrUnknown);
    }
    if (set->find(name)) return host.badCall(label + ": defined already", kOfxStatErrExists);
    Parameter& made = set->add(std::make_unique<Parameter>(set->owner(), type, name));
    if (properties) *properties = made.properties().handle();
    return kOfxStatOK;
}

OfxStatus paramGetHandle(OfxParamSetHandle handle, const char* name, OfxParamHandle* parameter,
                         OfxPropertySetHandle* properties)
{
    ParameterSet* const set = findSet(handle);
    if (!set) return noHandle("paramGetHandle");
    if (!parameter) return nullResult("paramGetHandle");
    *parameter = nullptr;
    EmbeddedHost& host = set->owner().host();
    if (!set->owner().instance()) {
        return host.badCall("paramGetHandle: not allowed while describing", kOfxStatErrBadHandle);
    }
    Parameter* const found = name ? set->find(name) : nullptr;
    if (!found) {
        host.report(Report::Kind::Note,
                    std::string("paramGetHandle: no such parameter, ") + (name ? name : "null"));
        return kOfxStatErrUnknown;
    }
    *parameter = found->handle();
    if (properties) *properties = found->properties().handle();
    return kOfxStatOK;
}

OfxStatus paramSetGetPropertySet(OfxParamSetHandle handle, OfxPropertySetHandle* properties)
{
    ParameterSet* const set = findSet(handle);
    if (!set) return noHandle("paramSetGetPropertySet");
    if (!properties) return nullResult("paramSetGetPropertySet");
    *properties = set->owner().properties().handle();
    return kOfxStatOK;
}

OfxStatus paramGetPropertySet(OfxParamHandle handle, OfxPropertySetHandle* properties)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramGetPropertySet");
    if (!properties) return nullResult("paramGetPropertySet");
    *properties = parameter->properties().handle();
    return kOfxStatOK;
}

// Values. Each va_list is walked once, in the order of the dimensions.

/// Calls va_end on every path.
struct Arguments {
    std::va_list list;
};

/// The `count` pointers that follow; false when one is null.
template <typename T>
bool takePointers(Arguments& arguments, std::size_t count, std::array<T*, 4>& pointers)
{
    bool complete = true;
    for (std::size_t i = 0; i < count; ++i) {
        pointers[i] = va_arg(arguments.list, T*);
        complete = complete && pointers[i];
    }
    return complete;
}

template <typename T>
bool giveNumbers(Arguments& arguments, const std::vector<T>& numbers)
{
    std::array<T*, 4> pointers{};
    if (!takePointers(arguments, numbers.size(), pointers)) return false;
    for (std::size_t i = 0; i < numbers.size(); ++i) *pointers[i] = numbers[i];
    return true;
}

bool giveValue(Parameter& parameter, Arguments& arguments, const ParameterValue& value)
{
    if (const int* whole = std::get_if<int>(&value)) {
        return giveNumbers<int>(arguments, {*whole});
    }
    if (const double* number = std::get_if<double>(&value)) {
        return giveNumbers<double>(arguments, {*number});
    }
    if (const auto* wholes = std::get_if<std::vector<int>>(&value)) {
        return giveNumbers(arguments, *wholes);
    }
    if (const auto* numbers = std::get_if<std::vector<double>>(&value)) {
        return giveNumbers(arguments, *numbers);
    }
    char** const text = va_arg(arguments.list, char**);
    if (!text) return false;
    parameter.lentText() = std::get<std::string>(value);
    *text = parameter.lentText().data();
    return true;
}

OfxStatus give(Parameter& parameter, Arguments& arguments, const ParameterValue& value)
{
    if (!parameter.hasValue()) return wrong(parameter, "it has no value", kOfxStatErrUnsupported);
    return giveValue(parameter, arguments, value)
               ? kOfxStatOK
               : wrong(parameter, "a null pointer for the value", kOfxStatErrValue);
}

template <typename T>
ParameterValue takeNumbers(Arguments& arguments, std::size_t count)
{
    if (count == 1) return va_arg(arguments.list, T);
    std::vector<T> numbers(count);
    for (T& number : numbers) number = va_arg(arguments.list, T);
    return numbers;
}

ParameterValue takeValue(const Parameter& parameter, Arguments& arguments)
{
    const ParameterShape shape = parameter.shape();
    switch (shape.type) {
        case PropertyType::Int:
            return takeNumbers<int>(arguments, shape.dimension);
        case PropertyType::Double:
            return takeNumbers<double>(arguments, shape.dimension);
        default:
            break;
    }
    const char* const text = va_arg(arguments.list, const char*);
    return std::string(text ? text : "");
}

OfxStatus storeValue(Parameter& parameter, Arguments& arguments, const OfxTime* time)
{
    if (!parameter.hasValue()) return wrong(parameter, "it has no value", kOfxStatErrUnsupported);
    Instance* const instance = parameter.owner().instance();
    if (!instance) return wrong(parameter, "set while describing", kOfxStatErrBadHandle);
    const auto current = [&] { return time ? parameter.valueAt(*time) : parameter.value(); };
    const ParameterValue before = current();
    ParameterValue value = takeValue(parameter, arguments);
    if (time) {
        parameter.setValueAt(*time, std::move(value));
    } else {
        parameter.setValue(std::move(value));
    }
    instance->pluginEdited({parameter, before, current(), kOfxChangePluginEdited});
    return kOfxStatOK;
}

/// A function of a parameter and the arguments after the last named one.
template <typename Work>
OfxStatus withParameter(const char* function, OfxParamHandle handle, Work work)
{
    return guarded([&] {
        Parameter* const parameter = findParameter(handle);
        return parameter ? work(*parameter) : noHandle(function);
    });
}

OfxStatus paramGetValue(OfxParamHandle handle, ...)
{
    Arguments arguments;
    va_start(arguments.list, handle);
    const OfxStatus status = withParameter("paramGetValue", handle, [&](Parameter& parameter) {
        const Instance* const instance = parameter.owner().instance();
        const OfxTime time = instance ? instance->currentTime() : 0.0;
        return give(parameter, arguments, parameter.valueAt(time));
    });
    va_end(arguments.list);
    return status;
}

OfxStatus paramGetValueAtTime(OfxParamHandle handle, OfxTime time, ...)
{
    Arguments arguments;
    va_start(arguments.list, time);
    const OfxStatus status = withParameter(
        "paramGetValueAtTime", handle,
        [&](Parameter& parameter) { return give(parameter, arguments, parameter.valueAt(time)); });
    va_end(arguments.list);
    return status;
}

OfxStatus paramGetDerivative(OfxParamHandle handle, OfxTime time, ...)
{
    Arguments arguments;
    va_start(arguments.list, time);
    const OfxStatus status = withParameter("paramGetDerivative", handle, [&](Parameter& parameter) {
        if (const auto refused = parameter.owner().host().behaviour().derivativeStatus()) {
            return *refused;
        }
        std::vector<double> result;
        return parameter.derivative(time, result) ? give(parameter, arguments, result)
                                                  : kOfxStatErrUnsupported;
    });
    va_end(arguments.list);
    return status;
}

OfxStatus paramGetIntegral(OfxParamHandle handle, OfxTime time1, OfxTime time2, ...)
{
    Arguments arguments;
    va_start(arguments.list, time2);
    const OfxStatus status = withParameter("paramGetIntegral", handle, [&](Parameter& parameter) {
        if (const auto refused = parameter.owner().host().behaviour().derivativeStatus()) {
            return *refused;
        }
        std::vector<double> result;
        return parameter.integral(time1, time2, result) ? give(parameter, arguments, result)
                                                        : kOfxStatErrUnsupported;
    });
    va_end(arguments.list);
    return status;
}

OfxStatus paramSetValue(OfxParamHandle handle, ...)
{
    Arguments arguments;
    va_start(arguments.list, handle);
    const OfxStatus status = withParameter("paramSetValue", handle, [&](Parameter& parameter) {
        return storeValue(parameter, arguments, nullptr);
    });
    va_end(arguments.list);
    return status;
}

OfxStatus paramSetValueAtTime(OfxParamHandle handle, OfxTime time, ...)
{
    Arguments arguments;
    va_start(arguments.list, time);
    const OfxStatus status = withParameter(
        "paramSetValueAtTime", handle,
        [&](Parameter& parameter) { return storeValue(parameter, arguments, &time); });
    va_end(arguments.list);
    return status;
}

// Keys

OfxStatus paramGetNumKeys(OfxParamHandle handle, unsigned int* count)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramGetNumKeys");
    if (!count) return nullResult("paramGetNumKeys");
    *count = static_cast<unsigned int>(parameter->keys().size());
    return kOfxStatOK;
}

OfxStatus paramGetKeyTime(OfxParamHandle handle, unsigned int nth, OfxTime* time)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramGetKeyTime");
    if (!time) return nullResult("paramGetKeyTime");
    if (nth >= parameter->keys().size()) {
        return wrong(*parameter, "no such key", kOfxStatErrBadIndex);
    }
    *time = std::next(parameter->keys().begin(), static_cast<std::ptrdiff_t>(nth))->first;
    return kOfxStatOK;
}

/// direction: 0 the key at the time, above 0 the next one, below 0 the one before. Returns 1 where
/// there is no such key.
OfxStatus paramGetKeyIndex(OfxParamHandle handle, OfxTime time, int direction, int* index)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramGetKeyIndex");
    if (!index) return nullResult("paramGetKeyIndex");
    const auto& keys = parameter->keys();
    auto key = direction > 0 ? keys.upper_bound(time) : keys.lower_bound(time);
    if (direction < 0) {
        key = key == keys.begin() ? keys.end() : std::prev(key);
    } else if (direction == 0 && key != keys.end() && key->first != time) {
        key = keys.end();
    }
    if (key == keys.end()) return kOfxStatFailed;
    *index = static_cast<int>(std::distance(keys.begin(), key));
    return kOfxStatOK;
}

OfxStatus paramDeleteKey(OfxParamHandle handle, OfxTime time)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramDeleteKey");
    if (parameter->keys().erase(time) == 0) {
        return wrong(*parameter, "no such key", kOfxStatErrBadIndex);
    }
    return kOfxStatOK;
}

OfxStatus paramDeleteAllKeys(OfxParamHandle handle)
{
    Parameter* const parameter = findParameter(handle);
    if (!parameter) return noHandle("paramDeleteAllKeys");
    parameter->keys().clear();
    return kOfxStatOK;
}

OfxStatus paramCopy(OfxParamHandle to, OfxParamHandle from, OfxTime dstOffset,
                    const OfxRangeD* frameRange)
{
    Parameter* const target = findParameter(to);
    const Parameter* const source = findParameter(from);
    if (!target || !source) return noHandle("paramCopy");
    const ParameterValue before = target->value();
    if (!target->setValue(source->value())) {
        return wrong(*target, "copied from another type", kOfxStatErrValue);
    }
    if (target == source) return kOfxStatOK;
    target->keys().clear();
    for (const auto& [time, value] : source->keys()) {
        if (frameRange && (time < frameRange->min || time > frameRange->max)) continue;
        target->setValueAt(time + dstOffset, value);
    }
    if (Instance* const instance = target->owner().instance()) {
        instance->pluginEdited({*target, before, target->value(), kOfxChangePluginEdited});
    }
    return kOfxStatOK;
}

OfxStatus paramEditBegin(OfxParamSetHandle handle, const char* label)
{
    ParameterSet* const set = findSet(handle);
    if (!set) return noHandle("paramEditBegin");
    set->beginEdit();
    if (Instance* const instance = set->owner().instance()) {
        instance->pluginBeganEdit(label ? label : "");
    }
    return kOfxStatOK;
}

OfxStatus paramEditEnd(OfxParamSetHandle handle)
{
    ParameterSet* const set = findSet(handle);
    if (!set) return noHandle("paramEditEnd");
    if (!set->endEdit()) {
        return set->owner().host().badCall("paramEditEnd: no edit was begun", kOfxStatFailed);
    }
    if (Instance* const instance = set->owner().instance()) instance->pluginEndedEdit();
    return kOfxStatOK;
}

}  // namespace

const OfxParameterSuiteV1& parameterSuite()
{
    static constexpr OfxParameterSuiteV1 kSuite{
        .paramDefine = kGuarded<&paramDefine>,
        .paramGetHandle = kGuarded<&paramGetHandle>,
        .paramSetGetPropertySet = kGuarded<&paramSetGetPropertySet>,
        .paramGetPropertySet = kGuarded<&paramGetPropertySet>,
        .paramGetValue = &paramGetValue,
        .paramGetValueAtTime = &paramGetValueAtTime,
        .paramGetDerivative = &paramGetDerivative,
        .paramGetIntegral = &paramGetIntegral,
        .paramSetValue = &paramSetValue,
        .paramSetValueAtTime = &paramSetValueAtTime,
        .paramGetNumKeys = kGuarded<&paramGetNumKeys>,
        .paramGetKeyTime = kGuarded<&paramGetKeyTime>,
        .paramGetKeyIndex = kGuarded<&paramGetKeyIndex>,
        .paramDeleteKey = kGuarded<&paramDeleteKey>,
        .paramDeleteAllKeys = kGuarded<&paramDeleteAllKeys>,
        .paramCopy = kGuarded<&paramCopy>,
        .paramEditBegin = kGuarded<&paramEditBegin>,
        .paramEditEnd = kGuarded<&paramEditEnd>,
    };
    return kSuite;
}

}  // namespace Tesseret::Host
