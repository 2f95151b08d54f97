#include "effect/EffectRenderContext.h"

#include <sstream>

#include "effect/EffectTable.h"
#include "effect/ParameterNames.h"
#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Message.h"
#include "products/OFX/Support/Observer.h"
#include "products/OFX/Support/Records.h"

namespace Tesseret {

using Orvane::Engine::ClipImage;
using Orvane::Engine::RenderPlace;

namespace {

constexpr const char* kExclusionId = "FrameRange";

}  // namespace

EffectRenderContext::EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                                         Orvane::OvOfxEffectInterface& effectInterface,
                                         bool& exclusionReported)
    : wrapper_(wrapper),
      exclusionReported_(exclusionReported),
      observer_(Orvane::makeHostObserver(
          static_cast<OfxImageEffectHandle>(wrapper.renderStatus().abortHandle))),
      records_(observer_ == nullptr ? nullptr
                                    : Orvane::makeHostRecords(static_cast<OfxImageEffectHandle>(
                                          wrapper.renderStatus().abortHandle))),
      time_(wrapper.time()),
      reader_(wrapper, effectInterface, time_)
{}

std::unique_ptr<ClipImage> EffectRenderContext::outputImage()
{
    std::unique_ptr<ClipImage> output = image(kOfxImageEffectOutputClipName);
    if (output == nullptr) reportExclusion(kOfxImageEffectOutputClipName);
    return output;
}

RenderPlace EffectRenderContext::place()
{
    const OfxRectI window = wrapper_.renderWindow();
    reader_.readScale();
    return {.time = time_, .window = {window.x1, window.y1, window.x2, window.y2}};
}

std::unique_ptr<ClipImage> EffectRenderContext::sourceImage()
{
    const bool needsAspect = !wrapper_.hasProjectAspect();
    std::optional<double> aspect;
    std::unique_ptr<ClipImage> source = image(Names::kSource, needsAspect ? &aspect : nullptr);
    if (source == nullptr) reportExclusion(Names::kSource);
    if (needsAspect) {
        wrapper_.setSourceAspect(aspect);
        reader_.readScale();
    }
    return source;
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

std::unique_ptr<ClipImage> EffectRenderContext::image(const char* clip,
                                                      std::optional<double>* aspect) const
{
    const Orvane::OvOfxClipAccessor* accessor = wrapper_.clip(clip);
    return accessor != nullptr ? accessor->image(time_, nullptr, aspect) : nullptr;
}

void EffectRenderContext::reportExclusion(const char* clip)
{
    const Orvane::OvOfxClipAccessor* accessor = wrapper_.clip(clip);
    if (exclusionReported_ || accessor == nullptr) return;
    const std::optional<Orvane::OvFrameRange> range = accessor->excludingRange(time_);
    if (!range) return;
    exclusionReported_ = true;
    std::ostringstream text;
    text << kLabel << " renders nothing at frame " << time_ << ": the host reports frames "
         << range->first << " to " << range->last << " for the clip " << clip << '.';
    wrapper_.message(text.str().c_str(), Orvane::kMessageLog, kExclusionId);
}

}  // namespace Tesseret
