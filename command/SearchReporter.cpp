#include "command/SearchReporter.h"

#include <algorithm>
#include <cstdio>

#include "render/Interrupt.h"

namespace Tesseret::Command {

namespace {

std::string scoreText(double score)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", score);
    return text;
}

std::string areasText(const Fill::AreaChoice& choice)
{
    if (choice.areas.size() > 1) return std::to_string(choice.areas.size()) + " small areas";
    return "area " + std::to_string(choice.areas.front() + 1);
}

/// What might help where even the best fill shows.
std::string adviceFor(const Quality::Visibility& visibility)
{
    const double worst = std::max({visibility.rim, visibility.inside, visibility.step,
                                   visibility.repeats, visibility.structure});
    if (visibility.repeats == worst) {
        return "the same spot shows several times; give more texture with --texture1";
    }
    if (visibility.structure == worst || visibility.inside == worst) {
        return "this method cannot continue a structure; a smaller matte, or texture from another "
               "picture with --texture1, may help";
    }
    return "the border shows; a matte that ends on even ground, larger or smaller, may help";
}

}  // namespace

SearchReporter::SearchReporter(bool isQuiet) : isQuiet_(isQuiet), bar_(stderr, !isQuiet) {}

void SearchReporter::searched(const Fill::SearchProgress& progress)
{
    if (!bar_.isShown()) return;
    std::string text;
    if (progress.areas > 1) {
        text = "area " + std::to_string(progress.area + 1) + " of " +
               std::to_string(progress.areas) + "  ";
    }
    text += "trial " + std::to_string(progress.done) + " of " + std::to_string(progress.trials) +
            "  best " + scoreText(progress.best) + "  " + progress.caption;
    const double share = double(progress.done) / double(progress.trials);
    bar_.update((double(progress.area) + share) / double(progress.areas), text);
}

bool SearchReporter::wantsEnd()
{
    return Render::isInterrupted();
}

void SearchReporter::reportArea(const Fill::AreaChoice& choice) const
{
    const std::string areas = areasText(choice);
    if (!isQuiet_) {
        const std::string score =
            choice.visibility ? "  score " + scoreText(choice.visibility->total) : "";
        std::printf("%s: %s%s\n", areas.c_str(), choice.caption.c_str(), score.c_str());
    }
    if (choice.visibility && choice.visibility->total > Fill::kPoorScore) {
        std::fprintf(stderr, "tesseret: note: %s: even the best fill is visible (score %s): %s\n",
                     areas.c_str(), scoreText(choice.visibility->total).c_str(),
                     adviceFor(*choice.visibility).c_str());
    }
}

void SearchReporter::report(const Fill::FillPlan& plan, std::size_t picked)
{
    bar_.clear();
    if (plan.wasEnded) {
        std::fprintf(stderr,
                     "tesseret: interrupted after %zu trials; going on with the best so far\n",
                     plan.trials);
    }
    for (const Fill::AreaChoice& choice : plan.areas) {
        const bool isVaried = choice.areas == std::vector{plan.varied.number};
        if (isVaried && picked > 0 && picked <= plan.variations.size()) {
            const Fill::Variation& variation = plan.variations[picked - 1];
            reportArea({choice.areas, choice.box, variation.caption, variation.visibility});
        } else {
            reportArea(choice);
        }
    }
    std::fflush(stdout);
}

}  // namespace Tesseret::Command
