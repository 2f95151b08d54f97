#include "farm/Submissions.h"

#include <ctime>
#include <fstream>
#include <span>

#include <nlohmann/json.hpp>

#include "files/WholeFile.h"
#include "render/JobError.h"

namespace Tesseret::Farm {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

fs::path fileOf(const Job& job)
{
    return job.folder / "submissions.json";
}

void write(const Job& job, const std::vector<Submission>& submissions)
{
    Json json = Json::array();
    for (const Submission& each : submissions)
        json.push_back({{"id", each.id}, {"chunks", each.chunks}, {"time", each.time}});
    const std::string text = json.dump() + "\n";
    Files::writeWhole(fileOf(job), std::as_bytes(std::span(text)));
}

}  // namespace

std::vector<Submission> readSubmissions(const Job& job)
{
    std::ifstream stream(fileOf(job), std::ios::binary);
    if (!stream) return {};
    try {
        std::vector<Submission> submissions;
        for (const Json& each : Json::parse(stream))
            submissions.push_back({each.at("id"), each.at("chunks"), each.at("time")});
        return submissions;
    } catch (const Json::exception&) {
        throw Render::UsageError(fileOf(job).string() + ": is damaged");
    }
}

std::string submitChunks(const Job& job, Queue& queue, const std::vector<int>& chunks)
{
    std::vector<Submission> submissions = readSubmissions(job);
    // Before the queue can start anything, so that no report of the new attempt is removed.
    for (const int chunk : chunks) {
        std::error_code ignored;
        fs::remove(job.statusOf(chunk), ignored);
    }
    const long time = std::time(nullptr);
    const std::string id = queue.submit(job, chunks);
    submissions.push_back({id, chunks, time});
    write(job, submissions);
    return id;
}

}  // namespace Tesseret::Farm
