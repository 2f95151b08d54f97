#include "overlay/OverlayEntry.h"

#include <array>
#include <memory>
#include <string_view>

#include "overlay/AxisGroupOverlay.h"
#include "overlay/OverlayText.h"

namespace Orvane {
namespace {

struct ActionRow {
    std::string_view name;
    OfxStatus (OverlayInteract::*handler)(const OvOfxPropertySet& inArgs);
};

constexpr std::array<ActionRow, 6> kActions{{
    {kOfxInteractActionDraw, &OverlayInteract::draw},
    {kOfxInteractActionPenMotion, &OverlayInteract::penMotion},
    {kOfxInteractActionPenDown, &OverlayInteract::penDown},
    {kOfxInteractActionPenUp, &OverlayInteract::penUp},
    {kOfxInteractActionGainFocus, &OverlayInteract::gainFocus},
    {kOfxInteractActionLoseFocus, &OverlayInteract::loseFocus},
}};

/// The overlay that the host keeps for an interact, or null.
OverlayInteract* findOverlay(OfxInteractHandle interact)
{
    void* overlay = nullptr;
    static_cast<void>(interactProperties(interact).getPointer(kOfxPropInstanceData, overlay));
    return static_cast<OverlayInteract*>(overlay);
}

std::unique_ptr<OverlayInteract> makeOverlay(OfxInteractHandle interact)
{
    try {
        return std::make_unique<AxisGroupOverlay>(interact);
    } catch (...) {
        // The host may have been given the address already.
        interactProperties(interact).setPointer(kOfxPropInstanceData, nullptr);
        throw;
    }
}

void create(OfxInteractHandle interact)
{
    std::unique_ptr<OverlayInteract> overlay = makeOverlay(interact);
    // C boundary: the host keeps the overlay from here on, and the destroy action deletes it. Where
    // the host keeps nothing, no action would ever find it.
    if (overlay->isKept()) static_cast<void>(overlay.release());
}

OfxStatus dispatch(std::string_view action, OfxInteractHandle interact, OfxPropertySetHandle inArgs)
{
    if (action == kOfxActionDescribe) return kOfxStatOK;
    if (action == kOfxActionCreateInstance) {
        create(interact);
        return kOfxStatOK;
    }
    OverlayInteract* overlay = findOverlay(interact);
    if (overlay == nullptr) return kOfxStatReplyDefault;
    if (action == kOfxActionDestroyInstance) {
        // C boundary: takes back what `create` gave to the host.
        const std::unique_ptr<OverlayInteract> owned(overlay);
        return kOfxStatReplyDefault;
    }
    if (overlay->hasLostEffect()) return kOfxStatReplyDefault;
    for (const ActionRow& row : kActions) {
        if (row.name == action) return (overlay->*row.handler)(OvOfxPropertySet(inArgs));
    }
    return kOfxStatReplyDefault;
}

}  // namespace

OfxStatus overlayEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                       OfxPropertySetHandle /*outArgs*/)
{
    if (action == nullptr) return kOfxStatReplyDefault;
    const bool creates = std::string_view(action) == kOfxActionCreateInstance;
    try {
        return dispatch(action, static_cast<OfxInteractHandle>(const_cast<void*>(handle)), inArgs);
    } catch (...) {
        // Only memory can run out here. Later actions do not find an overlay that was never made.
        return creates ? kOfxStatOK : kOfxStatReplyDefault;
    }
}

void unloadOverlays()
{
    deleteOverlayFont();
}

}  // namespace Orvane
