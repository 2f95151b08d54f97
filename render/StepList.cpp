#include "render/StepList.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/PictureScale.h"

namespace Tesseret::Render {

namespace {

/// A copy of the source in pixels of the request.
std::shared_ptr<Picture> workingCopy(const ClipPicture& source, const Host::RenderRequest& request)
{
    if (request.scale.x == source.scale.x && request.scale.y == source.scale.y) {
        return std::make_shared<Picture>(source.picture->copied());
    }
    return std::make_shared<Picture>(Files::scaled(
        *source.picture, {request.scale.x / source.scale.x, request.scale.y / source.scale.y}));
}

}  // namespace

StepList::Step::Step(PluginSession& session, const JobInputs& all, const RenderSettings& own,
                     Depth depth, JobListener& listener, WarningFilter& warnings,
                     Host::InstanceListener* instances)
    : settings(own),
      inputs(all.withCrops(own)),
      frames(own, InstanceSetup(session, own, inputs, depth, instances), listener, warnings)
{}

StepList::StepList(PluginSession& session, const JobInputs& inputs,
                   const std::vector<RenderSettings>& steps, Depth depth, JobListener& listener,
                   WarningFilter& warnings, const std::shared_ptr<PaintedAreas>& painted,
                   Host::InstanceListener* instances)
{
    for (const RenderSettings& settings : steps) {
        Step& step =
            steps_.emplace_back(session, inputs, settings, depth, listener, warnings, instances);
        const FillRegion& region = step.frames.setup().fillRegion();
        if (region.source != MaskSource::Matte) continue;
        step.mattes.emplace(settings, region.polarity, painted);
    }
}

bool StepList::repeatsBlocks() const
{
    return std::ranges::any_of(steps_,
                               [](const Step& step) { return step.frames.repeatsBlocks(); });
}

bool StepList::recordsAt(int frame, const Mattes& mattes) const
{
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        if (steps_[i].frames.recordsAt(frame, mattes[i].get())) return true;
    }
    return false;
}

void StepList::passBy(const Mattes& mattes)
{
    for (std::size_t i = 0; i < steps_.size(); ++i) steps_[i].frames.passBy(mattes[i].get());
}

void StepList::keepRecords()
{
    for (Step& step : steps_) step.frames.keepRecords();
}

std::vector<FillRecord> StepList::records() const
{
    std::vector<FillRecord> records;
    for (const Step& step : steps_) records.push_back(step.frames.record());
    return records;
}

void StepList::adopt(int frame, std::vector<FillRecord> records)
{
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        steps_[i].frames.adopt(frame, std::move(records[i]));
    }
}

void StepList::forgetRecords()
{
    for (Step& step : steps_) step.frames.forgetRecord();
}

void StepList::abort()
{
    for (Step& step : steps_) step.frames.abort();
}

void StepList::beginSequence(OfxRangeD frames, const Host::RenderRequest& first)
{
    for (Step& step : steps_) step.frames.beginSequence(frames, first);
}

void StepList::endSequence()
{
    for (Step& step : steps_) step.frames.endSequence();
}

StepList::Mattes StepList::prepare(const FramePictures& pictures)
{
    Mattes mattes;
    for (Step& step : steps_) {
        mattes.push_back(step.mattes ? step.mattes->prepare(pictures.at(Names::kMatte)) : nullptr);
    }
    return mattes;
}

Picture StepList::render(const Host::RenderRequest& request, FramePictures pictures,
                         const Mattes& mattes)
{
    const auto areas = [&](std::size_t i) {
        return mattes[i] ? steps_[i].frames.areasOf(*mattes[i]) : 0;
    };
    if (steps_.size() == 1) {
        steps_.front().inputs.crops().cut(pictures);
        return steps_.front().frames.render(request, pictures, mattes.front().get());
    }
    AreaCount others;
    for (std::size_t i = 0; i < steps_.size(); ++i) others.after += areas(i);
    const std::shared_ptr<Picture> source = workingCopy(pictures.at(Names::kSource), request);
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        others.after -= areas(i);
        FramePictures shown = pictures;
        if (others.before > 0) {
            shown.at(Names::kSource).picture = source;
            shown.at(Names::kSource).scale = request.scale;
        }
        Step& step = steps_[i];
        step.inputs.crops().cut(shown);
        if (mattes[i]) {
            step.frames.fill(request, std::move(shown), *mattes[i], others, source);
        } else {
            source->paste(step.frames.render(request, shown, nullptr, others));
            ++others.before;  // what follows goes on from its result
        }
        others.before += areas(i);
    }
    Picture output = source->copied(request.window, {});
    output.setRegionOfDefinition(request.window);
    return output;
}

}  // namespace Tesseret::Render
