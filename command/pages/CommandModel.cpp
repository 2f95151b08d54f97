#include "command/pages/CommandModel.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Tesseret::Command {

namespace {

/// "all" and "first" from "WHICH:{all,first}".
std::vector<std::string> choicesIn(const std::string& type)
{
    const std::size_t begin = type.find('{');
    const std::size_t end = type.find('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    std::vector<std::string> choices{""};
    for (const char c : type.substr(begin + 1, end - begin - 1)) {
        if (c == ',') {
            choices.emplace_back();
        } else {
            choices.back() += c;
        }
    }
    return choices;
}

OptionModel modelOf(const CLI::Option& option)
{
    OptionModel model;
    for (const std::string& name : option.get_snames()) model.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) model.names.push_back("--" + name);
    model.isPositional = option.get_positional() && model.names.empty();
    if (model.isPositional) model.names.push_back(option.get_name(true));
    const bool isFlag = option.get_items_expected_max() == 0;
    const std::string type = isFlag ? "" : option.get_type_name();
    model.value = type.substr(0, type.find(':'));
    model.choices = choicesIn(type);
    model.description = option.get_description();
    model.isRequired = option.get_required();
    model.isRepeated = option.get_expected_max() > 1;
    return model;
}

void addCommands(const CommandModel& above, const std::string& prefix,
                 std::vector<NamedCommand>& commands)
{
    for (const CommandModel& each : above.commands) {
        commands.push_back({prefix + each.name, &each});
        addCommands(each, prefix + each.name + " ", commands);
    }
}

}  // namespace

bool OptionModel::takesPath() const
{
    constexpr std::array<std::string_view, 3> kPaths{"FILE", "DIR", "BUNDLE"};
    return std::ranges::find(kPaths, value) != kPaths.end();
}

std::string OptionModel::brief() const
{
    std::size_t end = description.size();
    for (const char* const detail : {"; ", " (", ". "})
        end = std::min(end, description.find(detail));
    return description.substr(0, end);
}

CommandModel modelOf(const CLI::App& app)
{
    CommandModel model{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    for (const CLI::Option* const option : app.get_options())
        model.options.push_back(modelOf(*option));
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App*) { return true; })) {
        model.commands.push_back(modelOf(*command));
    }
    return model;
}

std::string NamedCommand::parent() const
{
    const std::size_t space = name.rfind(' ');
    return space == std::string::npos ? "" : name.substr(0, space);
}

std::string NamedCommand::joinedBy(char separator) const
{
    std::string text = name;
    std::ranges::replace(text, ' ', separator);
    return text;
}

std::vector<NamedCommand> allCommands(const CommandModel& program)
{
    std::vector<NamedCommand> commands;
    addCommands(program, "", commands);
    return commands;
}

}  // namespace Tesseret::Command
