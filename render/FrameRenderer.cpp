#include "render/FrameRenderer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "host/EmbeddedHost.h"
#include "host/HostError.h"
#include "render/Interrupt.h"
#include "render/JobError.h"

namespace Tesseret::Render {

using Host::RenderRequest;

namespace {

/// From here on a matte looks speckled rather than painted.
constexpr std::size_t kManyAreas = 100;

constexpr const char* kBoxReachesIn =
    "the sample box overlaps the region to fill, so what is to be removed may come back; "
    "choose another with --sample-box x1,y1,x2,y2, or set avoidFillRegion=on";

int frameOf(const RenderRequest& request)
{
    return static_cast<int>(std::lround(request.time));
}

OfxRectI scaledBox(const OfxRectI& box, OfxPointD scale)
{
    return toPixels({double(box.x1), double(box.y1), double(box.x2), double(box.y2)}, scale, 1.0);
}

OfxRectI unionOf(const OfxRectI& a, const OfxRectI& b)
{
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

bool areEqual(const OfxRectI& a, const OfxRectI& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

bool areEqual(const OfxPointD& a, const OfxPointD& b)
{
    return a.x == b.x && a.y == b.y;
}

struct Span {
    int first, end;
};

/// The part of a range inside a longer one; for disjoint ranges the nearest pixel, as in the
/// plug-in.
Span clampedInto(const Span& range, double first, double end)
{
    const double last = range.end - 1;
    return {static_cast<int>(std::clamp(first, double(range.first), last)),
            static_cast<int>(std::clamp(end - 1.0, double(range.first), last)) + 1};
}

}  // namespace

/// Makes an abort reach this instance while the object lives.
class FrameRenderer::Running {
public:
    Running(FrameRenderer& renderer, Host::Instance& instance) : renderer_(renderer)
    {
        const std::lock_guard lock(renderer_.mutex_);
        renderer_.running_ = &instance;
        if (renderer_.isAborted_) instance.abort();
    }
    ~Running()
    {
        const std::lock_guard lock(renderer_.mutex_);
        renderer_.running_ = nullptr;
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    FrameRenderer& renderer_;
};

FrameRenderer::FrameRenderer(const RenderSettings& settings, InstanceSetup setup,
                             JobListener& listener, WarningFilter& warnings)
    : setup_(std::move(setup)),
      listener_(listener),
      warnings_(warnings),
      everyArea_(settings.everyArea),
      cropsAreas_(settings.cropsAreas),
      followsMatte_(settings.followsMatte),
      chosenAreas_(settings.areas)
{
    slots_.push_back(makeSlot());
}

void FrameRenderer::abort()
{
    const std::lock_guard lock(mutex_);
    isAborted_ = true;
    if (running_ != nullptr) running_->abort();
}

void FrameRenderer::beginSequence(OfxRangeD frames, const RenderRequest& first)
{
    sequence_ = {frames, first};
    for (Slot& slot : slots_) slot.instance->beginSequence(frames, 1.0, first);
}

void FrameRenderer::endSequence()
{
    sequence_.reset();
    for (Slot& slot : slots_) slot.instance->endSequence();
}

void FrameRenderer::beginFrame()
{
    if (!std::exchange(hasRendered_, true)) return;
    if (!instance().host().behaviour().makesInstancePerFrame()) return;
    slots_.clear();
    slots_.push_back(makeSlot());
}

Picture FrameRenderer::render(const RenderRequest& request, const FramePictures& pictures,
                              const PreparedMatte* matte, const AreaCount& others)
{
    const ClipPicture& shown = pictures.at(Names::kSource);
    FrameSource& source = *slots_.front().clips.at(Names::kSource);
    source.show(frameOf(request), shown.picture, shown.scale);
    const std::shared_ptr<const Picture> scaled = source.picture(request.time, request.scale);
    if (matte != nullptr) {
        const auto filled = std::make_shared<Picture>(scaled->copied());
        fill(request, pictures, *matte, others, filled);
        const bool isWhole = areEqual(filled->bounds(), request.window);
        Picture output = isWhole ? std::move(*filled) : filled->copied(request.window, {});
        output.setRegionOfDefinition(request.window);
        return output;
    }
    Picture output = scaled->copied(request.window, {});
    output.setRegionOfDefinition(request.window);
    beginFrame();
    show(slots_.front(), request, pictures);
    renderOn(slots_.front(), request, output);
    hasRecord_ = repeatsBlocks();
    return output;
}

std::size_t FrameRenderer::areasOf(const PreparedMatte& matte) const
{
    return everyArea_ ? matte.areas.count() : std::min<std::size_t>(matte.areas.count(), 1);
}

void FrameRenderer::show(Slot& slot, const RenderRequest& request,
                         const FramePictures& pictures) const
{
    for (const auto& [clip, picture] : pictures) {
        slot.clips.at(clip)->show(frameOf(request), picture.picture, picture.scale);
    }
}

void FrameRenderer::fill(const RenderRequest& request, FramePictures pictures,
                         const PreparedMatte& matte, const AreaCount& others,
                         const std::shared_ptr<Picture>& source)
{
    beginFrame();
    const std::size_t count = areasOf(matte);
    remark(request, matte, count);
    followAreas(request, matte, count);
    ClipPicture& shown = pictures.at(Names::kSource);
    for (std::size_t area = 0; area < count; ++area) {
        // Untouched, the source at full size has the more exact region.
        const bool isTouched = others.before + area > 0;
        if (isTouched || areEqual(shown.scale, request.scale)) {
            shown.picture = source;
            shown.scale = request.scale;
        }
        if (area > 0) setup_.inputs().crops().cutFromSource(pictures);
        if (isInterrupted()) throw Interrupted("interrupted");
        listener_.areaBegan(others.before + area, others.before + count + others.after);
        Slot& slot = slotFor(area);
        if (motionOf(matte, area) == PixelMotion{}) {
            fillArea(slot, request, pictures, matte, area, *source);
        } else {
            fillMoved(slot, request, pictures, matte, area, *source);
        }
        slot.clips.at(Names::kSource)->hide();  // instances keep no pictures between frames
        slot.clips.at(Names::kMatte)->hide();
    }
}

void FrameRenderer::fillArea(Slot& slot, const RenderRequest& request,
                             const FramePictures& pictures, const PreparedMatte& matte,
                             std::size_t area, Picture& source)
{
    show(slot, request, pictures);
    showMatte(slot, request, matte, area);
    RenderRequest part = request;
    part.window = areaWindow(request, matte, area);
    Picture changed = source.copied(part.window, {});
    changed.setRegionOfDefinition(request.window);
    renderOn(slot, part, changed);
    source.paste(changed);  // no render reads it now
}

/// Renders the area where its blocks were recorded: everything but the textures from files is moved
/// there, and the result back.
void FrameRenderer::fillMoved(Slot& slot, const RenderRequest& request, FramePictures pictures,
                              const PreparedMatte& matte, std::size_t area, Picture& source)
{
    const PixelMotion motion = motionOf(matte, area);
    const PixelMotion back{-motion.x, -motion.y};
    Picture moved = source.copied();
    moved.move(back.x, back.y);
    pictures.at(Names::kSource).picture = std::make_shared<const Picture>(std::move(moved));
    pictures.at(Names::kSource).scale = request.scale;
    setup_.inputs().crops().cutFromSource(pictures);
    show(slot, request, pictures);
    showMatte(slot, request, matte, area, back);
    RenderRequest part = request;
    const OfxRectI window = areaWindow(request, matte, area);
    part.window = movedBox(window, back);
    Picture changed = source.copied(window, {});
    changed.setRegionOfDefinition(request.window);
    changed.move(back.x, back.y);
    renderOn(slot, part, changed);
    changed.move(motion.x, motion.y);
    source.paste(changed);
}

PixelMotion FrameRenderer::motionOf(const PreparedMatte& matte, std::size_t area) const
{
    const bool follows = followsMatte_ && setup_.repeatsBlocks() && !recorded_.isEmpty();
    return follows ? recorded_.motion(matte.areas, area) : PixelMotion{};
}

/// The part of the window that filling an area can change; only this part is rendered.
OfxRectI FrameRenderer::areaWindow(const RenderRequest& request, const PreparedMatte& matte,
                                   std::size_t area) const
{
    constexpr double kRounding = 4.0;
    const std::optional<double> reach = setup_.fillReach();
    if (!reach) return request.window;
    OfxRectI box = cropsAreas_ ? matte.areas.box(area) : matte.areas.matte().bounds();
    if (area < reached_.size()) box = unionOf(box, reached_[area]);
    // An upper bound of a length in pixels, for any scale and aspect ratio.
    const double aspect = slots_.front().clips.at(Names::kSource)->format().pixelAspectRatio;
    const double scale =
        std::max({1.0, request.scale.x, request.scale.y}) * std::max(1.0, 1.0 / aspect);
    const double margin = std::ceil(*reach * scale) + kRounding;
    const OfxRectI& all = request.window;
    const Span x = clampedInto({all.x1, all.x2}, box.x1 - margin, box.x2 + margin);
    const Span y = clampedInto({all.y1, all.y2}, box.y1 - margin, box.y2 + margin);
    return {x.first, y.first, x.end, y.end};
}

void FrameRenderer::showMatte(Slot& slot, const RenderRequest& request, const PreparedMatte& matte,
                              std::size_t area, PixelMotion back) const
{
    FrameSource& clip = *slot.clips.at(Names::kMatte);
    if (!everyArea_ && !cropsAreas_ && back == PixelMotion{}) {
        clip.show(frameOf(request), matte.whole);
        return;
    }
    const OfxRectI window = cropsAreas_ ? matte.areas.box(area) : matte.areas.matte().bounds();
    Picture alone = matte.areas.alone(area, window);
    alone.move(back.x, back.y);
    clip.show(frameOf(request), std::make_shared<const Picture>(std::move(alone)), request.scale);
}

void FrameRenderer::renderOn(Slot& slot, const RenderRequest& request, Picture& output)
{
    const Running abortable(*this, *slot.instance);
    const InterruptTarget interruptible(*slot.instance);
    const unsigned int times = slot.instance->host().behaviour().rendersPerFrame();
    for (unsigned int i = 1; i < times; ++i) {
        Picture earlier = output.copied();
        slot.instance->render(request, earlier);
    }
    const OfxStatus status = slot.instance->render(request, output);
    if (slot.instance->isAborted()) throw Interrupted("interrupted");
    if (status != kOfxStatOK) throw Host::HostError(Host::statusText(status), status);
    if (slot.record->wasRefused()) {
        throw SavedFillRefused("the saved fill: the plug-in cannot repeat the blocks in it");
    }
}

/// Reports a matte's oddities before it is filled.
void FrameRenderer::remark(const RenderRequest& request, const PreparedMatte& matte,
                           std::size_t count)
{
    const std::string file = Files::shownName(matte.file);
    if (count == 0 && !std::exchange(reportedEmptyMatte_, true)) {
        warnings_.report(file + ": masks nothing, so nothing is filled");
    }
    for (const std::size_t area : chosenAreas_) {
        if (area < matte.paintedAreas) continue;
        warnings_.report(file + ": has " + std::to_string(matte.paintedAreas) +
                         " areas, so there is no area " + std::to_string(area + 1) + " to fill");
    }
    if (count > kManyAreas) {
        warnings_.report(
            file + ": has " + std::to_string(count) +
            " separate areas, each filled on its own; --matte-grow joins areas that lie "
            "close together, --areas first fills only one");
    }
    const std::optional<OfxRectI>& box = setup_.boxInSource();
    if (box && matte.areas.reachInto(scaledBox(*box, request.scale), count)) {
        listener_.note(instance(), kBoxReachesIn);
    }
}

/// An instance repeats the blocks that it recorded for an area, at the recorded place. While every
/// area overlaps its recorded place the areas count as the same; otherwise an area could get the
/// blocks of another, so all instances discard their records. The plug-in itself starts again at
/// frame 0.
void FrameRenderer::followAreas(const RenderRequest& request, const PreparedMatte& matte,
                                std::size_t count)
{
    if (!setup_.repeatsBlocks() || count == 0) return;
    const bool areSame = recorded_.matches(matte.areas, count, followsMatte_);
    if (areSame && frameOf(request) != 0) {
        for (std::size_t area = 0; area < count; ++area) checkCovered(request, matte, area);
        recorded_.advance(matte.areas, count);
        return;
    }
    if (!areSame && !recorded_.isEmpty()) {
        for (Slot& slot : slots_) slot.instance->purgeCaches();
        if (!std::exchange(reportedAreasChange_, true)) {
            warnings_.report(
                Files::shownName(matte.file) +
                ": the areas differ from those of the frame before; whenever they change, "
                "temporalConsistancy starts again");
        }
    }
    for (Slot& slot : slots_) slot.record->withdraw();
    recorded_.begin(matte.areas, count);
    recordedFrame_ = frameOf(request);
    reached_.clear();
    for (std::size_t area = 0; area < count; ++area) reached_.push_back(recorded_.box(area));
}

/// A host that makes an instance for each frame loses the blocks with it.
bool FrameRenderer::repeatsBlocks() const
{
    return setup_.repeatsBlocks() &&
           !slots_.front().instance->host().behaviour().makesInstancePerFrame();
}

bool FrameRenderer::recordsAt(int frame, const PreparedMatte* matte) const
{
    if (!repeatsBlocks()) return false;
    if (matte == nullptr) return frame == 0 || !hasRecord_;
    const std::size_t count = areasOf(*matte);
    return count > 0 && (frame == 0 || !recorded_.matches(matte->areas, count, followsMatte_));
}

void FrameRenderer::passBy(const PreparedMatte* matte)
{
    const std::size_t count = matte != nullptr ? areasOf(*matte) : 0;
    if (repeatsBlocks() && count > 0) recorded_.advance(matte->areas, count);
}

void FrameRenderer::keepRecords()
{
    keepsRecords_ = true;
    slots_.clear();
    slots_.push_back(makeSlot());
}

FillRecord FrameRenderer::record() const
{
    FillRecord record;
    record.areas = recorded_.areas();
    const std::size_t count = hasRecord_ ? 1 : record.areas.size();
    for (std::size_t i = 0; i < count; ++i) {
        record.instances.push_back(slots_[i].record->made());
        if (record.instances.back().empty()) {
            throw RenderFailure("the plug-in does not tell what it recorded, so it is not saved");
        }
    }
    return record;
}

void FrameRenderer::adopt(int frame, FillRecord record)
{
    hasRecord_ = record.areas.empty() && !record.instances.empty();
    recorded_ = AreaRecord(std::move(record.areas));
    recordedFrame_ = frame;
    reached_.clear();
    for (const RecordedArea& area : recorded_.areas()) reached_.push_back(area.box);
    for (std::size_t i = 0; i < record.instances.size(); ++i) {
        slotFor(i).record->offer(std::move(record.instances[i]));
    }
}

void FrameRenderer::forgetRecord()
{
    for (Slot& slot : slots_) {
        slot.instance->purgeCaches();
        slot.record->withdraw();
    }
    recorded_ = {};
    hasRecord_ = false;
}

/// The recorded region is filled, not the matte of this frame: tells when some of it is left.
void FrameRenderer::checkCovered(const RenderRequest& request, const PreparedMatte& matte,
                                 std::size_t area)
{
    const PixelMotion motion = motionOf(matte, area);
    reached_[area] = followsMatte_
                         ? unionOf(movedBox(recorded_.box(area), motion), matte.areas.box(area))
                         : unionOf(reached_[area], matte.areas.box(area));
    if (reportedUncovered_ || recorded_.covers(matte.areas, area, motion)) return;
    reportedUncovered_ = true;
    const std::string advice =
        followsMatte_ ? "make the matte of that frame large enough, with --matte-grow for instance"
                      : "--follow moves the region with the matte";
    warnings_.report(
        Files::shownName(matte.file) + ": frame " + std::to_string(frameOf(request)) +
        " masks more than the region recorded in frame " + std::to_string(recordedFrame_) +
        ", which temporalConsistancy fills again, so the rest stays as it is; " + advice);
}

/// Only an instance that repeats blocks keeps state of its area; otherwise one instance serves all
/// areas, of which there may be hundreds.
FrameRenderer::Slot& FrameRenderer::slotFor(std::size_t area)
{
    const std::size_t slot = setup_.repeatsBlocks() ? area : 0;
    while (slots_.size() <= slot) slots_.push_back(makeSlot());
    return slots_[slot];
}

FrameRenderer::Slot FrameRenderer::makeSlot() const
{
    Slot made{setup_.make(), std::make_unique<InstanceRecord>(keepsRecords_)};
    made.instance->setRecords(made.record.get());
    if (sequence_) made.instance->beginSequence(sequence_->frames, 1.0, sequence_->first);
    return made;
}

}  // namespace Tesseret::Render
