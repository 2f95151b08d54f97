#include "viewer/model/WindowWording.h"

#include <array>
#include <string_view>

namespace Tesseret::Viewer {

namespace {

struct Wording {
    std::string_view command, window;
};

/// Longer phrases first.
constexpr auto kWordings = std::to_array<Wording>({
    {"choose another with --sample-box x1,y1,x2,y2, or set avoidFillRegion=on",
     "draw another with the tool Sample box, or turn on Avoid Fill Region"},
    {"choose a part of the texture with --sample-box",
     "draw a smaller one with the tool Sample box"},
    {"--matte-grow joins areas that lie close together, --areas first fills only one",
     "Matte > Grow joins areas that lie close together"},
    {"give more texture with --texture1",
     "start with --texture1 and another picture to give more texture"},
    {"texture from another picture with --texture1, may help",
     "a sample box on other ground, may help"},
    {"whenever they change, temporalConsistancy starts again",
     "whenever they change, Temporal Consistency starts again"},
});

}  // namespace

std::string inWindowWords(std::string text)
{
    for (const Wording& wording : kWordings) {
        const std::size_t place = text.find(wording.command);
        if (place != std::string::npos) text.replace(place, wording.command.size(), wording.window);
    }
    return text;
}

}  // namespace Tesseret::Viewer
