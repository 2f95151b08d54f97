/// "OfxMessageSuite": formats the text and passes it to the host's sink.

#include <cstdarg>
#include <cstdio>
#include <string>

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

std::string formatted(const char* format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

OfxStatus post(void* handle, const char* type, const char* id, const char* format,
               std::va_list arguments)
{
    auto* const effect = static_cast<EffectObject*>(findObject(HandleKind::Effect, handle));
    EmbeddedHost* const host = effect ? &effect->host() : EmbeddedHost::current();
    if (!host) return kOfxStatFailed;
    if (handle && !effect) return host->badCall("message: no such effect", kOfxStatErrBadHandle);
    if (!type) return host->badCall("message: a null type", kOfxStatErrValue);
    Message posted{type, id ? id : "", "", effect ? effect->instance() : nullptr};
    if (format) posted.text = formatted(format, arguments);
    return host->post(posted);
}

OfxStatus message(void* handle, const char* type, const char* id, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const OfxStatus status = guarded([&] { return post(handle, type, id, format, arguments); });
    va_end(arguments);
    return status;
}

}  // namespace

const OfxMessageSuiteV1& messageSuite()
{
    static constexpr OfxMessageSuiteV1 kSuite{&message};
    return kSuite;
}

}  // namespace Tesseret::Host
