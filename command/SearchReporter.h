#pragma once

#include <string>

#include "command/ProgressBar.h"
#include "fill/FillPlan.h"

namespace Tesseret::Command {

/// Shows a search for settings on a terminal; an interrupt ends it with the best so far.
class SearchReporter final : public Fill::SearchListener {
public:
    explicit SearchReporter(bool isQuiet);
    ~SearchReporter() override { bar_.clear(); }

    void searched(const Fill::SearchProgress& progress) override;
    bool wantsEnd() override;

    /// Prints what was chosen, or the variation that was picked (0: none); poor scores and an early
    /// end even when quiet.
    void report(const Fill::FillPlan& plan, std::size_t picked = 0);

private:
    void reportArea(const Fill::AreaChoice& choice) const;

    bool isQuiet_;
    ProgressBar bar_;
};

}  // namespace Tesseret::Command
