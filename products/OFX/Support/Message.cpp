#include "products/OFX/Support/Message.h"

#include <array>
#include <cstddef>
#include <string>

#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/InstanceRecord.h"

namespace Orvane {
namespace {

/// Message types of the host, by our kind.
constexpr std::array kTypes{kOfxMessageFatal, kOfxMessageError, kOfxMessageMessage, kOfxMessageLog,
                            kOfxMessageQuestion};
static_assert(kTypes[kMessageLog] == kOfxMessageLog && kTypes.size() == kMessageQuestion + 1);

}  // namespace

int postEffectMessage(const OvOfxInstanceRecord* record, const char* text, int kind, const char* id)
{
    if (record == nullptr || kind < kMessageFatal || kind > kMessageQuestion) {
        return kMessageNotShown;
    }
    switch (record->postMessage(kTypes[static_cast<std::size_t>(kind)], id, text)) {
        case kOfxStatOK:
            return kMessagePosted;
        case kOfxStatReplyYes:
            return kMessageYes;
        case kOfxStatReplyNo:
            return kMessageNo;
        default:
            return kMessageNotShown;
    }
}

OfxStatus postToHost(void* effect, const char* type, const char* id, std::string_view text)
{
    const OfxMessageSuiteV1* suite = hostDescription().suites.message;
    if (suite == nullptr) return kOfxStatErrMissingHostFeature;
    // The suite takes a format: an unescaped per-cent sign would make the host read missing
    // arguments.
    std::string format;
    format.reserve(text.size());
    for (const char c : text) {
        if (c == '%') format += '%';
        format += c;
    }
    return suite->message(effect, type, id, format.c_str());
}

}  // namespace Orvane
