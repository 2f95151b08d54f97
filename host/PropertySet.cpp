#include "host/PropertySet.h"

#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

namespace {

PropertyType typeOf(const PropertyValue& value)
{
    return static_cast<PropertyType>(value.index());
}

}  // namespace

PropertySet::PropertySet(EmbeddedHost& host, std::string name)
    : host_(host), name_(std::move(name)), handle_(HandleKind::PropertySet, this)
{}

void PropertySet::define(std::string_view property, std::vector<PropertyValue> values,
                         Access access)
{
    Property made;
    made.type = typeOf(values.at(0));
    made.access = access;
    made.defaults = values;
    made.values = std::move(values);
    properties_.insert_or_assign(std::string(property), std::move(made));
}

void PropertySet::defineList(std::string_view property, PropertyType type, Access access)
{
    Property made;
    made.type = type;
    made.isList = true;
    made.access = access;
    properties_.insert_or_assign(std::string(property), std::move(made));
}

void PropertySet::assign(std::string_view property, std::vector<PropertyValue> values)
{
    if (Property* known = find(property)) {
        known->values = std::move(values);
    } else {
        define(property, std::move(values), Access::ReadOnly);
    }
}

void PropertySet::remove(std::string_view property)
{
    const auto found = properties_.find(property);
    if (found != properties_.end()) properties_.erase(found);
}

void PropertySet::copyFrom(const PropertySet& other)
{
    properties_ = other.properties_;
}

bool PropertySet::wasWritten(std::string_view property) const
{
    const Property* known = find(property);
    return known && known->written;
}

std::size_t PropertySet::dimension(std::string_view property) const
{
    const Property* known = find(property);
    return known ? known->values.size() : 0;
}

std::vector<std::string> PropertySet::names() const
{
    std::vector<std::string> result;
    for (const auto& [name, property] : properties_) result.push_back(name);
    return result;
}

const PropertySet::Property* PropertySet::find(std::string_view property) const
{
    const auto found = properties_.find(property);
    return found == properties_.end() ? nullptr : &found->second;
}

PropertySet::Property* PropertySet::find(std::string_view property)
{
    const auto found = properties_.find(property);
    return found == properties_.end() ? nullptr : &found->second;
}

template <typename T>
const T* PropertySet::valueOf(std::string_view property, std::size_t index) const
{
    const Property* known = find(property);
    return known && index < known->values.size() ? std::get_if<T>(&known->values[index]) : nullptr;
}

template <typename T>
std::vector<T> PropertySet::valuesOf(std::string_view property) const
{
    std::vector<T> result;
    for (std::size_t i = 0; i < dimension(property); ++i) {
        if (const T* value = valueOf<T>(property, i)) result.push_back(*value);
    }
    return result;
}

int PropertySet::intOr(std::string_view property, int fallback, std::size_t index) const
{
    const int* value = valueOf<int>(property, index);
    return value ? *value : fallback;
}

double PropertySet::doubleOr(std::string_view property, double fallback, std::size_t index) const
{
    const double* value = valueOf<double>(property, index);
    return value ? *value : fallback;
}

void* PropertySet::pointerOr(std::string_view property, void* fallback, std::size_t index) const
{
    void* const* value = valueOf<void*>(property, index);
    return value ? *value : fallback;
}

std::string PropertySet::stringOr(std::string_view property, std::string_view fallback,
                                  std::size_t index) const
{
    const std::string* value = valueOf<std::string>(property, index);
    return value ? *value : std::string(fallback);
}

std::vector<int> PropertySet::ints(std::string_view property) const
{
    return valuesOf<int>(property);
}

std::vector<double> PropertySet::doubles(std::string_view property) const
{
    return valuesOf<double>(property);
}

std::vector<std::string> PropertySet::strings(std::string_view property) const
{
    return valuesOf<std::string>(property);
}

OfxStatus PropertySet::fail(const char* what, const char* property, OfxStatus status) const
{
    return host_.badCall(name_ + ": " + (property ? property : "null") + ": " + what, status);
}

OfxStatus PropertySet::write(const char* property, int index, PropertyValue value)
{
    if (!property) return fail("a null property name", property, kOfxStatErrUnknown);
    HostBehaviour& behaviour = host_.behaviour();
    OfxStatus status = behaviour.checkWrite(property);
    if (status == kOfxStatOK) {
        if (!find(property) && behaviour.acceptsUnknownProperty(property)) {
            defineList(property, typeOf(value));
        }
        if (Property* known = find(property)) {
            status = store(*known, property, index, value);
        } else {
            host_.report(Report::Kind::Note, name_ + ": unknown property " + property);
            status = kOfxStatErrUnknown;
        }
    }
    behaviour.propertyWritten(*this, property, index, value, status);
    return status;
}

OfxStatus PropertySet::store(Property& property, const char* name, int index, PropertyValue value)
{
    if (property.access == Access::ReadOnly) {
        return fail("a write to a read-only property", name, kOfxStatErrUnknown);
    }
    HostBehaviour& behaviour = host_.behaviour();
    if (typeOf(value) != property.type && !behaviour.convert(value, property.type)) {
        return fail("a write of another type", name, behaviour.wrongTypeStatus());
    }
    const std::size_t size = property.values.size();
    const std::size_t end = property.isList ? size + 1 : size;
    if (index < 0 || static_cast<std::size_t>(index) >= end) {
        return fail("a write outside the dimension", name, kOfxStatErrBadIndex);
    }
    if (static_cast<std::size_t>(index) == size) {
        property.values.push_back(std::move(value));
    } else {
        property.values[static_cast<std::size_t>(index)] = std::move(value);
    }
    property.written = true;
    return kOfxStatOK;
}

OfxStatus PropertySet::read(const char* property, int index, PropertyType type,
                            const PropertyValue*& value)
{
    if (!property) return fail("a null property name", property, kOfxStatErrUnknown);
    HostBehaviour& behaviour = host_.behaviour();
    if (const OfxStatus status = behaviour.checkRead(property)) return status;
    Property* known = find(property);
    if (!known) {
        host_.report(Report::Kind::Note, name_ + ": unknown property " + property);
        return kOfxStatErrUnknown;
    }
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) < known->values.size();
    const PropertyValue* found =
        isInside ? &known->values[static_cast<std::size_t>(index)] : nullptr;
    if (known->type != type) {
        if (found) known->converted = *found;
        if (!found || !behaviour.convert(known->converted, type)) {
            return fail("a read of another type", property, behaviour.wrongTypeStatus());
        }
        found = &known->converted;
    }
    if (!found) return fail("a read outside the dimension", property, kOfxStatErrBadIndex);
    value = found;
    return kOfxStatOK;
}

OfxStatus PropertySet::checkCount(const char* property, int count, bool writing)
{
    if (!property) return fail("a null property name", property, kOfxStatErrUnknown);
    const Property* known = find(property);
    if (count < 0) return fail("a negative count", property, kOfxStatErrBadIndex);
    // An unknown name fails in the first read or write.
    if (!known || (writing && known->isList)) return kOfxStatOK;
    if (static_cast<std::size_t>(count) > known->values.size()) {
        return fail("a count above the dimension", property, kOfxStatErrBadIndex);
    }
    return kOfxStatOK;
}

OfxStatus PropertySet::reset(const char* property)
{
    Property* known = property ? find(property) : nullptr;
    if (!known) return fail("a reset of an unknown property", property, kOfxStatErrUnknown);
    if (known->access == Access::ReadOnly) {
        return fail("a reset of a read-only property", property, kOfxStatErrUnknown);
    }
    known->values = known->defaults;
    return kOfxStatOK;
}

OfxStatus PropertySet::dimension(const char* property, int& count)
{
    const Property* known = property ? find(property) : nullptr;
    if (!known) {
        host_.report(Report::Kind::Note,
                     name_ + ": unknown property " + (property ? property : "null"));
        return kOfxStatErrUnknown;
    }
    count = static_cast<int>(known->values.size());
    return kOfxStatOK;
}

}  // namespace Tesseret::Host
