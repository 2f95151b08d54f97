#pragma once

/// The recorded fill of a shot in a file, so that the shot can be rendered in parts: "TESSFILL", a
/// version, the length and the checksum of what follows; then the length of a JSON text, that text,
/// and the masks and blocks that it lists. Numbers have their lowest byte first.

#include <filesystem>
#include <vector>

#include <nlohmann/json.hpp>

#include "render/FillRecord.h"
#include "render/JobInputs.h"
#include "render/RenderSettings.h"
#include "render/StepList.h"

namespace Tesseret::Render {

/// All that must be the same where a fill is repeated, by names for users: plug-in, sizes,
/// parameters, the matte's use, textures.
using FillIdentity = nlohmann::ordered_json;

struct SavedFill {
    int frame = 0;  ///< that recorded
    FillIdentity identity;
    std::vector<FillRecord> steps;
};

/// The identity of a job; textures are those of `frame`. Throws `FileError`.
FillIdentity identityOf(const RenderSettings& settings, const JobInputs& inputs,
                        const StepList& steps, PluginSession& session, Depth depth, int frame);

/// Throws `UsageError` with the first difference.
void checkIdentity(const std::filesystem::path& file, const FillIdentity& saved,
                   const FillIdentity& own);

/// The file appears whole or not at all. Throws `FileError`.
void writeFill(const std::filesystem::path& file, const SavedFill& fill);

/// Throws `FileError`: not such a file, one of another version, truncated or damaged.
SavedFill readFill(const std::filesystem::path& file);

}  // namespace Tesseret::Render
