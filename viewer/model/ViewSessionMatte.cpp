/// The part of a session that paints the matte and sets the sample box.

#include <algorithm>
#include <array>

#include "effect/ParameterNames.h"
#include "render/Boxes.h"
#include "render/JobError.h"
#include "viewer/model/MatteShapes.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;

namespace {

bool hasTexture(const Render::JobInputs& inputs)
{
    return std::ranges::any_of(Names::kTextures,
                               [&](const char* clip) { return inputs.has(clip); });
}

/// Whether the user gave a value, by name or in a file.
bool isGiven(const Render::RenderSettings& settings, const std::string& name)
{
    if (!settings.parameterFile.empty()) return true;
    return std::ranges::any_of(
        settings.parameters, [&](const std::string& text) { return text.starts_with(name + "="); });
}

/// Whether a matte with 8 bits is read from the file as it was painted, at any depth.
bool isExact(const Files::PictureInfo& matte)
{
    return matte.depth == Depth::Byte && !matte.isColour && !matte.hasAlpha &&
           matte.pixelAspectRatio == 1.0;
}

}  // namespace

void ViewSession::beginPaint()
{
    if (!paintObstacle_.empty())
        throw Render::UsageError("nothing can be painted: " + paintObstacle_);
    if (isPainting()) return;
    matte_->painted();  // what a render gets until the step ends
    history_.beginGroup();
    matte_->paint().begin();
    if (fillRegion().polarity == Render::Polarity::Black &&
        fillRegion().source == Render::MaskSource::Matte) {
        const auto read = shown_->find(Names::kMatte);
        const bool isRead = read != shown_->end() && !currentRequest(1.0).matte;
        invertMatte(matte_->paint(),
                    isRead ? read->second.info.dataWindow : matte_->paint().bounds());
    }
}

void ViewSession::endPaint()
{
    if (!isPainting()) return;
    MattePatch patch = matte_->paint().end();
    if (!patch.empty()) {
        history_.record(std::move(patch));
        hasChanged_ = true;
        fillFromMatte();
    }
    history_.endGroup();
}

void ViewSession::cancelPaint()
{
    if (!isPainting()) return;
    const std::uint64_t before = matte_->paint().revision();
    MattePatch patch = matte_->paint().end();
    if (matte_->paint().revision() != before) matte_->paint().swap(patch);
    history_.endGroup();
}

bool ViewSession::hasPaint() const
{
    return isPainting() || (matte_ && !isEmpty(matte_->paint().maskedBox()));
}

void ViewSession::paint(const std::function<void(MattePaint&)>& work)
{
    beginPaint();
    try {
        work(matte_->paint());
    } catch (...) {
        cancelPaint();
        throw;
    }
    endPaint();
}

/// Without a box of the user's, blocks keep clear of the region, as in a command with a matte.
void ViewSession::fillFromMatte()
{
    const bool hadMask = fillRegion().source != Render::MaskSource::None;
    if (isChoice(Names::kFillRegion, Names::kMatteAlpha)) return;
    const std::string assignment = std::string(Names::kFillRegion) + "=" + Names::kMatteAlpha;
    set(Names::kFillRegion, Render::parseAssignment(assignment, description_).value);
    if (hadMask || !settings_.keepsClear || hasTexture(inputs()) || hasOwnBox()) return;
    if (!isGiven(settings_, Names::kAvoidFillRegion)) {
        set(Names::kAvoidFillRegion, ParameterValue(1));
    }
}

bool ViewSession::hasOwnBox() const
{
    return std::ranges::any_of(
        std::array{Names::kSampleCorner1, Names::kSampleCorner2}, [&](const char* name) {
            const ParameterDescription* const corner = description_.parameter(name);
            return corner != nullptr && value(name) != corner->initial;
        });
}

bool ViewSession::isChoice(const char* name, const char* choice) const
{
    const ParameterDescription* const parameter = description_.parameter(name);
    return parameter != nullptr && Render::valueText(*parameter, value(name)) == choice;
}

Render::FillRegion ViewSession::fillRegion() const
{
    return Render::fillRegionOf(description_, inputs(), values());
}

void ViewSession::loadMatte(const std::filesystem::path& file)
{
    paint([&](MattePaint& /*paint*/) { matte_->load(file, inputs().source()); });
    fillFromMatte();  // even if it is the same matte
    matte_->markKept();
    if (isExact(Files::readInfo(file))) matte_->setFile(file);
}

void ViewSession::saveMatte(const std::filesystem::path& file)
{
    if (!matte_) throw Render::UsageError("there is no matte to save: " + paintObstacle_);
    const auto isSame = [&](const std::filesystem::path& other) {
        return Files::fileIdentity(file) == Files::fileIdentity(other);
    };
    if (inputs().reads(file) && !isSame(matte_->file()) && !isSame(settings_.matte)) {
        throw Render::UsageError(file.string() +
                                 ": is one of the input files and is not overwritten");
    }
    matte_->save(file);
}

/// Beside the source, unless it has a place already.
std::filesystem::path ViewSession::matteFile() const
{
    if (matte_ && !matte_->file().empty() && matte_->file().extension() == ".png") {
        return matte_->file();
    }
    const std::filesystem::path& source = inputs().source().file;
    return source.parent_path() / (source.stem().string() + "-matte.png");
}

bool ViewSession::needsMatteFile()
{
    if (!matte_ || fillRegion().source != Render::MaskSource::Matte) return false;
    return currentRequest(1.0).matte != nullptr &&
           !(matte_->isSaved() && matte_->file() == matteFile());
}

Render::InstanceSetup ViewSession::currentSetup()
{
    if (settings_.paintsMatte || !currentRequest(1.0).matte) return setup_.with(values());
    return Render::InstanceSetup(session_, paintedSettings(settings_), pictures_.paintedInputs(),
                                 pictures_.depth())
        .with(values());
}

std::optional<OfxRectI> ViewSession::sampleBox() const
{
    if (description_.parameter(Names::kSampleCorner1) == nullptr ||
        description_.parameter(Names::kSampleCorner2) == nullptr) {
        return std::nullopt;
    }
    return Render::sampleBoxOf(description_, inputs(), values());
}

void ViewSession::setSampleBox(const OfxRectD& pixels)
{
    if (!sampleBox()) return;
    const OfxRectI& all = Render::sampledPicture(inputs()).dataWindow;
    const OfxRectD box{std::max(pixels.x1, double(all.x1)), std::max(pixels.y1, double(all.y1)),
                       std::min(pixels.x2, double(all.x2)), std::min(pixels.y2, double(all.y2))};
    if (box.x2 - box.x1 < 1.0 || box.y2 - box.y1 < 1.0) return;
    Render::ParameterValues corners;
    Render::setCorners(box, inputs(), corners);
    const EditHistory::Group edit(history_);
    for (auto& [name, value] : corners) set(name, std::move(value));
    useSampleBox();
}

void ViewSession::useSampleBox()
{
    if (description_.parameter(Names::kAvoidFillRegion) == nullptr) return;
    if (value(Names::kAvoidFillRegion) != ParameterValue(0)) {
        set(Names::kAvoidFillRegion, ParameterValue(0));
    }
}

bool ViewSession::usesSampleBox() const
{
    return sampleBox() && description_.parameter(Names::kAvoidFillRegion) != nullptr &&
           value(Names::kAvoidFillRegion) == ParameterValue(0);
}

}  // namespace Tesseret::Viewer
