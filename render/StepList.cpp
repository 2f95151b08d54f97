#include "render/StepList.h"

#include <utility>

#include "effect/ParameterNames.h"
#include "files/PictureScale.h"

namespace Tesseret::Render {

namespace {

/// The pictures of the next step, whose source is what this step made of it.
void continueFrom(Picture filled, const Host::RenderRequest& request, FramePictures& pictures)
{
    ClipPicture& source = pictures.at(Names::kSource);
    std::shared_ptr<const Picture> before = source.picture;
    if (request.scale.x != source.scale.x || request.scale.y != source.scale.y) {
        before = std::make_shared<const Picture>(Files::scaled(
            *before, {request.scale.x / source.scale.x, request.scale.y / source.scale.y}));
    }
    Picture whole = before->copied();
    whole.paste(filled);
    source.picture = std::make_shared<const Picture>(std::move(whole));
    source.scale = request.scale;
}

}  // namespace

StepList::Step::Step(PluginSession& session, const JobInputs& all, const RenderSettings& settings,
                     Depth depth, JobListener& listener, WarningFilter& warnings)
    : inputs(all.withCrops(settings)),
      frames(settings, InstanceSetup(session, settings, inputs, depth), listener, warnings)
{}

StepList::StepList(PluginSession& session, const JobInputs& inputs,
                   const std::vector<RenderSettings>& steps, Depth depth, JobListener& listener,
                   WarningFilter& warnings, const std::shared_ptr<PaintedAreas>& painted)
{
    for (const RenderSettings& settings : steps) {
        Step& step = steps_.emplace_back(session, inputs, settings, depth, listener, warnings);
        const FillRegion& region = step.frames.setup().fillRegion();
        if (region.source != MaskSource::Matte) continue;
        step.mattes.emplace(settings, region.polarity, painted);
    }
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
    AreaCount others;
    for (std::size_t i = 0; i < steps_.size(); ++i) others.after += areas(i);
    Picture filled;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        others.after -= areas(i);
        if (i > 0) continueFrom(std::move(filled), request, pictures);
        FramePictures shown = pictures;
        steps_[i].inputs.crops().cut(shown);
        filled = steps_[i].frames.render(request, shown, mattes[i].get(), others);
        others.before += areas(i);
    }
    return filled;
}

}  // namespace Tesseret::Render
