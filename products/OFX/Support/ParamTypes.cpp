#include "products/OFX/Support/ParamTypes.h"

#include <algorithm>
#include <utility>

#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

OvPoint pointOf(const std::array<double, 2>& xy)
{
    return {static_cast<float>(xy[0]), static_cast<float>(xy[1])};
}

template <std::size_t N>
std::array<float, 4> colourOf(const std::array<double, N>& components)
{
    std::array<float, 4> colour{};
    std::ranges::transform(components, colour.begin(),
                           [](double component) { return static_cast<float>(component); });
    return colour;
}

template <std::size_t N>
std::array<double, N> componentsOf(const std::array<float, 4>& colour)
{
    std::array<double, N> components{};
    std::copy_n(colour.begin(), N, components.begin());
    return components;
}

}  // namespace

int OvOfxIntegerParam::value() const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->value<int, 1>()[0] : initial;
}

int OvOfxIntegerParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->valueAt<int, 1>(time)[0] : initial;
}

void OvOfxIntegerParam::setValue(int value) const
{
    if (const auto* known = knownHandle()) known->setValue(std::array{value});
}

double OvOfxDoubleParam::value() const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->value<double, 1>()[0] : initial;
}

double OvOfxDoubleParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->valueAt<double, 1>(time)[0] : initial;
}

double OvOfxDoubleParam::derivativeAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr && OvOfxParamHandle::canDerive() ? known->derivative<1>(time)[0] : 0.0;
}

double OvOfxDoubleParam::integral(double from, double to) const
{
    const auto* known = knownHandle();
    return known != nullptr && OvOfxParamHandle::canIntegrate() ? known->integral<1>(from, to)[0]
                                                                : (to - from) * initial;
}

void OvOfxDoubleParam::setValue(double value) const
{
    if (const auto* known = knownHandle()) known->setValue(std::array{value});
}

bool OvOfxBooleanParam::value() const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->value<int, 1>()[0] != 0 : initial;
}

bool OvOfxBooleanParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->valueAt<int, 1>(time)[0] != 0 : initial;
}

void OvOfxBooleanParam::setValue(bool value) const
{
    if (const auto* known = knownHandle()) known->setValue(std::array{value ? 1 : 0});
}

OvOfxInterfaceToggle::OvOfxInterfaceToggle(std::string objectName)
    : OvOfxCoded(std::move(objectName))
{
    initial = true;
    animates = false;
    evaluateOnChange = false;
}

int OvOfxChoiceParam::value() const
{
    const auto* known = knownHandle();
    return known != nullptr ? known->value<int, 1>()[0] : std::max(initialIndex(), 0);
}

int OvOfxChoiceParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr && hostDescription().choiceAnimation ? known->valueAt<int, 1>(time)[0]
                                                                 : value();
}

void OvOfxChoiceParam::setValue(int index) const
{
    if (const auto* known = knownHandle()) known->setValue(std::array{index});
}

int OvOfxChoiceParam::initialIndex() const
{
    const auto found = std::ranges::find(options, initial);
    return found != options.end() ? static_cast<int>(found - options.begin()) : -1;
}

int OvOfxRGBParam::componentCount() const
{
    return isA(OvOfxRGBAParam::kCode) ? 4 : 3;
}

std::array<float, 4> OvOfxRGBParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    if (known == nullptr) return initial;
    return componentCount() == 4 ? colourOf(known->valueAt<double, 4>(time))
                                 : colourOf(known->valueAt<double, 3>(time));
}

void OvOfxRGBParam::setValue(const std::array<float, 4>& value) const
{
    const auto* known = knownHandle();
    if (known == nullptr) return;
    if (componentCount() == 4) {
        known->setValue(componentsOf<4>(value));
    } else {
        known->setValue(componentsOf<3>(value));
    }
}

OvOfxDouble2DParam::OvOfxDouble2DParam(std::string objectName) : OvOfxCoded(std::move(objectName))
{
    label = "Position";
}

OvPoint OvOfxDouble2DParam::value() const
{
    const auto* known = knownHandle();
    return known != nullptr ? pointOf(known->value<double, 2>()) : initial;
}

OvPoint OvOfxDouble2DParam::valueAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr ? pointOf(known->valueAt<double, 2>(time)) : initial;
}

OvPoint OvOfxDouble2DParam::derivativeAt(double time) const
{
    const auto* known = knownHandle();
    return known != nullptr && OvOfxParamHandle::canDerive() ? pointOf(known->derivative<2>(time))
                                                             : OvPoint{};
}

OvPoint OvOfxDouble2DParam::integral(double from, double to) const
{
    const auto* known = knownHandle();
    if (known != nullptr && OvOfxParamHandle::canIntegrate()) {
        return pointOf(known->integral<2>(from, to));
    }
    return pointOf({initial.x * (to - from), initial.y * (to - from)});
}

void OvOfxDouble2DParam::setValue(OvPoint value) const
{
    if (const auto* known = knownHandle()) known->setValue(std::array<double, 2>{value.x, value.y});
}

Rect2D::Rect2D(std::string objectName) : OvOfxCoded(std::move(objectName))
{
    corner1.initial = {0.2f, 0.2f};
    corner2.initial = {0.8f, 0.8f};
    children = {&corner1, &corner2};
}

}  // namespace Orvane
