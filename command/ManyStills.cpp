#include "command/ManyStills.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <set>
#include <vector>

#include "command/Action.h"
#include "command/FileWords.h"
#include "files/StandardStreams.h"
#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Command {

namespace fs = std::filesystem;

namespace {

void checkOutputs(const RenderOptions& options, const std::vector<fs::path>& sources)
{
    std::set<fs::path> seen;
    for (const fs::path& source : sources) {
        const fs::path output = optionsFor(options, source).settings.output;
        if (seen.insert(output.lexically_normal()).second) continue;
        throw Render::UsageError(output.string() + ": would be written for several sources");
    }
}

}  // namespace

int forEachSource(const RenderOptions& options,
                  const std::function<int(const RenderOptions& single)>& work)
{
    RenderOptions given = options;
    const std::vector<fs::path> sources = takeFileWords(given);
    std::optional<Files::DataOutput> data;
    if (Files::isStandardOutput(given.settings.output)) data.emplace();
    if (sources.empty()) return work(given);
    if (sources.size() == 1) return work(optionsFor(given, sources.front()));
    checkOutputs(given, sources);
    std::string failed;
    std::size_t count = 0;
    for (const fs::path& source : sources) {
        try {
            if (work(optionsFor(given, source)) == 0) continue;
        } catch (const Render::Interrupted&) {
            throw;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "tesseret: %s\n", error.what());
        }
        Render::appendItem(failed, ", ", source.string());
        ++count;
    }
    if (count == 0) return 0;
    std::fprintf(stderr, "tesseret: %zu of %zu pictures failed: %s\n", count, sources.size(),
                 failed.c_str());
    return kExitFailed;
}

}  // namespace Tesseret::Command
