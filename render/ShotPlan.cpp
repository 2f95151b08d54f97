#include "render/ShotPlan.h"

#include "files/PictureWriter.h"
#include "files/Sequence.h"
#include "files/WholePicture.h"
#include "render/FrameRequest.h"

namespace Tesseret::Render {

namespace {

bool isWhole(const std::filesystem::path& file, const OfxRectI& written)
{
    return Files::isWholePicture(file, written.x2 - written.x1, written.y2 - written.y1);
}

OfxRectI writtenBy(const RenderSettings& settings, const JobInputs& inputs, int frame,
                   const Files::PictureInfo& source)
{
    const OfxRectI window = requestFor(settings, inputs.isSequence(), frame, source).window;
    const Files::WriteOptions options =
        writeOptionsFor(settings, inputs, inputs.outputFile(frame), source, window);
    return Files::writtenWindow(inputs.outputFile(frame), window,
                                options.displayWindow.value_or(source.displayWindow));
}

/// A frame's source may have another data window than the first one's.
bool hasWholeFile(const RenderSettings& settings, const JobInputs& inputs, int frame)
{
    const std::filesystem::path file = inputs.outputFile(frame);
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) return false;
    if (isWhole(file, writtenBy(settings, inputs, frame, inputs.source()))) return true;
    try {
        const Files::SequencePattern sources(settings.source);
        const Files::PictureInfo own = Files::readInfo(sources.file(frame));
        return isWhole(file, writtenBy(settings, inputs, frame, own));
    } catch (const std::exception&) {
        return false;  // the render tells what is wrong
    }
}

}  // namespace

std::set<int> framesToWrite(const RenderSettings& settings, const JobInputs& inputs)
{
    std::set<int> frames(inputs.frames().begin(), inputs.frames().end());
    if (settings.skipsWhole && !settings.output.empty()) {
        std::erase_if(frames, [&](int frame) { return hasWholeFile(settings, inputs, frame); });
    }
    return frames;
}

std::vector<ShotFrame> shotFrames(const RenderSettings& settings, const JobInputs& inputs,
                                  const std::set<int>& toWrite, bool repeatsBlocks)
{
    std::vector<ShotFrame> shot;
    const int begin = inputs.frames().front();
    const int first = settings.firstFrame.value_or(begin);
    const bool isLoaded = !settings.loadFill.empty();
    // Areas change with the matte only; without that, blocks are chosen anew at frame 0 alone.
    const bool mayChange = Files::SequencePattern(settings.matte).isSequence();
    for (int frame = first; repeatsBlocks && frame < begin; ++frame) {
        const bool counts = frame == first ? !isLoaded : mayChange || frame == 0;
        if (counts) shot.push_back({frame, false});
    }
    for (const int frame : inputs.frames()) {
        const bool isWritten = toWrite.contains(frame);
        if (isWritten || repeatsBlocks) shot.push_back({frame, isWritten});
    }
    const std::size_t least = settings.saveFill.empty() ? 0 : 1;  // to be recorded
    while (shot.size() > least && !shot.back().isWritten) shot.pop_back();
    return shot;
}

std::string jumpWarning(const RenderSettings& settings, const JobInputs& inputs)
{
    const int begin = inputs.frames().front();
    if (settings.firstFrame || begin == 0) return {};  // at 0 a shot always begins anew
    const std::filesystem::path earlier = inputs.earlierSource();
    if (earlier.empty()) return {};
    return earlier.string() + ": lies before frame " + std::to_string(begin) +
           ", where temporalConsistancy chooses blocks anew, so the picture jumps there if both "
           "are of one shot; --first-frame with the shot's first frame, or --load-fill, repeats "
           "the same blocks";
}

}  // namespace Tesseret::Render
