#include "render/RenderJob.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "files/PictureWriter.h"
#include "files/Sequence.h"
#include "files/WholeFile.h"
#include "host/HostError.h"
#include "render/BlockAdvice.h"
#include "render/Boxes.h"
#include "render/FillSteps.h"
#include "render/FrameRequest.h"
#include "render/Interrupt.h"
#include "render/JobError.h"

namespace Tesseret::Render {

using Files::PictureInfo;

namespace {

class Stopwatch {
public:
    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Each step cuts its own textures.
RenderSettings withoutCrops(RenderSettings settings)
{
    settings.textureCrops = {};
    return settings;
}

/// The fill to go on with; the shot's first frame is then the one that recorded it.
std::optional<SavedFill> loadedFill(RenderSettings& settings)
{
    const auto fail = [](const std::string& text) { throw UsageError(text); };
    const std::vector<int>& frames = settings.frames;
    if (settings.firstFrame && frames.empty())
        fail("--first-frame is for sequences: give --frames");
    if (settings.firstFrame && std::ranges::min(frames) < *settings.firstFrame) {
        fail("--first-frame " + std::to_string(*settings.firstFrame) +
             ": no frame of --frames may lie before it");
    }
    if (settings.loadFill.empty()) return std::nullopt;
    SavedFill fill = readFill(settings.loadFill);
    if (settings.firstFrame.value_or(fill.frame) != fill.frame) {
        fail(settings.loadFill.string() + ": was recorded in frame " + std::to_string(fill.frame) +
             ", not in that of --first-frame");
    }
    if (!frames.empty() && std::ranges::min(frames) < fill.frame) {
        fail(settings.loadFill.string() + ": was recorded in frame " + std::to_string(fill.frame) +
             ", and --frames has some before it");
    }
    settings.firstFrame = fill.frame;
    return fill;
}

}  // namespace

RenderJob::RenderJob(RenderSettings settings, JobListener& listener)
    : loaded_(loadedFill(settings)),
      settings_(std::move(settings)),
      listener_(listener),
      warnings_(listener),
      host_(settings_.hostLike),
      inputs_(withoutCrops(settings_)),
      depth_(host_.depthFor(settings_.depth, inputs_.source().depth)),
      toWrite_(framesToWrite(settings_, inputs_)),
      first_(readEarly()),
      messages_(listener, warnings_),
      session_(settings_.plugin, host_.adapted(messages_.hostOptions(settings_.threads))),
      steps_(session_, inputs_, stepsOf(settings_), depth_, listener, warnings_)
{
    for (const std::string& text : clippedBoxes(settings_, inputs_)) {
        listener_.note(instance(), text);
    }
    const Depth source = inputs_.source().depth;
    if (!settings_.depth && depth_ != source) {
        listener_.note(instance(), host_.depthNote(depth_, source));
    }
    prepareShot();
}

/// The first frame, unless others come before it or it has a file already.
std::future<RenderJob::ReadPictures> RenderJob::readEarly()
{
    const int frame = inputs_.frames().front();
    const bool isFirst = settings_.firstFrame.value_or(frame) == frame && toWrite_.contains(frame);
    if (!isFirst) return {};
    return std::async(std::launch::async, [this, frame] { return readPictures(frame); });
}

void RenderJob::prepareShot()
{
    const bool repeats = steps_.repeatsBlocks();
    shot_ = shotFrames(settings_, inputs_, toWrite_, repeats);
    for (const auto& [option, file] : {std::pair("--save-fill", settings_.saveFill),
                                       std::pair("--load-fill", settings_.loadFill)}) {
        if (file.empty() || (repeats && inputs_.isSequence())) continue;
        throw UsageError(std::string(option) +
                         ": only a sequence with temporalConsistancy=on records its blocks");
    }
    if (repeats && inputs_.isSequence()) {
        if (const std::string text = jumpWarning(settings_, inputs_); !text.empty()) {
            warnings_.report(text);
        }
    }
    if (!settings_.saveFill.empty()) {
        Files::checkPlace(settings_.saveFill);
        steps_.keepRecords();
    }
    if (!loaded_) return;
    checkIdentity(settings_.loadFill, loaded_->identity,
                  identityOf(settings_, inputs_, steps_, session_, depth_, loaded_->frame));
    const bool recordsAgain = !shot_.empty() && shot_.front().frame == loaded_->frame;
    if (!recordsAgain) adoptLoaded();
}

void RenderJob::adoptLoaded()
{
    steps_.adopt(loaded_->frame, std::move(loaded_->steps));
    loaded_.reset();
}

std::vector<FillStep> RenderJob::steps() const
{
    std::vector<FillStep> steps;
    for (RenderSettings& settings : stepsOf(settings_)) {
        const std::size_t step = steps.size();
        steps.push_back({std::move(settings), steps_.setup(step).values()});
    }
    return steps;
}

void RenderJob::run()
{
    if (shot_.empty()) return;
    const auto read = [this](std::size_t index) {
        return std::async(std::launch::async, [this, index] { return readShotFrame(index); });
    };
    std::future<ReadFrame> next = read(0);
    const Host::RenderRequest beginning =
        requestFor(settings_, inputs_.isSequence(), inputs_.frames().front(), inputs_.source());
    steps_.beginSequence(inputs_.range(), beginning);
    for (std::size_t i = 0; i < shot_.size(); ++i) {
        ReadFrame current;
        const bool isRead = attempt(shot_[i], [&] { current = next.get(); });
        if (i + 1 < shot_.size()) next = read(i + 1);
        if (isRead) renderShotFrame(i, std::move(current));
        if (i == 0) saveRecords();
        if (i == 0 && loaded_ && !failures_.empty()) adoptLoaded();
    }
    steps_.endSequence();
    startWriting({});
    failAtEnd();
}

/// Nothing but the matte is read of a frame that is passed by.
RenderJob::ReadFrame RenderJob::readShotFrame(std::size_t index)
{
    const ShotFrame& shown = shot_[index];
    if (shown.isWritten || (index == 0 && settings_.loadFill.empty())) {
        return readFrame(shown.frame);
    }
    const std::lock_guard lock(readMutex_);
    ReadFrame read;
    read.isMatteAlone = true;
    try {
        read.pictures = inputs_.readMatte(shown.frame, depth_);
    } catch (const Files::FileError&) {
        if (!settings_.keepsGoing) throw;
    }
    const bool hasMatte = !inputs_.has(Names::kMatte) || read.pictures.contains(Names::kMatte);
    if (hasMatte) read.mattes = steps_.prepare(read.pictures);
    return read;
}

/// A frame that is not written is rendered where it records. One without a matte's file is no frame
/// of the shot.
void RenderJob::renderShotFrame(std::size_t index, ReadFrame read)
{
    const ShotFrame& shown = shot_[index];
    if (isInterrupted()) throw Interrupted("interrupted");
    if (read.isMatteAlone) {
        if (read.mattes.empty()) return;
        if (!steps_.recordsAt(shown.frame, read.mattes)) {
            steps_.passBy(read.mattes);
            return;
        }
        if (!attempt(shown, [&] { read = readFrame(shown.frame); })) return;
    }
    const bool records = steps_.recordsAt(shown.frame, read.mattes);
    RenderedFrame rendered;
    const bool isRendered = attempt(shown, [&] { rendered = renderFrame(shown.frame, read); });
    if (!isRendered && records) steps_.forgetRecords();
    if (isRendered && shown.isWritten) startWriting(std::move(rendered));
}

/// Waits for the frame before; an empty one is not written.
void RenderJob::startWriting(RenderedFrame rendered)
{
    if (written_.valid()) attempt(beingWritten_, [this] { written_.get(); });
    if (rendered.record == nullptr) return;
    beingWritten_ = {rendered.result.frame, true};
    written_ = std::async(std::launch::async, [this, done = std::move(rendered)]() mutable {
        writeFrame(std::move(done));
    });
}

void RenderJob::saveRecords()
{
    if (settings_.saveFill.empty()) return;
    const int frame = shot_.front().frame;
    if (!failures_.empty()) throw RenderFailure(failures_.front().line);
    writeFill(
        settings_.saveFill,
        {frame, identityOf(settings_, inputs_, steps_, session_, depth_, frame), steps_.records()});
}

/// The shot's first frame, and others that are not written, end the job: those after them would
/// show other blocks.
bool RenderJob::attempt(const ShotFrame& frame, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const Interrupted&) {
        throw;
    } catch (const std::exception& error) {
        const bool isRefused = dynamic_cast<const SavedFillRefused*>(&error) != nullptr;
        const bool isNeeded =
            !frame.isWritten || (frame.frame == settings_.firstFrame &&
                                 settings_.loadFill.empty() && steps_.repeatsBlocks());
        if (!settings_.keepsGoing || isNeeded || isRefused) throw;
        std::string line = error.what();
        line = line.substr(0, line.find('\n'));
        const std::string prefix = "frame " + std::to_string(frame.frame) + ": ";
        if (inputs_.isSequence() && !line.starts_with(prefix)) line.insert(0, prefix);
        failures_.push_back({frame.frame, line});
        listener_.frameFailed(frame.frame, line);
        return false;
    }
}

void RenderJob::failAtEnd() const
{
    if (failures_.empty()) return;
    std::vector<int> frames;
    for (const FrameFailure& failure : failures_) frames.push_back(failure.frame);
    std::ranges::sort(frames);
    std::string text = std::to_string(frames.size()) + " of " + std::to_string(toWrite_.size()) +
                       " frames failed: " + Files::framesText(frames);
    for (const FrameFailure& failure : failures_) text.append("\n").append(failure.line);
    throw RenderFailure(text);
}

RenderJob::ReadPictures RenderJob::readPictures(int frame)
{
    const Stopwatch watch;
    FramePictures pictures = inputs_.read(frame, depth_);
    return {std::move(pictures), watch.seconds()};
}

RenderJob::ReadFrame RenderJob::readFrame(int frame)
{
    const std::lock_guard lock(readMutex_);
    ReadPictures taken = first_.valid() ? first_.get() : readPictures(frame);
    const Stopwatch watch;
    ReadFrame read;
    read.pictures = std::move(taken.pictures);
    for (const auto& [clip, picture] : read.pictures) {
        for (const std::string& warning : picture.warnings) warnings_.report(warning);
    }
    read.mattes = steps_.prepare(read.pictures);
    read.seconds = taken.seconds + watch.seconds();
    return read;
}

/// What can be known before the first frame renders.
void RenderJob::advise(const ReadFrame& read)
{
    if (const std::string text = sampleBoxAdvice(settings_, setup()); !text.empty()) {
        listener_.note(instance(), text);
    }
    for (std::size_t i = 0; i < read.mattes.size(); ++i) {
        if (!read.mattes[i]) continue;
        const MatteAreas& areas = read.mattes[i]->areas;
        const std::size_t count = steps_.areasOf(i, *read.mattes[i]);
        for (const std::string& text :
             avoidanceAdvice(steps_.setup(i), areas, count, settings_.renderScale)) {
            listener_.note(instance(), text);
        }
    }
}

RenderJob::RenderedFrame RenderJob::renderFrame(int frame, const ReadFrame& read)
{
    if (isInterrupted()) throw Interrupted("interrupted");
    listener_.frameBegan(frame);
    if (read.mattes.front()) listener_.matteTaken(*read.pictures.at(Names::kMatte).matteFrom);
    for (std::size_t i = 0; i < read.mattes.size(); ++i) {
        if (!read.mattes[i]) continue;
        listener_.mattePrepared(i, *read.mattes[i], steps_.areasOf(i, *read.mattes[i]));
    }
    if (!std::exchange(hasAdvised_, true)) advise(read);
    const ClipPicture& source = read.pictures.at(Names::kSource);
    const Host::RenderRequest request =
        requestFor(settings_, inputs_.isSequence(), frame, source.info);
    messages_.takeErrors();
    try {
        const Stopwatch watch;
        RenderedFrame rendered;
        rendered.picture = steps_.render(request, read.pictures, read.mattes);
        rendered.record = source.record;
        rendered.result = {frame, inputs_.outputFile(frame), read.seconds, watch.seconds(), 0.0};
        rendered.options =
            writeOptionsFor(settings_, inputs_, rendered.result.file, source.info, request.window);
        return rendered;
    } catch (const Host::HostError& error) {
        fail(frame, error.what());
    } catch (const PictureError& error) {
        fail(frame, error.what());
    }
}

void RenderJob::writeFrame(RenderedFrame rendered)
{
    const Stopwatch watch;
    try {
        for (const std::string& warning : Files::writePicture(
                 rendered.result.file, rendered.picture, *rendered.record, rendered.options)) {
            warnings_.report(warning);
        }
    } catch (const Files::FileError& error) {
        throw RenderFailure(error.what());  // the render succeeded, writing its result did not
    }
    rendered.result.writeTime = watch.seconds();
    listener_.frameWritten(rendered.result);
}

void RenderJob::fail(int frame, const std::string& reason)
{
    std::string text;
    if (inputs_.isSequence()) text.append("frame ").append(std::to_string(frame)).append(": ");
    text.append("the render failed: ").append(reason);
    const std::string errors = messages_.takeErrors();
    if (!errors.empty()) text.append("\n").append(errors);
    throw RenderFailure(text);
}

}  // namespace Tesseret::Render
