#pragma once

#include <mutex>
#include <string>

#include "host/EmbeddedHost.h"
#include "host/InstanceListener.h"
#include "render/JobListener.h"

namespace Tesseret::Render {

/// Passes on the messages of a plug-in and its host, and keeps the plug-in's errors until the
/// render has ended. It listens to a whole host, or to single instances of a host shared with
/// others.
class PluginMessages final : public Host::InstanceListener {
public:
    /// Both outlive this.
    PluginMessages(JobListener& listener, WarningFilter& warnings)
        : listener_(listener), warnings_(warnings)
    {}
    PluginMessages(const PluginMessages&) = delete;
    PluginMessages& operator=(const PluginMessages&) = delete;

    /// A host that reports to this and the listener; this outlives it. 0 threads: one per
    /// processor.
    Host::HostOptions hostOptions(unsigned int threads);
    /// The plug-in's errors since the last call, a line each.
    std::string takeErrors();

    std::optional<OfxStatus> messagePosted(const Host::Message& message) override
    {
        return receive(message);
    }
    Host::RenderListener* renderListener() override { return &listener_; }

private:
    OfxStatus receive(const Host::Message& message);

    JobListener& listener_;
    WarningFilter& warnings_;
    std::mutex mutex_;
    std::string errors_;  ///< guarded by mutex_
};

}  // namespace Tesseret::Render
