#include "effect/EffectRenderContext.h"

#include "effect/ParameterNames.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Observer.h"

namespace Tesseret {

using Orvane::Engine::ClipImage;
using Orvane::Engine::RenderPlace;

EffectRenderContext::EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                                         Orvane::OvOfxEffectInterface& effectInterface)
    : wrapper_(wrapper),
      observer_(Orvane::makeHostObserver(
          static_cast<OfxImageEffectHandle>(wrapper.renderStatus().abortHandle))),
      time_(wrapper.time()),
      reader_(wrapper, effectInterface, time_)
{}

std::unique_ptr<ClipImage> EffectRenderContext::outputImage()
{
    return image(kOfxImageEffectOutputClipName);
}

RenderPlace EffectRenderContext::place()
{
    const OfxRectI window = wrapper_.renderWindow();
    reader_.readScale();
    return {.time = time_, .window = {window.x1, window.y1, window.x2, window.y2}};
}

std::unique_ptr<ClipImage> EffectRenderContext::sourceImage()
{
    return image(Names::kSource);
}

std::unique_ptr<ClipImage> EffectRenderContext::matteImage()
{
    return isConnected(Names::kMatte) ? image(Names::kMatte) : nullptr;
}

std::unique_ptr<ClipImage> EffectRenderContext::textureImage(std::size_t index)
{
    const char* clip = Names::kTextures.at(index);
    const bool isUsed =
        reader_.hasTexture(index) && isConnected(clip) && reader_.usesTexture(index);
    return isUsed ? image(clip) : nullptr;
}

bool EffectRenderContext::isConnected(const char* clip) const
{
    const Orvane::OvOfxClipAccessor* accessor = wrapper_.clip(clip);
    return accessor != nullptr && accessor->isConnected();
}

std::unique_ptr<ClipImage> EffectRenderContext::image(const char* clip) const
{
    const Orvane::OvOfxClipAccessor* accessor = wrapper_.clip(clip);
    return accessor != nullptr ? accessor->image(time_, nullptr) : nullptr;
}

}  // namespace Tesseret
