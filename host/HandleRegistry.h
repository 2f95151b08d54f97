#pragma once

/// The handles that plug-ins hold. A handle is the address of a one-byte cell, never of an object,
/// and a cell is reused only long after its object is gone; so a null, stale, foreign or wrong kind
/// of handle is recognised without dereferencing it. Process-wide; all functions may be called from
/// any thread.

#include <cstddef>

namespace Tesseret::Host {

enum class HandleKind {
    PropertySet,
    Effect,
    ParameterSet,
    Parameter,
    Clip,
    ImageMemory,
    Mutex,
    Interact,
};

/// Registers an object for its lifetime. Can be neither moved nor copied, so that the address stays
/// valid.
class Handle {
public:
    Handle(HandleKind kind, void* object);
    ~Handle();
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    template <typename OfxHandle>
    OfxHandle as() const
    {
        return reinterpret_cast<OfxHandle>(cell_);
    }

private:
    char* cell_;
};

/// The object behind a handle of that kind, or null.
void* findObject(HandleKind kind, const void* handle);
/// The number of handles whose objects exist, in all hosts.
std::size_t liveHandles();

}  // namespace Tesseret::Host
