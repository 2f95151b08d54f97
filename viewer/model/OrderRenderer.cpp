#include "viewer/model/OrderRenderer.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "effect/ParameterNames.h"
#include "host/HostError.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"

namespace Tesseret::Viewer {

using Render::FramePictures;
using Render::RenderSettings;

OrderRenderer::Setup::Setup(const RenderOrder& given, RenderSettings scaled,
                            Render::InstanceSetup setup, RenderWatch& watch)
    : order(given),
      settings(std::move(scaled)),
      warnings(watch),
      frames(settings, std::move(setup), watch, warnings)
{}

OrderRenderer::OrderRenderer(Render::PluginSession& session, const RenderSettings& settings,
                             PictureCache& pictures, RenderWatch& watch)
    : settings_(settings),
      pictures_(pictures),
      watch_(watch),
      warnings_(watch),
      messages_(watch, warnings_),
      setup_(session, settings, pictures.inputs(), pictures.depth(), &messages_)
{}

void OrderRenderer::begin()
{
    const std::lock_guard lock(mutex_);
    if (std::exchange(isAborted_, false)) current_.reset();  // what was aborted stays so
}

/// What has failed may have left anything behind.
void OrderRenderer::forget()
{
    const std::lock_guard lock(mutex_);
    current_.reset();
}

void OrderRenderer::abort()
{
    const std::lock_guard lock(mutex_);
    isAborted_ = true;
    if (current_) current_->frames.abort();
}

void OrderRenderer::stopIfAborted()
{
    const std::lock_guard lock(mutex_);
    if (isAborted_) throw Render::Interrupted("aborted");
}

std::shared_ptr<RenderResult> OrderRenderer::render(const RenderOrder& order)
{
    const auto start = std::chrono::steady_clock::now();
    auto result = std::make_shared<RenderResult>();
    result->order = order;
    watch_.begin();
    messages_.takeErrors();
    try {
        prepare(order);
        const int first = recordingFrame(order.frame);
        const bool repeats = current_->frames.setup().repeatsBlocks();
        if (repeats && first != order.frame && current_->recorded != first) {
            renderFrame(first, false);
        }
        if (repeats) current_->recorded = first;
        result->picture = renderFrame(order.frame, order.wantsMaps);
    } catch (const Render::Interrupted&) {
        return nullptr;
    } catch (const Host::HostError& error) {
        result->error = std::string("the render failed: ") + error.what();
    } catch (const PictureError& error) {
        result->error = std::string("the render failed: ") + error.what();
    } catch (const std::exception& error) {
        result->error = error.what();
    }
    if (!result->error.empty()) forget();
    watch_.end(*result);
    std::string errors = messages_.takeErrors();
    if (!errors.empty()) result->messages.push_back(std::move(errors));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    result->seconds = taken.count();
    return result;
}

/// Instances that have rendered with the same values serve again, unless they would repeat blocks
/// where the order's frame has to lay new ones.
void OrderRenderer::prepare(const RenderOrder& order)
{
    const bool serves =
        current_ && current_->order.values == order.values &&
        current_->order.scale == order.scale &&
        (!current_->frames.setup().repeatsBlocks() || recordingFrame(order.frame) != order.frame);
    if (serves) return;
    RenderSettings scaled = settings_;
    scaled.renderScale = order.scale;
    auto next =
        std::make_unique<Setup>(order, std::move(scaled), setup_.with(order.values), watch_);
    {
        const std::lock_guard lock(mutex_);
        std::swap(current_, next);
    }
    stopIfAborted();
}

/// Where the blocks come from that a whole render of the sequence would repeat in a frame: its
/// first frame, or frame 0, where the plug-in begins anew.
int OrderRenderer::recordingFrame(int frame) const
{
    const std::vector<int>& frames = pictures_.inputs().frames();
    const auto here = std::ranges::find(frames, frame);
    const bool isPastZero = std::find(frames.begin(), here, 0) != here;
    return frame == 0 || isPastZero ? 0 : frames.front();
}

Picture OrderRenderer::renderFrame(int frame, bool wantsMaps)
{
    const std::shared_ptr<const FramePictures> pictures = pictures_.read(frame);
    for (const auto& [clip, picture] : *pictures) {
        for (const std::string& warning : picture.warnings) watch_.warning(warning);
    }
    stopIfAborted();
    const std::shared_ptr<const Render::PreparedMatte> matte = matteOf(*pictures);
    stopIfAborted();
    const Files::PictureInfo& source = pictures->at(Names::kSource).info;
    const Host::RenderRequest request =
        Render::requestFor(current_->settings, pictures_.inputs().isSequence(), frame, source);
    if (wantsMaps) watch_.wantMaps(request.window);
    return current_->frames.render(request, *pictures, matte.get());
}

/// Null when the plug-in does not fill from a matte.
std::shared_ptr<const Render::PreparedMatte> OrderRenderer::matteOf(const FramePictures& pictures)
{
    const Render::FillRegion& region = current_->frames.setup().fillRegion();
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
