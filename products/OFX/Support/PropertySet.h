#pragma once

#include <span>
#include <string>

#include "ofx/ofxCore.h"

namespace Orvane {

/// One property set of the host; the handle may be null. Every operation returns the status of the
/// host's property suite unchanged. Without calling it, an operation returns kOfxStatErrBadHandle
/// for a null handle and kOfxStatErrMissingHostFeature before any host is described. Only
/// std::bad_alloc is thrown.
class OvOfxPropertySet {
public:
    OvOfxPropertySet() = default;
    explicit OvOfxPropertySet(OfxPropertySetHandle handle) : handle_(handle) {}
    OvOfxPropertySet(const OvOfxPropertySet&) = default;
    OvOfxPropertySet& operator=(const OvOfxPropertySet&) = default;
    virtual ~OvOfxPropertySet() = default;

    [[nodiscard]] OfxPropertySetHandle handle() const { return handle_; }

    // Most callers ignore the statuses of descriptor writes, so the setters are not [[nodiscard]].
    OfxStatus setPointer(const char* name, void* value, int index = 0) const;
    OfxStatus setString(const char* name, const char* value, int index = 0) const;
    OfxStatus setDouble(const char* name, double value, int index = 0) const;
    OfxStatus setInt(const char* name, int value, int index = 0) const;
    OfxStatus setDoubles(const char* name, std::span<const double> values) const;

    // On failure a value keeps what it held before the call, or what the host stored in it.
    // Pointers are set to null first, so that callers can test the pointer itself.
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
    /// Whether the int property exists and is not 0.
    [[nodiscard]] bool isSet(const char* name) const { return intOr(name, 0) != 0; }

private:
    OfxPropertySetHandle handle_ = nullptr;
};

}  // namespace Orvane
