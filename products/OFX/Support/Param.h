#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <tuple>

#include "ofx/ofxParam.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/InstanceRecord.h"
#include "products/OFX/Support/PropertySet.h"

namespace Orvane {

/// The host's side of one parameter of an instance, possibly unknown to the host.
///
/// Values are arrays of the components that the host passes: `int` for integers, booleans and
/// choices, `double` for all others. Every read starts from zeros, so a failed call yields them.
class OvOfxParamHandle {
public:
    /// Asks the host for the parameter and, when it has one, for its property set.
    OvOfxParamHandle(const OvOfxInstanceRecord& record, std::string name);

    /// Whether the host has the parameter. On an unknown one only `setEnabled` may be called, which
    /// then does nothing.
    [[nodiscard]] bool isKnown() const { return param_ != nullptr; }

    template <typename T, std::size_t N>
    [[nodiscard]] std::array<T, N> value() const
    {
        return filled<T, N>([this](auto*... parts) { suite().paramGetValue(param_, parts...); });
    }

    template <typename T, std::size_t N>
    [[nodiscard]] std::array<T, N> valueAt(double time) const
    {
        return filled<T, N>(
            [&](auto*... parts) { suite().paramGetValueAtTime(param_, time, parts...); });
    }

    /// These functions are optional for hosts; without them the parameter counts as unbound.
    [[nodiscard]] static bool canDerive() { return suite().paramGetDerivative != nullptr; }
    [[nodiscard]] static bool canIntegrate() { return suite().paramGetIntegral != nullptr; }

    template <std::size_t N>
    [[nodiscard]] std::array<double, N> derivative(double time) const
    {
        return filled<double, N>(
            [&](auto*... parts) { suite().paramGetDerivative(param_, time, parts...); });
    }

    template <std::size_t N>
    [[nodiscard]] std::array<double, N> integral(double from, double to) const
    {
        return filled<double, N>(
            [&](auto*... parts) { suite().paramGetIntegral(param_, from, to, parts...); });
    }

    template <typename T, std::size_t N>
    void setValue(const std::array<T, N>& value) const
    {
        std::apply([this](auto... parts) { suite().paramSetValue(param_, parts...); }, value);
    }

    /// Whether the user may change the parameter.
    void setEnabled(bool enabled) const;

private:
    [[nodiscard]] static const OfxParameterSuiteV1& suite()
    {
        return *hostDescription().suites.parameter;
    }

    template <typename T, std::size_t N, typename Read>
    [[nodiscard]] static std::array<T, N> filled(const Read& read)
    {
        std::array<T, N> value{};
        std::apply([&](auto&... parts) { read(&parts...); }, value);
        return value;
    }

    std::string name_;
    OfxParamHandle param_ = nullptr;
    OvOfxPropertySet properties_;
};

/// A named object of an effect that its host sees: parameter, group, page or clip. Page markers are
/// plain objects of this class.
///
/// One object describes itself, is bound to the host's handle when an instance is created, and
/// returns values: from the host when bound, else from its own default. The effect owns it.
class OvOfxParam {
public:
    static constexpr int kCode = 8;

    explicit OvOfxParam(std::string objectName = "parameter");
    OvOfxParam(const OvOfxParam&) = delete;
    OvOfxParam& operator=(const OvOfxParam&) = delete;

    // Virtual operations, in slot order.
    virtual ~OvOfxParam() = default;
    /// The code of the object's own class.
    [[nodiscard]] virtual int typeCode() const { return kCode; }
    /// Whether `code` is that of the object's class or of one of its bases.
    [[nodiscard]] virtual bool isA(int code) const { return code == kCode; }

    /// Resets the change time and the exclusion.
    void reset();
    /// The handle object when the host has the parameter, else null: then the default holds.
    [[nodiscard]] const OvOfxParamHandle* knownHandle() const;

    std::unique_ptr<OvOfxParamHandle> handle;  ///< null until bound
    bool excluded = false;                     ///< skipped by definition, binding and page layout
    double changeTime = 0.0;
    std::string name;
    std::string label;
    std::string scriptName;
    std::string hint;
    bool secret = false;
    bool overlaySlave = false;  ///< a change redraws the overlay
    bool inUse = true;          ///< belongs to the context that the effect was bound to last
    /// Called when the host reports a change, and once at creation; may be empty.
    std::function<void(const OvOfxChangeRecord&)> onChange;
};

/// A class of the family: adds its code to the codes of `Base`.
template <typename Base, int Code>
class OvOfxCoded : public Base {
public:
    static constexpr int kCode = Code;
    using Base::Base;
    [[nodiscard]] int typeCode() const override { return Code; }
    [[nodiscard]] bool isA(int code) const override { return code == Code || Base::isA(code); }
};

/// The object as a `T`, or null when it is null or of another class.
template <typename T>
T* paramCast(OvOfxParam* param)
{
    return param != nullptr && param->isA(T::kCode) ? static_cast<T*>(param) : nullptr;
}

template <typename T>
const T* paramCast(const OvOfxParam* param)
{
    return param != nullptr && param->isA(T::kCode) ? static_cast<const T*>(param) : nullptr;
}

}  // namespace Orvane
