/// "OfxInteractSuite": overlays request redraws.

#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/Interact.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

Interact* findInteract(OfxInteractHandle handle)
{
    return static_cast<Interact*>(findObject(HandleKind::Interact, handle));
}

OfxStatus noInteract()
{
    return badCall("interact suite: no such overlay", kOfxStatErrBadHandle);
}

OfxStatus swapBuffers(OfxInteractHandle handle)
{
    Interact* const interact = findInteract(handle);
    if (!interact) return noInteract();
    interact->countSwap();
    return kOfxStatOK;
}

OfxStatus redraw(OfxInteractHandle handle)
{
    Interact* const interact = findInteract(handle);
    if (!interact) return noInteract();
    interact->countRedraw();
    return kOfxStatOK;
}

OfxStatus getPropertySet(OfxInteractHandle handle, OfxPropertySetHandle* properties)
{
    if (properties) *properties = nullptr;
    Interact* const interact = findInteract(handle);
    if (!interact) return noInteract();
    EmbeddedHost& host = interact->instance().host();
    if (!properties) {
        return host.badCall("interactGetPropertySet: a null pointer", kOfxStatErrValue);
    }
    if (const OfxStatus status = host.behaviour().checkInteractProperties()) return status;
    *properties = interact->properties().handle();
    return kOfxStatOK;
}

}  // namespace

const OfxInteractSuiteV1& interactSuite()
{
    static constexpr OfxInteractSuiteV1 kSuite{kGuarded<&swapBuffers>, kGuarded<&redraw>,
                                               kGuarded<&getPropertySet>};
    return kSuite;
}

}  // namespace Tesseret::Host
