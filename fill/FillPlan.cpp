#include "fill/FillPlan.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <thread>
#include <utility>

#include "effect/ParameterNames.h"
#include "fill/AreaSearch.h"
#include "fill/LostPixels.h"
#include "fill/PlanSteps.h"
#include "fill/Specks.h"
#include "fill/Variations.h"
#include "render/Interrupt.h"
#include "render/JobError.h"
#include "render/JobHost.h"
#include "render/PluginMessages.h"

namespace Tesseret::Fill {

using Render::MatteAreas;
using Render::RenderSettings;

namespace {

/// The part of a picture that an area is judged in.
OfxRectI windowRound(const OfxRectI& box, const OfxRectI& source)
{
    constexpr double kShare = 1.25;
    constexpr int kLeast = 64;
    constexpr int kUsualSide = 1000;
    const int side = std::max(widthOf(box), heightOf(box));
    const int margin = std::max(static_cast<int>(kShare * side) + kLeast, (kUsualSide - side) / 2);
    return intersection(grownBox(box, margin), source);
}

class Planner {
public:
    Planner(const RenderSettings& settings, Effort effort, int frame, SearchListener& listener,
            const OpenFill& open, std::size_t variations)
        : settings_(settings),
          effort_(effort),
          variations_(variations),
          listener_(listener),
          fixed_(settings),
          inputs_(open.inputs),
          session_(open.session),
          polarity_(settings.mask == Render::MaskOption::MatteInverted ? Render::Polarity::Black
                                                                       : Render::Polarity::White),
          job_{session_,
               inputs_,
               settings_,
               fixed_,
               open.depth,
               frame,
               open.pictures,
               std::make_shared<Render::PaintedAreas>(),
               session_.host().threads(),
               open.messages}
    {
        session_.describe("General");
    }

    FillPlan plan();

private:
    std::vector<std::size_t> chosenAreas(const MatteAreas& areas) const;
    std::size_t largest(const MatteAreas& areas, const std::vector<std::size_t>& of) const;
    void planSpecks(const MatteAreas& areas, const std::vector<std::size_t>& specks);
    void planArea(const MatteAreas& areas, std::size_t area, std::size_t trials);
    void keepVariations(const Trials& trials, const Picture& known, const Picture& lost,
                        Picture area);
    void finish(const MatteAreas& areas);
    void finishVariations(const MatteAreas& areas);

    RenderSettings settings_;
    Effort effort_;
    std::size_t variations_;  ///< to keep
    SearchListener& listener_;
    FixedValues fixed_;
    const Render::JobInputs& inputs_;
    Render::PluginSession& session_;
    Render::Polarity polarity_;
    TrialJob job_;
    std::shared_ptr<Picture> current_;  ///< the source with the areas filled so far
    Picture lost_;
    FillPlan plan_;
    std::size_t searches_ = 0, searched_ = 0;  ///< areas that trials are made for
    PlanSteps choices_{job_};
    std::size_t variedChoice_ = 0;         ///< the one that has variations
    std::vector<AreaVariation> variants_;  ///< of it
    Picture beforeOthers_;                 ///< their window with the best, before later areas
};

std::vector<std::size_t> Planner::chosenAreas(const MatteAreas& areas) const
{
    if (!settings_.areas.empty()) return settings_.areas;
    std::vector<std::size_t> all(settings_.everyArea ? areas.count()
                                                     : std::min<std::size_t>(1, areas.count()));
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

/// The one with the most pixels, of several the first.
std::size_t Planner::largest(const MatteAreas& areas, const std::vector<std::size_t>& of) const
{
    std::size_t best = 0, most = 0;
    for (const std::size_t area : of) {
        const std::size_t pixels = pixelsOf(areas, polarity_, area);
        if (pixels <= most) continue;
        most = pixels;
        best = area;
    }
    return best;
}

FillPlan Planner::plan()
{
    const MatteAreas& areas = job_.painted->of(job_.pictures.at(Names::kMatte).picture, polarity_);
    const std::shared_ptr<const Picture> source = job_.pictures.at(Names::kSource).picture;
    lost_ = lostPixels(areas, polarity_, source->bounds());
    current_ = std::make_shared<Picture>(source->copied());
    job_.pictures.at(Names::kSource).picture = current_;
    std::vector<std::size_t> specks, others;
    for (const std::size_t area : chosenAreas(areas)) {
        if (area >= areas.count()) continue;
        const OfxRectI& box = areas.box(area);
        (std::max(widthOf(box), heightOf(box)) <= kSpeckSide ? specks : others).push_back(area);
    }
    if (specks.size() <= kSeveralSpecks || fixed_.fixesPlace()) {
        others.insert(others.end(), specks.begin(), specks.end());
        specks.clear();
    }
    constexpr std::size_t kLeastTrials = 4;
    const std::size_t trials = others.size() <= 2
                                   ? trialsOf(effort_)
                                   : std::max(kLeastTrials, 2 * trialsOf(effort_) / others.size());
    searches_ = others.size();
    if (variations_ > 0) plan_.varied.number = largest(areas, others);
    for (const std::size_t area : others) {
        planArea(areas, area, trials);
        ++searched_;
    }
    planSpecks(areas, specks);
    finish(areas);
    finishVariations(areas);
    return std::move(plan_);
}

void Planner::planSpecks(const MatteAreas& areas, const std::vector<std::size_t>& specks)
{
    std::vector<Speck> list;
    list.reserve(specks.size());
    for (const std::size_t area : specks) list.push_back({area, areas.box(area)});
    for (const SpeckGroup& group : groupSpecks(list, *current_, lost_)) {
        choices_.add(group.choice, group.areas);
        plan_.areas.push_back(
            {group.areas, group.box, captionOf(group.choice, fixed_), std::nullopt});
    }
}

void Planner::planArea(const MatteAreas& areas, std::size_t area, std::size_t count)
{
    const OfxRectI& box = areas.box(area);
    const double thickness =
        double(pixelsOf(areas, polarity_, area)) / std::max(widthOf(box), heightOf(box));
    const Edge edge = edgeFor(thickness);
    const double grow = settings_.matteGrow > 0.0 ? settings_.matteGrow : edge.grow;
    Surroundings surroundings{box,
                              grownBox(box, static_cast<int>(std::ceil(grow))),
                              current_->bounds(),
                              windowRound(box, current_->bounds()),
                              {}};
    for (std::size_t other = 0; other < areas.count(); ++other) {
        if (other == area) continue;
        const OfxRectI lost = grownBox(areas.box(other), static_cast<int>(std::ceil(grow)));
        if (!isEmpty(intersection(lost, surroundings.window))) surroundings.taboo.push_back(lost);
    }
    const OfxRectI& window = surroundings.window;
    const Picture known = current_->copied(window, {});
    const Picture lost = lost_.copied(window, {});
    const Quality::TextureScale texture(known, lost, box);
    const Quality::FillScorer scorer(known, lost, box, texture.grounds());
    Trials trials(job_, {area, window, searched_, searches_}, scorer, listener_, count);
    AreaSearch(surroundings, edge, texture, fixed_, job_.top(), trials).run();
    plan_.trials += count - trials.left();
    if (trials.hasEnded()) plan_.wasEnded = true;
    const std::vector<Scored> ranked = trials.ranked();
    if (ranked.empty()) {
        Choice plain = firstGuess(edge, texture);
        plain.parts = {{Place{"everywhere else", {}, 0}, std::nullopt}};
        choices_.add(plain, {area});
        plan_.areas.push_back({{area}, box, captionOf(plain, fixed_), std::nullopt});
        return;
    }
    const Scored& best = ranked.front();
    choices_.add(best.choice, {area});
    plan_.areas.push_back({{area}, box, captionOf(best.choice, fixed_), best.visibility});
    if (plan_.wasEnded) return;
    const bool isVaried = area == plan_.varied.number && variations_ > 0;
    if (isVaried) {
        const Picture pixels = areaPixels(areas, polarity_, area);
        keepVariations(trials, known, lost, pixels.copied(intersection(box, window), {}));
        plan_.wasEnded = listener_.wantsEnd();
        if (plan_.wasEnded) return;
    }
    current_->paste(trials.render(best.choice));
    if (isVaried) beforeOthers_ = current_->copied(window, {});
}

/// While the source still has what the area is to lose.
void Planner::keepVariations(const Trials& trials, const Picture& known, const Picture& lost,
                             Picture area)
{
    plan_.varied.source = std::make_shared<const Picture>(known.copied());
    plan_.varied.pixels = std::make_shared<const Picture>(area.copied());
    variedChoice_ = choices_.count() - 1;
    variants_ = variationsOf(trials, known, lost, std::move(area), variations_);
}

void Planner::finish(const MatteAreas& areas)
{
    plan_.plugin = choices_.plugin();
    plan_.context = PlanSteps::kContext;
    PlannedFill planned = choices_.planned(areas.count());
    plan_.settings = std::move(planned.settings);
    plan_.steps = std::move(planned.steps);
}

void Planner::finishVariations(const MatteAreas& areas)
{
    if (plan_.wasEnded || variants_.empty()) {
        plan_.varied = {};
        return;
    }
    addLaterChanges(variants_, beforeOthers_, *current_);
    for (AreaVariation& variant : variants_) {
        const Choice& choice = variant.scored.choice;
        choices_.replace(variedChoice_, choice);
        PlannedFill planned = choices_.planned(areas.count());
        plan_.variations.push_back({std::move(planned.settings), std::move(planned.steps),
                                    captionOf(choice, fixed_), variant.scored.visibility,
                                    std::make_shared<const Picture>(std::move(variant.picture))});
    }
}

}  // namespace

FillPlan planFill(const RenderSettings& settings, Effort effort, int frame,
                  SearchListener& listener, std::size_t variations)
{
    Render::JobListener silence;
    Render::WarningFilter warnings(silence);
    Render::PluginMessages messages(silence, warnings);
    Render::JobHost host(settings.hostLike);
    Render::JobInputs inputs(settings);
    Render::PluginSession session(settings.plugin,
                                  host.adapted(messages.hostOptions(settings.threads)));
    const Depth depth = host.depthFor(settings.depth, inputs.source().depth);
    return planFill(settings, effort, frame, listener,
                    {session, inputs, depth, inputs.read(frame, depth)}, variations);
}

FillPlan planFill(const RenderSettings& settings, Effort effort, int frame,
                  SearchListener& listener, const OpenFill& open, std::size_t variations)
{
    return Planner(settings, effort, frame, listener, open, variations).plan();
}

}  // namespace Tesseret::Fill
