#pragma once

#include <string_view>

#include "ofx/ofxCore.h"

namespace Orvane {

class OvOfxInstanceRecord;

/// Kinds of message that an effect posts, and the results of posting.
inline constexpr int kMessageFatal = 0;
inline constexpr int kMessageError = 1;
inline constexpr int kMessageMessage = 2;
inline constexpr int kMessageLog = 3;
inline constexpr int kMessageQuestion = 4;

inline constexpr int kMessagePosted = 0;
inline constexpr int kMessageYes = 1;
inline constexpr int kMessageNo = 2;
inline constexpr int kMessageNotShown = 3;

/// Posts a message of an effect through the instance record and returns one of the four results
/// above. Nothing is posted without a record (while describing) or for an unknown kind.
int postEffectMessage(const OvOfxInstanceRecord* record, const char* text, int kind,
                      const char* id);

/// Posts through the host's message suite and returns its status, or kOfxStatErrMissingHostFeature
/// without one. The effect handle and the id may be null. The text is not a format: per-cent signs
/// are escaped.
OfxStatus postToHost(void* effect, const char* type, const char* id, std::string_view text);

}  // namespace Orvane
