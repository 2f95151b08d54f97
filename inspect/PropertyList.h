#pragma once

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>

namespace Tesseret::Inspect {

/// The file cannot be read, or is no property list in XML.
class PropertyListError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The texts at the top level of an Info.plist; values of other types are left out.
std::map<std::string, std::string> readPropertyList(const std::filesystem::path& file);

}  // namespace Tesseret::Inspect
