#pragma once

#include <optional>
#include <string_view>

#include "host/HostSinks.h"
#include "host/Parameter.h"

namespace Tesseret::Host {

/// A value that a parameter has got, by itself or at the time that was set.
struct ParameterChange {
    const Parameter& parameter;
    ParameterValue before, after;
    const char* reason = nullptr;  ///< kOfxChangePluginEdited where the plug-in itself has set it
};

/// Listens to one instance. Calls come on the thread that works with the instance; messages may
/// come from any, and are serialised with the host's.
class InstanceListener {
public:
    virtual ~InstanceListener() = default;
    /// A parameter of an instance that exists has another value; the plug-in has not been notified
    /// yet.
    virtual void parameterChanged(Instance& /*instance*/, const ParameterChange& /*change*/) {}
    /// Around changes of the plug-in that belong together, in one action or several. Blocks may
    /// nest; each end has its begin.
    virtual void editBegan(Instance& /*instance*/, std::string_view /*label*/) {}
    virtual void editEnded(Instance& /*instance*/) {}
    /// A message that names the instance. Returns its status, or nothing to leave it to the host's
    /// sink.
    virtual std::optional<OfxStatus> messagePosted(const Message& /*message*/)
    {
        return std::nullopt;
    }
    /// Listens to the instance's renders in place of the host's listener; null leaves them to it.
    virtual RenderListener* renderListener() { return nullptr; }
};

}  // namespace Tesseret::Host
