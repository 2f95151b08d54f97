#pragma once

/// "OfxMessageSuite" version 1. `format` is printf-style: a text that may hold a per-cent sign
/// belongs in an argument of "%s". Statuses: 0 posted, 12 yes, 13 no, anything else not shown.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxMessageSuite = "OfxMessageSuite";

inline constexpr const char* kOfxMessageFatal = "OfxMessageFatal";
inline constexpr const char* kOfxMessageError = "OfxMessageError";
inline constexpr const char* kOfxMessageWarning = "OfxMessageWarning";
inline constexpr const char* kOfxMessageMessage = "OfxMessageMessage";
inline constexpr const char* kOfxMessageLog = "OfxMessageLog";
inline constexpr const char* kOfxMessageQuestion = "OfxMessageQuestion";

extern "C" {

struct OfxMessageSuiteV1 {
    OfxStatus (*message)(void* handle, const char* messageType, const char* messageId,
                         const char* format, ...);
};

}  // extern "C"

static_assert(sizeof(OfxMessageSuiteV1) == sizeof(void*));
