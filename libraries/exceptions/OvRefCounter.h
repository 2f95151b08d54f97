#pragma once

#include <cstdint>

namespace Orvane {

/// Base of classes with a reference count. The count travels with copies; nothing in this library
/// counts it down, since exceptions are thrown and caught by value or by reference.
class OvRefCounter {
public:
    virtual ~OvRefCounter() = default;

    std::int32_t referenceCount() const { return referenceCount_; }

protected:
    OvRefCounter() = default;
    OvRefCounter(const OvRefCounter&) = default;
    OvRefCounter& operator=(const OvRefCounter&) = default;

private:
    std::int32_t referenceCount_ = 1;
};

}  // namespace Orvane
