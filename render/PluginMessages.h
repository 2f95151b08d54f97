#pragma once

#include <string>

#include "host/EmbeddedHost.h"
#include "render/JobListener.h"

namespace Tesseret::Render {

/// Passes on what a plug-in and its host have to say, and keeps the plug-in's errors until the
/// render has ended.
class PluginMessages {
public:
    /// Both outlive this.
    PluginMessages(JobListener& listener, WarningFilter& warnings)
        : listener_(listener), warnings_(warnings)
    {}
    PluginMessages(const PluginMessages&) = delete;
    PluginMessages& operator=(const PluginMessages&) = delete;

    /// A host that tells this and the listener; this outlives it. 0 threads are one a processor.
    Host::HostOptions hostOptions(unsigned int threads);
    /// The plug-in's errors since the last call, a line each.
    std::string takeErrors();

private:
    OfxStatus receive(const Host::Message& message);

    JobListener& listener_;
    WarningFilter& warnings_;
    std::string errors_;
};

}  // namespace Tesseret::Render
