#include "viewer/model/ViewSession.h"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "effect/ParameterNames.h"
#include "files/PictureWriter.h"
#include "host/HostError.h"
#include "render/Boxes.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "viewer/model/CommandText.h"
#include "viewer/model/Raised.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;
using Render::NamedValue;
using Render::ParameterValues;

namespace {

/// Why a matte cannot be painted.
std::string obstacle(const Render::RenderSettings& settings, Render::PluginSession& session)
{
    const Host::EffectDescription& effect = session.effect().description();
    const bool hasGeneral =
        std::ranges::find(effect.contexts, kOfxImageEffectContextGeneral) != effect.contexts.end();
    const Host::ContextDescription* const general =
        hasGeneral ? &session.describe("General") : nullptr;
    if (general == nullptr || general->clip(Names::kMatte) == nullptr ||
        general->parameter(Names::kFillRegion) == nullptr) {
        return "the plug-in has no matte";
    }
    if (!settings.context.empty() && settings.context != "General") {
        return "the context " + settings.context + " has no matte";
    }
    if (Files::SequencePattern(settings.matte).isSequence()) {
        return settings.matte.string() + " has a matte for each frame, which cannot be painted on";
    }
    return "";
}

/// Without a matte file the matte is painted from the start.
Render::RenderSettings preparedSettings(Render::RenderSettings settings, bool canPaint)
{
    settings.paintsMatte = canPaint && settings.matte.empty();
    return settings;
}

bool areEqual(const OfxRectI& a, const OfxRectI& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

}  // namespace

ViewSession::ViewSession(Render::RenderSettings settings)
    : settings_(std::move(settings)),
      session_(settings_.plugin, messages_.hostOptions(settings_.threads)),
      paintObstacle_(obstacle(settings_, session_)),
      pictures_(settings_ = preparedSettings(settings_, paintObstacle_.empty())),
      setup_(session_, settings_, pictures_.inputs(), pictures_.depth()),
      description_(session_.describe(setup_.context())),
      pages_(panelPages(description_)),
      search_(session_),
      ready_(setup_.make()),
      worker_(std::make_unique<RenderWorker>(session_, settings_, pictures_)),
      frame_(frames().front())
{
    instance().setListener(this);
    for (const std::string& text : Render::clippedBoxes(settings_, inputs())) {
        messages_.message(text);
    }
    setFrame(frame_);
    readMatte();
    if (!settings_.parameterFile.empty())
        list_ = loadedList(settings_.parameterFile, /*isGiven=*/true);
}

ViewSession::~ViewSession()
{
    search_.stop();
    search_.wait();
}

void ViewSession::readMatte()
{
    if (!paintObstacle_.empty() && !inputs().has(Names::kMatte)) return;
    if (!matte_) matte_.emplace(inputs().source().displayWindow, pictures_.depth());
    const auto read = shown_->find(Names::kMatte);
    if (read != shown_->end()) matte_->follow(read->second, settings_.matte);
}

Host::Interact* ViewSession::overlay()
{
    if (std::exchange(hasTriedOverlay_, true) || !effect().hasOverlay) return overlay_.get();
    try {
        overlay_ = std::make_unique<Host::Interact>(instance());
    } catch (const Host::HostError& error) {
        messages_.message(error.what());
    }
    return overlay_.get();
}

void ViewSession::setFrame(int frame)
{
    std::shared_ptr<const Render::FramePictures> read = pictures_.read(frame);
    for (const auto& [clip, picture] : *read) {
        ready_.clips.at(clip)->show(frame, picture.picture);
    }
    const bool isAnother = frame != frame_;
    hasChanged_ = hasChanged_ || isAnother;
    frame_ = frame;
    shown_ = std::move(read);
    if (isAnother && !paintObstacle_.empty()) readMatte();
}

void ViewSession::set(const std::string& name, ParameterValue value)
{
    const EditHistory::Group edit(history_);
    instance().set(name, std::move(value), kOfxChangeUserEdited, frame_);
}

void ViewSession::setAll(const std::vector<NamedValue>& values)
{
    const EditHistory::Group edit(history_);
    apply(values);
}

void ViewSession::nextSeed()
{
    const ParameterDescription* const seed = description_.parameter(Names::kSeed);
    if (seed == nullptr) return;
    const int current = std::get<int>(value(Names::kSeed));
    const bool isLast = !seed->max.empty() && current >= seed->max.front();
    set(Names::kSeed, isLast ? 0 : current + 1);
}

void ViewSession::reset(const std::string& name)
{
    const ParameterDescription* const parameter = description_.parameter(name);
    if (parameter == nullptr) throw Host::HostError("there is no parameter " + name);
    set(name, parameter->initial);
}

void ViewSession::press(const std::string& name)
{
    const EditHistory::Group edit(history_);
    instance().press(name, kOfxChangeUserEdited, frame_);
}

void ViewSession::movePen(const Host::Interact::Pen& pen)
{
    const EditHistory::Group edit(history_);
    Host::Interact* const shown = overlay();
    if (shown == nullptr) return;
    shown->penMotion(pen);
    if (isDragging() && dragBox_ && !areEqual(*dragBox_, *sampleBox())) useSampleBox();
}

bool ViewSession::pressPen(const Host::Interact::Pen& pen)
{
    Host::Interact* const shown = overlay();
    if (shown == nullptr) return false;
    drag_.emplace(history_);
    dragBox_ = sampleBox();
    // Also notifies an overlay that did not take the drag that the pen is up.
    if (shown->penDown(pen) != kOfxStatOK) releasePen(pen);
    return isDragging();
}

void ViewSession::releasePen(const Host::Interact::Pen& pen)
{
    if (Host::Interact* const shown = overlay()) shown->penUp(pen);
    drag_.reset();
}

void ViewSession::undo()
{
    cancelPaint();
    replay(history_.undo());
}

void ViewSession::redo()
{
    cancelPaint();
    replay(history_.redo());
}

/// Twice, since the plug-in may react to one value by changing another that was set before.
void ViewSession::apply(const std::vector<NamedValue>& values)
{
    for (int pass = 0; pass < 2; ++pass) {
        for (const auto& [name, value] : values) {
            if (instance().value(name) == value) continue;
            instance().set(name, value, kOfxChangeUserEdited, frame_);
        }
    }
}

void ViewSession::replay(const Replay& replay)
{
    const Raised replaying(isReplaying_);
    apply(replay.values);
    if (replay.list) {
        list_ = *replay.list;
        hasChanged_ = true;
    }
    for (MattePatch* const patch : replay.patches) matte_->paint().swap(*patch);
    if (!replay.patches.empty()) hasChanged_ = true;
}

void ViewSession::parameterChanged(Host::Instance& /*instance*/,
                                   const Host::ParameterChange& change)
{
    const std::string& name = change.parameter.name();
    const ParameterDescription& parameter = *description_.parameter(name);
    hasChanged_ = hasChanged_ || parameter.evaluateOnChange;
    if (search_.isBusy()) changedMeanwhile_.insert(name);
    if (isReplaying_ || !parameter.canUndo) return;
    history_.record({{name, change.before, change.after}});
    if (list_ && !isTakingList_) overrideSteps(name, change.after);
}

void ViewSession::editBegan(Host::Instance& /*instance*/, std::string_view /*label*/)
{
    history_.beginGroup();
}

void ViewSession::editEnded(Host::Instance& /*instance*/)
{
    history_.endGroup();
}

ParameterValues ViewSession::values() const
{
    ParameterValues all;
    for (const ParameterDescription& parameter : description_.parameters) {
        if (parameter.shape.dimension == 0) continue;
        all.emplace(parameter.name, ready_.instance->value(parameter.name));
    }
    return all;
}

bool ViewSession::takeChanged()
{
    return std::exchange(hasChanged_, false);
}

std::vector<std::string> ViewSession::takeMessages()
{
    return messages_.take();
}

ViewRequest ViewSession::currentRequest(double scale) const
{
    ViewRequest request{.frame = frame_, .scale = scale, .values = values(), .matte = nullptr};
    if (matte_ && paintObstacle_.empty()) request.matte = matte_->painted();
    request.list = listInForce();
    return request;
}

std::uint64_t ViewSession::request(double scale, bool wantsMaps)
{
    ViewRequest request = currentRequest(scale);
    request.wantsMaps = wantsMaps;
    return worker_->request(std::move(request));
}

bool ViewSession::hasFullResult() const
{
    const std::shared_ptr<const RenderResult> latest = worker_->latest();
    if (!latest || !latest->error.empty()) return false;
    ViewRequest wanted = currentRequest(fullScale());
    wanted.wantsMaps = latest->request.wantsMaps;
    return latest->request == wanted;
}

void ViewSession::checkResultFile(const std::filesystem::path& name) const
{
    const std::filesystem::path file = Files::SequencePattern(name).file(frame_);
    Files::checkTarget(file, settings_.compression);
    const bool isMatte = matte_ && !matte_->file().empty() &&
                         Files::fileIdentity(file) == Files::fileIdentity(matte_->file()) &&
                         Files::fileIdentity(file);
    if (inputs().reads(file) || isMatte) {
        throw Render::UsageError(file.string() +
                                 ": is one of the input files and is not overwritten");
    }
}

void ViewSession::saveResult(const std::filesystem::path& name)
{
    checkResultFile(name);
    const std::filesystem::path file = Files::SequencePattern(name).file(frame_);
    if (!hasFullResult()) {
        request(fullScale());
        worker_->wait();
    }
    const std::shared_ptr<const RenderResult> latest = worker_->latest();
    if (!hasFullResult()) {
        throw Render::RenderFailure(latest && !latest->error.empty() ? latest->error
                                                                     : "the render was aborted");
    }
    const Render::ClipPicture& source = pictures().at(Names::kSource);
    const Files::WriteOptions options =
        Render::writeOptionsFor(settings_, inputs(), file, source.info, latest->picture.bounds());
    for (const std::string& warning :
         Files::writePicture(file, latest->picture, *source.record, options)) {
        messages_.warning(warning);
    }
}

std::string ViewSession::commandText()
{
    const std::vector<Render::FillStep> steps = currentSteps();
    if (!steps.empty()) return listCommand(steps);
    Render::RenderSettings settings = settings_;
    if (currentRequest(1.0).matte) {
        settings.matte = matteFile();
        settings.paintsMatte = true;
    }
    return Viewer::commandText(settings, currentSetup(), session_);
}

void ViewSession::saveParameters(const std::filesystem::path& file)
{
    const std::vector<Render::FillStep> steps = currentSteps();
    if (steps.empty()) {
        return Render::saveParameters(file, effect().identifier, description_, values());
    }
    Render::writeJson(file, Render::stepsJson(effect().identifier, description_, steps));
}

void ViewSession::loadParameters(const std::filesystem::path& file)
{
    const std::shared_ptr<const FillList> list = loadedList(file, /*isGiven=*/false);
    const EditHistory::Group edit(history_);
    if (list) return takeList(list);
    setList(nullptr);
    std::vector<NamedValue> values;
    for (auto& [name, value] : Render::loadParameters(file, effect().identifier, description_)) {
        values.push_back({name, value});
    }
    setAll(values);
}

}  // namespace Tesseret::Viewer
