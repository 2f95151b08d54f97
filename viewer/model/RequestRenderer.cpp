#include "viewer/model/RequestRenderer.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "effect/ParameterNames.h"
#include "host/HostError.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"
#include "viewer/model/FillList.h"
#include "viewer/model/WindowWording.h"

namespace Tesseret::Viewer {

using Render::FramePictures;
using Render::RenderSettings;

namespace {

/// Of the areas that the steps fill, at this scale.
std::vector<OfxRectI> boxesOf(const std::vector<Render::FillStep>& steps,
                              const Render::MatteAreas& areas, double scale)
{
    std::vector<OfxRectI> boxes;
    for (std::size_t area = 0; area < areas.count(); ++area) {
        const bool isFilled = std::ranges::any_of(steps, [&](const Render::FillStep& step) {
            const std::vector<std::size_t>& named = step.settings.areas;
            return named.empty() || std::ranges::find(named, area) != named.end();
        });
        const OfxRectI& box = areas.box(area);
        if (!isFilled) continue;
        boxes.push_back(toPixels({double(box.x1), double(box.y1), double(box.x2), double(box.y2)},
                                 {scale, scale}, 1.0));
    }
    return boxes;
}

}  // namespace

RequestRenderer::RequestRenderer(Render::PluginSession& session, const RenderSettings& settings,
                                 PictureCache& pictures, RenderWatch& watch)
    : settings_(settings),
      pictures_(pictures),
      watch_(watch),
      warnings_(watch),
      messages_(watch, warnings_),
      session_(session),
      setup_(session, settings, pictures.inputs(), pictures.depth(), &messages_)
{}

void RequestRenderer::begin()
{
    const std::lock_guard lock(mutex_);
    if (std::exchange(isAborted_, false)) current_.reset();  // an aborted instance stays aborted
}

/// After a failure the instances' state is unknown.
void RequestRenderer::forget()
{
    const std::lock_guard lock(mutex_);
    current_.reset();
}

void RequestRenderer::abort()
{
    const std::lock_guard lock(mutex_);
    isAborted_ = true;
    if (current_) current_->abort();
}

void RequestRenderer::stopIfAborted()
{
    const std::lock_guard lock(mutex_);
    if (isAborted_) throw Render::Interrupted("aborted");
}

std::shared_ptr<RenderResult> RequestRenderer::render(const ViewRequest& request)
{
    const auto start = std::chrono::steady_clock::now();
    auto result = std::make_shared<RenderResult>();
    result->request = request;
    watch_.begin();
    messages_.takeErrors();
    try {
        prepare(request);
        const int first = recordingFrame(request.frame);
        const bool repeats = current_->instances().repeatsBlocks();
        if (repeats && first != request.frame && current_->recorded != first) {
            RenderResult recorded;
            recorded.request = request;
            recorded.request.wantsMaps = false;
            renderFrame(first, recorded);
        }
        if (repeats) current_->recorded = first;
        renderFrame(request.frame, *result);
    } catch (const Render::Interrupted&) {
        return nullptr;
    } catch (const Host::HostError& error) {
        result->error = std::string("the render failed: ") + error.what();
    } catch (const PictureError& error) {
        result->error = std::string("the render failed: ") + error.what();
    } catch (const std::exception& error) {
        result->error = inWindowWords(error.what());
    }
    if (!result->error.empty()) forget();
    watch_.end(*result);
    std::string errors = messages_.takeErrors();
    if (!errors.empty()) result->messages.push_back(std::move(errors));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    result->seconds = taken.count();
    return result;
}

const Render::InstanceSetup& RequestRenderer::setupFor(const ViewRequest& request)
{
    if (!request.matte || settings_.paintsMatte) return setup_;
    if (!paintedSetup_) {
        paintedSetup_.emplace(session_, paintedSettings(settings_), pictures_.paintedInputs(),
                              pictures_.depth(), &messages_);
    }
    return *paintedSetup_;
}

const Render::JobInputs& RequestRenderer::inputsFor(const ViewRequest& request)
{
    return request.matte ? pictures_.paintedInputs() : pictures_.inputs();
}

/// Reuses only instances that repeat the blocks of another frame; new ones report all their notes.
void RequestRenderer::prepare(const ViewRequest& request)
{
    const bool serves =
        current_ && current_->request.values == request.values &&
        current_->request.scale == request.scale && current_->request.matte == request.matte &&
        current_->request.list == request.list && current_->instances().repeatsBlocks() &&
        recordingFrame(request.frame) != request.frame;
    if (serves) return;
    RenderSettings scaled = settings_;
    scaled.renderScale = request.scale;
    auto next = std::make_unique<Setup>(request, std::move(scaled), watch_);
    Render::InstanceSetup setup = setupFor(request).with(request.values);
    prepareSteps(*next, setup.fillRegion());
    if (!next->steps) {
        next->frames.emplace(next->settings, std::move(setup), watch_, next->warnings);
    }
    {
        const std::lock_guard lock(mutex_);
        std::swap(current_, next);
    }
    stopIfAborted();
}

/// Where the request has a list, and it has steps for the matte.
void RequestRenderer::prepareSteps(Setup& next, const Render::FillRegion& region)
{
    const ViewRequest& request = next.request;
    if (!request.list || region.source != Render::MaskSource::Matte) return;
    const auto painted = std::make_shared<Render::PaintedAreas>();
    const std::shared_ptr<const FramePictures> pictures = picturesOf(request, request.frame);
    const Render::MatteAreas& areas =
        painted->of(pictures->at(Names::kMatte).picture, region.polarity);
    const std::vector<Render::FillStep> steps =
        stepsInForce(*request.list, areas, settings_, request.values);
    if (steps.empty()) return;
    const RenderSettings base = request.matte ? paintedSettings(next.settings) : next.settings;
    const std::string plugin = session_.effect().description().identifier;
    next.steps.emplace(
        session_, inputsFor(request),
        Render::stepsOf(listSettings(base, plugin, session_.describe(setup_.context()), steps)),
        pictures_.depth(), watch_, next.warnings, painted, &messages_);
    stepAreas_ = boxesOf(steps, areas, request.scale);
}

/// The frame whose blocks a render of the whole sequence would repeat in this frame: the first
/// frame, or frame 0, where the plug-in starts again.
int RequestRenderer::recordingFrame(int frame) const
{
    const std::vector<int>& frames = pictures_.inputs().frames();
    const auto here = std::ranges::find(frames, frame);
    const bool isPastZero = std::find(frames.begin(), here, 0) != here;
    return frame == 0 || isPastZero ? 0 : frames.front();
}

/// With the painted matte as if it was read from a file.
std::shared_ptr<const FramePictures> RequestRenderer::picturesOf(const ViewRequest& request,
                                                                 int frame)
{
    std::shared_ptr<const FramePictures> read = pictures_.read(frame);
    if (!request.matte) return read;
    return std::make_shared<FramePictures>(paintedPictures(*read, request.matte, settings_));
}

void RequestRenderer::renderFrame(int frame, RenderResult& result)
{
    const std::shared_ptr<const FramePictures> pictures = picturesOf(result.request, frame);
    for (const auto& [clip, picture] : *pictures) {
        for (const std::string& warning : picture.warnings) watch_.warning(warning);
    }
    stopIfAborted();
    const Files::PictureInfo& source = pictures->at(Names::kSource).info;
    const Host::RenderRequest request =
        Render::requestFor(current_->settings, pictures_.inputs().isSequence(), frame, source);
    if (result.request.wantsMaps) watch_.wantMaps(request.window);
    result.picture = current_->steps ? renderSteps(request, *pictures)
                                     : renderValues(request, *pictures, result);
    if (current_->steps) result.areas = stepAreas_;
}

Picture RequestRenderer::renderValues(const Host::RenderRequest& request,
                                      const FramePictures& pictures, RenderResult& result)
{
    const std::shared_ptr<const Render::PreparedMatte> matte = matteOf(pictures);
    stopIfAborted();
    const std::size_t count = matte ? matte->areas.count() : 0;
    for (std::size_t area = 0;
         area < (settings_.everyArea ? count : std::min<std::size_t>(count, 1)); ++area) {
        result.areas.push_back(matte->areas.box(area));
    }
    return current_->frames->render(request, pictures, matte.get());
}

Picture RequestRenderer::renderSteps(const Host::RenderRequest& request,
                                     const FramePictures& pictures)
{
    const Render::StepList::Mattes mattes = current_->steps->prepare(pictures);
    stopIfAborted();
    return current_->steps->render(request, pictures, mattes);
}

/// Null when the fill region is not from the matte.
std::shared_ptr<const Render::PreparedMatte> RequestRenderer::matteOf(const FramePictures& pictures)
{
    const Render::FillRegion& region = current_->instances().fillRegion();
    if (region.source != Render::MaskSource::Matte) return nullptr;
    const RenderSettings& settings = current_->settings;
    if (!mattes_ || matteScale_ != settings.renderScale || mattePolarity_ != region.polarity) {
        mattes_.emplace(settings, region.polarity);
        matteScale_ = settings.renderScale;
        mattePolarity_ = region.polarity;
    }
    return mattes_->prepare(pictures.at(Names::kMatte));
}

}  // namespace Tesseret::Viewer
