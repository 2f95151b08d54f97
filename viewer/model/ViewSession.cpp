#include "viewer/model/ViewSession.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/PictureWriter.h"
#include "host/HostError.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "viewer/model/CommandText.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;
using Render::NamedValue;
using Render::ParameterValues;

ViewSession::ViewSession(Render::RenderSettings settings)
    : settings_(std::move(settings)),
      pictures_(settings_),
      session_(settings_.plugin, messages_.hostOptions(settings_.threads)),
      setup_(session_, settings_, pictures_.inputs(), pictures_.depth()),
      description_(session_.describe(setup_.context())),
      pages_(panelPages(description_)),
      ready_(setup_.make()),
      worker_(std::make_unique<RenderWorker>(settings_, pictures_)),
      frame_(frames().front()),
      known_(values())
{
    if (settings_.window) Render::boxInPicture(*settings_.window, inputs().source());
    setFrame(frame_);
}

/// The worker's session, which the plug-in met last, outlives the instance.
ViewSession::~ViewSession()
{
    overlay_.reset();
    ready_.instance.reset();
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
    hasChanged_ = hasChanged_ || frame != frame_;
    frame_ = frame;
    shown_ = std::move(read);
}

void ViewSession::set(const std::string& name, ParameterValue value)
{
    instance().set(name, std::move(value), kOfxChangeUserEdited, frame_);
    noticePluginEdits();
}

void ViewSession::reset(const std::string& name)
{
    const ParameterDescription* const parameter = description_.parameter(name);
    if (parameter == nullptr) throw Host::HostError("there is no parameter " + name);
    set(name, parameter->initial);
}

void ViewSession::press(const std::string& name)
{
    instance().press(name, kOfxChangeUserEdited, frame_);
    noticePluginEdits();
}

void ViewSession::undo()
{
    apply(history_.undo());
    takeChanges();
}

void ViewSession::redo()
{
    apply(history_.redo());
    takeChanges();
}

/// Twice, since the plug-in may answer to one value by changing another that was set before.
void ViewSession::apply(const std::vector<NamedValue>& values)
{
    for (int pass = 0; pass < 2; ++pass) {
        for (const auto& [name, value] : values) {
            if (instance().value(name) == value) continue;
            instance().set(name, value, kOfxChangeUserEdited, frame_);
        }
    }
}

void ViewSession::noticePluginEdits()
{
    std::vector<ValueChange> changes = takeChanges();
    std::erase_if(changes, [this](const ValueChange& change) {
        return !description_.parameter(change.name)->canUndo;
    });
    history_.record(std::move(changes));
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

/// What differs from the values known, which become the current ones.
std::vector<ValueChange> ViewSession::takeChanges()
{
    ParameterValues current = values();
    std::vector<ValueChange> changes;
    for (const auto& [name, value] : current) {
        if (known_.at(name) == value) continue;
        changes.push_back({name, known_.at(name), value});
        hasChanged_ = hasChanged_ || description_.parameter(name)->evaluateOnChange;
    }
    known_ = std::move(current);
    return changes;
}

bool ViewSession::takeChanged()
{
    return std::exchange(hasChanged_, false);
}

std::vector<std::string> ViewSession::takeMessages()
{
    return messages_.take();
}

RenderOrder ViewSession::currentOrder(double scale) const
{
    return {.frame = frame_, .scale = scale, .values = values()};
}

std::uint64_t ViewSession::order(double scale, bool wantsMaps)
{
    RenderOrder order = currentOrder(scale);
    order.wantsMaps = wantsMaps;
    return worker_->order(std::move(order));
}

bool ViewSession::hasFullResult() const
{
    const std::shared_ptr<const RenderResult> latest = worker_->latest();
    if (!latest || !latest->error.empty()) return false;
    RenderOrder wanted = currentOrder(fullScale());
    wanted.wantsMaps = latest->order.wantsMaps;
    return latest->order == wanted;
}

void ViewSession::saveResult(const std::filesystem::path& name)
{
    const std::filesystem::path file = Files::SequencePattern(name).file(frame_);
    Files::checkTarget(file, settings_.compression);
    if (inputs().reads(file)) {
        throw Render::UsageError(file.string() +
                                 ": is one of the files to read; nothing is written over those");
    }
    if (!hasFullResult()) {
        order(fullScale());
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
    return Viewer::commandText(settings_, setup_.with(values()), session_);
}

void ViewSession::saveParameters(const std::filesystem::path& file)
{
    Render::saveParameters(file, effect().identifier, description_, values());
}

void ViewSession::loadParameters(const std::filesystem::path& file)
{
    std::vector<NamedValue> values;
    for (auto& [name, value] : Render::loadParameters(file, effect().identifier, description_)) {
        values.push_back({name, value});
    }
    apply(values);
    noticePluginEdits();
}

}  // namespace Tesseret::Viewer
