#pragma once

/// Named, typed values, as plug-ins see them through a property set handle. The host's own code
/// defines, reads and writes properties freely; `read` and `write` are for the plug-in, with the
/// standard's statuses and read-only flags unless the host's behaviour overrides them.

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/HandleRegistry.h"
#include "ofx/ofxCore.h"

namespace Tesseret::Host {

class EmbeddedHost;

using PropertyValue = std::variant<void*, std::string, double, int>;
/// In the order of PropertyValue's alternatives.
enum class PropertyType { Pointer, String, Double, Int };

enum class Access { ReadWrite, ReadOnly };

class PropertySet {
public:
    /// `name` stands for the set in reports and records: "host", "effect", "param seed", ...
    PropertySet(EmbeddedHost& host, std::string name);
    virtual ~PropertySet() = default;
    PropertySet(const PropertySet&) = delete;
    PropertySet& operator=(const PropertySet&) = delete;

    OfxPropertySetHandle handle() const { return handle_.as<OfxPropertySetHandle>(); }
    EmbeddedHost& host() const { return host_; }
    const std::string& name() const { return name_; }

    /// Defines a property of a fixed dimension, the number of its initial values.
    void define(std::string_view property, std::vector<PropertyValue> values,
                Access access = Access::ReadWrite);
    /// Defines a property of any number of values, none at first.
    void defineList(std::string_view property, PropertyType type,
                    Access access = Access::ReadWrite);
    /// Replaces the values of a property, even a read-only one; defines an unknown one as
    /// read-only.
    void assign(std::string_view property, std::vector<PropertyValue> values);
    void remove(std::string_view property);
    /// Copies every property of another set with defaults and access.
    void copyFrom(const PropertySet& other);

    bool has(std::string_view property) const { return find(property) != nullptr; }
    /// Whether the plug-in wrote the property.
    bool wasWritten(std::string_view property) const;
    std::size_t dimension(std::string_view property) const;
    std::vector<std::string> names() const;
    /// The value, or the fallback when there is no value of that type.
    int intOr(std::string_view property, int fallback, std::size_t index = 0) const;
    double doubleOr(std::string_view property, double fallback, std::size_t index = 0) const;
    void* pointerOr(std::string_view property, void* fallback, std::size_t index = 0) const;
    std::string stringOr(std::string_view property, std::string_view fallback,
                         std::size_t index = 0) const;
    std::vector<int> ints(std::string_view property) const;
    std::vector<double> doubles(std::string_view property) const;
    std::vector<std::string> strings(std::string_view property) const;

    /// For the plug-in.
    OfxStatus write(const char* property, int index, PropertyValue value);
    /// On success `value` points at a value of that type, valid until the property changes.
    OfxStatus read(const char* property, int index, PropertyType type, const PropertyValue*& value);
    /// For the N variants: checks the number of values from index 0.
    OfxStatus checkCount(const char* property, int count, bool writing);
    OfxStatus reset(const char* property);
    OfxStatus dimension(const char* property, int& count);

private:
    struct Property {
        PropertyType type = PropertyType::Int;
        bool isList = false;
        Access access = Access::ReadWrite;
        bool written = false;
        std::vector<PropertyValue> values;
        std::vector<PropertyValue> defaults;
        PropertyValue converted;  ///< what a read of another number type returns
    };

    const Property* find(std::string_view property) const;
    Property* find(std::string_view property);
    template <typename T>
    const T* valueOf(std::string_view property, std::size_t index) const;
    template <typename T>
    std::vector<T> valuesOf(std::string_view property) const;
    OfxStatus fail(const char* what, const char* property, OfxStatus status) const;
    OfxStatus store(Property& property, const char* name, int index, PropertyValue value);

    EmbeddedHost& host_;
    std::string name_;
    Handle handle_;
    std::map<std::string, Property, std::less<>> properties_;
};

}  // namespace Tesseret::Host
