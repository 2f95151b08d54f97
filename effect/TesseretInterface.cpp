#include "effect/TesseretInterface.h"

#include <algorithm>
#include <string_view>

#include "effect/EffectTable.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {

bool TesseretInterface::getRegionOfInterest(const char* clipName, const Orvane::OvRect&,
                                            Orvane::OvRect& rect)
{
    if (std::ranges::find(kPictureClips, std::string_view(clipName)) == kPictureClips.end()) {
        return false;
    }
    const Orvane::OvOfxClipAccessor* clip = wrapper().clip(clipName);
    if (clip == nullptr) return false;
    rect = clip->pixelRegionOfDefinition(wrapper().time());
    return true;
}

void TesseretInterface::purgeCaches()
{
    state_.discard();
}

}  // namespace Tesseret
