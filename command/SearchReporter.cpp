#include "command/SearchReporter.h"

#include <cstdio>

#include "fill/ChoiceText.h"
#include "render/Interrupt.h"

namespace Tesseret::Command {

using Fill::areasText;
using Fill::scoreText;

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
    const std::string poor = Fill::poorNote(choice);
    if (!poor.empty()) std::fprintf(stderr, "tesseret: note: %s\n", poor.c_str());
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
