#include "fill/Trials.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "effect/ParameterNames.h"
#include "host/EmbeddedHost.h"
#include "render/FrameRequest.h"
#include "render/Interrupt.h"
#include "render/JobError.h"

namespace Tesseret::Fill {

namespace {

/// Trials say nothing: what there is to say comes with the render of the best one.
class Silence final : public Render::JobListener {};

/// Calls `work` with each number below `count` on this many threads, each of which renders alone.
/// The exception of the lowest number that failed is thrown.
void onThreads(unsigned int threads, std::size_t count,
               const std::function<void(std::size_t)>& work)
{
    std::atomic<std::size_t> next{0};
    std::vector<std::exception_ptr> failed(count);
    const auto share = [&] {
        const Host::EmbeddedHost::AloneScope alone;
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                work(i);
            } catch (...) {
                failed[i] = std::current_exception();
            }
        }
    };
    std::vector<std::jthread> others;
    const std::size_t used = std::min<std::size_t>(threads, count);
    for (std::size_t i = 1; i < used; ++i) others.emplace_back(share);
    share();
    others.clear();
    for (const std::exception_ptr& failure : failed) {
        if (failure) std::rethrow_exception(failure);
    }
}

}  // namespace

Trials::Key Trials::keyOf(const Choice& choice) const
{
    Key key;
    for (const Render::RenderSettings& step :
         settingsOf(choice, {area_.number}, job_.top(), job_.base, job_.fixed)) {
        key.insert(key.end(), step.parameters.begin(), step.parameters.end());
        key.push_back(std::to_string(step.matteGrow));
        for (const auto& crop : step.textureCrops) {
            if (!crop) continue;
            for (const double edge : {crop->x1, crop->y1, crop->x2, crop->y2}) {
                key.push_back(std::to_string(edge));
            }
        }
        if (const auto& side = step.matteSide) {
            for (const double value : {side->x, side->y, side->angle}) {
                key.push_back(std::to_string(value));
            }
        }
    }
    return key;
}

Picture Trials::render(const Choice& choice) const
{
    Silence silence;
    Render::WarningFilter warnings(silence);
    const std::vector<Render::RenderSettings> steps =
        settingsOf(choice, {area_.number}, job_.top(), job_.base, job_.fixed);
    Render::StepList list(job_.session, job_.inputs, steps, job_.depth, silence, warnings,
                          job_.painted, job_.messages);
    Host::RenderRequest request =
        Render::requestFor(job_.base, job_.inputs.isSequence(), job_.frame, job_.inputs.source());
    // What luminance match does depends on the window, so it gets the one of the final render.
    if (!choice.luminanceMatch) request.window = area_.window;
    const Picture filled = list.render(request, job_.pictures, list.prepare(job_.pictures));
    return filled.copied(area_.window, {});
}

std::vector<std::optional<Picture>> Trials::renderAll(const std::vector<Choice>& choices) const
{
    std::vector<std::optional<Picture>> pictures(choices.size());
    onThreads(job_.threads, choices.size(), [&](std::size_t i) {
        if (listener_.wantsEnd()) return;
        try {
            pictures[i] = render(choices[i]);
        } catch (const Render::Interrupted&) {
            return;
        }
    });
    return pictures;
}

void Trials::run(std::vector<Choice> choices)
{
    std::vector<Choice> fresh;
    for (Choice& choice : choices) {
        Key key = keyOf(choice);
        if (left() == 0 || std::ranges::find(tried_, key) != tried_.end()) continue;
        tried_.push_back(std::move(key));
        fresh.push_back(std::move(choice));
    }
    std::vector<std::optional<Quality::Visibility>> results(fresh.size());
    std::mutex mutex;
    std::size_t done = scored_.size();
    onThreads(job_.threads, fresh.size(), [&](std::size_t i) {
        if (listener_.wantsEnd()) return;
        try {
            Picture filled = render(fresh[i]);
            results[i] = scorer_.score(filled);
            const std::lock_guard lock(mutex);
            report(++done, fresh[i], *results[i], std::move(filled));
        } catch (const Render::Interrupted&) {
            return;
        }
    });
    for (std::size_t i = 0; i < fresh.size(); ++i) {
        if (results[i]) scored_.push_back({std::move(fresh[i]), *results[i]});
    }
    if (listener_.wantsEnd()) hasEnded_ = true;
}

void Trials::report(std::size_t done, const Choice& choice, const Quality::Visibility& visibility,
                    Picture picture)
{
    if (visibility.total < bestTotal_) {
        bestTotal_ = visibility.total;
        bestPicture_ = std::make_shared<const Picture>(std::move(picture));
        bestCaption_ = captionOf(choice, job_.fixed);
    }
    listener_.searched(
        {area_.place, area_.count, done, all_, bestTotal_, bestCaption_, bestPicture_});
}

std::vector<Scored> Trials::ranked() const
{
    std::vector<Scored> ranked = scored_;
    std::ranges::stable_sort(ranked, {},
                             [](const Scored& scored) { return scored.visibility.total; });
    return ranked;
}

}  // namespace Tesseret::Fill
