#include "command/CommandLine.h"

#include <cstdio>
#include <exception>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "command/App.h"
#include "command/DescribeCommand.h"
#include "command/FillCommand.h"
#include "command/HostsCommand.h"
#include "command/InspectCommand.h"
#include "command/RenderCommand.h"
#include "command/ViewCommand.h"
#include "command/WedgeCommand.h"
#include "files/FileError.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace {

int printError(const std::exception& error, int code)
{
    std::fprintf(stderr, "tesseret: %s\n", error.what());
    return code;
}

int runAction(const Action& action)
{
    try {
        return action();
    } catch (const Render::Interrupted& error) {
        return printError(error, kExitInterrupted);
    } catch (const Render::UsageError& error) {
        return printError(error, kExitUsage);
    } catch (const Files::FileError& error) {
        return printError(error, kExitUsage);
    } catch (const std::invalid_argument& error) {
        return printError(error, kExitUsage);
    } catch (const std::exception& error) {
        return printError(error, kExitFailed);
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
        return printError(error, kExitUsage);
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
    addViewCommand(app, action);
    addDescribeCommand(app, action);
    addHostsCommand(app, action);
    addInspectCommand(app, action);
}

int runCommandLine(int argc, const char* const* argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        return printError(error, kExitFailed);
    }
}

}  // namespace Tesseret::Command
