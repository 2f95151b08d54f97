#include "command/InspectCommand.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "command/InspectionText.h"
#include "inspect/Inspection.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Prints what the bundle holds, and one line for each thing that is wrong, with what
to do about it. The library is loaded in a process of its own: one that crashes or
hangs is reported too. Exit code: 0 when all is well, 1 when anything is wrong, 2
when there is no such file.

Examples:
  tesseret inspect /usr/OFX/Plugins/Tesseret.ofx.bundle
  tesseret inspect Other.ofx.bundle --glibc 2.17 --json)";

struct InspectOptions {
    std::string bundle, glibc = "2.28";
    double seconds = 30.0;
    bool json = false;
};

int inspectBundle(const InspectOptions& options)
{
    if (!std::filesystem::exists(options.bundle))
        throw Render::UsageError(options.bundle + ": no such file or folder");
    const Inspect::Report report = Inspect::inspect(
        {options.bundle, options.glibc,
         std::chrono::milliseconds(static_cast<std::int64_t>(options.seconds * 1000.0))});
    const std::string text = options.json ? inspectionJson(report) : inspectionText(report);
    std::fputs(text.c_str(), stdout);
    return report.findings.empty() ? 0 : kExitFailed;
}

}  // namespace

void addInspectCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<InspectOptions>();
    CLI::App* const command = app.add_subcommand(
        "inspect", "Loads an OFX bundle as a host would and says what is wrong with it");
    command->add_option("bundle", options->bundle, "OFX bundle or library of any maker")
        ->required()
        ->type_name("BUNDLE");
    command
        ->add_option("--glibc", options->glibc,
                     "Newest version of the C library that it may need (default: 2.28)")
        ->check(CLI::Validator(
            [](const std::string& text) {
                const bool isVersion =
                    !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos;
                return isVersion ? std::string() : "expected a version as 2.28, not " + text;
            },
            ""))
        ->type_name("VERSION");
    command
        ->add_option("--time-limit", options->seconds,
                     "Seconds after which the library is said to hang (default: 30)")
        ->check(CLI::Range(0.1, 3600.0))
        ->type_name("SECONDS");
    command->add_flag("--json", options->json, "Prints JSON");
    command->footer(kFooter);
    command->callback(
        [options, &action] { action = [options] { return inspectBundle(*options); }; });
}

}  // namespace Tesseret::Command
