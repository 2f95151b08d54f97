#pragma once

/// "OfxImageEffectSuite" version 1 and the names of image effects: actions, contexts, and the
/// properties of hosts, effects, clips and images.

#include "ofx/ofxCore.h"

OfxName kOfxImageEffectSuite = "OfxImageEffectSuite";
OfxName kOfxImageEffectPluginApi = "OfxImageEffectPluginAPI";
OfxIntValue kOfxImageEffectPluginApiVersion = 1;

OfxName kOfxImageEffectActionDescribeInContext = "OfxImageEffectActionDescribeInContext";
OfxName kOfxImageEffectActionGetRegionOfDefinition = "OfxImageEffectActionGetRegionOfDefinition";
OfxName kOfxImageEffectActionGetRegionsOfInterest = "OfxImageEffectActionGetRegionsOfInterest";
OfxName kOfxImageEffectActionGetTimeDomain = "OfxImageEffectActionGetTimeDomain";
OfxName kOfxImageEffectActionGetFramesNeeded = "OfxImageEffectActionGetFramesNeeded";
OfxName kOfxImageEffectActionGetClipPreferences = "OfxImageEffectActionGetClipPreferences";
OfxName kOfxImageEffectActionIsIdentity = "OfxImageEffectActionIsIdentity";
OfxName kOfxImageEffectActionRender = "OfxImageEffectActionRender";
OfxName kOfxImageEffectActionBeginSequenceRender = "OfxImageEffectActionBeginSequenceRender";
OfxName kOfxImageEffectActionEndSequenceRender = "OfxImageEffectActionEndSequenceRender";

// Contexts
OfxName kOfxImageEffectContextGenerator = "OfxImageEffectContextGenerator";
OfxName kOfxImageEffectContextFilter = "OfxImageEffectContextFilter";
OfxName kOfxImageEffectContextTransition = "OfxImageEffectContextTransition";
OfxName kOfxImageEffectContextPaint = "OfxImageEffectContextPaint";
OfxName kOfxImageEffectContextGeneral = "OfxImageEffectContextGeneral";
OfxName kOfxImageEffectContextRetimer = "OfxImageEffectContextRetimer";

// Types of object (kOfxPropType)
OfxName kOfxTypeImageEffectHost = "OfxTypeImageEffectHost";
OfxName kOfxTypeImageEffect = "OfxTypeImageEffect";
OfxName kOfxTypeImageEffectInstance = "OfxTypeImageEffectInstance";
OfxName kOfxTypeClip = "OfxTypeClip";
OfxName kOfxTypeImage = "OfxTypeImage";

// The host record
OfxName kOfxImageEffectHostPropIsBackground = "OfxImageEffectHostPropIsBackground";
OfxName kOfxImageEffectPropSupportsOverlays = "OfxImageEffectPropSupportsOverlays";
OfxName kOfxImageEffectPropSupportsMultiResolution = "OfxImageEffectPropSupportsMultiResolution";
OfxName kOfxImageEffectPropSupportsTiles = "OfxImageEffectPropSupportsTiles";
OfxName kOfxImageEffectPropTemporalClipAccess = "OfxImageEffectPropTemporalClipAccess";
OfxName kOfxImageEffectPropSupportsMultipleClipDepths = "OfxImageEffectPropMultipleClipDepths";
OfxName kOfxImageEffectPropSupportsMultipleClipPARs = "OfxImageEffectPropSupportsMultipleClipPARs";
OfxName kOfxImageEffectPropSetableFrameRate = "OfxImageEffectPropSetableFrameRate";
OfxName kOfxImageEffectPropSetableFielding = "OfxImageEffectPropSetableFielding";
OfxName kOfxImageEffectInstancePropSequentialRender = "OfxImageEffectInstancePropSequentialRender";
OfxName kOfxImageEffectPropSupportedComponents = "OfxImageEffectPropSupportedComponents";
OfxName kOfxImageEffectPropSupportedContexts = "OfxImageEffectPropSupportedContexts";
OfxName kOfxImageEffectPropSupportedPixelDepths = "OfxImageEffectPropSupportedPixelDepths";

// Effect descriptors
OfxName kOfxImageEffectPluginPropGrouping = "OfxImageEffectPluginPropGrouping";
OfxName kOfxImageEffectPluginPropSingleInstance = "OfxImageEffectPluginPropSingleInstance";
OfxName kOfxImageEffectPluginRenderThreadSafety = "OfxImageEffectPluginRenderThreadSafety";
OfxName kOfxImageEffectPluginPropHostFrameThreading = "OfxImageEffectPluginPropHostFrameThreading";
OfxName kOfxImageEffectPluginPropOverlayInteractV1 = "OfxImageEffectPluginPropOverlayInteractV1";
OfxName kOfxImageEffectPluginPropFieldRenderTwiceAlways =
    "OfxImageEffectPluginPropFieldRenderTwiceAlways";
OfxName kOfxImageEffectPropClipPreferencesSlaveParam =
    "OfxImageEffectPropClipPreferencesSlaveParam";
OfxName kOfxImageEffectRenderUnsafe = "OfxImageEffectRenderUnsafe";
OfxName kOfxImageEffectRenderInstanceSafe = "OfxImageEffectRenderInstanceSafe";
OfxName kOfxImageEffectRenderFullySafe = "OfxImageEffectRenderFullySafe";

// Effect instances and action arguments
OfxName kOfxImageEffectPropContext = "OfxImageEffectPropContext";
OfxName kOfxImageEffectPropProjectSize = "OfxImageEffectPropProjectSize";
OfxName kOfxImageEffectPropProjectOffset = "OfxImageEffectPropProjectOffset";
OfxName kOfxImageEffectPropProjectExtent = "OfxImageEffectPropProjectExtent";
OfxName kOfxImageEffectPropProjectPixelAspectRatio = "OfxImageEffectPropPixelAspectRatio";
OfxName kOfxImageEffectInstancePropEffectDuration = "OfxImageEffectInstancePropEffectDuration";
OfxName kOfxImageEffectPropFrameRate = "OfxImageEffectPropFrameRate";
OfxName kOfxImageEffectPropUnmappedFrameRate = "OfxImageEffectPropUnmappedFrameRate";
OfxName kOfxImageEffectPropFrameRange = "OfxImageEffectPropFrameRange";
OfxName kOfxImageEffectPropUnmappedFrameRange = "OfxImageEffectPropUnmappedFrameRange";
OfxName kOfxImageEffectPropFrameStep = "OfxImageEffectPropFrameStep";
OfxName kOfxImageEffectPropRenderScale = "OfxImageEffectPropRenderScale";
OfxName kOfxImageEffectPropRenderWindow = "OfxImageEffectPropRenderWindow";
OfxName kOfxImageEffectPropFieldToRender = "OfxImageEffectPropFieldToRender";
OfxName kOfxImageEffectPropRegionOfDefinition = "OfxImageEffectPropRegionOfDefinition";
OfxName kOfxImageEffectPropRegionOfInterest = "OfxImageEffectPropRegionOfInterest";
OfxName kOfxImageEffectPropSequentialRenderStatus = "OfxImageEffectPropSequentialRenderStatus";
OfxName kOfxImageEffectPropInteractiveRenderStatus = "OfxImageEffectPropInteractiveRenderStatus";
OfxName kOfxImageEffectFrameVarying = "OfxImageEffectFrameVarying";

// Argument names made at run time: these prefixes, then the clip's name
OfxName kOfxImageClipPropRoIPrefix = "OfxImageClipPropRoI_";
OfxName kOfxImageClipPropFrameRangePrefix = "OfxImageClipPropFrameRange_";
OfxName kOfxImageClipPropComponentsPrefix = "OfxImageClipPropComponents_";
OfxName kOfxImageClipPropDepthPrefix = "OfxImageClipPropDepth_";
OfxName kOfxImageClipPropPARPrefix = "OfxImageClipPropPAR_";

// Clips
OfxName kOfxImageEffectOutputClipName = "Output";
OfxName kOfxImageEffectSimpleSourceClipName = "Source";
OfxName kOfxImageClipPropConnected = "OfxImageClipPropConnected";
OfxName kOfxImageClipPropOptional = "OfxImageClipPropOptional";
OfxName kOfxImageClipPropIsMask = "OfxImageClipPropIsMask";
OfxName kOfxImageClipPropFieldExtraction = "OfxImageClipPropFieldExtraction";
OfxName kOfxImageClipPropFieldOrder = "OfxImageClipPropFieldOrder";
OfxName kOfxImageClipPropContinuousSamples = "OfxImageClipPropContinuousSamples";
OfxName kOfxImageClipPropUnmappedPixelDepth = "OfxImageClipPropUnmappedPixelDepth";
OfxName kOfxImageClipPropUnmappedComponents = "OfxImageClipPropUnmappedComponents";
OfxName kOfxImageEffectPropPixelDepth = "OfxImageEffectPropPixelDepth";
OfxName kOfxImageEffectPropComponents = "OfxImageEffectPropComponents";
OfxName kOfxImageEffectPropPreMultiplication = "OfxImageEffectPropPreMultiplication";
OfxName kOfxImageComponentNone = "OfxImageComponentNone";
OfxName kOfxImageComponentRGBA = "OfxImageComponentRGBA";
OfxName kOfxImageComponentRGB = "OfxImageComponentRGB";
OfxName kOfxImageComponentAlpha = "OfxImageComponentAlpha";
OfxName kOfxImageFieldNone = "OfxFieldNone";
OfxName kOfxImageFieldBoth = "OfxFieldBoth";
OfxName kOfxImageFieldLower = "OfxFieldLower";
OfxName kOfxImageFieldUpper = "OfxFieldUpper";
OfxName kOfxImageFieldSingle = "OfxFieldSingle";
OfxName kOfxImageFieldDoubled = "OfxFieldDoubled";
OfxName kOfxImageOpaque = "OfxImageAlphaOpaque";
OfxName kOfxImagePreMultiplied = "OfxImageAlphaPremultiplied";
OfxName kOfxImageUnPreMultiplied = "OfxImageAlphaUnPremultiplied";

// Images
OfxName kOfxImagePropData = "OfxImagePropData";
OfxName kOfxImagePropBounds = "OfxImagePropBounds";
OfxName kOfxImagePropRegionOfDefinition = "OfxImagePropRegionOfDefinition";
OfxName kOfxImagePropRowBytes = "OfxImagePropRowBytes";
OfxName kOfxImagePropField = "OfxImagePropField";
OfxName kOfxImagePropPixelAspectRatio = "OfxImagePropPixelAspectRatio";
OfxName kOfxImagePropUniqueIdentifier = "OfxImagePropUniqueIdentifier";

OFX_BEGIN

typedef struct OfxImageEffectStruct* OfxImageEffectHandle;
typedef struct OfxImageClipStruct* OfxImageClipHandle;
typedef struct OfxImageMemoryStruct* OfxImageMemoryHandle;

struct OfxParamSetStruct;  // ofxParam.h

typedef struct OfxImageEffectSuiteV1 {
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
    OfxStatus (*imageMemoryAlloc)(OfxImageEffectHandle, size_t nBytes,
                                  OfxImageMemoryHandle* memory);
    OfxStatus (*imageMemoryFree)(OfxImageMemoryHandle);
    OfxStatus (*imageMemoryLock)(OfxImageMemoryHandle, void** data);  ///< aligned to 16 bytes
    OfxStatus (*imageMemoryUnlock)(OfxImageMemoryHandle);
} OfxImageEffectSuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxImageEffectSuiteV1) == 13 * sizeof(void*));
#endif
