#include "fill/Variations.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "quality/FillDifference.h"

namespace Tesseret::Fill {

namespace {

/// Keeps what differs from all before.
class Selection {
public:
    Selection(const Picture& known, const Picture& lost, Picture area, std::size_t count)
        : difference_(known, lost, std::move(area)), count_(count)
    {}

    bool isComplete() const { return kept_.size() >= count_; }

    void offer(const Scored& scored, Picture picture)
    {
        if (isComplete()) return;
        Quality::Tones look = difference_.look(picture);
        const bool isNew = std::ranges::all_of(looks_, [&](const Quality::Tones& other) {
            return difference_.between(look, other) >= Quality::kOtherPicture;
        });
        if (!isNew) return;
        looks_.push_back(std::move(look));
        kept_.push_back({scored, std::move(picture)});
    }

    std::vector<AreaVariation> taken() { return std::move(kept_); }

private:
    Quality::FillDifference difference_;
    std::size_t count_;
    std::vector<Quality::Tones> looks_;
    std::vector<AreaVariation> kept_;
};

/// Copies the pixels of `after` that differ from `before`.
void copyChanges(Picture& picture, const Picture& before, const Picture& after)
{
    const OfxRectI part =
        intersection(picture.bounds(), intersection(before.bounds(), after.bounds()));
    const std::size_t bytes = picture.pixelBytes();
    for (int y = part.y1; y < part.y2; ++y) {
        for (int x = part.x1; x < part.x2; ++x) {
            const auto* const now = after.pixel<std::byte>(x, y);
            if (std::memcmp(before.pixel<std::byte>(x, y), now, bytes) == 0) continue;
            std::memcpy(picture.pixel<std::byte>(x, y), now, bytes);
        }
    }
}

}  // namespace

std::vector<AreaVariation> variationsOf(const Trials& trials, const Picture& known,
                                        const Picture& lost, Picture area, std::size_t count)
{
    const std::vector<Scored> ranked = trials.ranked();
    const std::size_t end = ranked.size();
    Selection selection(known, lost, std::move(area), count);
    // As many at a time as there are threads; which ones are kept does not depend on that.
    for (std::size_t next = 0; next < end && !selection.isComplete();) {
        const std::size_t first = next;
        next = std::min<std::size_t>(end, first + trials.threads());
        std::vector<Choice> choices;
        for (std::size_t i = first; i < next; ++i) choices.push_back(ranked[i].choice);
        std::vector<std::optional<Picture>> pictures = trials.renderAll(choices);
        for (std::size_t i = first; i < next; ++i) {
            std::optional<Picture>& picture = pictures[i - first];
            if (!picture) return selection.taken();
            selection.offer(ranked[i], std::move(*picture));
        }
    }
    return selection.taken();
}

void addLaterChanges(std::vector<AreaVariation>& variations, const Picture& before,
                     const Picture& after)
{
    for (AreaVariation& variation : variations) copyChanges(variation.picture, before, after);
}

}  // namespace Tesseret::Fill
