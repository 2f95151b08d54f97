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

/// What follows an option that takes a value.
void writeValues(std::ostringstream& script, const CommandModel& command)
{
    for (const OptionModel& option : command.options) {
        if (option.isPositional || option.value.empty()) continue;
        std::vector<std::string> patterns;
        for (const std::string& name : option.names) patterns.push_back(command.name + ":" + name);
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
    local command="" words="" files="" word
    COMPREPLY=()
)";

constexpr const char* kEnd = R"(    if [[ -z $command || $current == -* ]]; then
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
    std::vector<std::string> names;
    for (const CommandModel& command : program.commands) names.push_back(command.name);
    script << "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           << "        case $word in\n            " << joined(names, "|")
           << ") command=$word; break ;;\n        esac\n    done\n"
           << "    case $command:$previous in\n";
    for (const CommandModel& command : program.commands) writeValues(script, command);
    script << "    esac\n    case $command in\n";
    for (const CommandModel& command : program.commands) {
        script << "        " << command.name << ") words='" << joined(wordsOf(command), " ") << "'";
        const bool takesPath = std::ranges::any_of(command.options, [](const OptionModel& option) {
            return option.isPositional && option.takesPath();
        });
        script << (takesPath ? " files=yes" : "") << " ;;\n";
    }
    script << "        *) words='" << joined(wordsOf(program), " ") << "' ;;\n    esac\n" << kEnd;
    return script.str();
}

}  // namespace Tesseret::Command
