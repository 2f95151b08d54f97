/// "OfxPropertySuite": each function looks up the set and calls it.

#include <string>

#include "host/EmbeddedHost.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

PropertySet* findSet(OfxPropertySetHandle handle)
{
    return static_cast<PropertySet*>(findObject(HandleKind::PropertySet, handle));
}

OfxStatus badHandle(const char* property)
{
    return badCall(std::string("property suite: no such property set, asked for ") +
                       (property ? property : "null"),
                   kOfxStatErrBadHandle);
}

OfxStatus nullArgument(const PropertySet& set, const char* property)
{
    return set.host().badCall(
        set.name() + ": " + (property ? property : "null") + ": a null pointer for the value",
        kOfxStatErrValue);
}

// How each of the four types is stored and returned.
PropertyValue stored(void* value)
{
    return value;
}
PropertyValue stored(const char* value)
{
    return std::string(value ? value : "");
}
PropertyValue stored(double value)
{
    return value;
}
PropertyValue stored(int value)
{
    return value;
}
void copyTo(const PropertyValue& from, void*& to)
{
    to = std::get<void*>(from);
}
void copyTo(const PropertyValue& from, char*& to)
{
    // The interface has no const here; callers copy the string.
    to = const_cast<char*>(std::get<std::string>(from).c_str());
}
void copyTo(const PropertyValue& from, double& to)
{
    to = std::get<double>(from);
}
void copyTo(const PropertyValue& from, int& to)
{
    to = std::get<int>(from);
}
template <typename T>
constexpr PropertyType kTypeOf = PropertyType::Pointer;
template <>
constexpr PropertyType kTypeOf<char*> = PropertyType::String;
template <>
constexpr PropertyType kTypeOf<double> = PropertyType::Double;
template <>
constexpr PropertyType kTypeOf<int> = PropertyType::Int;

template <typename T>
OfxStatus setOne(OfxPropertySetHandle handle, const char* property, int index, T value)
{
    PropertySet* const set = findSet(handle);
    return set ? set->write(property, index, stored(value)) : badHandle(property);
}

template <typename T>
OfxStatus setMany(OfxPropertySetHandle handle, const char* property, int count, const T* values)
{
    PropertySet* const set = findSet(handle);
    if (!set) return badHandle(property);
    if (!values && count > 0) return nullArgument(*set, property);
    OfxStatus status = set->checkCount(property, count, true);
    for (int i = 0; i < count && status == kOfxStatOK; ++i) {
        status = set->write(property, i, stored(values[i]));
    }
    return status;
}

template <typename T>
OfxStatus getOne(OfxPropertySetHandle handle, const char* property, int index, T* value)
{
    PropertySet* const set = findSet(handle);
    if (!set) return badHandle(property);
    if (!value) return nullArgument(*set, property);
    const PropertyValue* found = nullptr;
    const OfxStatus status = set->read(property, index, kTypeOf<T>, found);
    if (status == kOfxStatOK) copyTo(*found, *value);
    return status;
}

template <typename T>
OfxStatus getMany(OfxPropertySetHandle handle, const char* property, int count, T* values)
{
    PropertySet* const set = findSet(handle);
    if (!set) return badHandle(property);
    if (!values && count > 0) return nullArgument(*set, property);
    OfxStatus status = set->checkCount(property, count, false);
    for (int i = 0; i < count && status == kOfxStatOK; ++i) {
        status = getOne(handle, property, i, values + i);
    }
    return status;
}

OfxStatus propReset(OfxPropertySetHandle handle, const char* property)
{
    PropertySet* const set = findSet(handle);
    return set ? set->reset(property) : badHandle(property);
}

OfxStatus propGetDimension(OfxPropertySetHandle handle, const char* property, int* count)
{
    PropertySet* const set = findSet(handle);
    if (!set) return badHandle(property);
    return count ? set->dimension(property, *count) : nullArgument(*set, property);
}

}  // namespace

const OfxPropertySuiteV1& propertySuite()
{
    static constexpr OfxPropertySuiteV1 kSuite{
        .propSetPointer = kGuarded<&setOne<void*>>,
        .propSetString = kGuarded<&setOne<const char*>>,
        .propSetDouble = kGuarded<&setOne<double>>,
        .propSetInt = kGuarded<&setOne<int>>,
        .propSetPointerN = kGuarded<&setMany<void*>>,
        .propSetStringN = kGuarded<&setMany<const char*>>,
        .propSetDoubleN = kGuarded<&setMany<double>>,
        .propSetIntN = kGuarded<&setMany<int>>,
        .propGetPointer = kGuarded<&getOne<void*>>,
        .propGetString = kGuarded<&getOne<char*>>,
        .propGetDouble = kGuarded<&getOne<double>>,
        .propGetInt = kGuarded<&getOne<int>>,
        .propGetPointerN = kGuarded<&getMany<void*>>,
        .propGetStringN = kGuarded<&getMany<char*>>,
        .propGetDoubleN = kGuarded<&getMany<double>>,
        .propGetIntN = kGuarded<&getMany<int>>,
        .propReset = kGuarded<&propReset>,
        .propGetDimension = kGuarded<&propGetDimension>,
    };
    return kSuite;
}

}  // namespace Tesseret::Host
