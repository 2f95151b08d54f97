#pragma once

#include "ofx/ofxCore.h"

namespace Orvane {

/// The entry layer: the two exported functions, `OfxGetNumberOfPlugins` and `OfxGetPlugin`, are
/// declared in ofx/ofxCore.h; the plug-in record points at the two functions below.
///
/// Stores the host record; nothing else is allowed before the load action.
void setHost(OfxHost* host);

/// Carries out one action. Returns kOfxStatReplyDefault for an unknown or null action. No exception
/// leaves it.
OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                    OfxPropertySetHandle outArgs);

}  // namespace Orvane
