#pragma once

#include <string_view>

#include "host/Parameter.h"

namespace Tesseret::Host {

class Instance;

/// A value that a parameter has got, by itself or at the time that was set.
struct ParameterChange {
    const Parameter& parameter;
    ParameterValue before, after;
    const char* reason = nullptr;  ///< kOfxChangePluginEdited where the plug-in itself has set it
};

/// Listens to one instance. Calls come on the thread that works with the instance.
class InstanceListener {
public:
    virtual ~InstanceListener() = default;
    /// A parameter of an instance that exists has another value; the plug-in has not been told yet.
    virtual void parameterChanged(Instance& /*instance*/, const ParameterChange& /*change*/) {}
    /// Around changes of the plug-in that belong together, in one action or several. Blocks may
    /// nest; each end has its begin.
    virtual void editBegan(Instance& /*instance*/, std::string_view /*label*/) {}
    virtual void editEnded(Instance& /*instance*/) {}
};

}  // namespace Tesseret::Host
