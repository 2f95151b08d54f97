#pragma once

#include "ofx/ofxCore.h"

namespace Orvane {

/// The overlay's main entry: what the host calls with the actions of an interact.
extern "C" OfxStatus overlayEntry(const char* action, const void* handle,
                                  OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs);

/// Frees the font that overlays share.
void unloadOverlays();

}  // namespace Orvane
