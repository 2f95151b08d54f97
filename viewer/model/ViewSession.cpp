#include "viewer/model/ViewSession.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/PictureWriter.h"
#include "host/HostError.h"
#include "render/Boxes.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "viewer/model/CommandText.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;
using Render::NamedValue;
using Render::ParameterValues;

namespace {

/// Sets a flag for its lifetime.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

}  // namespace

ViewSession::ViewSession(Render::RenderSettings settings)
    : settings_(std::move(settings)),
      pictures_(settings_),
      session_(settings_.plugin, messages_.hostOptions(settings_.threads)),
      setup_(session_, settings_, pictures_.inputs(), pictures_.depth()),
      description_(session_.describe(setup_.context())),
      pages_(panelPages(description_)),
      ready_(setup_.make()),
      worker_(std::make_unique<RenderWorker>(session_, settings_, pictures_)),
      frame_(frames().front())
{
    instance().setListener(this);
    for (const std::string& text : Render::clippedBoxes(settings_, inputs())) {
        messages_.message(text);
    }
    setFrame(frame_);
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
    const EditHistory::Group edit(history_);
    instance().set(name, std::move(value), kOfxChangeUserEdited, frame_);
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
    if (Host::Interact* const shown = overlay()) shown->penMotion(pen);
}

bool ViewSession::pressPen(const Host::Interact::Pen& pen)
{
    Host::Interact* const shown = overlay();
    if (shown == nullptr) return false;
    drag_.emplace(history_);
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
    replay(history_.undo());
}

void ViewSession::redo()
{
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

void ViewSession::replay(const std::vector<NamedValue>& values)
{
    const Raised replaying(isReplaying_);
    apply(values);
}

void ViewSession::parameterChanged(Host::Instance& /*instance*/,
                                   const Host::ParameterChange& change)
{
    const std::string& name = change.parameter.name();
    const ParameterDescription& parameter = *description_.parameter(name);
    hasChanged_ = hasChanged_ || parameter.evaluateOnChange;
    if (isReplaying_ || !parameter.canUndo) return;
    history_.record({{name, change.before, change.after}});
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
    return {.frame = frame_, .scale = scale, .values = values()};
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

void ViewSession::saveResult(const std::filesystem::path& name)
{
    const std::filesystem::path file = Files::SequencePattern(name).file(frame_);
    Files::checkTarget(file, settings_.compression);
    if (inputs().reads(file)) {
        throw Render::UsageError(file.string() +
                                 ": is one of the input files and is not overwritten");
    }
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
    const EditHistory::Group edit(history_);
    apply(values);
}

}  // namespace Tesseret::Viewer
