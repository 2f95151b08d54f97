#include <sstream>
#include <string_view>

#include "command/pages/Pages.h"

namespace Tesseret::Command {

namespace {

/// Inside single quotes, with the characters escaped that end a field of an argument to _arguments.
std::string escaped(const std::string& text, std::string_view special)
{
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\''";
            continue;
        }
        if (special.find(c) != std::string_view::npos) result += '\\';
        result += c;
    }
    return result;
}

/// ":value:what completes it", or nothing for a flag.
std::string valuePart(const OptionModel& option)
{
    if (option.value.empty()) return "";
    std::string text = ":" + escaped(option.value, ":\\") + ":";
    if (option.takesPath()) return text + "_files";
    if (option.choices.empty()) return text + " ";
    text += "(";
    for (std::size_t i = 0; i < option.choices.size(); ++i)
        text += (i == 0 ? "" : " ") + option.choices[i];
    return text + ")";
}

/// One argument of _arguments for each name; two names exclude each other.
void writeOption(std::ostringstream& script, const OptionModel& option)
{
    if (option.isPositional) {
        script << "                '" << (option.isRepeated ? "*" : "1") << ":"
               << escaped(option.value, ":\\") << ":" << (option.takesPath() ? "_files" : " ")
               << "' \\\n";
        return;
    }
    std::string all;
    for (const std::string& name : option.names) all += (all.empty() ? "" : " ") + name;
    for (const std::string& name : option.names) {
        script << "                '(" << all << ")" << name << "["
               << escaped(option.brief(), "[]\\") << "]" << valuePart(option) << "' \\\n";
    }
}

/// The words and options that follow a program or a group of commands, then a case for each of
/// them; the first of `words` is the program's or the group's name.
void writeGroup(std::ostringstream& script, const CommandModel& group)
{
    script << "    local -a commands=(\n";
    for (const CommandModel& command : group.commands) {
        script << "        '" << command.name << ":" << escaped(command.description, ":\\")
               << "'\n";
    }
    script << "    )\n    if (( CURRENT == 2 )); then\n"
           << "        _describe -t commands command commands\n        _arguments \\\n";
    for (const OptionModel& option : group.options) writeOption(script, option);
    script << "                && return\n    fi\n    local command=$words[2]\n"
           << "    shift words\n    (( CURRENT-- ))\n    case $command in\n";
}

void writeFunction(std::ostringstream& script, const std::string& name, const CommandModel& group)
{
    for (const CommandModel& command : group.commands) {
        if (!command.commands.empty()) writeFunction(script, name + "_" + command.name, command);
    }
    script << "\n" << name << "()\n{\n";
    writeGroup(script, group);
    for (const CommandModel& command : group.commands) {
        script << "        " << command.name << ")\n";
        if (!command.commands.empty()) {
            script << "            " << name << "_" << command.name << " ;;\n";
            continue;
        }
        script << "            _arguments \\\n";
        for (const OptionModel& option : command.options) writeOption(script, option);
        script << "                && return ;;\n";
    }
    script << "    esac\n}\n";
}

}  // namespace

std::string zshCompletion(const CommandModel& program)
{
    std::ostringstream script;
    script << "#compdef tesseret\n"
           << "# Completion of tesseret for zsh. Written by the build from the program's own "
              "options.\n";
    writeFunction(script, "_tesseret", program);
    script << "\n_tesseret \"$@\"\n";
    return script.str();
}

}  // namespace Tesseret::Command
