#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "fill/Choice.h"
#include "fill/Effort.h"
#include "quality/FillScorer.h"
#include "render/PluginSession.h"
#include "render/StepList.h"

namespace Tesseret::Fill {

/// What all trials of a picture have in common.
struct TrialJob {
    Render::PluginSession& session;
    const Render::JobInputs& inputs;
    const Render::RenderSettings& base;
    const FixedValues& fixed;
    Depth depth;
    int frame;
    Render::FramePictures pictures;  ///< the source as earlier areas left it
    std::shared_ptr<Render::PaintedAreas> painted;
    unsigned int threads;
    Host::InstanceListener* messages;  ///< of the trials' instances; null: the host's

    int top() const { return inputs.source().displayWindow.y2; }
};

/// One area of the matte, and the part of the picture that its fill is judged in.
struct TrialArea {
    std::size_t number;
    OfxRectI window;
    std::size_t place = 0, count = 1;  ///< among the areas that trials are made for
};

struct Scored {
    Choice choice;
    Quality::Visibility visibility;
};

/// Renders choices for an area and scores them, one on each thread.
class Trials {
public:
    /// All outlive the object.
    Trials(const TrialJob& job, const TrialArea& area, const Quality::FillScorer& scorer,
           SearchListener& listener, std::size_t all)
        : job_(job), area_(area), scorer_(scorer), listener_(listener), all_(all)
    {}

    /// Renders those that were not tried yet, as far as the number of trials allows. The same for
    /// any number of threads, unless the listener ends the search.
    void run(std::vector<Choice> choices);

    /// The best first; equal ones in the order of their trials.
    std::vector<Scored> ranked() const;
    std::size_t left() const { return all_ - tried_.size(); }
    bool hasEnded() const { return hasEnded_; }

    /// The picture of the area's window.
    Picture render(const Choice& choice) const;
    /// Likewise for several choices, one on each thread; none for those that were not rendered
    /// since the listener ended the search.
    std::vector<std::optional<Picture>> renderAll(const std::vector<Choice>& choices) const;
    unsigned int threads() const { return job_.threads; }

private:
    using Key = std::vector<std::string>;

    Key keyOf(const Choice& choice) const;
    void report(std::size_t done, const Choice& choice, const Quality::Visibility& visibility,
                Picture picture);

    const TrialJob& job_;
    TrialArea area_;
    const Quality::FillScorer& scorer_;
    SearchListener& listener_;
    std::size_t all_;
    bool hasEnded_ = false;
    double bestTotal_ = std::numeric_limits<double>::infinity();
    std::string bestCaption_;
    std::shared_ptr<const Picture> bestPicture_;
    std::vector<Key> tried_;
    std::vector<Scored> scored_;
};

}  // namespace Tesseret::Fill
