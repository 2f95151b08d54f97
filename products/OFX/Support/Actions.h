#pragma once

#include "ofx/ofxImageEffect.h"

/// One function for each action of the host. Each returns the action's status; an action on an
/// instance that does not exist returns kOfxStatReplyDefault.
namespace Orvane::Actions {

/// The arguments of an action. Any of the three may be null.
struct Call {
    OfxImageEffectHandle effect;
    OfxPropertySetHandle inArgs;
    OfxPropertySetHandle outArgs;
};

// The library
OfxStatus load(const Call& call);
OfxStatus unload(const Call& call);
/// For actions that this framework does not handle.
OfxStatus leaveToHost(const Call& call);

// Descriptors
OfxStatus describe(const Call& call);
OfxStatus describeInContext(const Call& call);

// The life of an instance
OfxStatus createInstance(const Call& call);
OfxStatus destroyInstance(const Call& call);
OfxStatus purgeCaches(const Call& call);
OfxStatus syncPrivateData(const Call& call);

// Changes
OfxStatus beginInstanceChanged(const Call& call);
OfxStatus instanceChanged(const Call& call);
OfxStatus endInstanceChanged(const Call& call);

// Queries
OfxStatus getRegionOfDefinition(const Call& call);
OfxStatus getRegionsOfInterest(const Call& call);
OfxStatus getTimeDomain(const Call& call);
OfxStatus getFramesNeeded(const Call& call);
OfxStatus getClipPreferences(const Call& call);
OfxStatus isIdentity(const Call& call);

OfxStatus render(const Call& call);

}  // namespace Orvane::Actions
