#include "effect/TesseretInterface.h"

#include <algorithm>
#include <string_view>

#include "effect/ParameterNames.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {
namespace {

/// Whether every render needs the clip's whole region of definition.
bool isNeededWhole(std::string_view clip)
{
    // A copy, since GCC for 32-bit Windows gives the array itself two kinds of section.
    constexpr auto kTextures = Names::kTextures;
    return clip == Names::kSource || std::ranges::find(kTextures, clip) != kTextures.end();
}

}  // namespace

bool TesseretInterface::getRegionOfInterest(const char* clipName, const Orvane::OvRect&,
                                            Orvane::OvRect& rect)
{
    if (!isNeededWhole(clipName)) return false;
    const Orvane::OvOfxClipAccessor* clip = wrapper().clip(clipName);
    if (clip == nullptr) return false;
    rect = clip->pixelRegionOfDefinition(wrapper().time(), wrapper().pixelAspectRatio());
    return true;
}

void TesseretInterface::purgeCaches()
{
    state_.discard();
}

}  // namespace Tesseret
