#include "command/ParseMessage.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>
#include <vector>

#include "render/NearestName.h"
#include "render/ParameterText.h"

namespace Tesseret::Command {

namespace {

const CLI::App* chosenCommand(const CLI::App& app)
{
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? nullptr : chosen.front();
}

std::vector<std::string> namesOf(const std::vector<const CLI::App*>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const CLI::App* const command : commands) names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    }
    return names;
}

/// "a, b or c" from "a,b,c".
std::string listed(const std::string& items)
{
    std::string text;
    for (std::size_t begin = 0; begin <= items.size();) {
        const std::size_t end = std::min(items.find(',', begin), items.size());
        const char* const separator = end == items.size() ? " or " : ", ";
        Render::appendItem(text, separator, items.substr(begin, end - begin));
        begin = end + 1;
    }
    return text;
}

std::string unknownOption(const std::string& word, const CLI::App& app)
{
    const std::string name = word.substr(0, word.find('='));
    const std::string likely = Render::likelyName(name, optionsOf(app));
    const std::string command = app.get_parent() ? "tesseret " + app.get_name() : "tesseret";
    return "unknown option " + name +
           (likely.empty() ? "; " + command + " --help lists them"
                           : "; did you mean " + likely + "?");
}

std::string noCommand(const CLI::App& app, const std::vector<std::string>& words)
{
    const auto commands = namesOf(app.get_subcommands([](const CLI::App*) { return true; }));
    std::string all;
    for (const std::string& name : commands) Render::appendItem(all, ", ", name);
    if (words.empty()) return "a command is missing: " + all + "; see tesseret --help";
    if (words.front().starts_with('-')) return unknownOption(words.front(), app);
    const std::string likely = Render::likelyName(words.front(), commands);
    return "unknown command \"" + words.front() + "\"; " +
           (likely.empty() ? "the commands are " + all : "did you mean \"" + likely + "\"?");
}

std::string unexpected(const CLI::App& app, const std::vector<std::string>& words)
{
    const CLI::App* const command = chosenCommand(app);
    const std::vector<std::string> left = app.remaining(true);
    if (command == nullptr || left.empty()) return noCommand(app, words);
    const auto option =
        std::ranges::find_if(left, [](const std::string& word) { return word.starts_with('-'); });
    if (option != left.end()) return unknownOption(*option, *command);
    return "tesseret " + command->get_name() + " takes no \"" + left.front() + "\"";
}

std::string missingOption(const std::string& text, const CLI::App& app)
{
    std::string name = text.substr(0, text.find(" is required"));
    if (!name.starts_with('-')) name = "the " + name;
    const CLI::App* const command = chosenCommand(app);
    const std::string example = command == nullptr ? "" : exampleOf(command->get_name());
    return name + " is missing" + (example.empty() ? "" : ": " + example);
}

std::string wrongCount(const std::string& text)
{
    std::smatch found;
    static const std::regex missing(R"((\S+): 1 required ([^:\s]+).* missing)");
    if (std::regex_match(text, found, missing)) {
        return found.str(1) + ": a value is missing: " + found.str(1) + " " + found.str(2);
    }
    static const std::regex tooMany(R"((\S+): At Most 1 required but received \d+)");
    if (std::regex_match(text, found, tooMany)) return found.str(1) + " is given more than once";
    return text;
}

std::string wrongValue(const std::string& text)
{
    std::smatch found;
    static const std::regex range(R"((\S+): Value (.*) not in range (\S+) to (\S+))");
    if (std::regex_match(text, found, range)) {
        const auto number = [&](std::size_t part) {
            return Render::numberText(std::strtod(found.str(part).c_str(), nullptr));
        };
        return found.str(1) + " " + found.str(2) + ": expected a number from " + number(3) +
               " to " + number(4);
    }
    static const std::regex choice(R"((\S+): (.*) not in \{(.*)\})");
    if (std::regex_match(text, found, choice)) {
        return found.str(1) + " " + found.str(2) + ": expected " + listed(found.str(3));
    }
    static const std::regex conversion(R"(Could not convert: (\S+) = (.*))");
    if (std::regex_match(text, found, conversion)) {
        return found.str(1) + " " + found.str(2) + ": expected a number";
    }
    return text;
}

}  // namespace

std::string parseMessage(const CLI::ParseError& error, const CLI::App& app,
                         const std::vector<std::string>& words)
{
    const std::string text = error.what();
    if (chosenCommand(app) == nullptr) return noCommand(app, words);
    const std::string kind = error.get_name();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) return unexpected(app, words);
    if (kind == "RequiredError") return missingOption(text, app);
    if (kind == "ArgumentMismatch") return wrongCount(text);
    if (kind == "ValidationError" || kind == "ConversionError") return wrongValue(text);
    if (kind == "ExcludesError") {
        std::smatch found;
        static const std::regex both(R"((\S+) excludes (\S+))");
        if (std::regex_match(text, found, both)) {
            return found.str(1) + " excludes " + found.str(2) + "; give only one of them";
        }
    }
    return text.substr(0, text.find('\n'));
}

std::string exampleOf(const std::string& command)
{
    static const std::map<std::string, std::string> kExamples{
        {"fill", "tesseret fill --source photo.png --matte hole.png --output clean.png"},
        {"render", "tesseret render --source plate.png --output out.png"},
        {"view", "tesseret view --source photo.png"},
        {"wedge", "tesseret wedge --source photo.png --sheet sheet.png seed=1-6"},
        {"inspect", "tesseret inspect Tesseret.ofx.bundle"}};
    const auto found = kExamples.find(command);
    return found == kExamples.end() ? "" : found->second;
}

}  // namespace Tesseret::Command
