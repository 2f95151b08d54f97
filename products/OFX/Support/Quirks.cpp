#include "products/OFX/Support/Quirks.h"

#include <algorithm>
#include <array>

namespace Orvane {
namespace {

enum class Match { Whole, Part };

struct HostRow {
    std::string_view name;
    Match match = Match::Whole;
    OvHostQuirks quirks;
};

constexpr auto kHosts = std::to_array<HostRow>({
    // Takes every status of the load action but 0, "default" included, for a failure and drops the
    // plug-in. Always reports that it is a background host, and neither lists nor sets secret
    // parameters, as all are in such a host: an editor built on it would show none. Lists the
    // options of a choice only when a default was written.
    {.name = "MLT",
     .quirks = {.loadStatus = kOfxStatOK, .isNeverBackground = true, .needsChoiceDefaults = true}},
    // Reports the frames of the file behind a clip, but has an image at every time: a still picture
    // anywhere on the timeline.
    {.name = "fr.inria.Natron", .quirks = {.frameRangesDecide = false}},
    // Reports frames 1 to 10 for every clip, and renders any other frame.
    {.name = "pyofx", .quirks = {.frameRangesDecide = false}},
    // Reports the frames of a test from 0 on, for stills and for the output too.
    {.name = "openfx-driver", .quirks = {.frameRangesDecide = false}},
    // Its name contains a version. Returns statuses of messages that have no meaning.
    {.name = "film master", .match = Match::Part, .quirks = {.answersMessages = false}},
});

bool matches(const HostRow& row, std::string_view name)
{
    return row.match == Match::Whole ? name == row.name
                                     : name.find(row.name) != std::string_view::npos;
}

}  // namespace

OvHostQuirks quirksOf(std::string_view hostName)
{
    const auto found =
        std::ranges::find_if(kHosts, [&](const HostRow& row) { return matches(row, hostName); });
    return found != kHosts.end() ? found->quirks : OvHostQuirks();
}

}  // namespace Orvane
