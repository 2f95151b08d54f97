#pragma once

#include <span>
#include <string>

#include "ofx/ofxCore.h"

namespace Orvane {

/// One property set of the host, possibly none. Every operation answers the status of the host's
/// property suite unchanged; a null handle is answered with kOfxStatErrBadHandle and a host that
/// was never described with kOfxStatErrMissingHostFeature, without a call. Nothing throws but
/// std::bad_alloc.
class OvOfxPropertySet {
public:
    OvOfxPropertySet() = default;
    explicit OvOfxPropertySet(OfxPropertySetHandle handle) : handle_(handle) {}
    OvOfxPropertySet(const OvOfxPropertySet&) = default;
    OvOfxPropertySet& operator=(const OvOfxPropertySet&) = default;
    virtual ~OvOfxPropertySet() = default;

    [[nodiscard]] OfxPropertySetHandle handle() const { return handle_; }

    // The statuses of descriptor writes are mostly of no interest, so the setters may be called
    // bare.
    OfxStatus setPointer(const char* name, void* value, int index = 0) const;
    OfxStatus setString(const char* name, const char* value, int index = 0) const;
    OfxStatus setDouble(const char* name, double value, int index = 0) const;
    OfxStatus setInt(const char* name, int value, int index = 0) const;
    OfxStatus setDoubles(const char* name, std::span<const double> values) const;

    // On failure a value is what it was before the call, or what the host left in it. A pointer
    // starts as null, so that the pointer itself can be asked whether there is one.
    [[nodiscard]] OfxStatus getPointer(const char* name, void*& value, int index = 0) const;
    /// Copies the text; a null text is an empty string.
    [[nodiscard]] OfxStatus getString(const char* name, std::string& value, int index = 0) const;
    [[nodiscard]] OfxStatus getDouble(const char* name, double& value, int index = 0) const;
    [[nodiscard]] OfxStatus getInt(const char* name, int& value, int index = 0) const;
    [[nodiscard]] OfxStatus getDoubles(const char* name, std::span<double> values) const;
    [[nodiscard]] OfxStatus getInts(const char* name, std::span<int> values) const;

    // The same for callers with a fallback.
    [[nodiscard]] std::string stringOr(const char* name, const char* fallback, int index = 0) const;
    [[nodiscard]] double doubleOr(const char* name, double fallback, int index = 0) const;
    [[nodiscard]] int intOr(const char* name, int fallback, int index = 0) const;
    /// Whether the int property is there and not 0.
    [[nodiscard]] bool isSet(const char* name) const { return intOr(name, 0) != 0; }

private:
    OfxPropertySetHandle handle_ = nullptr;
};

}  // namespace Orvane
