/// The program `tesseret`: understands the command line, runs the subcommand, and turns every
/// failure into a line and an exit code.

#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "command/DescribeCommand.h"
#include "command/RenderCommand.h"
#include "command/ViewCommand.h"
#include "files/FileError.h"
#include "host/HostError.h"
#include "render/JobError.h"

namespace {

using namespace Tesseret;

int complain(const std::exception& error, int code)
{
    std::fprintf(stderr, "tesseret: %s\n", error.what());
    return code;
}

int runAction(const Command::Action& action)
{
    try {
        return action();
    } catch (const Render::Interrupted& error) {
        return complain(error, Command::kExitInterrupted);
    } catch (const Render::UsageError& error) {
        return complain(error, Command::kExitUsage);
    } catch (const Files::FileError& error) {
        return complain(error, Command::kExitUsage);
    } catch (const std::invalid_argument& error) {
        return complain(error, Command::kExitUsage);
    } catch (const std::exception& error) {
        return complain(error, Command::kExitFailed);
    }
}

int run(int argc, char** argv)
{
    CLI::App app("Fills pictures with quilted texture, through the Tesseret OFX plug-in");
    app.name("tesseret");
    app.set_version_flag("--version", "tesseret " TESSERET_VERSION);
    app.require_subcommand(1);
    app.footer("\"tesseret render --help\" has the options and examples.");
    Command::Action action;
    Command::addRenderCommand(app, action);
    Command::addViewCommand(app, action);
    Command::addDescribeCommand(app, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return app.exit(request);  // help or version
    } catch (const CLI::ParseError& error) {
        return complain(error, Command::kExitUsage);
    }
    return runAction(action);
}

}  // namespace

int main(int argc, char** argv)
{
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is an error like a full disk
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        return complain(error, Command::kExitFailed);
    }
}
