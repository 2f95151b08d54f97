#pragma once

/// "OfxParameterSuite" version 1 and the names of parameter types and properties. The ellipsis
/// stands for pointers to the value's components when reading and for the components when setting;
/// it must stay in the declarations, since variadic calls pass floating-point arguments
/// differently.

#include "ofx/ofxCore.h"

OfxName kOfxParameterSuite = "OfxParameterSuite";

OfxName kOfxParamTypeInteger = "OfxParamTypeInteger";
OfxName kOfxParamTypeDouble = "OfxParamTypeDouble";
OfxName kOfxParamTypeBoolean = "OfxParamTypeBoolean";
OfxName kOfxParamTypeChoice = "OfxParamTypeChoice";
OfxName kOfxParamTypeRGBA = "OfxParamTypeRGBA";
OfxName kOfxParamTypeRGB = "OfxParamTypeRGB";
OfxName kOfxParamTypeDouble2D = "OfxParamTypeDouble2D";
OfxName kOfxParamTypeInteger2D = "OfxParamTypeInteger2D";
OfxName kOfxParamTypeDouble3D = "OfxParamTypeDouble3D";
OfxName kOfxParamTypeInteger3D = "OfxParamTypeInteger3D";
OfxName kOfxParamTypeString = "OfxParamTypeString";
OfxName kOfxParamTypeCustom = "OfxParamTypeCustom";
OfxName kOfxParamTypeGroup = "OfxParamTypeGroup";
OfxName kOfxParamTypePage = "OfxParamTypePage";
OfxName kOfxParamTypePushButton = "OfxParamTypePushButton";

OfxName kOfxTypeParameter = "OfxTypeParameter";

OfxName kOfxParamHostPropSupportsCustomAnimation = "OfxParamHostPropSupportsCustomAnimation";
OfxName kOfxParamHostPropSupportsStringAnimation = "OfxParamHostPropSupportsStringAnimation";
OfxName kOfxParamHostPropSupportsBooleanAnimation = "OfxParamHostPropSupportsBooleanAnimation";
OfxName kOfxParamHostPropSupportsChoiceAnimation = "OfxParamHostPropSupportsChoiceAnimation";
OfxName kOfxParamHostPropSupportsCustomInteract = "OfxParamHostPropSupportsCustomInteract";
OfxName kOfxParamHostPropMaxParameters = "OfxParamHostPropMaxParameters";
OfxName kOfxParamHostPropMaxPages = "OfxParamHostPropMaxPages";
OfxName kOfxParamHostPropPageRowColumnCount = "OfxParamHostPropPageRowColumnCount";

OfxName kOfxParamPropType = "OfxParamPropType";
OfxName kOfxParamPropAnimates = "OfxParamPropAnimates";
OfxName kOfxParamPropCanUndo = "OfxParamPropCanUndo";
OfxName kOfxParamPropPluginMayWrite = "OfxParamPropPluginMayWrite";
OfxName kOfxParamPropPersistant = "OfxParamPropPersistant";
OfxName kOfxParamPropCacheInvalidation = "OfxParamPropCacheInvalidation";
OfxName kOfxParamPropEvaluateOnChange = "OfxParamPropEvaluateOnChange";
OfxName kOfxParamPropSecret = "OfxParamPropSecret";
OfxName kOfxParamPropEnabled = "OfxParamPropEnabled";
OfxName kOfxParamPropScriptName = "OfxParamPropScriptName";
OfxName kOfxParamPropHint = "OfxParamPropHint";
OfxName kOfxParamPropParent = "OfxParamPropParent";
OfxName kOfxParamPropDefault = "OfxParamPropDefault";
OfxName kOfxParamPropMin = "OfxParamPropMin";
OfxName kOfxParamPropMax = "OfxParamPropMax";
OfxName kOfxParamPropDisplayMin = "OfxParamPropDisplayMin";
OfxName kOfxParamPropDisplayMax = "OfxParamPropDisplayMax";
OfxName kOfxParamPropIncrement = "OfxParamPropIncrement";
OfxName kOfxParamPropDigits = "OfxParamPropDigits";
OfxName kOfxParamPropDoubleType = "OfxParamPropDoubleType";
OfxName kOfxParamPropChoiceOption = "OfxParamPropChoiceOption";
OfxName kOfxParamPropStringMode = "OfxParamPropStringMode";
OfxName kOfxParamPropPageChild = "OfxParamPropPageChild";
OfxName kOfxPluginPropParamPageOrder = "OfxPluginPropParamPageOrder";

OfxName kOfxParamPageSkipRow = "OfxParamPageSkipRow";
OfxName kOfxParamPageSkipColumn = "OfxParamPageSkipColumn";

OfxName kOfxParamInvalidateValueChange = "OfxParamInvalidateValueChange";
OfxName kOfxParamInvalidateValueChangeToEnd = "OfxParamInvalidateValueChangeToEnd";
OfxName kOfxParamInvalidateAll = "OfxParamInvalidateAll";

OfxName kOfxParamStringIsSingleLine = "OfxParamStringIsSingleLine";
OfxName kOfxParamStringIsMultiLine = "OfxParamStringIsMultiLine";
OfxName kOfxParamStringIsFilePath = "OfxParamStringIsFilePath";
OfxName kOfxParamStringIsDirectoryPath = "OfxParamStringIsDirectoryPath";
OfxName kOfxParamStringIsLabel = "OfxParamStringIsLabel";

OfxName kOfxParamDoubleTypePlain = "OfxParamDoubleTypePlain";
OfxName kOfxParamDoubleTypeAngle = "OfxParamDoubleTypeAngle";
OfxName kOfxParamDoubleTypeScale = "OfxParamDoubleTypeScale";
OfxName kOfxParamDoubleTypeTime = "OfxParamDoubleTypeTime";
OfxName kOfxParamDoubleTypeAbsoluteTime = "OfxParamDoubleTypeAbsoluteTime";
OfxName kOfxParamDoubleTypeX = "OfxParamDoubleTypeX";
OfxName kOfxParamDoubleTypeY = "OfxParamDoubleTypeY";
OfxName kOfxParamDoubleTypeXAbsolute = "OfxParamDoubleTypeXAbsolute";
OfxName kOfxParamDoubleTypeYAbsolute = "OfxParamDoubleTypeYAbsolute";
OfxName kOfxParamDoubleTypeXY = "OfxParamDoubleTypeXY";
OfxName kOfxParamDoubleTypeXYAbsolute = "OfxParamDoubleTypeXYAbsolute";
OfxName kOfxParamDoubleTypeNormalisedX = "OfxParamDoubleTypeNormalisedX";
OfxName kOfxParamDoubleTypeNormalisedY = "OfxParamDoubleTypeNormalisedY";
OfxName kOfxParamDoubleTypeNormalisedXAbsolute = "OfxParamDoubleTypeNormalisedXAbsolute";
OfxName kOfxParamDoubleTypeNormalisedYAbsolute = "OfxParamDoubleTypeNormalisedYAbsolute";
OfxName kOfxParamDoubleTypeNormalisedXY = "OfxParamDoubleTypeNormalisedXY";
OfxName kOfxParamDoubleTypeNormalisedXYAbsolute = "OfxParamDoubleTypeNormalisedXYAbsolute";

OFX_BEGIN

typedef struct OfxParamStruct* OfxParamHandle;
typedef struct OfxParamSetStruct* OfxParamSetHandle;

typedef struct OfxParameterSuiteV1 {
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
} OfxParameterSuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxParameterSuiteV1) == 18 * sizeof(void*));
#endif
