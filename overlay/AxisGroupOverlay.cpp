#include "overlay/AxisGroupOverlay.h"

#include <utility>

#include "overlay/RectBinding.h"
#include "overlay/RectangleControl.h"

namespace Orvane {
namespace {

/// The binding of an object that has a manipulator, or null.
std::unique_ptr<ParamBinding> bindingFor(OvOfxParam& object, OverlayInteract& overlay)
{
    const auto* rectangle = paramCast<RectangleControl>(&object);
    if (rectangle == nullptr) return nullptr;
    return std::make_unique<RectBinding>(*rectangle, overlay);
}

}  // namespace

AxisGroupOverlay::AxisGroupOverlay(OfxInteractHandle interact) : OverlayInteract(interact)
{
    group_.setShown(true);
    group_.setHandlesShown(false);
    add(group_);
    if (instance() == nullptr) return;
    bindParameters();
    slaveToMarked();
}

void AxisGroupOverlay::bindParameters()
{
    for (const auto& object : effect()->objects()) {
        std::unique_ptr<ParamBinding> binding = bindingFor(*object, *this);
        if (binding == nullptr) continue;
        binding->attach(group_);
        addBinding(std::move(binding));
    }
}

void AxisGroupOverlay::slaveToMarked()
{
    for (const auto& object : effect()->objects()) {
        if (object->overlaySlave) slaveTo(object->name);
    }
}

}  // namespace Orvane
