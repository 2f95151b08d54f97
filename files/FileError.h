#pragma once

/// An error with a file, as one line for the user: the file's name, then the reason.

#include <filesystem>
#include <stdexcept>
#include <string>

namespace Tesseret::Files {

/// What messages call a file: its name, or the standard stream that "-" or "png:-" stands for.
inline std::string shownName(const std::filesystem::path& file)
{
    const std::string name = file.string();
    if (name == "-") return "standard input";
    return name.ends_with(":-") && !file.has_parent_path() ? "standard output" : name;
}

class FileError : public std::runtime_error {
public:
    FileError(const std::filesystem::path& file, const std::string& reason)
        : std::runtime_error(shownName(file) + ": " + reason)
    {}
};

}  // namespace Tesseret::Files
