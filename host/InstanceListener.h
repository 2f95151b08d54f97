#pragma once

#include <optional>
#include <string_view>

#include "host/HostSinks.h"
#include "host/Parameter.h"

namespace Tesseret::Host {

/// A new value of a parameter, constant or at the time of a key.
struct ParameterChange {
    const Parameter& parameter;
    ParameterValue before, after;
    const char* reason = nullptr;  ///< kOfxChangePluginEdited where the plug-in set it
};

/// Listens to one instance. Calls come on the thread that uses the instance; messages may come from
/// any thread, and are serialised with the host's.
class InstanceListener {
public:
    virtual ~InstanceListener() = default;
    /// A parameter of a created instance has another value; the plug-in has not been notified yet.
    virtual void parameterChanged(Instance& /*instance*/, const ParameterChange& /*change*/) {}
    /// Around changes that the plug-in groups, in one action or several. Blocks may nest and are
    /// balanced.
    virtual void editBegan(Instance& /*instance*/, std::string_view /*label*/) {}
    virtual void editEnded(Instance& /*instance*/) {}
    /// A message that names the instance. Returns its status, or nullopt to leave it to the host's
    /// sink.
    virtual std::optional<OfxStatus> messagePosted(const Message& /*message*/)
    {
        return std::nullopt;
    }
    /// The listener for the instance's renders in place of the host's; null uses the host's.
    virtual RenderListener* renderListener() { return nullptr; }
};

}  // namespace Tesseret::Host
