#include <sstream>

#include "command/pages/Pages.h"

namespace Tesseret::Command {

namespace {

/// In single quotes, where fish knows only these two escapes.
std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result + "'";
}

void writeOption(std::ostringstream& script, const OptionModel& option,
                 const std::string& condition)
{
    if (option.isPositional && !option.takesPath()) return;
    script << "complete -c tesseret -n " << quoted(condition);
    if (option.isPositional) {
        script << " -F\n";
        return;
    }
    for (const std::string& name : option.names) {
        const bool isLong = name.starts_with("--");
        script << (isLong ? " -l " : " -s ") << name.substr(isLong ? 2 : 1);
    }
    if (option.takesPath()) {
        script << " -r -F";
    } else if (!option.value.empty()) {
        script << " -x";
    }
    if (!option.choices.empty()) {
        std::string words;
        for (const std::string& choice : option.choices)
            words += (words.empty() ? "" : " ") + choice;
        script << " -a " << quoted(words);
    }
    script << " -d " << quoted(option.brief()) << "\n";
}

/// "farm submit": both words were seen.
std::string seenCondition(const std::string& name)
{
    std::istringstream words(name);
    std::string condition;
    for (std::string word; words >> word;)
        condition += (condition.empty() ? "" : "; and ") + ("__fish_seen_subcommand_from " + word);
    return condition;
}

/// "; and not ..." for the commands of this one; empty where it has none.
std::string notYetIn(const CommandModel& program, const std::string& parent)
{
    std::string words;
    for (const NamedCommand& each : allCommands(program)) {
        if (each.parent() == parent) words += " " + each.command->name;
    }
    return words.empty() ? "" : "; and not __fish_seen_subcommand_from" + words;
}

}  // namespace

std::string fishCompletion(const CommandModel& program)
{
    std::ostringstream script;
    script << "# Completion of tesseret for fish. Written by the build from the program's own "
              "options.\n\ncomplete -c tesseret -f\n";
    for (const OptionModel& option : program.options)
        writeOption(script, option, "__fish_use_subcommand");
    for (const NamedCommand& each : allCommands(program)) {
        const std::string seen = seenCondition(each.name);
        const std::string offered =
            each.parent().empty() ? "__fish_use_subcommand"
                                  : seenCondition(each.parent()) + notYetIn(program, each.parent());
        script << "\ncomplete -c tesseret -n " << quoted(offered) << " -a " << each.command->name
               << " -d " << quoted(each.command->description) << "\n";
        for (const OptionModel& option : each.command->options) {
            // The options of a group end where one of its commands was chosen.
            writeOption(script, option, seen + notYetIn(program, each.name));
        }
    }
    return script.str();
}

}  // namespace Tesseret::Command
