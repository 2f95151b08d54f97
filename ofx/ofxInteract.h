#pragma once

/// "OfxInteractSuite" version 1 and the actions and properties of overlay interacts.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxInteractSuite = "OfxInteractSuite";

inline constexpr const char* kOfxInteractActionDraw = "OfxInteractActionDraw";
inline constexpr const char* kOfxInteractActionPenMotion = "OfxInteractActionPenMotion";
inline constexpr const char* kOfxInteractActionPenDown = "OfxInteractActionPenDown";
inline constexpr const char* kOfxInteractActionPenUp = "OfxInteractActionPenUp";
inline constexpr const char* kOfxInteractActionKeyDown = "OfxInteractActionKeyDown";
inline constexpr const char* kOfxInteractActionKeyUp = "OfxInteractActionKeyUp";
inline constexpr const char* kOfxInteractActionKeyRepeat = "OfxInteractActionKeyRepeat";
inline constexpr const char* kOfxInteractActionGainFocus = "OfxInteractActionGainFocus";
inline constexpr const char* kOfxInteractActionLoseFocus = "OfxInteractActionLoseFocus";

inline constexpr const char* kOfxInteractPropSlaveToParam = "OfxInteractPropSlaveToParam";
inline constexpr const char* kOfxInteractPropPixelScale = "OfxInteractPropPixelScale";
inline constexpr const char* kOfxInteractPropBackgroundColour = "OfxInteractPropBackgroundColour";
inline constexpr const char* kOfxInteractPropPenPosition = "OfxInteractPropPenPosition";
inline constexpr const char* kOfxInteractPropPenViewportPosition =
    "OfxInteractPropPenViewportPosition";
inline constexpr const char* kOfxInteractPropPenPressure = "OfxInteractPropPenPressure";
inline constexpr const char* kOfxInteractPropViewportSize = "OfxInteractPropViewport";
inline constexpr const char* kOfxPropKeySym = "kOfxPropKeySym";
inline constexpr const char* kOfxPropKeyString = "kOfxPropKeyString";

extern "C" {

using OfxInteractHandle = struct OfxInteract*;

struct OfxInteractSuiteV1 {
    OfxStatus (*interactSwapBuffers)(OfxInteractHandle);
    OfxStatus (*interactRedraw)(OfxInteractHandle);
    OfxStatus (*interactGetPropertySet)(OfxInteractHandle, OfxPropertySetHandle* propertySet);
};

}  // extern "C"

static_assert(sizeof(OfxInteractSuiteV1) == 3 * sizeof(void*));
