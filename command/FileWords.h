#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "command/RenderOptions.h"

namespace Tesseret::Command {

/// The sources of a command: its words that are files, "in.png hole.png out.png", move to the
/// options that they stand for, "name=value" stays. The other options then hold one picture each,
/// except that a matte and an output may have "{name}" for the source's name, and an output may be
/// a folder. Throws `UsageError` for a word that fits nowhere, and for a file that is missing, with
/// a command that has it.
std::vector<std::filesystem::path> takeFileWords(RenderOptions& options);

/// The name with the source's name, without folder and extension, in place of "{name}".
std::filesystem::path named(const std::filesystem::path& file, const std::filesystem::path& source);

/// The options of one of several sources: "{name}" replaced, a folder completed by the file's name.
RenderOptions optionsFor(const RenderOptions& options, const std::filesystem::path& source);

}  // namespace Tesseret::Command
