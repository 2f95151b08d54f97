#include "command/WedgeJob.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "command/SheetTiles.h"
#include "effect/ParameterNames.h"
#include "host/HostError.h"
#include "render/Boxes.h"
#include "render/FillSteps.h"
#include "render/FrameRequest.h"
#include "render/Interrupt.h"
#include "render/JobError.h"

namespace Tesseret::Command {

using Render::RenderSettings;

namespace {

/// Each step cuts its own textures.
RenderSettings withoutCrops(RenderSettings settings)
{
    settings.textureCrops = {};
    return settings;
}

}  // namespace

void WedgeReporter::began(std::size_t tile, std::size_t count, const std::string& values)
{
    const std::lock_guard lock(mutex_);
    tile_ = tile;
    tiles_ = count;
    area_ = 0;
    areas_ = 1;
    text_ = std::to_string(tile + 1) + " of " + std::to_string(count) + "  " + values;
    bar_.update(double(tile) / double(count), text_);
}

void WedgeReporter::areaBegan(std::size_t area, std::size_t count)
{
    const std::lock_guard lock(mutex_);
    area_ = area;
    areas_ = count;
}

void WedgeReporter::note(Host::Instance& /*instance*/, std::string_view text)
{
    print("note: " + std::string(text));
}

void WedgeReporter::progress(Host::Instance& /*instance*/, double fraction)
{
    const std::lock_guard lock(mutex_);
    const double tile = (double(area_) + fraction) / double(areas_);
    bar_.update((double(tile_) + tile) / double(tiles_), text_);
}

void WedgeReporter::print(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    if (!printed_.insert(text).second) return;
    bar_.clear();
    std::fprintf(stderr, "tesseret: %s\n", text.c_str());
}

WedgeJob::WedgeJob(RenderSettings settings, Render::JobListener& listener)
    : settings_(std::move(settings)),
      listener_(listener),
      warnings_(listener),
      messages_(listener, warnings_),
      host_(settings_.hostLike),
      inputs_(withoutCrops(settings_)),
      session_(settings_.plugin, host_.adapted(messages_.hostOptions(settings_.threads))),
      depth_(host_.depthFor(settings_.depth, inputs_.source().depth))
{
    if (inputs_.frames().size() > 1) {
        throw Render::UsageError("--frames: a sheet shows one frame");
    }
    for (const std::string& text : Render::clippedBoxes(settings_, inputs_)) {
        warnings_.report(text);
    }
    pictures_ = inputs_.read(inputs_.frames().front(), depth_);
    for (const auto& [clip, picture] : pictures_) {
        for (const std::string& warning : picture.warnings) warnings_.report(warning);
    }
}

const Host::ContextDescription& WedgeJob::description()
{
    const RenderSettings first = Render::stepsOf(settings_).front();
    const Render::JobInputs inputs = inputs_.withCrops(first);
    return session_.describe(Render::InstanceSetup(session_, first, inputs, depth_).context());
}

std::vector<RenderSettings> WedgeJob::stepsWith(const std::vector<std::string>& assignments)
{
    RenderSettings settings = settings_;
    settings.parameters = assignments;
    return Render::stepsOf(settings);
}

Render::StepList WedgeJob::listOf(const std::vector<RenderSettings>& steps)
{
    return {session_, inputs_, steps, depth_, listener_, warnings_, painted_};
}

Host::RenderRequest WedgeJob::request() const
{
    return Render::requestFor(settings_, inputs_.isSequence(), inputs_.frames().front(),
                              inputs_.source());
}

OfxRectI WedgeJob::part(const std::vector<std::string>& assignments)
{
    const OfxRectI all = request().window;
    OfxRectI box{all.x2, all.y2, all.x1, all.y1};
    for (const auto& matte : listOf(stepsWith(assignments)).prepare(pictures_)) {
        if (!matte) continue;
        const std::size_t count = settings_.everyArea
                                      ? matte->areas.count()
                                      : std::min<std::size_t>(1, matte->areas.count());
        for (std::size_t area = 0; area < count; ++area) {
            const OfxRectI& other = matte->areas.box(area);
            box = {std::min(box.x1, other.x1), std::min(box.y1, other.y1),
                   std::max(box.x2, other.x2), std::max(box.y2, other.y2)};
        }
    }
    const OfxRectI part = isEmpty(box) ? all : surroundingsOf(box, all);
    return isEmpty(part) ? all : part;
}

Picture WedgeJob::render(const std::vector<std::string>& assignments, const OfxRectI& part)
{
    if (Render::isInterrupted()) throw Render::Interrupted("interrupted");
    const std::vector<RenderSettings> steps = stepsWith(assignments);
    Render::StepList list = listOf(steps);
    Host::RenderRequest request = this->request();
    bool isLocal = true;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Render::InstanceSetup& setup = list.setup(i);
        isLocal = isLocal && setup.fillRegion().source == Render::MaskSource::Matte &&
                  setup.fillReach().has_value();
    }
    if (isLocal) request.window = part;
    messages_.takeErrors();
    try {
        return list.render(request, pictures_, list.prepare(pictures_));
    } catch (const Host::HostError& error) {
        const std::string errors = messages_.takeErrors();
        throw Render::RenderFailure(std::string("the render failed: ") + error.what() +
                                    (errors.empty() ? "" : "\n" + errors));
    }
}

}  // namespace Tesseret::Command
