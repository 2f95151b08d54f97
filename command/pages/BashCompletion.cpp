#include <algorithm>
#include <sstream>

#include "command/pages/Pages.h"

namespace Tesseret::Command {

namespace {

std::string joined(const std::vector<std::string>& words, const char* separator)
{
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
    return text;
}

/// All names of options and subcommands.
std::vector<std::string> wordsOf(const CommandModel& command)
{
    std::vector<std::string> words;
    for (const CommandModel& each : command.commands) words.push_back(each.name);
    for (const OptionModel& option : command.options) {
        if (!option.isPositional)
            words.insert(words.end(), option.names.begin(), option.names.end());
    }
    return words;
}

/// "farm submit", or " farm" where the command is the program's own, as the script compares them.
std::string spaced(const NamedCommand& named)
{
    return (named.parent().empty() ? " " : "") + named.name;
}

/// What follows an option that takes a value.
void writeValues(std::ostringstream& script, const NamedCommand& named)
{
    for (const OptionModel& option : named.command->options) {
        if (option.isPositional || option.value.empty()) continue;
        std::vector<std::string> patterns;
        for (const std::string& name : option.names)
            patterns.push_back("'" + named.name + ":" + name + "'");
        script << "        " << joined(patterns, "|") << ")\n";
        if (option.takesPath()) {
            script << "            _tesseret_files \"$current\"\n";
        } else if (!option.choices.empty()) {
            script << "            mapfile -t COMPREPLY < <(compgen -W '"
                   << joined(option.choices, " ") << "' -- \"$current\")\n";
        }
        script << "            return ;;\n";
    }
}

constexpr const char* kStart =
    R"(# Completion of tesseret for bash. Written by the build from the program's own options.

_tesseret_files()
{
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_tesseret()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command="" words="" files="" group="" word
    COMPREPLY=()
)";

constexpr const char* kEnd = R"(    if [[ -z $command || $group == yes || $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    elif [[ $files == yes ]]; then
        _tesseret_files "$current"
    fi
}

complete -F _tesseret tesseret
)";

}  // namespace

std::string bashCompletion(const CommandModel& program)
{
    std::ostringstream script;
    script << kStart;
    const std::vector<NamedCommand> commands = allCommands(program);
    std::vector<std::string> names;
    for (const NamedCommand& each : commands) names.push_back("'" + spaced(each) + "'");
    // A word names a command only where its parent is the command so far.
    script << "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           << "        case \"$command $word\" in\n            " << joined(names, "|")
           << ") command=${command:+$command }$word ;;\n        esac\n    done\n"
           << "    case $command:$previous in\n";
    for (const NamedCommand& each : commands) writeValues(script, each);
    script << "    esac\n    case $command in\n";
    for (const NamedCommand& each : commands) {
        script << "        '" << each.name << "') words='" << joined(wordsOf(*each.command), " ")
               << "'";
        const bool takesPath = std::ranges::any_of(
            each.command->options,
            [](const OptionModel& option) { return option.isPositional && option.takesPath(); });
        script << (takesPath ? " files=yes" : "")
               << (each.command->commands.empty() ? "" : " group=yes") << " ;;\n";
    }
    script << "        *) words='" << joined(wordsOf(program), " ") << "' ;;\n    esac\n" << kEnd;
    return script.str();
}

}  // namespace Tesseret::Command
