#include "products/OFX/Support/PropertySet.h"

#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

/// Calls one function of the property suite, unless the suite or the handle is missing.
template <typename Function, typename... Arguments>
OfxStatus call(Function OfxPropertySuiteV1::*function, OfxPropertySetHandle handle,
               const char* name, Arguments... arguments)
{
    if (handle == nullptr) return kOfxStatErrBadHandle;
    const OfxPropertySuiteV1* suite = hostDescription().suites.property;
    if (suite == nullptr) return kOfxStatErrMissingHostFeature;
    return (suite->*function)(handle, name, arguments...);
}

}  // namespace

OfxStatus OvOfxPropertySet::setPointer(const char* name, void* value, int index) const
{
    return call(&OfxPropertySuiteV1::propSetPointer, handle_, name, index, value);
}

OfxStatus OvOfxPropertySet::setString(const char* name, const char* value, int index) const
{
    return call(&OfxPropertySuiteV1::propSetString, handle_, name, index, value);
}

OfxStatus OvOfxPropertySet::setDouble(const char* name, double value, int index) const
{
    return call(&OfxPropertySuiteV1::propSetDouble, handle_, name, index, value);
}

OfxStatus OvOfxPropertySet::setInt(const char* name, int value, int index) const
{
    return call(&OfxPropertySuiteV1::propSetInt, handle_, name, index, value);
}

OfxStatus OvOfxPropertySet::setDoubles(const char* name, std::span<const double> values) const
{
    return call(&OfxPropertySuiteV1::propSetDoubleN, handle_, name, static_cast<int>(values.size()),
                values.data());
}

OfxStatus OvOfxPropertySet::getPointer(const char* name, void*& value, int index) const
{
    value = nullptr;
    return call(&OfxPropertySuiteV1::propGetPointer, handle_, name, index, &value);
}

OfxStatus OvOfxPropertySet::getString(const char* name, std::string& value, int index) const
{
    char* text = nullptr;
    const OfxStatus status = call(&OfxPropertySuiteV1::propGetString, handle_, name, index, &text);
    if (status == kOfxStatOK) value = text != nullptr ? text : "";
    return status;
}

OfxStatus OvOfxPropertySet::getDouble(const char* name, double& value, int index) const
{
    return call(&OfxPropertySuiteV1::propGetDouble, handle_, name, index, &value);
}

OfxStatus OvOfxPropertySet::getInt(const char* name, int& value, int index) const
{
    return call(&OfxPropertySuiteV1::propGetInt, handle_, name, index, &value);
}

OfxStatus OvOfxPropertySet::getDoubles(const char* name, std::span<double> values) const
{
    return call(&OfxPropertySuiteV1::propGetDoubleN, handle_, name, static_cast<int>(values.size()),
                values.data());
}

OfxStatus OvOfxPropertySet::getInts(const char* name, std::span<int> values) const
{
    return call(&OfxPropertySuiteV1::propGetIntN, handle_, name, static_cast<int>(values.size()),
                values.data());
}

std::string OvOfxPropertySet::stringOr(const char* name, const char* fallback, int index) const
{
    std::string value;
    return getString(name, value, index) == kOfxStatOK ? value : fallback;
}

double OvOfxPropertySet::doubleOr(const char* name, double fallback, int index) const
{
    double value = fallback;
    return getDouble(name, value, index) == kOfxStatOK ? value : fallback;
}

int OvOfxPropertySet::intOr(const char* name, int fallback, int index) const
{
    int value = fallback;
    return getInt(name, value, index) == kOfxStatOK ? value : fallback;
}

}  // namespace Orvane
