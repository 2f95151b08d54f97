#include "command/JsonReport.h"

#include <algorithm>
#include <cmath>

#include "files/FileError.h"
#include "render/FillSteps.h"
#include "render/PreparedMatte.h"

namespace Tesseret::Command {

using Json = PictureReport::Json;

namespace {

/// To tenths of a millisecond.
double rounded(double seconds)
{
    return std::round(seconds * 1e4) / 1e4;
}

constexpr const char* kWarnings = "warnings";
constexpr const char* kMessages = "messages";
constexpr const char* kNotes = "notes";
constexpr const char* kErrors = "errors";

/// In the coordinates of an image viewer.
Json boxJson(const OfxRectI& box, int height)
{
    return {box.x1, height - box.y2, box.x2, height - box.y1};
}

const char* channelsOf(Files::MatteFrom from)
{
    if (from == Files::MatteFrom::Alpha) return "alpha";
    return from == Files::MatteFrom::Grey ? "grey" : "luminance";
}

Json scoreJson(const Quality::Visibility& score)
{
    return {{"total", score.total}, {"rim", score.rim},         {"inside", score.inside},
            {"step", score.step},   {"repeats", score.repeats}, {"structure", score.structure},
            {"sides", score.sides}};
}

}  // namespace

PictureReport::PictureReport(const std::filesystem::path& source)
    : json_{{"source", Files::shownName(source)},
            {"files", Json::array()},
            {kNotes, Json::array()},
            {kWarnings, Json::array()},
            {kMessages, Json::array()},
            {kErrors, Json::array()}}
{}

void PictureReport::searched(const Fill::FillPlan& plan)
{
    const std::lock_guard lock(mutex_);
    Json areas = Json::array();
    for (const Fill::AreaChoice& choice : plan.areas) {
        Json numbers = Json::array();
        for (const std::size_t area : choice.areas) numbers.push_back(area + 1);
        areas.push_back({{"areas", numbers}, {"settings", choice.caption}});
        if (choice.visibility) areas.back()["score"] = scoreJson(*choice.visibility);
    }
    json_["search"] = {{"trials", plan.trials}, {"ended", plan.wasEnded}, {"areas", areas}};
}

void PictureReport::begin(Render::RenderJob& job)
{
    const Host::EffectDescription effect = job.session().effect().description();
    const Files::PictureInfo& source = job.inputs().source();
    const std::vector<Render::FillStep> steps = job.steps();
    const Host::ContextDescription& context = job.session().describe(job.setup().context());
    const std::lock_guard lock(mutex_);
    height_ = source.displayWindow.y2;
    json_["width"] = source.displayWindow.x2;
    json_["height"] = height_;
    json_["plugin"] = effect.identifier;
    json_["context"] = job.setup().context();
    json_["steps"] = Json::array();
    for (const Render::FillStep& step : steps) {
        Json values = Render::stepsJson(effect.identifier, context, {step});
        for (const char* key : {"plugin", "context"}) values.erase(key);
        json_["steps"].push_back(std::move(values));
    }
}

void PictureReport::planned(const Json& plan)
{
    const std::lock_guard lock(mutex_);
    json_.update(plan);
}

void PictureReport::failed(const std::string& error)
{
    const std::lock_guard lock(mutex_);
    add(kErrors, error);
}

Json PictureReport::json() const
{
    const std::lock_guard lock(mutex_);
    Json json = json_;
    if (stages_.all().empty()) return json;
    json["blocks"] = blocks_;
    json["stages"] = Json::array();
    for (const StageTimes::Stage& stage : stages_.all()) {
        json["stages"].push_back({{"name", stage.name},
                                  {"level", stage.level},
                                  {"count", stage.count},
                                  {"seconds", rounded(stage.seconds)}});
    }
    return json;
}

void PictureReport::add(const char* key, std::string_view text)
{
    Json& list = json_[key];
    if (std::ranges::find(list, Json(text)) == list.end()) list.push_back(text);
}

void PictureReport::frameBegan(int /*frame*/)
{
    const std::lock_guard lock(mutex_);
    ++framesBegun_;
}

void PictureReport::matteTaken(Files::MatteFrom from)
{
    const std::lock_guard lock(mutex_);
    json_["matteFrom"] = channelsOf(from);
}

/// The areas of the first frame, as they are filled.
void PictureReport::mattePrepared(std::size_t step, const Render::PreparedMatte& matte,
                                  std::size_t count)
{
    const std::lock_guard lock(mutex_);
    if (framesBegun_ > 1) return;
    const int top = matte.areas.matte().regionOfDefinition().y2;
    for (std::size_t area = 0; area < count; ++area) {
        std::size_t pixels = 0;
        const OfxRectI& box = matte.areas.box(area);
        Render::eachMasked(matte.areas.alone(area, box), matte.areas.polarity(),
                           [&](int, int) { ++pixels; });
        json_["areas"].push_back(
            {{"step", step + 1}, {"box", boxJson(box, top)}, {"pixels", pixels}});
    }
}

void PictureReport::frameWritten(const Render::FrameResult& result)
{
    const std::lock_guard lock(mutex_);
    json_["files"].push_back({{"frame", result.frame},
                              {"file", Files::shownName(result.file)},
                              {"readSeconds", rounded(result.readTime)},
                              {"renderSeconds", rounded(result.renderTime)},
                              {"writeSeconds", rounded(result.writeTime)}});
}

void PictureReport::warning(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    add(kWarnings, text);
}

void PictureReport::message(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    add(kMessages, text);
}

void PictureReport::note(Host::Instance& /*instance*/, std::string_view text)
{
    const std::lock_guard lock(mutex_);
    add(kNotes, text);
}

void PictureReport::stageBegan(Host::Instance& /*instance*/, std::string_view stage)
{
    const std::lock_guard lock(mutex_);
    stages_.began(stage);
}

void PictureReport::stageEnded(Host::Instance& /*instance*/, std::string_view /*stage*/)
{
    const std::lock_guard lock(mutex_);
    stages_.ended();
}

void PictureReport::blockLaid(Host::Instance& /*instance*/, const TesseretBlockV1& /*block*/)
{
    const std::lock_guard lock(mutex_);
    ++blocks_;
}

std::string reportText(const std::string& command, const Json& pictures, int exitCode)
{
    const Json json{{"program", "tesseret " TESSERET_VERSION},
                    {"command", command},
                    {"exitCode", exitCode},
                    {"pictures", pictures}};
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace Tesseret::Command
