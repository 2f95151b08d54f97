#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/EmbeddedHost.h"
#include "host/imitation/ImitatedHost.h"
#include "host/imitation/KnownHosts.h"

namespace Tesseret::Render {

/// The host that a job renders with: one that keeps the published standard, or an imitated one.
class JobHost {
public:
    /// The name of a known host, or empty. Throws `UsageError` that lists the names.
    explicit JobHost(const std::string& name);
    JobHost(const JobHost&) = delete;
    JobHost& operator=(const JobHost&) = delete;

    /// The options with the host's identity and behaviour; this outlives the host.
    Host::HostOptions adapted(Host::HostOptions options);
    /// The depth to render in: the one asked for, which the host must offer, else the source's,
    /// the next better one that is offered, or the best. Throws `UsageError` with the depths.
    Depth depthFor(std::optional<Depth> asked, Depth source) const;
    /// What to tell a user whose source has another depth than the one chosen.
    std::string depthNote(Depth chosen, Depth source) const;

private:
    const Host::KnownHost* known_ = nullptr;  ///< null: the host that keeps the standard
    std::unique_ptr<Host::ImitatedHost> behaviour_;
};

}  // namespace Tesseret::Render
