#include "render/PluginMessages.h"

#include <utility>

#include "ofx/ofxMessage.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

Host::HostOptions PluginMessages::hostOptions(unsigned int threads)
{
    Host::HostOptions options;
    options.threads = threads;
    options.listener = &listener_;
    options.onMessage = [this](const Host::Message& message) { return receive(message); };
    options.onReport = [this](const Host::Report& report) {
        if (report.kind == Host::Report::Kind::BadCall) {
            warnings_.report("the plug-in: " + report.text);
        }
    };
    return options;
}

OfxStatus PluginMessages::receive(const Host::Message& message)
{
    if (message.type == kOfxMessageError || message.type == kOfxMessageFatal) {
        const std::lock_guard lock(mutex_);
        appendItem(errors_, "\n", message.text);
    } else {
        listener_.message(message.text);
    }
    return message.type == kOfxMessageQuestion ? kOfxStatReplyDefault : kOfxStatOK;
}

std::string PluginMessages::takeErrors()
{
    const std::lock_guard lock(mutex_);
    return std::exchange(errors_, {});
}

}  // namespace Tesseret::Render
