/// The part of a session that has settings chosen by trials, and holds a list of steps.

#include <algorithm>
#include <numeric>
#include <utility>

#include <nlohmann/json.hpp>

#include "effect/ParameterNames.h"
#include "fill/Choice.h"
#include "fill/ChoiceText.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "viewer/model/CommandText.h"
#include "viewer/model/Raised.h"
#include "viewer/model/Thumbnail.h"
#include "viewer/model/ViewSession.h"
#include "viewer/model/WindowWording.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;
using Render::FillStep;
using Render::RenderSettings;

namespace {

constexpr double kThumbnailAspect = 4.0 / 3.0;
constexpr std::size_t kMostLines = 4;  ///< of what was chosen, an area each

bool isCorner(const std::string& name)
{
    return name == Names::kSampleCorner1 || name == Names::kSampleCorner2;
}

bool isTextureSwitch(const std::string& name)
{
    return std::ranges::find(Names::kUseTextures, name) != Names::kUseTextures.end();
}

bool isNamed(const RenderSettings& settings, const std::string& name)
{
    return std::ranges::any_of(
        settings.parameters, [&](const std::string& text) { return text.starts_with(name + "="); });
}

bool hasTrial(const Fill::FillPlan& plan)
{
    return std::ranges::any_of(
        plan.areas, [](const Fill::AreaChoice& choice) { return choice.visibility.has_value(); });
}

/// What a step has beside values, in a file whose steps start from these settings.
bool isOwn(const FillStep& step, const RenderSettings& base)
{
    const RenderSettings& own = step.settings;
    const auto countCrops = [](const RenderSettings& settings) {
        return std::ranges::count_if(settings.textureCrops,
                                     [](const auto& crop) { return crop.has_value(); });
    };
    return !own.areas.empty() || own.matteGrow != base.matteGrow ||
           own.matteSide.has_value() != base.matteSide.has_value() ||
           countCrops(own) != countCrops(base);
}

}  // namespace

std::string ViewSession::chooseObstacle() const
{
    const bool isKnown = description_.parameter(Names::kBlockSize) != nullptr &&
                         description_.parameter(Names::kFillRegion) != nullptr;
    if (!isKnown) return "the plug-in has no settings to choose from";
    if (fillRegion().source != Render::MaskSource::Matte || !hasPaint()) {
        return "paint over what should go first";
    }
    return "";
}

/// Values that a search would choose stay where they were given by name. Those of a parameter file
/// are a start like the window's own. A sample box in use says where blocks come from.
RenderSettings ViewSession::searchSettings() const
{
    RenderSettings settings = matteSettings();
    settings.mask = fillRegion().polarity == Render::Polarity::Black
                        ? Render::MaskOption::MatteInverted
                        : Render::MaskOption::None;
    settings.parameterFile.clear();
    settings.sampleBox.reset();
    settings.parameters.clear();
    const std::vector<std::string> chosen = Fill::chosenParameters();
    const bool keepsBox = hasOwnBox() && usesSampleBox();
    for (const ParameterDescription& parameter : description_.parameters) {
        const std::string& name = parameter.name;
        if (parameter.shape.dimension == 0 || name == Names::kFillRegion) continue;
        const bool isChosen = std::ranges::find(chosen, name) != chosen.end();
        const bool isOfBox = isCorner(name) || name == Names::kAvoidFillRegion;
        bool isKept = !isChosen || isNamed(settings_, name) || (keepsBox && isOfBox);
        if (isTextureSwitch(name))
            isKept = value(name) == ParameterValue(0) && isNamed(settings_, name);
        if (isCorner(name)) isKept = keepsBox;
        if (!isKept || (!isChosen && value(name) == parameter.initial)) continue;
        settings.parameters.push_back(assignmentText(parameter, value(name)));
    }
    return settings;
}

void ViewSession::startChoosing(Fill::Effort effort)
{
    const std::string obstacle = chooseObstacle();
    if (!obstacle.empty()) throw Render::UsageError("No settings can be chosen: " + obstacle);
    if (search_.isBusy()) return;
    const ViewRequest request = currentRequest(1.0);
    SearchJob job{searchSettings(), effort, frame_, pictures_.depth(), *shown_};
    if (request.matte) job.pictures = paintedPictures(*shown_, request.matte, settings_);
    for (const char* context : {"Filter", "General"}) session_.describe(context);
    changedMeanwhile_.clear();
    search_.start(std::move(job), request.matte ? pictures_.paintedInputs() : inputs());
}

bool ViewSession::takeChoice()
{
    if (history_.isGroupOpen() || isPainting()) return false;
    const std::optional<SearchOutcome> found = search_.take();
    if (!found) return false;
    if (!found->error.empty()) {
        messages_.message("No settings were chosen: " + found->error);
        return true;
    }
    if (found->plan.wasEnded && !hasTrial(found->plan)) {
        messages_.message("Stopped before the first trial; the settings are as they were.");
        return true;
    }
    const std::shared_ptr<const FillList> list = choose(*found);
    if (!servesMatte(*list)) {
        messages_.message(
            "The areas that settings were chosen for are gone; the settings are as "
            "they were.");
        return true;
    }
    const EditHistory::Group edit(history_);
    std::vector<Render::NamedValue> kept;
    for (const std::string& name : changedMeanwhile_) kept.push_back({name, value(name)});
    takeList(list);
    apply(kept);
    for (const auto& [name, value] : kept) overrideSteps(name, value);
    tellChoice(found->plan);
    return true;
}

/// Keeps the variations, whose areas are those of the same matte.
std::shared_ptr<const FillList> ViewSession::choose(const SearchOutcome& found)
{
    const Render::Polarity polarity = found.job.settings.mask == Render::MaskOption::MatteInverted
                                          ? Render::Polarity::Black
                                          : Render::Polarity::White;
    std::optional<Render::MatteAreas> areas;
    if (paintObstacle_.empty()) {
        areas.emplace(found.job.pictures.at(Names::kMatte).picture, polarity);
    }
    const Render::MatteAreas* const known = areas ? &*areas : nullptr;
    variations_ = found.plan.variations;
    variationLists_.clear();
    for (Fill::Variation& variation : variations_) {
        variationLists_.push_back(listOf(variation.steps, known));
        variation.preview = std::make_shared<const Picture>(
            thumbnailOf(*variation.preview, found.plan.varied.pixels->bounds(), kThumbnailAspect));
    }
    if (!variationLists_.empty()) return variationLists_.front();  // the plan's own
    return listOf(found.plan.steps, known);
}

/// What was chosen was chosen for the areas that there are; what is painted later gets the panel's
/// values and no texture from beside another area.
std::shared_ptr<const FillList> ViewSession::listOf(std::vector<FillStep> steps,
                                                    const Render::MatteAreas* areas) const
{
    for (FillStep& step : steps) {
        if (areas == nullptr || !step.settings.areas.empty()) continue;
        step.settings.areas.resize(areas->count());
        std::iota(step.settings.areas.begin(), step.settings.areas.end(), std::size_t{0});
    }
    return std::make_shared<const FillList>(steps, areas);
}

void ViewSession::tellChoice(const Fill::FillPlan& plan)
{
    if (plan.wasEnded) messages_.message("Stopped: the best so far is used.");
    std::size_t lines = 0;
    for (const Fill::AreaChoice& choice : plan.areas) {
        if (++lines > kMostLines) {
            messages_.message("... and " + std::to_string(plan.areas.size() - kMostLines) +
                              " more choices");
            break;
        }
        const std::string score =
            choice.visibility ? ", score " + Fill::scoreText(choice.visibility->total) : "";
        messages_.message("Chosen for " + Fill::areasText(choice) + ": " + choice.caption + score);
    }
    for (const Fill::AreaChoice& choice : plan.areas) {
        const std::string poor = Fill::poorNote(choice);
        if (!poor.empty()) messages_.message(inWindowWords(poor));
    }
}

/// Whether one of the list's areas is left, where the matte can have changed.
bool ViewSession::servesMatte(const FillList& list) const
{
    if (!matte_ || !paintObstacle_.empty()) return true;
    return !list.stepsFor(matteAreas(fillRegion()), nullptr).empty();
}

std::optional<std::size_t> ViewSession::currentVariation() const
{
    const auto found = std::ranges::find(variationLists_, list_);
    if (!list_ || found == variationLists_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - variationLists_.begin());
}

void ViewSession::pickVariation(std::size_t variation)
{
    const std::shared_ptr<const FillList>& list = variationLists_.at(variation);
    if (!servesMatte(*list)) {
        throw Render::UsageError("The areas that these fills are for are gone");
    }
    takeList(list);
}

std::string ViewSession::listText() const
{
    const std::shared_ptr<const FillList> list = listInForce();
    return list ? list->summary() : "";
}

void ViewSession::dropList()
{
    setList(nullptr);
}

void ViewSession::setList(std::shared_ptr<const FillList> list)
{
    if (list == list_) return;
    history_.record(ListChange{list_, list});
    list_ = std::move(list);
    hasChanged_ = true;
}

/// The panel shows the first step's values. The box of a texture that is cut for that step, and the
/// switch for it, mean nothing elsewhere.
void ViewSession::takeList(const std::shared_ptr<const FillList>& list)
{
    const EditHistory::Group edit(history_);
    std::vector<Render::NamedValue> shown;
    for (const auto& [name, value] : list->firstValues()) {
        if (list->cutsTexture() && (isCorner(name) || isTextureSwitch(name))) continue;
        if (description_.parameter(name) != nullptr) shown.push_back({name, value});
    }
    {
        const Raised taking(isTakingList_);
        apply(shown);
    }
    setList(list);
}

/// A sample box that is drawn takes the place of textures cut from the source.
void ViewSession::overrideSteps(const std::string& name, const ParameterValue& value)
{
    FillList next = list_->with(name, value);
    if (isCorner(name)) {
        Render::ParameterValues box;
        for (const char* corner : {Names::kSampleCorner1, Names::kSampleCorner2}) {
            box[corner] = this->value(corner);
        }
        for (std::size_t i = 0; i < Names::kUseTextures.size(); ++i) {
            if (!inputs().has(Names::kTextures[i])) box[Names::kUseTextures[i]] = 0;
        }
        next = next.withCrops(settings_, box);
    }
    setList(std::make_shared<const FillList>(std::move(next)));
}

std::shared_ptr<const FillList> ViewSession::listInForce() const
{
    return list_ && fillRegion().source == Render::MaskSource::Matte ? list_ : nullptr;
}

Render::MatteAreas ViewSession::matteAreas(const Render::FillRegion& region) const
{
    std::shared_ptr<const Picture> matte = currentRequest(1.0).matte;
    if (!matte) matte = shown_->at(Names::kMatte).picture;
    return {std::move(matte), region.polarity};
}

std::vector<FillStep> ViewSession::currentSteps() const
{
    const std::shared_ptr<const FillList> list = listInForce();
    if (!list) return {};
    return stepsInForce(*list, matteAreas(fillRegion()), settings_, values());
}

RenderSettings ViewSession::matteSettings() const
{
    return currentRequest(1.0).matte ? paintedSettings(settings_) : settings_;
}

/// In one command where a single step allows it, else with the list as text.
std::string ViewSession::listCommand(const std::vector<FillStep>& steps)
{
    RenderSettings base = matteSettings();
    if (base.paintsMatte) base.matte = matteFile();
    const RenderSettings all = listSettings(base, effect().identifier, description_, steps);
    if (steps.size() > 1) return commandWithFile(all);
    const RenderSettings step = Render::stepsOf(all).front();
    const Render::JobInputs cut =
        (base.paintsMatte ? pictures_.paintedInputs() : inputs()).withCrops(step);
    return Viewer::commandText(step, Render::InstanceSetup(session_, step, cut, pictures_.depth()),
                               session_);
}

/// Values that the file leaves open are those of the panel. Beside a file given on the command line
/// its options and names count.
std::shared_ptr<const FillList> ViewSession::loadedList(const std::filesystem::path& file,
                                                        bool isGiven) const
{
    if (fillRegion().source == Render::MaskSource::None && !matte_) return nullptr;
    RenderSettings base = matte_ ? paintedSettings(settings_) : settings_;
    base.parameterFile = file;
    std::vector<FillStep> steps;
    for (const RenderSettings& step : Render::stepsOf(base)) {
        Render::ParameterValues all = values();
        const std::string plugin = ready_.instance->effect().description().identifier;
        for (auto& [name, value] : Render::loadParameters(file, plugin, description_, step.step)) {
            const bool isOverridden =
                isGiven && (isNamed(settings_, name) || (settings_.sampleBox && isCorner(name)));
            if (!isOverridden) all.insert_or_assign(name, std::move(value));
        }
        steps.push_back({step, std::move(all)});
    }
    const bool isPlain = steps.size() == 1 && !isOwn(steps.front(), base);
    if (isPlain) return nullptr;
    const bool isPainted = paintObstacle_.empty() && matte_;
    std::optional<Render::MatteAreas> areas;
    const Render::FillRegion region{Render::MaskSource::Matte, fillRegion().polarity};
    if (isPainted) areas.emplace(matteAreas(region));
    return std::make_shared<const FillList>(steps, areas ? &*areas : nullptr);
}

}  // namespace Tesseret::Viewer
