#pragma once

/// "OfxInteractSuite" version 1 and the actions and properties of overlay interacts.

#include "ofx/ofxCore.h"

OfxName kOfxInteractSuite = "OfxInteractSuite";

OfxName kOfxInteractActionDraw = "OfxInteractActionDraw";
OfxName kOfxInteractActionPenMotion = "OfxInteractActionPenMotion";
OfxName kOfxInteractActionPenDown = "OfxInteractActionPenDown";
OfxName kOfxInteractActionPenUp = "OfxInteractActionPenUp";
OfxName kOfxInteractActionKeyDown = "OfxInteractActionKeyDown";
OfxName kOfxInteractActionKeyUp = "OfxInteractActionKeyUp";
OfxName kOfxInteractActionKeyRepeat = "OfxInteractActionKeyRepeat";
OfxName kOfxInteractActionGainFocus = "OfxInteractActionGainFocus";
OfxName kOfxInteractActionLoseFocus = "OfxInteractActionLoseFocus";

OfxName kOfxInteractPropSlaveToParam = "OfxInteractPropSlaveToParam";
OfxName kOfxInteractPropPixelScale = "OfxInteractPropPixelScale";
OfxName kOfxInteractPropBackgroundColour = "OfxInteractPropBackgroundColour";
OfxName kOfxInteractPropPenPosition = "OfxInteractPropPenPosition";
OfxName kOfxInteractPropPenViewportPosition = "OfxInteractPropPenViewportPosition";
OfxName kOfxInteractPropPenPressure = "OfxInteractPropPenPressure";
OfxName kOfxInteractPropViewportSize = "OfxInteractPropViewport";
OfxName kOfxPropKeySym = "kOfxPropKeySym";
OfxName kOfxPropKeyString = "kOfxPropKeyString";

OFX_BEGIN

typedef struct OfxInteract* OfxInteractHandle;

typedef struct OfxInteractSuiteV1 {
    OfxStatus (*interactSwapBuffers)(OfxInteractHandle);
    OfxStatus (*interactRedraw)(OfxInteractHandle);
    OfxStatus (*interactGetPropertySet)(OfxInteractHandle, OfxPropertySetHandle* propertySet);
} OfxInteractSuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxInteractSuiteV1) == 3 * sizeof(void*));
#endif
