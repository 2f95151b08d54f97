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
    return clip == Names::kSource ||
           std::ranges::find(Names::kTextures, clip) != Names::kTextures.end();
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
