#pragma once

/// "OfxImageEffectSuite" version 1 and the names of image effects: actions, contexts, and the
/// properties of hosts, effects, clips and images.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxImageEffectSuite = "OfxImageEffectSuite";
inline constexpr const char* kOfxImageEffectPluginApi = "OfxImageEffectPluginAPI";
inline constexpr int kOfxImageEffectPluginApiVersion = 1;

inline constexpr const char* kOfxImageEffectActionDescribeInContext =
    "OfxImageEffectActionDescribeInContext";
inline constexpr const char* kOfxImageEffectActionGetRegionOfDefinition =
    "OfxImageEffectActionGetRegionOfDefinition";
inline constexpr const char* kOfxImageEffectActionGetRegionsOfInterest =
    "OfxImageEffectActionGetRegionsOfInterest";
inline constexpr const char* kOfxImageEffectActionGetTimeDomain =
    "OfxImageEffectActionGetTimeDomain";
inline constexpr const char* kOfxImageEffectActionGetFramesNeeded =
    "OfxImageEffectActionGetFramesNeeded";
inline constexpr const char* kOfxImageEffectActionGetClipPreferences =
    "OfxImageEffectActionGetClipPreferences";
inline constexpr const char* kOfxImageEffectActionIsIdentity = "OfxImageEffectActionIsIdentity";
inline constexpr const char* kOfxImageEffectActionRender = "OfxImageEffectActionRender";
inline constexpr const char* kOfxImageEffectActionBeginSequenceRender =
    "OfxImageEffectActionBeginSequenceRender";
inline constexpr const char* kOfxImageEffectActionEndSequenceRender =
    "OfxImageEffectActionEndSequenceRender";

// Contexts
inline constexpr const char* kOfxImageEffectContextGenerator = "OfxImageEffectContextGenerator";
inline constexpr const char* kOfxImageEffectContextFilter = "OfxImageEffectContextFilter";
inline constexpr const char* kOfxImageEffectContextTransition = "OfxImageEffectContextTransition";
inline constexpr const char* kOfxImageEffectContextPaint = "OfxImageEffectContextPaint";
inline constexpr const char* kOfxImageEffectContextGeneral = "OfxImageEffectContextGeneral";
inline constexpr const char* kOfxImageEffectContextRetimer = "OfxImageEffectContextRetimer";

// Types of object (kOfxPropType)
inline constexpr const char* kOfxTypeImageEffectHost = "OfxTypeImageEffectHost";
inline constexpr const char* kOfxTypeImageEffect = "OfxTypeImageEffect";
inline constexpr const char* kOfxTypeImageEffectInstance = "OfxTypeImageEffectInstance";
inline constexpr const char* kOfxTypeClip = "OfxTypeClip";
inline constexpr const char* kOfxTypeImage = "OfxTypeImage";

// The host record
inline constexpr const char* kOfxImageEffectHostPropIsBackground =
    "OfxImageEffectHostPropIsBackground";
inline constexpr const char* kOfxImageEffectPropSupportsOverlays =
    "OfxImageEffectPropSupportsOverlays";
inline constexpr const char* kOfxImageEffectPropSupportsMultiResolution =
    "OfxImageEffectPropSupportsMultiResolution";
inline constexpr const char* kOfxImageEffectPropSupportsTiles = "OfxImageEffectPropSupportsTiles";
inline constexpr const char* kOfxImageEffectPropTemporalClipAccess =
    "OfxImageEffectPropTemporalClipAccess";
inline constexpr const char* kOfxImageEffectPropSupportsMultipleClipDepths =
    "OfxImageEffectPropMultipleClipDepths";
inline constexpr const char* kOfxImageEffectPropSupportsMultipleClipPARs =
    "OfxImageEffectPropSupportsMultipleClipPARs";
inline constexpr const char* kOfxImageEffectPropSetableFrameRate =
    "OfxImageEffectPropSetableFrameRate";
inline constexpr const char* kOfxImageEffectPropSetableFielding =
    "OfxImageEffectPropSetableFielding";
inline constexpr const char* kOfxImageEffectInstancePropSequentialRender =
    "OfxImageEffectInstancePropSequentialRender";
inline constexpr const char* kOfxImageEffectPropSupportedComponents =
    "OfxImageEffectPropSupportedComponents";
inline constexpr const char* kOfxImageEffectPropSupportedContexts =
    "OfxImageEffectPropSupportedContexts";
inline constexpr const char* kOfxImageEffectPropSupportedPixelDepths =
    "OfxImageEffectPropSupportedPixelDepths";

// Effect descriptors
inline constexpr const char* kOfxImageEffectPluginPropGrouping = "OfxImageEffectPluginPropGrouping";
inline constexpr const char* kOfxImageEffectPluginPropSingleInstance =
    "OfxImageEffectPluginPropSingleInstance";
inline constexpr const char* kOfxImageEffectPluginRenderThreadSafety =
    "OfxImageEffectPluginRenderThreadSafety";
inline constexpr const char* kOfxImageEffectPluginPropHostFrameThreading =
    "OfxImageEffectPluginPropHostFrameThreading";
inline constexpr const char* kOfxImageEffectPluginPropOverlayInteractV1 =
    "OfxImageEffectPluginPropOverlayInteractV1";
inline constexpr const char* kOfxImageEffectPluginPropFieldRenderTwiceAlways =
    "OfxImageEffectPluginPropFieldRenderTwiceAlways";
inline constexpr const char* kOfxImageEffectPropClipPreferencesSlaveParam =
    "OfxImageEffectPropClipPreferencesSlaveParam";
inline constexpr const char* kOfxImageEffectRenderUnsafe = "OfxImageEffectRenderUnsafe";
inline constexpr const char* kOfxImageEffectRenderInstanceSafe = "OfxImageEffectRenderInstanceSafe";
inline constexpr const char* kOfxImageEffectRenderFullySafe = "OfxImageEffectRenderFullySafe";

// Effect instances and action arguments
inline constexpr const char* kOfxImageEffectPropContext = "OfxImageEffectPropContext";
inline constexpr const char* kOfxImageEffectPropProjectSize = "OfxImageEffectPropProjectSize";
inline constexpr const char* kOfxImageEffectPropProjectOffset = "OfxImageEffectPropProjectOffset";
inline constexpr const char* kOfxImageEffectPropProjectExtent = "OfxImageEffectPropProjectExtent";
inline constexpr const char* kOfxImageEffectPropProjectPixelAspectRatio =
    "OfxImageEffectPropPixelAspectRatio";
inline constexpr const char* kOfxImageEffectInstancePropEffectDuration =
    "OfxImageEffectInstancePropEffectDuration";
inline constexpr const char* kOfxImageEffectPropFrameRate = "OfxImageEffectPropFrameRate";
inline constexpr const char* kOfxImageEffectPropUnmappedFrameRate =
    "OfxImageEffectPropUnmappedFrameRate";
inline constexpr const char* kOfxImageEffectPropFrameRange = "OfxImageEffectPropFrameRange";
inline constexpr const char* kOfxImageEffectPropUnmappedFrameRange =
    "OfxImageEffectPropUnmappedFrameRange";
inline constexpr const char* kOfxImageEffectPropFrameStep = "OfxImageEffectPropFrameStep";
inline constexpr const char* kOfxImageEffectPropRenderScale = "OfxImageEffectPropRenderScale";
inline constexpr const char* kOfxImageEffectPropRenderWindow = "OfxImageEffectPropRenderWindow";
inline constexpr const char* kOfxImageEffectPropFieldToRender = "OfxImageEffectPropFieldToRender";
inline constexpr const char* kOfxImageEffectPropRegionOfDefinition =
    "OfxImageEffectPropRegionOfDefinition";
inline constexpr const char* kOfxImageEffectPropRegionOfInterest =
    "OfxImageEffectPropRegionOfInterest";
inline constexpr const char* kOfxImageEffectPropSequentialRenderStatus =
    "OfxImageEffectPropSequentialRenderStatus";
inline constexpr const char* kOfxImageEffectPropInteractiveRenderStatus =
    "OfxImageEffectPropInteractiveRenderStatus";
inline constexpr const char* kOfxImageEffectFrameVarying = "OfxImageEffectFrameVarying";

// Argument names made at run time: these prefixes, then the clip's name
inline constexpr const char* kOfxImageClipPropRoIPrefix = "OfxImageClipPropRoI_";
inline constexpr const char* kOfxImageClipPropFrameRangePrefix = "OfxImageClipPropFrameRange_";
inline constexpr const char* kOfxImageClipPropComponentsPrefix = "OfxImageClipPropComponents_";
inline constexpr const char* kOfxImageClipPropDepthPrefix = "OfxImageClipPropDepth_";
inline constexpr const char* kOfxImageClipPropPARPrefix = "OfxImageClipPropPAR_";

// Clips
inline constexpr const char* kOfxImageEffectOutputClipName = "Output";
inline constexpr const char* kOfxImageEffectSimpleSourceClipName = "Source";
inline constexpr const char* kOfxImageClipPropConnected = "OfxImageClipPropConnected";
inline constexpr const char* kOfxImageClipPropOptional = "OfxImageClipPropOptional";
inline constexpr const char* kOfxImageClipPropIsMask = "OfxImageClipPropIsMask";
inline constexpr const char* kOfxImageClipPropFieldExtraction = "OfxImageClipPropFieldExtraction";
inline constexpr const char* kOfxImageClipPropFieldOrder = "OfxImageClipPropFieldOrder";
inline constexpr const char* kOfxImageClipPropContinuousSamples =
    "OfxImageClipPropContinuousSamples";
inline constexpr const char* kOfxImageClipPropUnmappedPixelDepth =
    "OfxImageClipPropUnmappedPixelDepth";
inline constexpr const char* kOfxImageClipPropUnmappedComponents =
    "OfxImageClipPropUnmappedComponents";
inline constexpr const char* kOfxImageEffectPropPixelDepth = "OfxImageEffectPropPixelDepth";
inline constexpr const char* kOfxImageEffectPropComponents = "OfxImageEffectPropComponents";
inline constexpr const char* kOfxImageEffectPropPreMultiplication =
    "OfxImageEffectPropPreMultiplication";
inline constexpr const char* kOfxImageComponentNone = "OfxImageComponentNone";
inline constexpr const char* kOfxImageComponentRGBA = "OfxImageComponentRGBA";
inline constexpr const char* kOfxImageComponentRGB = "OfxImageComponentRGB";
inline constexpr const char* kOfxImageComponentAlpha = "OfxImageComponentAlpha";
inline constexpr const char* kOfxImageFieldNone = "OfxFieldNone";
inline constexpr const char* kOfxImageFieldBoth = "OfxFieldBoth";
inline constexpr const char* kOfxImageFieldLower = "OfxFieldLower";
inline constexpr const char* kOfxImageFieldUpper = "OfxFieldUpper";
inline constexpr const char* kOfxImageFieldSingle = "OfxFieldSingle";
inline constexpr const char* kOfxImageFieldDoubled = "OfxFieldDoubled";
inline constexpr const char* kOfxImageOpaque = "OfxImageAlphaOpaque";
inline constexpr const char* kOfxImagePreMultiplied = "OfxImageAlphaPremultiplied";
inline constexpr const char* kOfxImageUnPreMultiplied = "OfxImageAlphaUnPremultiplied";

// Images
inline constexpr const char* kOfxImagePropData = "OfxImagePropData";
inline constexpr const char* kOfxImagePropBounds = "OfxImagePropBounds";
inline constexpr const char* kOfxImagePropRegionOfDefinition = "OfxImagePropRegionOfDefinition";
inline constexpr const char* kOfxImagePropRowBytes = "OfxImagePropRowBytes";
inline constexpr const char* kOfxImagePropField = "OfxImagePropField";
inline constexpr const char* kOfxImagePropPixelAspectRatio = "OfxImagePropPixelAspectRatio";
inline constexpr const char* kOfxImagePropUniqueIdentifier = "OfxImagePropUniqueIdentifier";

extern "C" {

using OfxImageEffectHandle = struct OfxImageEffectStruct*;
using OfxImageClipHandle = struct OfxImageClipStruct*;
using OfxImageMemoryHandle = struct OfxImageMemoryStruct*;

struct OfxImageEffectSuiteV1 {
    OfxStatus (*getPropertySet)(OfxImageEffectHandle, OfxPropertySetHandle* propertySet);
    OfxStatus (*getParamSet)(OfxImageEffectHandle, struct OfxParamSetStruct** paramSet);
    OfxStatus (*clipDefine)(OfxImageEffectHandle, const char* name,
                            OfxPropertySetHandle* propertySet);
    /// propertySet may be null. Not allowed in the describe actions.
    OfxStatus (*clipGetHandle)(OfxImageEffectHandle, const char* name, OfxImageClipHandle* clip,
                               OfxPropertySetHandle* propertySet);
    OfxStatus (*clipGetPropertySet)(OfxImageClipHandle, OfxPropertySetHandle* propertySet);
    /// region may be null. Every successful fetch is released once, within the same action.
    OfxStatus (*clipGetImage)(OfxImageClipHandle, OfxTime time, const OfxRectD* region,
                              OfxPropertySetHandle* image);
    OfxStatus (*clipReleaseImage)(OfxPropertySetHandle image);
    OfxStatus (*clipGetRegionOfDefinition)(OfxImageClipHandle, OfxTime time, OfxRectD* bounds);
    int (*abort)(OfxImageEffectHandle);  ///< 0 go on, else stop
    OfxStatus (*imageMemoryAlloc)(OfxImageEffectHandle, std::size_t nBytes,
                                  OfxImageMemoryHandle* memory);
    OfxStatus (*imageMemoryFree)(OfxImageMemoryHandle);
    OfxStatus (*imageMemoryLock)(OfxImageMemoryHandle, void** data);  ///< aligned to 16 bytes
    OfxStatus (*imageMemoryUnlock)(OfxImageMemoryHandle);
};

}  // extern "C"

static_assert(sizeof(OfxImageEffectSuiteV1) == 13 * sizeof(void*));
