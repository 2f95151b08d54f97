#include "farm/Job.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <span>
#include <utility>

#include <nlohmann/json.hpp>

#include "files/Checksum.h"
#include "files/FileThreads.h"
#include "files/Sequence.h"
#include "files/WholeFile.h"
#include "render/JobError.h"

namespace Tesseret::Farm {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using Render::UsageError;

namespace {

constexpr int kFormat = 1;

Json resourcesJson(const Resources& resources)
{
    return {{"partition", resources.partition}, {"time", resources.time},
            {"memory", resources.memory},       {"after", resources.after},
            {"cpus", resources.cpus},           {"atMost", resources.atMost}};
}

Resources resourcesFrom(const Json& json)
{
    return {json.at("partition"), json.at("time"), json.at("memory"),
            json.at("after"),     json.at("cpus"), json.at("atMost")};
}

Job jobFrom(const Json& json)
{
    Job job;
    job.version = json.at("version");
    job.folder = json.at("folder").get<std::string>();
    job.program = json.at("program").get<std::string>();
    job.arguments = json.at("arguments").get<std::vector<std::string>>();
    job.output = json.at("output").get<std::string>();
    for (const std::string name : json.at("fixedInputs")) job.fixedInputs.emplace_back(name);
    job.frames = Files::parseFrames(json.at("frames").get<std::string>());
    job.chunkSize = json.at("chunkSize");
    job.fill = json.at("fill").get<std::string>();
    job.queue = json.at("queue");
    job.resources = resourcesFrom(json.at("resources"));
    job.sums = json.at("checksums").get<FileSums>();
    return job;
}

}  // namespace

std::vector<fs::path> Job::fixedFiles(const std::vector<int>& wanted) const
{
    std::set<fs::path> files;
    for (const fs::path& name : fixedInputs) {
        const Files::SequencePattern pattern(name);
        for (const int frame : wanted) files.insert(pattern.file(frame));
    }
    return {files.begin(), files.end()};
}

std::vector<std::string> Job::renderCommand() const
{
    std::vector<std::string> words{program.string(), "render"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    words.insert(words.end(), {"--skip-existing", "--keep-going"});
    if (!fill.empty()) words.insert(words.end(), {"--load-fill", fill.string()});
    return words;
}

fs::path Job::logOf(int chunk) const
{
    return logFolder() / ("chunk-" + chunkName(chunk) + ".log");
}

void writeJob(const Job& job)
{
    Json inputs = Json::array();
    for (const fs::path& name : job.fixedInputs) inputs.push_back(name.string());
    const Json json{{"format", kFormat},
                    {"version", job.version},
                    {"folder", job.folder.string()},
                    {"program", job.program.string()},
                    {"arguments", job.arguments},
                    {"output", job.output.string()},
                    {"frames", Files::framesText(job.frames)},
                    {"chunkSize", job.chunkSize},
                    {"fill", job.fill.string()},
                    {"queue", job.queue},
                    {"resources", resourcesJson(job.resources)},
                    {"fixedInputs", inputs},
                    {"checksums", job.sums}};
    const std::string text = json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    Files::writeWhole(job.file(), std::as_bytes(std::span(text)));
}

Job readJob(const fs::path& folder)
{
    const fs::path file = folder / "job.json";
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw UsageError(folder.string() + ": is no job folder: it has no job.json");
    try {
        const Json json = Json::parse(stream);
        if (json.at("format") != kFormat) {
            throw UsageError(file.string() + ": was written by another version of tesseret, " +
                             json.at("version").get<std::string>());
        }
        Job job = jobFrom(json);
        std::error_code ignored;
        if (!fs::equivalent(job.folder, folder, ignored)) {
            throw UsageError(folder.string() + ": the job was made in " + job.folder.string() +
                             " and cannot be moved");
        }
        return job;
    } catch (const Json::exception&) {
        throw UsageError(file.string() + ": is no description of a job");
    } catch (const std::invalid_argument&) {
        throw UsageError(file.string() + ": is no description of a job");
    }
}

FileSums sumsOf(const std::vector<fs::path>& files)
{
    std::vector<std::string> sums(files.size());
    Files::inParallel(files.size(), [&](std::size_t i) { sums[i] = Files::checksumOf(files[i]); });
    FileSums result;
    for (std::size_t i = 0; i < files.size(); ++i) result.emplace(files[i].string(), sums[i]);
    return result;
}

void checkSums(const FileSums& saved, const std::vector<fs::path>& files)
{
    for (const auto& [file, sum] : sumsOf(files)) {
        const auto found = saved.find(file);
        if (found == saved.end() || found->second != sum) {
            throw UsageError(file + ": has changed since the job was submitted");
        }
    }
}

}  // namespace Tesseret::Farm
