#include "render/JobHost.h"

#include <algorithm>

#include "render/DepthWord.h"
#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

JobHost::JobHost(const std::string& name)
{
    if (name.empty()) return;
    known_ = Host::findKnownHost(name);
    if (known_ == nullptr) {
        std::string names;
        for (const Host::KnownHost& host : Host::knownHosts()) appendItem(names, ", ", host.name);
        throw UsageError("--host-like " + name + ": no such host; there are " + names);
    }
    behaviour_ = std::make_unique<Host::ImitatedHost>(known_->quirks);
}

Host::HostOptions JobHost::adapted(Host::HostOptions options)
{
    if (known_ == nullptr) return options;
    options.identity = known_->quirks.identity;
    options.behaviour = behaviour_.get();
    return options;
}

Depth JobHost::depthFor(std::optional<Depth> asked, Depth source) const
{
    if (known_ == nullptr) return asked.value_or(source);
    std::vector<Depth> offered = known_->quirks.identity.depths;
    std::ranges::sort(offered);
    if (!asked) {
        const auto better = std::ranges::lower_bound(offered, source);
        return better != offered.end() ? *better : offered.back();
    }
    if (std::ranges::find(offered, *asked) != offered.end()) return *asked;
    std::string names;
    for (const Depth depth : offered) appendItem(names, ", ", depthWord(depth));
    throw UsageError(std::string("--depth ") + depthWord(*asked) + ": a host like " + known_->name +
                     " renders in " + names);
}

std::string JobHost::depthNote(Depth chosen, Depth source) const
{
    return "a host like " + known_->name + " has no depth " + depthWord(source) +
           ", so this renders in " + depthWord(chosen);
}

}  // namespace Tesseret::Render
