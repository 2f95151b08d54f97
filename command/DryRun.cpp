#include "command/DryRun.h"

#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "files/FileError.h"
#include "files/Sequence.h"
#include "render/DepthWord.h"
#include "render/JobPlan.h"
#include "render/ParameterText.h"

namespace Tesseret::Command {

using Json = nlohmann::ordered_json;
using Render::JobPlan;

namespace {

void printLine(const char* name, const std::string& text)
{
    std::printf("%-12s %s\n", name, text.c_str());
}

std::string boxText(const Render::ViewBox& box)
{
    std::string text;
    for (const double edge : {box.x1, box.y1, box.x2, box.y2}) {
        Render::appendItem(text, ",", Render::numberText(edge));
    }
    return text;
}

/// A matte of dust has hundreds.
void printAreas(const JobPlan& plan)
{
    constexpr std::size_t kMost = 50;
    for (std::size_t i = 0; i < std::min(kMost, plan.areas.size()); ++i) {
        const Render::PlannedArea& area = plan.areas[i];
        printLine(("area " + std::to_string(area.number)).c_str(),
                  "box " + boxText(area.box) + ", " + std::to_string(area.pixels) + " pixels");
    }
    if (plan.areas.size() > kMost) {
        printLine("areas", std::to_string(plan.areas.size() - kMost) + " more");
    }
}

void printSteps(const JobPlan& plan, const std::string& choice)
{
    if (!choice.empty()) return printLine("blocks", choice);
    for (const Render::PlannedStep& step : plan.steps) {
        if (step.blockSize == 0) continue;
        std::string text =
            Render::numberText(step.blocks) + " of " + std::to_string(step.blockSize) + " pixels";
        if (step.fills > 1) text += ", in " + std::to_string(step.fills) + " areas";
        printLine("blocks", text);
    }
}

void printFiles(const JobPlan& plan)
{
    if (plan.files.empty() || plan.files.front().empty()) return;
    std::string text = Files::shownName(plan.files.front());
    if (plan.files.size() > 1) {
        text += " to " + plan.files.back().string() + ", " + std::to_string(plan.files.size()) +
                " files";
    }
    printLine("writes", text);
}

Json jsonOf(const JobPlan& plan, const std::string& choice)
{
    Json json{{"dryRun", true},
              {"source", plan.source.string()},
              {"width", plan.width},
              {"height", plan.height},
              {"depth", Render::depthWord(plan.depth)},
              {"context", plan.context},
              {"frames", plan.frames},
              {"areas", Json::array()},
              {"steps", Json::array()},
              {"imageBytes", std::llround(plan.imageBytes)},
              {"files", Json::array()},
              {"notes", plan.notes}};
    for (const Render::PlannedArea& area : plan.areas) {
        const Render::ViewBox& box = area.box;
        json["areas"].push_back({{"number", area.number},
                                 {"box", {box.x1, box.y1, box.x2, box.y2}},
                                 {"pixels", area.pixels}});
    }
    for (const Render::PlannedStep& step : plan.steps) {
        if (!choice.empty()) continue;
        json["steps"].push_back({{"areas", step.fills},
                                 {"blockSize", step.blockSize},
                                 {"blocks", std::llround(step.blocks)}});
    }
    for (const auto& file : plan.files) json["files"].push_back(Files::shownName(file));
    return json;
}

}  // namespace

Json dryRun(const Render::RenderSettings& settings, const std::string& choice)
{
    const JobPlan plan = Render::planJob(settings);
    printLine("source", Files::shownName(plan.source) + ", " + std::to_string(plan.width) + " x " +
                            std::to_string(plan.height) + " pixels, " +
                            Render::depthWord(plan.depth));
    if (!plan.frames.empty()) printLine("frames", Files::framesText(plan.frames));
    printAreas(plan);
    printSteps(plan, choice);
    constexpr double kMega = 1e6;
    printLine("memory",
              "about " + Render::roundedText(plan.imageBytes / kMega, 2) + " MB for images");
    printFiles(plan);
    std::fflush(stdout);
    if (choice.empty()) {
        for (const std::string& note : plan.notes) {
            std::fprintf(stderr, "tesseret: note: %s\n", note.c_str());
        }
    }
    return jsonOf(plan, choice);
}

}  // namespace Tesseret::Command
