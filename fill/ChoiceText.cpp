#include "fill/ChoiceText.h"

#include <algorithm>
#include <cstdio>

namespace Tesseret::Fill {

namespace {

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

std::string scoreText(double score)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", score);
    return text;
}

std::string areasText(const AreaChoice& choice)
{
    if (choice.areas.size() > 1) return std::to_string(choice.areas.size()) + " small areas";
    return "area " + std::to_string(choice.areas.front() + 1);
}

std::string poorNote(const AreaChoice& choice)
{
    if (!choice.visibility || choice.visibility->total <= kPoorScore) return "";
    return areasText(choice) + ": even the best fill is visible (score " +
           scoreText(choice.visibility->total) + "): " + adviceFor(*choice.visibility);
}

}  // namespace Tesseret::Fill
