#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <tuple>

#include "ofx/ofxParam.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/PropertySet.h"

namespace Orvane {

class OvOfxInstanceRecord;

/// The host's side of one parameter of an instance, possibly unknown to the host.
///
/// Values are arrays of the components that the host passes: `int` for integers, booleans and
/// choices, `double` for all others. Every read starts from zeros, so a failed call yields them.
class OvOfxParamHandle {
public:
    /// Asks the host for the parameter and, when it has one, for its property set.
    OvOfxParamHandle(const OvOfxInstanceRecord& record, std::string name);

    /// Whether the host has the parameter. Nothing below may be called on an unknown one, except
    /// `setEnabled`, which then does nothing.
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

    /// Hosts need not offer these two; without them the parameter counts as unbound.
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

}  // namespace Orvane
