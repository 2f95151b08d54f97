#pragma once

#include <exception>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

#include "command/StageTimes.h"
#include "fill/FillPlan.h"
#include "render/JobListener.h"
#include "render/RenderJob.h"

namespace Tesseret::Command {

/// What became of one picture or sequence, for programs. docs/guide.md describes the keys.
class PictureReport final : public Render::JobListener {
public:
    using Json = nlohmann::ordered_json;

    explicit PictureReport(const std::filesystem::path& source);

    /// What a search chose.
    void searched(const Fill::FillPlan& plan);
    /// Before the first frame: the values of each step.
    void begin(Render::RenderJob& job);
    /// What a dry run found.
    void planned(const Json& plan);
    void failed(const std::string& error);

    Json json() const;

    void frameBegan(int frame) override;
    void matteTaken(Files::MatteFrom from) override;
    void mattePrepared(std::size_t step, const Render::PreparedMatte& matte,
                       std::size_t count) override;
    void frameWritten(const Render::FrameResult& result) override;
    void warning(const std::string& text) override;
    void message(const std::string& text) override;
    void note(Host::Instance& instance, std::string_view text) override;
    void stageBegan(Host::Instance& instance, std::string_view stage) override;
    void stageEnded(Host::Instance& instance, std::string_view stage) override;
    void blockLaid(Host::Instance& instance, const TesseretBlockV1& block) override;

private:
    void add(const char* key, std::string_view text);

    mutable std::mutex mutex_;  ///< guards everything below
    Json json_;
    StageTimes stages_;
    long blocks_ = 0;
    std::size_t framesBegun_ = 0;
    int height_ = 0;  ///< of the source's display window
};

/// The whole report, indented, with a line feed at the end.
std::string reportText(const std::string& command, const nlohmann::ordered_json& pictures,
                       int exitCode);

}  // namespace Tesseret::Command
