#pragma once

/// "OfxParameterSuite" version 1 and the names of parameter types and properties. The ellipsis
/// stands for pointers to the value's components when reading and for the components when setting;
/// it must stay in the declarations, since variadic calls pass floating-point arguments
/// differently.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxParameterSuite = "OfxParameterSuite";

inline constexpr const char* kOfxParamTypeInteger = "OfxParamTypeInteger";
inline constexpr const char* kOfxParamTypeDouble = "OfxParamTypeDouble";
inline constexpr const char* kOfxParamTypeBoolean = "OfxParamTypeBoolean";
inline constexpr const char* kOfxParamTypeChoice = "OfxParamTypeChoice";
inline constexpr const char* kOfxParamTypeRGBA = "OfxParamTypeRGBA";
inline constexpr const char* kOfxParamTypeRGB = "OfxParamTypeRGB";
inline constexpr const char* kOfxParamTypeDouble2D = "OfxParamTypeDouble2D";
inline constexpr const char* kOfxParamTypeInteger2D = "OfxParamTypeInteger2D";
inline constexpr const char* kOfxParamTypeDouble3D = "OfxParamTypeDouble3D";
inline constexpr const char* kOfxParamTypeInteger3D = "OfxParamTypeInteger3D";
inline constexpr const char* kOfxParamTypeString = "OfxParamTypeString";
inline constexpr const char* kOfxParamTypeCustom = "OfxParamTypeCustom";
inline constexpr const char* kOfxParamTypeGroup = "OfxParamTypeGroup";
inline constexpr const char* kOfxParamTypePage = "OfxParamTypePage";
inline constexpr const char* kOfxParamTypePushButton = "OfxParamTypePushButton";

inline constexpr const char* kOfxTypeParameter = "OfxTypeParameter";

inline constexpr const char* kOfxParamHostPropSupportsCustomAnimation =
    "OfxParamHostPropSupportsCustomAnimation";
inline constexpr const char* kOfxParamHostPropSupportsStringAnimation =
    "OfxParamHostPropSupportsStringAnimation";
inline constexpr const char* kOfxParamHostPropSupportsBooleanAnimation =
    "OfxParamHostPropSupportsBooleanAnimation";
inline constexpr const char* kOfxParamHostPropSupportsChoiceAnimation =
    "OfxParamHostPropSupportsChoiceAnimation";
inline constexpr const char* kOfxParamHostPropSupportsCustomInteract =
    "OfxParamHostPropSupportsCustomInteract";
inline constexpr const char* kOfxParamHostPropMaxParameters = "OfxParamHostPropMaxParameters";
inline constexpr const char* kOfxParamHostPropMaxPages = "OfxParamHostPropMaxPages";
inline constexpr const char* kOfxParamHostPropPageRowColumnCount =
    "OfxParamHostPropPageRowColumnCount";

inline constexpr const char* kOfxParamPropType = "OfxParamPropType";
inline constexpr const char* kOfxParamPropAnimates = "OfxParamPropAnimates";
inline constexpr const char* kOfxParamPropCanUndo = "OfxParamPropCanUndo";
inline constexpr const char* kOfxParamPropPluginMayWrite = "OfxParamPropPluginMayWrite";
inline constexpr const char* kOfxParamPropPersistant = "OfxParamPropPersistant";
inline constexpr const char* kOfxParamPropCacheInvalidation = "OfxParamPropCacheInvalidation";
inline constexpr const char* kOfxParamPropEvaluateOnChange = "OfxParamPropEvaluateOnChange";
inline constexpr const char* kOfxParamPropSecret = "OfxParamPropSecret";
inline constexpr const char* kOfxParamPropEnabled = "OfxParamPropEnabled";
inline constexpr const char* kOfxParamPropScriptName = "OfxParamPropScriptName";
inline constexpr const char* kOfxParamPropHint = "OfxParamPropHint";
inline constexpr const char* kOfxParamPropParent = "OfxParamPropParent";
inline constexpr const char* kOfxParamPropDefault = "OfxParamPropDefault";
inline constexpr const char* kOfxParamPropMin = "OfxParamPropMin";
inline constexpr const char* kOfxParamPropMax = "OfxParamPropMax";
inline constexpr const char* kOfxParamPropDisplayMin = "OfxParamPropDisplayMin";
inline constexpr const char* kOfxParamPropDisplayMax = "OfxParamPropDisplayMax";
inline constexpr const char* kOfxParamPropIncrement = "OfxParamPropIncrement";
inline constexpr const char* kOfxParamPropDigits = "OfxParamPropDigits";
inline constexpr const char* kOfxParamPropDoubleType = "OfxParamPropDoubleType";
inline constexpr const char* kOfxParamPropChoiceOption = "OfxParamPropChoiceOption";
inline constexpr const char* kOfxParamPropStringMode = "OfxParamPropStringMode";
inline constexpr const char* kOfxParamPropPageChild = "OfxParamPropPageChild";
inline constexpr const char* kOfxPluginPropParamPageOrder = "OfxPluginPropParamPageOrder";

inline constexpr const char* kOfxParamPageSkipRow = "OfxParamPageSkipRow";
inline constexpr const char* kOfxParamPageSkipColumn = "OfxParamPageSkipColumn";

inline constexpr const char* kOfxParamInvalidateValueChange = "OfxParamInvalidateValueChange";
inline constexpr const char* kOfxParamInvalidateValueChangeToEnd =
    "OfxParamInvalidateValueChangeToEnd";
inline constexpr const char* kOfxParamInvalidateAll = "OfxParamInvalidateAll";

inline constexpr const char* kOfxParamStringIsSingleLine = "OfxParamStringIsSingleLine";
inline constexpr const char* kOfxParamStringIsMultiLine = "OfxParamStringIsMultiLine";
inline constexpr const char* kOfxParamStringIsFilePath = "OfxParamStringIsFilePath";
inline constexpr const char* kOfxParamStringIsDirectoryPath = "OfxParamStringIsDirectoryPath";
inline constexpr const char* kOfxParamStringIsLabel = "OfxParamStringIsLabel";

inline constexpr const char* kOfxParamDoubleTypePlain = "OfxParamDoubleTypePlain";
inline constexpr const char* kOfxParamDoubleTypeAngle = "OfxParamDoubleTypeAngle";
inline constexpr const char* kOfxParamDoubleTypeScale = "OfxParamDoubleTypeScale";
inline constexpr const char* kOfxParamDoubleTypeTime = "OfxParamDoubleTypeTime";
inline constexpr const char* kOfxParamDoubleTypeAbsoluteTime = "OfxParamDoubleTypeAbsoluteTime";
inline constexpr const char* kOfxParamDoubleTypeX = "OfxParamDoubleTypeX";
inline constexpr const char* kOfxParamDoubleTypeY = "OfxParamDoubleTypeY";
inline constexpr const char* kOfxParamDoubleTypeXAbsolute = "OfxParamDoubleTypeXAbsolute";
inline constexpr const char* kOfxParamDoubleTypeYAbsolute = "OfxParamDoubleTypeYAbsolute";
inline constexpr const char* kOfxParamDoubleTypeXY = "OfxParamDoubleTypeXY";
inline constexpr const char* kOfxParamDoubleTypeXYAbsolute = "OfxParamDoubleTypeXYAbsolute";
inline constexpr const char* kOfxParamDoubleTypeNormalisedX = "OfxParamDoubleTypeNormalisedX";
inline constexpr const char* kOfxParamDoubleTypeNormalisedY = "OfxParamDoubleTypeNormalisedY";
inline constexpr const char* kOfxParamDoubleTypeNormalisedXAbsolute =
    "OfxParamDoubleTypeNormalisedXAbsolute";
inline constexpr const char* kOfxParamDoubleTypeNormalisedYAbsolute =
    "OfxParamDoubleTypeNormalisedYAbsolute";
inline constexpr const char* kOfxParamDoubleTypeNormalisedXY = "OfxParamDoubleTypeNormalisedXY";
inline constexpr const char* kOfxParamDoubleTypeNormalisedXYAbsolute =
    "OfxParamDoubleTypeNormalisedXYAbsolute";

extern "C" {

using OfxParamHandle = struct OfxParamStruct*;
using OfxParamSetHandle = struct OfxParamSetStruct*;

struct OfxParameterSuiteV1 {
    OfxStatus (*paramDefine)(OfxParamSetHandle, const char* paramType, const char* name,
                             OfxPropertySetHandle* propertySet);
    /// propertySet may be null.
    OfxStatus (*paramGetHandle)(OfxParamSetHandle, const char* name, OfxParamHandle* param,
                                OfxPropertySetHandle* propertySet);
    OfxStatus (*paramSetGetPropertySet)(OfxParamSetHandle, OfxPropertySetHandle* propertySet);
    OfxStatus (*paramGetPropertySet)(OfxParamHandle, OfxPropertySetHandle* propertySet);
    OfxStatus (*paramGetValue)(OfxParamHandle, ...);
    OfxStatus (*paramGetValueAtTime)(OfxParamHandle, OfxTime time, ...);
    OfxStatus (*paramGetDerivative)(OfxParamHandle, OfxTime time, ...);  ///< may be null
    OfxStatus (*paramGetIntegral)(OfxParamHandle, OfxTime time1, OfxTime time2,
                                  ...);  ///< may be null
    OfxStatus (*paramSetValue)(OfxParamHandle, ...);
    OfxStatus (*paramSetValueAtTime)(OfxParamHandle, OfxTime time, ...);
    OfxStatus (*paramGetNumKeys)(OfxParamHandle, unsigned int* numberOfKeys);
    OfxStatus (*paramGetKeyTime)(OfxParamHandle, unsigned int nthKey, OfxTime* time);
    OfxStatus (*paramGetKeyIndex)(OfxParamHandle, OfxTime time, int direction, int* index);
    OfxStatus (*paramDeleteKey)(OfxParamHandle, OfxTime time);
    OfxStatus (*paramDeleteAllKeys)(OfxParamHandle);
    OfxStatus (*paramCopy)(OfxParamHandle to, OfxParamHandle from, OfxTime dstOffset,
                           const OfxRangeD* frameRange);
    OfxStatus (*paramEditBegin)(OfxParamSetHandle, const char* name);  ///< may be null
    OfxStatus (*paramEditEnd)(OfxParamSetHandle);                      ///< may be null
};

}  // extern "C"

static_assert(sizeof(OfxParameterSuiteV1) == 18 * sizeof(void*));
