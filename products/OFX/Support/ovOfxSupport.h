#pragma once

#include "ofx/ofxCore.h"

namespace Orvane {

/// The entry layer: the two exported functions, `OfxGetNumberOfPlugins` and `OfxGetPlugin`, are
/// declared in ofx/ofxCore.h; these two are what the plug-in record points at.
///
/// Keeps the host's record; nothing else may be done before the load action.
void setHost(OfxHost* host);

/// Carries out one action. An action that nobody handles, and no action at all, answers
/// kOfxStatReplyDefault. No exception leaves it.
OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                    OfxPropertySetHandle outArgs);

}  // namespace Orvane
