#pragma once

/// An error with a file, as one line for the user: the file's name, then the reason.

#include <filesystem>
#include <stdexcept>
#include <string>

namespace Tesseret::Files {

class FileError : public std::runtime_error {
public:
    FileError(const std::filesystem::path& file, const std::string& reason)
        : std::runtime_error(file.string() + ": " + reason)
    {}
};

}  // namespace Tesseret::Files
