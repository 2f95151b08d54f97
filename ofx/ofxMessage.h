#pragma once

/// "OfxMessageSuite" version 1. `format` is printf-style: a text that may hold a per-cent sign
/// belongs in an argument of "%s". Statuses: 0 posted, 12 yes, 13 no, anything else not shown.

#include "ofx/ofxCore.h"

OfxName kOfxMessageSuite = "OfxMessageSuite";

OfxName kOfxMessageFatal = "OfxMessageFatal";
OfxName kOfxMessageError = "OfxMessageError";
OfxName kOfxMessageWarning = "OfxMessageWarning";
OfxName kOfxMessageMessage = "OfxMessageMessage";
OfxName kOfxMessageLog = "OfxMessageLog";
OfxName kOfxMessageQuestion = "OfxMessageQuestion";

OFX_BEGIN

typedef struct OfxMessageSuiteV1 {
    OfxStatus (*message)(void* handle, const char* messageType, const char* messageId,
                         const char* format, ...);
} OfxMessageSuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxMessageSuiteV1) == sizeof(void*));
#endif
