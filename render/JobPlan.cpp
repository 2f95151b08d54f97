#include "render/JobPlan.h"

#include <algorithm>
#include <numeric>

#include "effect/ParameterNames.h"
#include "render/BlockAdvice.h"
#include "render/BlockValues.h"
#include "render/Boxes.h"
#include "render/FillSteps.h"
#include "render/JobHost.h"
#include "render/PluginMessages.h"
#include "render/PluginSession.h"
#include "render/StepList.h"

namespace Tesseret::Render {

namespace {

struct Size {
    double width = 0.0, height = 0.0;

    double pixels() const { return width * height; }
};

Size sizeOf(const OfxRectI& box)
{
    return {double(box.x2 - box.x1), double(box.y2 - box.y1)};
}

/// The plug-in's maps at their peak, as docs/performance.md has them, for each pixel of the fill.
double bytesOfFill(Depth depth, bool hasMask, bool matchesLuminance)
{
    if (!hasMask) return depth == Depth::Byte ? 9.0 : depth == Depth::Short ? 13.0 : 22.0;
    if (matchesLuminance) return 42.0;
    return depth == Depth::Float ? 34.0 : 28.0;
}

class Planner {
public:
    explicit Planner(const RenderSettings& settings)
        : settings_(settings),
          warnings_(silence_),
          messages_(silence_, warnings_),
          host_(settings.hostLike),
          inputs_(settings),
          depth_(host_.depthFor(settings.depth, inputs_.source().depth)),
          session_(settings.plugin, host_.adapted(messages_.hostOptions(settings.threads))),
          steps_(session_, inputs_, stepsOf(settings), depth_, silence_, warnings_)
    {}

    JobPlan plan();

private:
    void planAreas(const ClipPicture& matte);
    void planStep(std::size_t step, const PreparedMatte* matte);
    Size blockOf(std::size_t step, const BlockValues& values);
    void addPictures(const FramePictures& pictures);

    const RenderSettings& settings_;
    JobListener silence_;
    WarningFilter warnings_;
    PluginMessages messages_;
    JobHost host_;
    JobInputs inputs_;
    Depth depth_;
    PluginSession session_;
    StepList steps_;
    JobPlan plan_;
    double fillBytes_ = 0.0;  ///< of the largest fill
};

JobPlan Planner::plan()
{
    const Files::PictureInfo& source = inputs_.source();
    plan_.source = source.file;
    plan_.width = source.displayWindow.x2;
    plan_.height = source.displayWindow.y2;
    plan_.depth = depth_;
    plan_.context = steps_.setup(0).context();
    if (inputs_.isSequence()) plan_.frames = inputs_.frames();
    plan_.notes = clippedBoxes(settings_, inputs_);
    if (std::string text = sampleBoxAdvice(settings_, steps_.setup(0)); !text.empty()) {
        plan_.notes.push_back(std::move(text));
    }
    const FramePictures pictures = inputs_.read(inputs_.frames().front(), depth_);
    const StepList::Mattes mattes = steps_.prepare(pictures);
    const bool usesMatte = std::ranges::any_of(mattes, [](const auto& m) { return m != nullptr; });
    if (usesMatte) planAreas(pictures.at(Names::kMatte));
    for (std::size_t i = 0; i < mattes.size(); ++i) planStep(i, mattes[i].get());
    addPictures(pictures);
    for (const int frame : inputs_.frames()) plan_.files.push_back(inputs_.outputFile(frame));
    return std::move(plan_);
}

void Planner::planAreas(const ClipPicture& matte)
{
    const Polarity polarity = steps_.setup(0).fillRegion().polarity;
    const MatteAreas painted(matte.picture, polarity);
    std::vector<std::size_t> chosen(
        settings_.everyArea ? painted.count() : std::min<std::size_t>(1, painted.count()));
    std::iota(chosen.begin(), chosen.end(), std::size_t{0});
    if (!settings_.areas.empty()) chosen = settings_.areas;
    const double top = matte.info.displayWindow.y2;
    for (const std::size_t area : chosen) {
        if (area >= painted.count()) continue;
        const OfxRectI& box = painted.box(area);
        std::size_t pixels = 0;
        eachMasked(painted.alone(area, box), polarity, [&](int, int) { ++pixels; });
        plan_.areas.push_back(
            {area + 1, {double(box.x1), top - box.y2, double(box.x2), top - box.y1}, pixels});
    }
}

/// A block is no larger than the sample box that it is taken from.
Size Planner::blockOf(std::size_t step, const BlockValues& values)
{
    const double size = values.pixels(values.block);
    if (values.avoids) return {size, size};
    const InstanceSetup& setup = steps_.setup(step);
    const Host::ContextDescription& description = session_.describe(setup.context());
    const Size box = sizeOf(sampleBoxOf(description, setup.inputs(), setup.values()));
    return {std::clamp(box.width * values.scale, 1.0, size),
            std::clamp(box.height * values.scale, 1.0, size)};
}

void Planner::planStep(std::size_t step, const PreparedMatte* matte)
{
    const auto values = blockValuesOf(steps_.setup(step), settings_.renderScale);
    PlannedStep planned{matte ? steps_.areasOf(step, *matte) : 1, values ? values->block : 0, 0.0};
    if (values) {
        const Size block = blockOf(step, *values);
        const auto add = [&](const Size& fill, bool hasMask) {
            planned.blocks += values->blocksIn(fill.width, fill.height, block.width, block.height);
            fillBytes_ = std::max(
                fillBytes_, fill.pixels() * bytesOfFill(depth_, hasMask, values->matchesLuminance));
        };
        constexpr double kRim = 1.0;  // of unmasked pixels, which the plug-in adds
        for (std::size_t area = 0; matte && area < planned.fills; ++area) {
            const Size box = sizeOf(settings_.cropsAreas ? matte->areas.box(area)
                                                         : matte->areas.matte().bounds());
            const double more = 2.0 * (kRim + values->margin);
            add({box.width + more, box.height + more}, /*hasMask=*/true);
        }
        const Size window = sizeOf(windowInSource(settings_, inputs_.source()));
        const double scale = settings_.renderScale;
        if (!matte) add({window.width * scale, window.height * scale}, /*hasMask=*/false);
    }
    plan_.steps.push_back(planned);
    if (!matte) return;
    for (std::string& text :
         avoidanceAdvice(steps_.setup(step), matte->areas, planned.fills, settings_.renderScale)) {
        plan_.notes.push_back(std::move(text));
    }
}

/// Those read, and a working copy and a result as large as the source.
void Planner::addPictures(const FramePictures& pictures)
{
    plan_.imageBytes = fillBytes_;
    const auto bytesOf = [](const Picture& picture) {
        return double(picture.rowBytes()) * picture.height();
    };
    for (const auto& [clip, picture] : pictures) plan_.imageBytes += bytesOf(*picture.picture);
    plan_.imageBytes += 2.0 * bytesOf(*pictures.at(Names::kSource).picture) *
                        settings_.renderScale * settings_.renderScale;
}

}  // namespace

JobPlan planJob(const RenderSettings& settings)
{
    return Planner(settings).plan();
}

}  // namespace Tesseret::Render
