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

}  // namespace

std::string fishCompletion(const CommandModel& program)
{
    std::ostringstream script;
    script << "# Completion of tesseret for fish. Written by the build from the program's own "
              "options.\n\ncomplete -c tesseret -f\n";
    for (const OptionModel& option : program.options)
        writeOption(script, option, "__fish_use_subcommand");
    for (const CommandModel& command : program.commands) {
        script << "\ncomplete -c tesseret -n __fish_use_subcommand -a " << command.name << " -d "
               << quoted(command.description) << "\n";
        for (const OptionModel& option : command.options)
            writeOption(script, option, "__fish_seen_subcommand_from " + command.name);
    }
    return script.str();
}

}  // namespace Tesseret::Command
