#include "command/CommandLine.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "command/App.h"
#include "command/DescribeCommand.h"
#include "command/FarmCommand.h"
#include "command/FillCommand.h"
#include "command/HostsCommand.h"
#include "command/InspectCommand.h"
#include "command/ParseMessage.h"
#include "command/RenderCommand.h"
#include "command/ViewCommand.h"
#include "command/WedgeCommand.h"
#include "files/FileError.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace {

int runAction(const Action& action)
{
    try {
        return action();
    } catch (const std::exception& error) {
        return printFailure(error);
    }
}

int run(int argc, const char* const* argv)
{
    CLI::App app;
    Action action;
    buildApp(app, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return app.exit(request);  // help or version
    } catch (const CLI::ParseError& error) {
        const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
        std::fprintf(stderr, "tesseret: %s\n", parseMessage(error, app, words).c_str());
        return kExitUsage;
    }
    return runAction(action);
}

}  // namespace

void buildApp(CLI::App& app, Action& action)
{
    app.description("Fills pictures with quilted texture, using the Tesseret OFX plug-in");
    app.name("tesseret");
    app.set_version_flag("--version", "tesseret " TESSERET_VERSION);
    app.require_subcommand(1);
    app.footer("Run \"tesseret render --help\" for its options and examples.");
    addFillCommand(app, action);
    addRenderCommand(app, action);
    addWedgeCommand(app, action);
    addFarmCommand(app, action);
    addViewCommand(app, action);
    addDescribeCommand(app, action);
    addHostsCommand(app, action);
    addInspectCommand(app, action);
}

int printFailure(const std::exception& error)
{
    const auto is = [&]<typename... Errors>() {
        return ((dynamic_cast<const Errors*>(&error) != nullptr) || ...);
    };
    const bool isUsage =
        is.operator()<Render::UsageError, Files::FileError, std::invalid_argument>();
    const bool isInterrupt = is.operator()<Render::Interrupted>();
    const bool isMemory = is.operator()<std::bad_alloc>();
    std::fprintf(stderr, "tesseret: %s\n", isMemory ? "out of memory" : error.what());
    return isInterrupt ? kExitInterrupted : isUsage ? kExitUsage : kExitFailed;
}

int runCommandLine(int argc, const char* const* argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        return printFailure(error);
    }
}

}  // namespace Tesseret::Command
