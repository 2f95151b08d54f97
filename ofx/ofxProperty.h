#pragma once

/// "OfxPropertySuite" version 1: typed values by name and index. Strings are copied by the host
/// when set; a string that is read belongs to the host and is copied at once.

#include "ofx/ofxCore.h"

OfxName kOfxPropertySuite = "OfxPropertySuite";

OFX_BEGIN

typedef struct OfxPropertySuiteV1 {
    OfxStatus (*propSetPointer)(OfxPropertySetHandle, const char* property, int index, void* value);
    OfxStatus (*propSetString)(OfxPropertySetHandle, const char* property, int index,
                               const char* value);
    OfxStatus (*propSetDouble)(OfxPropertySetHandle, const char* property, int index, double value);
    OfxStatus (*propSetInt)(OfxPropertySetHandle, const char* property, int index, int value);
    OfxStatus (*propSetPointerN)(OfxPropertySetHandle, const char* property, int count,
                                 void* const* value);
    OfxStatus (*propSetStringN)(OfxPropertySetHandle, const char* property, int count,
                                const char* const* value);
    OfxStatus (*propSetDoubleN)(OfxPropertySetHandle, const char* property, int count,
                                const double* value);
    OfxStatus (*propSetIntN)(OfxPropertySetHandle, const char* property, int count,
                             const int* value);
    OfxStatus (*propGetPointer)(OfxPropertySetHandle, const char* property, int index,
                                void** value);
    OfxStatus (*propGetString)(OfxPropertySetHandle, const char* property, int index, char** value);
    OfxStatus (*propGetDouble)(OfxPropertySetHandle, const char* property, int index,
                               double* value);
    OfxStatus (*propGetInt)(OfxPropertySetHandle, const char* property, int index, int* value);
    OfxStatus (*propGetPointerN)(OfxPropertySetHandle, const char* property, int count,
                                 void** value);
    OfxStatus (*propGetStringN)(OfxPropertySetHandle, const char* property, int count,
                                char** value);
    OfxStatus (*propGetDoubleN)(OfxPropertySetHandle, const char* property, int count,
                                double* value);
    OfxStatus (*propGetIntN)(OfxPropertySetHandle, const char* property, int count, int* value);
    OfxStatus (*propReset)(OfxPropertySetHandle, const char* property);
    OfxStatus (*propGetDimension)(OfxPropertySetHandle, const char* property, int* count);
} OfxPropertySuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxPropertySuiteV1) == 18 * sizeof(void*));
#endif
