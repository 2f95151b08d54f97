#include "render/RenderJob.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "files/PictureWriter.h"
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

}  // namespace

RenderJob::RenderJob(RenderSettings settings, JobListener& listener)
    : settings_(std::move(settings)),
      listener_(listener),
      warnings_(listener),
      host_(settings_.hostLike),
      inputs_(withoutCrops(settings_)),
      depth_(host_.depthFor(settings_.depth, inputs_.source().depth)),
      first_(std::async(std::launch::async,
                        [this] { return readPictures(inputs_.frames().front()); })),
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
    const std::vector<int>& frames = inputs_.frames();
    const auto read = [this](int frame) {
        return std::async(std::launch::async, [this, frame] { return readFrame(frame); });
    };
    std::future<ReadFrame> next = read(frames.front());
    std::future<void> written;  // the futures wait for their work on an exception
    const auto [first, last] = std::ranges::minmax(frames);
    const OfxRangeD range{double(first), double(last)};
    const Host::RenderRequest beginning =
        requestFor(settings_, inputs_.isSequence(), frames.front(), inputs_.source());
    steps_.beginSequence(range, beginning);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const ReadFrame current = next.get();
        if (i + 1 < frames.size()) next = read(frames[i + 1]);
        RenderedFrame rendered = renderFrame(frames[i], current);
        if (written.valid()) written.get();
        written = std::async(std::launch::async, [this, done = std::move(rendered)]() mutable {
            writeFrame(std::move(done));
        });
    }
    steps_.endSequence();
    written.get();
}

RenderJob::ReadPictures RenderJob::readPictures(int frame)
{
    const Stopwatch watch;
    FramePictures pictures = inputs_.read(frame, depth_);
    return {std::move(pictures), watch.seconds()};
}

RenderJob::ReadFrame RenderJob::readFrame(int frame)
{
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
