#pragma once

#include <string_view>

#include "ofx/ofxCore.h"

namespace Orvane {

class OvOfxInstanceRecord;

/// Kinds of message that an effect posts, and what becomes of them.
inline constexpr int kMessageFatal = 0;
inline constexpr int kMessageError = 1;
inline constexpr int kMessageMessage = 2;
inline constexpr int kMessageLog = 3;
inline constexpr int kMessageQuestion = 4;

inline constexpr int kMessagePosted = 0;
inline constexpr int kMessageYes = 1;
inline constexpr int kMessageNo = 2;
inline constexpr int kMessageNotShown = 3;

/// The message function of an effect: posts the text through the instance record and answers one of
/// the four values above. Without a record (while describing) and for an unknown kind nothing is
/// posted.
int postEffectMessage(const OvOfxInstanceRecord* record, const char* text, int kind,
                      const char* id);

/// Posts to the host's message suite and answers its status, or kOfxStatErrMissingHostFeature
/// without one. The effect handle and the id may be null. The text is no format: per-cent signs are
/// escaped.
OfxStatus postToHost(void* effect, const char* type, const char* id, std::string_view text);

}  // namespace Orvane
