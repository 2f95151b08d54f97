#include "command/HostsCommand.h"

#include <cstdio>

#include "host/imitation/KnownHosts.h"

namespace Tesseret::Command {

namespace {

int listHosts()
{
    for (const Host::KnownHost& host : Host::knownHosts()) {
        std::printf("%-12s %s\n", host.name.c_str(), host.line.c_str());
    }
    return 0;
}

}  // namespace

void addHostsCommand(CLI::App& app, Action& action)
{
    CLI::App* const command =
        app.add_subcommand("hosts", "Lists the hosts that \"render --host-like\" imitates");
    command->callback([&action] { action = [] { return listHosts(); }; });
}

}  // namespace Tesseret::Command
