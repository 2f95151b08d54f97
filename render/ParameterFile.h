#pragma once

/// Parameter values in a file: JSON with the keys "plugin", "context" and "parameters", or with
/// "steps", a list of objects that have "parameters" each. Choices are names or numbers, points are
/// lists of numbers. In place of a file's name every function takes the text itself, which starts
/// with "{".

#include <filesystem>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "render/ParameterText.h"

namespace Tesseret::Render {

/// The JSON of a file, checked as far as the keys above go. Throws `FileError` when it cannot be
/// read or is not JSON of this kind.
nlohmann::ordered_json readParameterFile(const std::filesystem::path& file);

/// The short name of the context that the values were saved in; empty when the file names none.
/// Throws `FileError` when it cannot be read or is not JSON of this kind.
std::string contextOfParameters(const std::filesystem::path& file);

/// The values in the file, of a step where it has steps. Throws `FileError` as above, and
/// `UsageError` for values of another plug-in, an unknown parameter, a value of another kind or out
/// of range, or an unknown choice.
ParameterValues loadParameters(const std::filesystem::path& file, const std::string& plugin,
                               const Host::ContextDescription& description, std::size_t step = 0);

/// The values of all parameters that a project saves, those without a value at their defaults.
nlohmann::ordered_json parametersJson(const Host::ContextDescription& description,
                                      const ParameterValues& values);

/// Writes all parameters that a project saves, those without a value at their defaults.
/// The file appears whole or not at all. Throws `FileError`.
void saveParameters(const std::filesystem::path& file, const std::string& plugin,
                    const Host::ContextDescription& description, const ParameterValues& values);

/// Writes JSON, indented. The file appears whole or not at all. Throws `FileError`.
void writeJson(const std::filesystem::path& file, const nlohmann::ordered_json& json);

/// JSON as text for a message, with numbers as a person writes them.
std::string jsonText(const nlohmann::ordered_json& value);

/// A parameter's value as JSON; null where a parameter has none.
nlohmann::ordered_json valueJson(const Host::ParameterValue& value);

}  // namespace Tesseret::Render
