#include "command/RenderWords.h"

#include <filesystem>

namespace Tesseret::Command {

namespace {

bool takesPath(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return type == "FILE" || type == "DIR";
}

/// Parameters may be JSON in place of a file.
std::string valueOf(const CLI::Option& option)
{
    const std::string& value = option.results().front();
    if (!takesPath(option) || value.empty() || value.front() == '{') return value;
    return std::filesystem::absolute(value).lexically_normal().string();
}

}  // namespace

std::vector<std::string> wordsOf(const std::vector<const CLI::Option*>& options)
{
    std::vector<std::string> words;
    for (const CLI::Option* const option : options) {
        if (option->count() == 0 || option->get_lnames().empty()) continue;
        const std::string name = "--" + option->get_lnames().front();
        const bool isFlag = option->get_items_expected_max() == 0;
        words.push_back(isFlag ? name : name + "=" + valueOf(*option));
    }
    return words;
}

}  // namespace Tesseret::Command
