#include "host/Interact.h"

#include "host/EmbeddedHost.h"
#include "host/HostError.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"

namespace Tesseret::Host {

namespace {

std::vector<PropertyValue> pair(OfxPointD point)
{
    return {point.x, point.y};
}

OfxPluginEntryPoint* entryOf(const Instance& instance)
{
    void* const entry =
        instance.properties().pointerOr(kOfxImageEffectPluginPropOverlayInteractV1, nullptr);
    if (!entry) throw HostError("the plug-in has no overlay");
    return reinterpret_cast<OfxPluginEntryPoint*>(entry);
}

}  // namespace

Interact::Interact(Instance& instance)
    : instance_(instance),
      handle_(HandleKind::Interact, this),
      properties_(instance.host(), "interact"),
      entry_(entryOf(instance))
{
    properties_.define(kOfxPropEffectInstance, {static_cast<void*>(instance_.handle())},
                       Access::ReadOnly);
    properties_.define(kOfxPropInstanceData, {static_cast<void*>(nullptr)});
    properties_.defineList(kOfxInteractPropSlaveToParam, PropertyType::String);
    updateView();
    for (const char* name : {kOfxActionDescribe, kOfxActionCreateInstance}) {
        const OfxStatus status = action(name);
        if (status != kOfxStatOK && status != kOfxStatReplyDefault) {
            throw HostError(
                "the overlay returns " + statusText(status) + " for " + std::string(name), status);
        }
    }
}

Interact::~Interact()
{
    quietly([this] { action(kOfxActionDestroyInstance); });
}

std::vector<std::string> Interact::slaveParameters() const
{
    return properties_.strings(kOfxInteractPropSlaveToParam);
}

void Interact::updateView()
{
    properties_.assign(kOfxInteractPropPixelScale, pair(view_.pixelScale));
    properties_.assign(kOfxInteractPropBackgroundColour,
                       {view_.background[0], view_.background[1], view_.background[2]});
    properties_.assign(kOfxInteractPropViewportSize, pair(view_.viewportSize));
}

OfxStatus Interact::action(const char* name, PropertySet* inArgs)
{
    instance_.updateProperties();
    return instance_.host().send(entry_, name, handle(), inArgs ? inArgs->handle() : nullptr,
                                 nullptr);
}

OfxStatus Interact::send(const char* name, Extra extra, const Pen& pen, const Key& key)
{
    updateView();
    PropertySet inArgs(instance_.host(), "inArgs of the overlay");
    inArgs.assign(kOfxPropEffectInstance, {static_cast<void*>(instance_.handle())});
    inArgs.assign(kOfxPropTime, {view_.time});
    inArgs.assign(kOfxImageEffectPropRenderScale, pair(view_.renderScale));
    if (extra == Extra::Key) {
        inArgs.assign(kOfxPropKeySym, {key.symbol});
        inArgs.assign(kOfxPropKeyString, {key.text});
        return action(name, &inArgs);
    }
    inArgs.assign(kOfxInteractPropPixelScale, pair(view_.pixelScale));
    inArgs.assign(kOfxInteractPropBackgroundColour,
                  {view_.background[0], view_.background[1], view_.background[2]});
    if (extra == Extra::Pen) {
        inArgs.assign(kOfxInteractPropPenPosition, pair(pen.position));
        inArgs.assign(kOfxInteractPropPenViewportPosition, {pen.viewport.x, pen.viewport.y});
        inArgs.assign(kOfxInteractPropPenPressure, {pen.pressure});
    }
    return action(name, &inArgs);
}

OfxStatus Interact::draw()
{
    return send(kOfxInteractActionDraw, Extra::View, {}, {});
}
OfxStatus Interact::penMotion(const Pen& pen)
{
    return send(kOfxInteractActionPenMotion, Extra::Pen, pen, {});
}
OfxStatus Interact::penDown(const Pen& pen)
{
    return send(kOfxInteractActionPenDown, Extra::Pen, pen, {});
}
OfxStatus Interact::penUp(const Pen& pen)
{
    return send(kOfxInteractActionPenUp, Extra::Pen, pen, {});
}
OfxStatus Interact::keyDown(const Key& key)
{
    return send(kOfxInteractActionKeyDown, Extra::Key, {}, key);
}
OfxStatus Interact::keyUp(const Key& key)
{
    return send(kOfxInteractActionKeyUp, Extra::Key, {}, key);
}
OfxStatus Interact::keyRepeat(const Key& key)
{
    return send(kOfxInteractActionKeyRepeat, Extra::Key, {}, key);
}
OfxStatus Interact::gainFocus()
{
    return send(kOfxInteractActionGainFocus, Extra::View, {}, {});
}
OfxStatus Interact::loseFocus()
{
    return send(kOfxInteractActionLoseFocus, Extra::View, {}, {});
}

}  // namespace Tesseret::Host
