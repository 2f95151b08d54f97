#include "command/ManyStills.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "command/Action.h"
#include "command/CommandLine.h"
#include "command/FileWords.h"
#include "files/FileError.h"
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

/// Works through the sources and keeps what failed.
class Batch {
public:
    Batch(bool reports, const SourceWork& work) : reports_(reports), work_(work) {}

    /// Returns the exit code; after an interrupt nothing else should be begun.
    int run(const RenderOptions& single);
    bool wasInterrupted() const { return interrupted_; }
    const nlohmann::ordered_json& pictures() const { return pictures_; }
    int finish(std::size_t sources) const;

private:
    bool reports_;
    const SourceWork& work_;
    nlohmann::ordered_json pictures_ = nlohmann::ordered_json::array();
    std::string failed_;
    std::size_t count_ = 0;
    bool interrupted_ = false;
};

int Batch::run(const RenderOptions& single)
{
    const fs::path& source = single.settings.source;
    std::unique_ptr<PictureReport> report;
    if (reports_) report = std::make_unique<PictureReport>(source);
    int code = kExitFailed;
    try {
        code = work_(single, report.get());
    } catch (const std::exception& error) {
        code = printFailure(error);
        if (report) report->failed(error.what());
    }
    interrupted_ = code == kExitInterrupted;
    if (report) pictures_.push_back(report->json());
    if (code == 0) return code;
    Render::appendItem(failed_, ", ", Files::shownName(source));
    ++count_;
    return code;
}

int Batch::finish(std::size_t sources) const
{
    if (count_ == 0) return 0;
    std::fprintf(stderr, "tesseret: %zu of %zu pictures failed: %s\n", count_, sources,
                 failed_.c_str());
    return kExitFailed;
}

int runAll(Batch& batch, const RenderOptions& given, const std::vector<fs::path>& sources)
{
    if (sources.size() == 1) return batch.run(optionsFor(given, sources.front()));
    checkOutputs(given, sources);
    for (const fs::path& source : sources) {
        batch.run(optionsFor(given, source));
        if (batch.wasInterrupted()) return kExitInterrupted;
    }
    return batch.finish(sources.size());
}

}  // namespace

int forEachSource(const std::string& command, const RenderOptions& options, const SourceWork& work)
{
    RenderOptions given = options;
    const std::vector<fs::path> sources = takeFileWords(given);
    const bool writesPicture = Files::isStandardOutput(given.settings.output);
    if (writesPicture && given.json) {
        throw Render::UsageError(
            "--json and the picture both go to standard output; give --output "
            "a file");
    }
    std::optional<Files::DataOutput> data;
    if (writesPicture || given.json) data.emplace();
    Batch batch(given.json, work);
    const int code = runAll(batch, given, sources);
    if (given.json) {
        const std::string text = reportText(command, batch.pictures(), code);
        Files::writeStandardOutput("-", std::as_bytes(std::span(text)));
    }
    return code;
}

}  // namespace Tesseret::Command
