#include "effect/EffectRenderContext.h"

#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Observer.h"

namespace Tesseret {
namespace {

using Orvane::Engine::Vec2;

/// Parameters are asked for in single precision, whatever the host's times are.
float paramTime(double time)
{
    return static_cast<float>(time);
}

}  // namespace

EffectRenderContext::EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                                         Orvane::OvOfxEffectInterface& effectInterface)
    : wrapper_(wrapper),
      interface_(effectInterface),
      observer_(Orvane::makeHostObserver(
          static_cast<OfxImageEffectHandle>(wrapper.renderStatus().abortHandle)))
{}

double EffectRenderContext::time()
{
    return wrapper_.time();
}

Vec2 EffectRenderContext::renderScale()
{
    const Orvane::OvPoint scale = wrapper_.renderScale();
    return {scale.x, scale.y};
}

double EffectRenderContext::pixelAspectRatio()
{
    return wrapper_.pixelAspectRatio();
}

Orvane::Engine::Window EffectRenderContext::renderWindow()
{
    const OfxRectI window = wrapper_.renderWindow();
    return {window.x1, window.y1, window.x2, window.y2};
}

Orvane::RenderStatus& EffectRenderContext::renderStatus()
{
    return wrapper_.renderStatus();
}

bool EffectRenderContext::hasParam(const char* name)
{
    return wrapper_.hasParam(name);
}

double EffectRenderContext::doubleAt(const char* name, double time)
{
    return interface_.doubleAt(name, paramTime(time));
}

int EffectRenderContext::intAt(const char* name, double time)
{
    return interface_.intAt(name, paramTime(time));
}

bool EffectRenderContext::boolAt(const char* name, double time)
{
    return interface_.boolAt(name, paramTime(time));
}

Vec2 EffectRenderContext::double2DAt(const char* name, double time)
{
    const Orvane::OvPoint position = interface_.double2DAt(name, paramTime(time));
    return {position.x, position.y};
}

bool EffectRenderContext::isClipConnected(const char* name)
{
    const Orvane::OvOfxClipAccessor* clip = wrapper_.clip(name);
    return clip != nullptr && clip->isConnected();
}

std::unique_ptr<Orvane::Engine::ClipImage> EffectRenderContext::clipImage(const char* name,
                                                                          double time)
{
    const Orvane::OvOfxClipAccessor* clip = wrapper_.clip(name);
    return clip != nullptr ? clip->image(time, nullptr) : nullptr;
}

}  // namespace Tesseret
