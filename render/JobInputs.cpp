#include "render/JobInputs.h"

#include <algorithm>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/FileError.h"
#include "files/FileThreads.h"
#include "files/PictureWriter.h"
#include "render/JobError.h"

namespace Tesseret::Render {

using Files::PictureInfo;

namespace {

constexpr int kStillFrame = 0;

std::string sizeText(const OfxRectI& window)
{
    return std::to_string(window.x2 - window.x1) + " x " + std::to_string(window.y2 - window.y1);
}

}  // namespace

void checkMatte(const PictureInfo& matte, const PictureInfo& source)
{
    const std::string mine = sizeText(matte.displayWindow);
    const std::string wanted = sizeText(source.displayWindow);
    if (mine == wanted) return;
    throw UsageError(Files::shownName(matte.file) + ": the matte is " + mine +
                     ", but the source is " + wanted);
}

PictureInfo paintedMatteInfo(const std::filesystem::path& name, const OfxRectI& window)
{
    PictureInfo info;
    info.file = name;
    info.displayWindow = info.dataWindow = window;
    return info;
}

JobInputs::JobInputs(const RenderSettings& settings)
    : output_(settings.output),
      frames_(settings.frames.empty() ? std::vector<int>{kStillFrame} : settings.frames),
      isSequence_(!settings.frames.empty())
{
    const auto add = [this](const char* clip, const std::filesystem::path& file, Files::ReadAs as) {
        if (!file.empty()) inputs_.push_back({clip, Files::SequencePattern(file), as});
    };
    add(Names::kSource, settings.source, Files::ReadAs::Picture);
    if (!settings.paintsMatte) add(Names::kMatte, settings.matte, Files::ReadAs::Matte);
    for (std::size_t i = 0; i < settings.textures.size(); ++i) {
        add(Names::kTextures.at(i), settings.textures[i], Files::ReadAs::Picture);
    }
    const int first = settings.firstFrame.value_or(frames_.front());
    const auto [least, most] = std::ranges::minmax(frames_);
    range_ = {double(std::min(least, first)), double(std::max(most, first))};
    checkFrames(settings);
    findFilesRead();
    if (!settings.output.empty()) {
        Files::checkTarget(outputFile(frames_.front()), settings.compression);
        checkOutputs();
    }
    readInfos(settings);
    if (settings.paintsMatte) {
        read_.emplace(Names::kMatte,
                      paintedMatteInfo(settings.matte, read_.at(Names::kSource).displayWindow));
    }
    infos_ = read_;
    crops_ = TextureCrops(settings, read_);
    crops_.cut(infos_);
    if (has(Names::kMatte)) checkMatte(infos_.at(Names::kMatte), source());
}

JobInputs JobInputs::withCrops(const RenderSettings& settings) const
{
    JobInputs other = *this;
    other.stills_ = std::make_shared<FramePictures>();
    other.infos_ = read_;
    other.crops_ = TextureCrops(settings, read_);
    other.crops_.cut(other.infos_);
    return other;
}

bool JobInputs::hasFiles(int frame) const
{
    return std::ranges::all_of(
        inputs_, [&](const Input& input) { return input.pattern.missing({frame}).empty(); });
}

std::map<std::string, PictureInfo> JobInputs::infosOf(int frame) const
{
    std::map<std::string, PictureInfo> infos;
    for (const Input& input : inputs_) {
        infos.emplace(input.clip, Files::readInfo(input.pattern.file(frame)));
    }
    return infos;
}

void JobInputs::readInfos(const RenderSettings& settings)
{
    if (settings.firstFrame && hasFiles(*settings.firstFrame)) {
        read_ = infosOf(*settings.firstFrame);
        return;
    }
    for (const int frame : frames_) {
        try {
            read_ = infosOf(frame);
            return;
        } catch (const Files::FileError&) {
            if (!settings.keepsGoing || frame == frames_.back()) throw;
        }
    }
}

std::filesystem::path JobInputs::earlierSource() const
{
    constexpr int kMostBefore = 100;
    const Files::SequencePattern& source = inputs_.front().pattern;
    if (!source.isSequence()) return {};
    const int first = std::ranges::min(frames_);
    for (int frame = first - 1; frame >= first - kMostBefore; --frame) {
        if (source.missing({frame}).empty()) return source.file(frame);
    }
    return {};
}

void JobInputs::checkFrames(const RenderSettings& settings) const
{
    std::vector<int> needed = frames_;
    if (settings.firstFrame && settings.loadFill.empty()) needed.push_back(*settings.firstFrame);
    for (const Input& input : inputs_) {
        if (!input.pattern.isSequence()) continue;
        const std::string name = input.pattern.name().string();
        if (!isSequence_) throw UsageError(name + " is a sequence: --frames is required");
        const std::vector<int> missing = input.pattern.missing(needed);
        const bool mayMiss = settings.keepsGoing && missing.size() < needed.size();
        if (!missing.empty() && !mayMiss) {
            throw UsageError(name + ": missing frames " + Files::framesText(missing));
        }
    }
    if (!isSequence_ && output_.isSequence()) {
        throw UsageError(output_.name().string() + " is a sequence: --frames is required");
    }
    if (frames_.size() > 1 && !output_.isSequence() && !output_.name().empty()) {
        throw UsageError(
            output_.name().string() +
            ": several frames need a place for the number in the name, as in out.####.png");
    }
}

void JobInputs::findFilesRead()
{
    for (const int frame : frames_) {
        for (const Input& input : inputs_) {
            if (const auto file = Files::fileIdentity(input.pattern.file(frame)))
                filesRead_.insert(*file);
        }
    }
}

bool JobInputs::reads(const std::filesystem::path& file) const
{
    const auto found = Files::fileIdentity(file);
    return found && filesRead_.contains(*found);
}

void JobInputs::checkOutputs() const
{
    for (const int frame : frames_) {
        if (reads(outputFile(frame))) {
            throw UsageError(outputFile(frame).string() +
                             ": is one of the input files and is not overwritten");
        }
    }
}

ClipPicture JobInputs::readClip(const Input& input, int frame, Depth depth)
{
    Files::PictureFile file = Files::readPicture(input.pattern.file(frame), input.as, depth);
    const bool hasFullAlpha =
        file.info.hasAlpha && file.matteFrom && *file.matteFrom != Files::MatteFrom::Alpha;
    if (hasFullAlpha && !std::exchange(reportedFullAlpha_, true)) {
        file.warnings.push_back(Files::shownName(file.info.file) +
                                ": its alpha is full everywhere, so the matte is taken from its "
                                "colours");
    }
    return {std::make_shared<const Picture>(std::move(file.picture)), file.record, file.info,
            file.warnings, file.matteFrom};
}

ClipPicture JobInputs::readOnce(const Input& input, int frame, Depth depth)
{
    const auto still = stills_->find(input.clip);
    return still != stills_->end() ? still->second : readClip(input, frame, depth);
}

FramePictures JobInputs::readMatte(int frame, Depth depth)
{
    const auto matte = std::ranges::find(inputs_, std::string(Names::kMatte), &Input::clip);
    if (matte == inputs_.end() || !matte->pattern.missing({frame}).empty()) return {};
    ClipPicture picture = readOnce(*matte, frame, depth);
    if (!matte->pattern.isSequence()) stills_->emplace(matte->clip, picture);
    checkMatte(picture.info, source());
    FramePictures pictures;
    pictures.emplace(matte->clip, std::move(picture));
    return pictures;
}

FramePictures JobInputs::read(int frame, Depth depth)
{
    std::vector<ClipPicture> read(inputs_.size());
    Files::inParallel(inputs_.size(),
                      [&](std::size_t i) { read[i] = readOnce(inputs_[i], frame, depth); });
    FramePictures pictures;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        const Input& input = inputs_[i];
        if (!input.pattern.isSequence() && isSequence_) stills_->emplace(input.clip, read[i]);
        pictures.emplace(input.clip, std::move(read[i]));
    }
    if (pictures.contains(Names::kMatte)) {
        checkMatte(pictures.at(Names::kMatte).info, pictures.at(Names::kSource).info);
    }
    crops_.cut(pictures);
    return pictures;
}

}  // namespace Tesseret::Render
