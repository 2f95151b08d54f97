#pragma once

#include <filesystem>

#include "fill/FillPlan.h"
#include "render/RenderJob.h"

namespace Tesseret::Command {

/// The file of a variation's parameters beside its sheet: "sheet.3.json" for "sheet.png" and 3.
std::filesystem::path parametersBeside(const std::filesystem::path& sheet, std::size_t number);

/// Writes the plan's variations as a contact sheet, with the source as its first tile, and the
/// parameters of each beside it. The job has the plan's files. Throws `FileError`.
void writeVariations(const std::filesystem::path& sheet, int tileSize, const Fill::FillPlan& plan,
                     Render::RenderJob& job);

}  // namespace Tesseret::Command
