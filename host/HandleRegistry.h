#pragma once

/// The handles that plug-ins hold. A handle is the address of a one-byte cell, never of an object,
/// and a cell is used again only long after its object died; so a null, dead, foreign or wrong kind
/// of handle is recognised without touching what it points at. Process-wide; all functions may be
/// called from any thread.

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

/// Registers an object for as long as it lives. Neither moves nor copies, so that the object stays
/// put.
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

}  // namespace Tesseret::Host
