#pragma once

/// The command line as data, for the manual page and the completions of shells.

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace Tesseret::Command {

struct OptionModel {
    std::vector<std::string> names;  ///< "-s", "--source"; the bare name of a positional argument
    std::string value;               ///< "FILE", "PIXELS", ...; empty for a flag
    std::vector<std::string> choices;
    std::string description;
    bool isPositional = false;
    bool isRequired = false;
    bool isRepeated = false;

    /// Files or folders are offered for the value.
    bool takesPath() const;
    /// The description up to its first detail.
    std::string brief() const;
};

struct CommandModel {
    std::string name;
    std::string description;
    std::string footer;
    std::vector<OptionModel> options;
    std::vector<CommandModel> commands;
};

CommandModel modelOf(const CLI::App& app);

/// A command by all its words: "render", "farm", "farm submit".
struct NamedCommand {
    std::string name;
    const CommandModel* command;

    /// Without the last word: "farm"; empty for a command of the program's own.
    std::string parent() const;
    /// The name with another character between its words.
    std::string joinedBy(char separator) const;
};

/// Every command below the program, each before its own.
std::vector<NamedCommand> allCommands(const CommandModel& program);

}  // namespace Tesseret::Command
