#include "command/RenderReporter.h"

#include <cstdio>

#include <sys/resource.h>

#include "files/FileError.h"
#include "render/BlockAdvice.h"
#include "render/DepthWord.h"

namespace Tesseret::Command {

namespace {

double milliseconds(double seconds)
{
    return seconds * 1e3;
}

/// The peak memory of the process, in megabytes.
double peakMemory()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

std::string fixed(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    return text;
}

}  // namespace

RenderReporter::RenderReporter(Verbosity verbosity)
    : verbosity_(verbosity), bar_(stderr, verbosity != Verbosity::Quiet)
{}

RenderReporter::~RenderReporter()
{
    bar_.clear();
}

double RenderReporter::elapsed() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void RenderReporter::begin(Render::RenderJob& job)
{
    const std::lock_guard lock(mutex_);
    const std::size_t wanted = job.inputs().frames().size();
    frameCount_ = job.frameCount();
    if (frameCount_ < wanted && verbosity_ != Verbosity::Quiet) {
        std::printf("%zu of %zu frames have whole files already\n", wanted - frameCount_, wanted);
    }
    if (verbosity_ == Verbosity::Verbose) printJob(job);
    const bool takesAlpha = job.fillRegion().source == Render::MaskSource::Alpha;
    if (takesAlpha && verbosity_ != Verbosity::Quiet) {
        std::printf("matte taken from the source's alpha\n");
    }
    std::fflush(stdout);
}

void RenderReporter::printJob(Render::RenderJob& job)
{
    const Host::EffectDescription effect = job.session().effect().description();
    std::printf("plug-in      %s, %s %u.%u\n", job.session().file().c_str(), effect.label.c_str(),
                effect.versionMajor, effect.versionMinor);
    const Files::PictureInfo& source = job.inputs().source();
    std::printf("source       %d x %d pixels, %s\n", source.displayWindow.x2,
                source.displayWindow.y2, Render::depthWord(source.depth));
    const std::string& host = job.hostLike();
    if (!host.empty()) std::printf("host         like %s\n", host.c_str());
    std::printf("render       %s, %s, threads %u\n",
                Render::shortContextName(job.instance().context()).c_str(),
                Render::depthWord(job.instance().outputFormat().depth),
                job.session().host().threads());
}

void RenderReporter::finish()
{
    const std::lock_guard lock(mutex_);
    bar_.clear();
    if (verbosity_ != Verbosity::Verbose) return;
    std::printf("%-30s %7s %11s\n", "stage", "count", "ms");
    for (const StageTimes::Stage& stage : stages_.all()) {
        const std::string name = std::string(stage.level * 2, ' ') + stage.name;
        std::printf("%-30s %7d %11.1f\n", name.c_str(), stage.count, milliseconds(stage.seconds));
    }
    std::printf("blocks       %ld\n", blocks_);
    std::printf("read         %.1f ms\nrender       %.1f ms\nwrite        %.1f ms\n",
                milliseconds(total_.readTime), milliseconds(total_.renderTime),
                milliseconds(total_.writeTime));
    std::printf("total        %.1f ms\npeak memory  %.1f MB\n", milliseconds(elapsed()),
                peakMemory());
    std::fflush(stdout);
}

void RenderReporter::frameBegan(int frame)
{
    const std::lock_guard lock(mutex_);
    frame_ = frame;
    ++framesBegun_;
    area_ = 0;
    areaCount_ = 1;
    stageFraction_ = 0.0;
    drawBar();
}

/// A file's look does not show which of its channels is the matte. In a sequence the line is
/// printed again when the channel changes.
void RenderReporter::matteTaken(Files::MatteFrom from)
{
    const std::lock_guard lock(mutex_);
    if (verbosity_ == Verbosity::Quiet || from == reportedMatte_) return;
    bar_.clear();
    if (reportedMatte_) std::printf("frame %d: ", frame_);
    std::printf("matte taken from its %s\n", from == Files::MatteFrom::Alpha  ? "alpha"
                                             : from == Files::MatteFrom::Grey ? "grey"
                                                                              : "luminance");
    std::fflush(stdout);
    reportedMatte_ = from;
}

/// In a sequence the number of areas is printed again when it changes.
void RenderReporter::areaBegan(std::size_t area, std::size_t count)
{
    const std::lock_guard lock(mutex_);
    area_ = area;
    areaCount_ = count;
    if (verbosity_ != Verbosity::Quiet && area == 0 && count != reportedAreaCount_) {
        reportedAreaCount_ = count;
        bar_.clear();
        if (frameCount_ > 1) std::printf("frame %d: ", frame_);
        std::printf("%zu area%s to fill\n", count, count == 1 ? "" : "s");
        std::fflush(stdout);
    }
    stageFraction_ = 0.0;
    drawBar();
}

void RenderReporter::frameWritten(const Render::FrameResult& result)
{
    const std::lock_guard lock(mutex_);
    ++framesWritten_;
    total_.readTime += result.readTime;
    total_.renderTime += result.renderTime;
    total_.writeTime += result.writeTime;
    if (verbosity_ == Verbosity::Quiet) return;
    if (bar_.isShown() && framesWritten_ < frameCount_) {
        drawBar();
        return;
    }
    bar_.clear();
    std::printf("%s", Files::shownName(result.file).c_str());
    if (frameCount_ > 1) std::printf("  %zu of %zu", framesWritten_, frameCount_);
    std::printf("  %s s\n", fixed(elapsed(), 2).c_str());
    std::fflush(stdout);
}

void RenderReporter::printLine(const std::string& kind, const std::string& text)
{
    bar_.clear();
    std::fprintf(stderr, "tesseret: %s%s\n", kind.c_str(), text.c_str());
    std::fflush(stderr);
}

void RenderReporter::frameFailed(int /*frame*/, const std::string& text)
{
    const std::lock_guard lock(mutex_);
    printLine("", text);
}

void RenderReporter::warning(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    printLine("warning: ", text);
}

void RenderReporter::message(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    printLine("", text);
}

void RenderReporter::note(Host::Instance& /*instance*/, std::string_view text)
{
    const std::lock_guard lock(mutex_);
    if (!notes_.emplace(text).second) return;
    printLine("note: ", std::string(text));
    const std::string advice = Render::adviceOnNote(text);
    if (!advice.empty()) printLine("note: ", advice);
}

void RenderReporter::stageBegan(Host::Instance& /*instance*/, std::string_view stage)
{
    const std::lock_guard lock(mutex_);
    stages_.began(stage);
    stageFraction_ = 0.0;
    drawBar();
}

void RenderReporter::stageEnded(Host::Instance& /*instance*/, std::string_view /*stage*/)
{
    const std::lock_guard lock(mutex_);
    stages_.ended();
}

void RenderReporter::progress(Host::Instance& /*instance*/, double fraction)
{
    const std::lock_guard lock(mutex_);
    stageFraction_ = fraction;
    drawBar();
}

void RenderReporter::blockLaid(Host::Instance& /*instance*/, const TesseretBlockV1& /*block*/)
{
    const std::lock_guard lock(mutex_);
    ++blocks_;
}

/// Shows the stage of a still, and the frames of a sequence with their rate and the time left.
void RenderReporter::drawBar()
{
    if (!bar_.isShown()) return;
    const double fraction =
        (static_cast<double>(area_) + stageFraction_) / static_cast<double>(areaCount_);
    std::string area;
    if (areaCount_ > 1) {
        area = "area " + std::to_string(area_ + 1) + " of " + std::to_string(areaCount_) + "  ";
    }
    if (frameCount_ == 1) {
        bar_.update(fraction, area + stages_.current());
        return;
    }
    const auto done = static_cast<double>(framesWritten_);
    const double begun = framesBegun_ > 0 ? static_cast<double>(framesBegun_ - 1) : 0.0;
    std::string text = "frame " + std::to_string(frame_) + "  " + area +
                       std::to_string(framesWritten_) + " of " + std::to_string(frameCount_) +
                       " done";
    if (framesWritten_ > 0) {
        const double rate = done / elapsed();
        const double left = (static_cast<double>(frameCount_) - done) / rate;
        text += "  " + fixed(rate, 2) + " frames/s  " + durationText(left) + " left";
    }
    bar_.update((begun + fraction) / static_cast<double>(frameCount_), text);
}

}  // namespace Tesseret::Command
