#include "command/DescribeCommand.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "command/DescriptionText.h"
#include "render/PluginSession.h"

namespace Tesseret::Command {

namespace {

struct DescribeOptions {
    std::string plugin, context;
    bool json = false;
};

int describe(const DescribeOptions& options)
{
    Render::PluginSession session(options.plugin);
    const Host::EffectDescription effect = session.effect().description();
    std::vector<Host::ContextDescription> contexts;
    for (const std::string& name : effect.contexts) {
        const std::string shortName = Render::shortContextName(name);
        if (options.context.empty()) contexts.push_back(session.describe(shortName));
    }
    if (!options.context.empty()) contexts.push_back(session.describe(options.context));
    const std::string text =
        options.json ? descriptionJson(effect, contexts) : descriptionText(effect, contexts);
    std::fputs(text.c_str(), stdout);
    return 0;
}

}  // namespace

void addDescribeCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<DescribeOptions>();
    CLI::App* const command = app.add_subcommand(
        "describe", "Lists the plug-in's clips, its parameters with their ranges, and its pages");
    command->add_option("--plugin", options->plugin, "OFX bundle or library")->type_name("FILE");
    command->add_option("--context", options->context, "Only this context: Filter or General")
        ->type_name("NAME");
    command->add_flag("--json", options->json, "Prints JSON");
    command->footer("Examples:\n  tesseret describe\n  tesseret describe --context Filter --json");
    command->callback([options, &action] { action = [options] { return describe(*options); }; });
}

}  // namespace Tesseret::Command
